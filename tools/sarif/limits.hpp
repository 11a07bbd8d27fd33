#pragma once

#include <cstdint>

namespace bradep::sarif {

/// Limits of the texts of a log, in bytes. A log that exceeds one is damaged. They are needed
/// because a few bytes of a log can stand for any amount of text.
struct Limits {
    /// The longest message that is expanded from a text and arguments.
    std::uint64_t message = std::uint64_t{1} << 20;
    /// The bytes that are read and written to make the texts of all results. A text counts anew
    /// wherever a result refers to it.
    std::uint64_t expansion = std::uint64_t{4} << 30;
};

}  // namespace bradep::sarif
