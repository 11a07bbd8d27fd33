#pragma once
// What of a process the numbers in bytes could depend on: its locale and its rounding mode.

#include <cfenv>
#include <clocale>

namespace fuzz {

/// A locale for all that there is and a rounding mode, until it goes. The process has the "C"
/// locale before.
class Process {
public:
    static constexpr char const* comma_locale = "de_DE.UTF-8";

    Process(char const* locale, int rounding)
        : rounding_before_(std::fegetround()), is_set_(std::setlocale(LC_ALL, locale) != nullptr) {
        std::fesetround(rounding);
    }
    Process(Process const&) = delete;
    Process& operator=(Process const&) = delete;
    ~Process() {
        std::fesetround(rounding_before_);
        std::setlocale(LC_ALL, "C");
    }

    /// Whether the system has the locale.
    bool is_set() const { return is_set_; }

private:
    int  rounding_before_;
    bool is_set_;
};

}  // namespace fuzz
