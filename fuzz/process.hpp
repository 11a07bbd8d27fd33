#pragma once
// The state of a process on which numbers in bytes could depend: its locale and its rounding mode.

#include <cfenv>
#include <clocale>

namespace fuzz {

/// Sets all categories of the locale and the rounding mode until it is destroyed. The process must
/// have the "C" locale before.
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
