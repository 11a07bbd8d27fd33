#pragma once

#include "result_set.hpp"

#include <chrono>
#include <ostream>
#include <string>

namespace bradep {

struct SummaryFacts {
    std::string               name;  ///< of the file
    std::size_t               bytes;
    std::chrono::microseconds read_time;
    std::size_t               rows;  ///< the most rows of each ranking
};

/// Writes a summary of the result set as plain text.
void write_summary(std::ostream& out, ResultSet const& set, SummaryFacts const& facts);

}  // namespace bradep
