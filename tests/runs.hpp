#pragma once
// How often random tests run, and from which seed.

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <random>
#include <string>

namespace runs {

/// The slow count when BRADEP_SLOW_TESTS is set.
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

}  // namespace runs
