#pragma once
// What the two sides of a comparison leave besides bytes and objects.

#include <mpfr.h>

#include <compare>
#include <exception>
#include <string>
#include <typeinfo>

namespace plain_test {

/// MPFR's exponent range when this was made.
struct Range {
    mpfr_exp_t least = mpfr_get_emin();
    mpfr_exp_t most = mpfr_get_emax();
    auto       operator<=>(Range const&) const = default;
};

/// What came of it: nothing, or the type and text of the exception.
template <class Action>
std::string outcome(Action const& action) {
    try {
        action();
    } catch (std::exception const& error) {
        return std::string(typeid(error).name()) + ": " + error.what();
    }
    return "";
}

}  // namespace plain_test
