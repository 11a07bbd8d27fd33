#pragma once
// How often the comparisons with the plain reference are made, and from which seed.

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <random>
#include <string>

namespace plain_test {

/// All of them when BRADEP_SLOW_TESTS is set.
inline int count(int usual, int slow) {
    return std::getenv("BRADEP_SLOW_TESTS") == nullptr ? usual : slow;
}

/// BRADEP_SEED, or another one each time; printed.
inline std::uint64_t seed() {
    static std::uint64_t const chosen = [] {
        char const* const given = std::getenv("BRADEP_SEED");
        auto const        made = given ? std::stoull(given) : std::random_device()();
        std::cout << "BRADEP_SEED=" << made << '\n';
        return std::uint64_t{made};
    }();
    return chosen;
}

}  // namespace plain_test
