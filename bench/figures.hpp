#pragma once
// What a workload consists of, so that every measurement can say what it was taken on.

#include <sml/schema/Application_Results.hpp>

#include <cstddef>
#include <iosfwd>

namespace bench {

/// Totals of a result set.
struct Figures {
    std::size_t checks = 0;
    std::size_t wire_bytes = 0;
    std::size_t string_references = 0;  ///< on the wire, first sights among them
    std::size_t distinct_strings = 0;
    std::size_t integers = 0;  ///< of any size
    std::size_t floats = 0;
    std::size_t entries = 0;  ///< of lists, sets and tables
    std::size_t boxes = 0;

    /// Pieces of the heap: an entry is one, a box is one, the digits of a number are one.
    std::size_t nodes() const { return entries + boxes + integers + floats; }
};

/// Counts by walking the value; writes it once for the bytes.
Figures figures(sml::Application_Results::T_Application_Results const& value);

/// One line: what there is for each check.
std::ostream& operator<<(std::ostream& stream, Figures const& figures);

}  // namespace bench
