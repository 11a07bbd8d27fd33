#pragma once
// The number of comparisons with the reference implementation, and their seed.

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <random>
#include <string>

namespace plain_test {

/// Returns `slow` if BRADEP_SLOW_TESTS is set.
inline int count(int usual, int slow) {
    return std::getenv("BRADEP_SLOW_TESTS") == nullptr ? usual : slow;
}

/// BRADEP_SEED if it is set, else a random seed for each run. Prints it.
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
