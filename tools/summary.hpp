#pragma once

#include <chrono>
#include <ostream>
#include <string>

#include "result_set.hpp"

namespace bradep {

struct Summary_Facts {
    std::string               name;  // of the file
    std::size_t               bytes;
    std::chrono::microseconds read_time;
    std::size_t               rows;  // of each ranking at most
};

// What a person wants to know first of a result set, one plain text.
void write_summary(std::ostream& out, Result_Set const& set, Summary_Facts const& facts);

}  // namespace bradep
