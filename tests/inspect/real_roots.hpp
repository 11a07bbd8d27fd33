#pragma once
// The real readers and writers of all roots, independent of their types, for tests of bytes.

#include <sml/inspect/type.hpp>
#include "tests/random_values.hpp"

#include <span>
#include <string>
#include <string_view>

/// One root, with its entry points as functions of bytes.
struct RealRoot {
    char const* stem;

    /// The bytes of a random value.
    std::string (*random_bytes)(RandomValues& random);

    /// Reads bytes, which must not be unsafe, from a block of exactly their size, where a sanitizer
    /// reports a read beyond them, and from a stream, which shows how many bytes were read. Then
    /// copies, compares, moves, writes and destroys the value. Returns a description of the first
    /// fault, or the empty text. If the bytes are good, the written bytes must also have their
    /// digest.
    std::string (*fault_of_reading)(std::string_view bytes, bool are_good);

    /// Only reads such bytes, as above, and writes the value again. Returns a description of the
    /// first fault, or the empty text.
    std::string (*fault_of_only_reading)(std::string_view bytes);

    /// Reads bytes, which must not be unsafe, and returns the bytes that the value is written as.
    std::string (*read_and_write)(std::string_view bytes);

    /// The same, but the value is written with a decimal comma.
    std::string (*read_and_write_with_comma)(std::string_view bytes);
};

/// All roots, in the order of `sml::inspect::roots()`.
std::span<RealRoot const> real_roots();

RealRoot const& real_root(sml::inspect::Root const& root);

/// Dumps bytes, which must not be unsafe, and encodes the dump. Returns a description of the first
/// fault: above all, that the content differs from that of the value that the real reader reads.
std::string fault_of_dumping(sml::inspect::Root const& root, std::string_view bytes);
