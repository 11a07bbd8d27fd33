#pragma once
// What tests do with every root, whatever its type.

#include "tests/random_values.hpp"

#include <functional>
#include <string>
#include <vector>

struct RootCase {
    char const* stem;

    /// The bytes of a value made at random.
    std::function<std::string(RandomValues&)> random_bytes;

    /// Expects that both readers take exactly these bytes.
    std::function<void(std::string const&)> read_exactly;

    /// What is written of the value that is read from these bytes.
    std::function<std::string(std::string const&)> read_and_write;
};

/// All roots, in their order.
std::vector<RootCase> const& root_cases();
