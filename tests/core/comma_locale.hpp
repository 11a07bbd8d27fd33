#pragma once
// A numeric locale with a decimal comma.

#include <clocale>
#include <string>

/// While it lives, it is the process's numeric locale, if the system has that locale: see `is_set`.
class CommaLocale {
public:
    static constexpr char const* name = "de_DE.UTF-8";

    CommaLocale()
        : previous_(std::setlocale(LC_NUMERIC, nullptr)),
          is_set_(std::setlocale(LC_NUMERIC, name) != nullptr) {}
    ~CommaLocale() { std::setlocale(LC_NUMERIC, previous_.c_str()); }

    CommaLocale(CommaLocale const&) = delete;
    CommaLocale& operator=(CommaLocale const&) = delete;

    bool is_set() const { return is_set_ && *std::localeconv()->decimal_point == ','; }

private:
    std::string previous_;
    bool        is_set_;
};

/// Fails and ends the test if the system does not have the locale.
#define ASSERT_COMMA_LOCALE(locale) \
    ASSERT_TRUE((locale).is_set()) << "the locale " << CommaLocale::name << " is missing"
