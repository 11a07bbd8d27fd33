#pragma once
// Functions for tests of every root, independent of its type.

#include "tests/random_values.hpp"

#include <functional>
#include <string>
#include <vector>

struct RootCase {
    char const* stem;

    /// The bytes of a random value.
    std::function<std::string(RandomValues&)> random_bytes;

    /// Expects that both readers read exactly these bytes.
    std::function<void(std::string const&)> read_exactly;

    /// Reads the bytes and returns the bytes that the value is written as.
    std::function<std::string(std::string const&)> read_and_write;
};

/// All roots, in the order of `roots.def`.
std::vector<RootCase> const& root_cases();
