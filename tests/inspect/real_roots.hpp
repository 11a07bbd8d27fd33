#pragma once
// The real readers and writers of all roots, whatever their types, for tests of bytes.

#include <sml/inspect/type.hpp>
#include "tests/random_values.hpp"

#include <span>
#include <string>
#include <string_view>

/// One root with its entry points behind a form without its type.
struct RealRoot {
    char const* stem;

    /// What the writer makes of a random value.
    std::string (*random_bytes)(RandomValues& random);

    /// Reads bytes that are not unsafe from a block of exactly their size, where a sanitizer sees a
    /// read beyond them, and from a stream, which tells how many were taken; copies, compares,
    /// moves, writes and destroys what was read. Gives what went wrong, empty when nothing did. Of
    /// good bytes, what is written must also have the digest of what was read.
    std::string (*fault_of_reading)(std::string_view bytes, bool are_good);

    /// Only reads such bytes, as above, and writes the value again. Gives what went wrong.
    std::string (*fault_of_only_reading)(std::string_view bytes);

    /// What the writer makes of the value that the reader has of bytes that are not unsafe.
    std::string (*read_and_write)(std::string_view bytes);

    /// The same, where the writer has a decimal comma and the reader has not.
    std::string (*read_and_write_with_comma)(std::string_view bytes);
};

/// In the order of `sml::inspect::roots()`.
std::span<RealRoot const> real_roots();

RealRoot const& real_root(sml::inspect::Root const& root);

/// Dumps bytes that are not unsafe and encodes that. Gives what went wrong: above all, where the
/// content is not that of the value that the real reader has.
std::string fault_of_dumping(sml::inspect::Root const& root, std::string_view bytes);
