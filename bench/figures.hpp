#pragma once
// Figures that describe a workload, so that each measurement can say what it was taken on.

#include <sml/schema/Application_Results.hpp>

#include <cstddef>
#include <iosfwd>

namespace bench {

/// Totals of a result set.
struct Figures {
    std::size_t checks = 0;
    std::size_t wire_bytes = 0;
    std::size_t string_references = 0;  ///< on the wire, including definitions
    std::size_t distinct_strings = 0;
    std::size_t integers = 0;  ///< of any size
    std::size_t floats = 0;
    std::size_t entries = 0;  ///< of lists, sets and maps
    std::size_t boxes = 0;

    /// Blocks of the heap: one for each entry, each box and the digits of each number.
    std::size_t nodes() const { return entries + boxes + integers + floats; }
};

/// Counts the parts of the value. It writes the value once to get the number of bytes.
Figures figures(sml::Application_Results::T_Application_Results const& value);

/// Prints the figures for each check on one line.
std::ostream& operator<<(std::ostream& stream, Figures const& figures);

}  // namespace bench
