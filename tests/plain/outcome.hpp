#pragma once
// Results of a call other than bytes and objects, for comparing two implementations.

#include <mpfr.h>

#include <compare>
#include <exception>
#include <string>
#include <typeinfo>

namespace plain_test {

/// MPFR's exponent range at construction.
struct Range {
    mpfr_exp_t least = mpfr_get_emin();
    mpfr_exp_t most = mpfr_get_emax();
    auto       operator<=>(Range const&) const = default;
};

/// Runs the action. Returns the type and text of the exception, or the empty text if there is none.
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
