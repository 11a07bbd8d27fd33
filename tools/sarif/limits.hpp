#pragma once

#include <cstdint>

namespace bradep::sarif {

/// What the texts of a log may come to, in bytes. Beyond that the log is damaged: a few bytes of it
/// can stand for any number.
struct Limits {
    /// A message that is put together from a text and arguments.
    std::uint64_t message = std::uint64_t{1} << 20;
    /// What it takes to make the texts of all results, each counted wherever it is referred to.
    std::uint64_t expansion = std::uint64_t{4} << 30;
};

}  // namespace bradep::sarif
