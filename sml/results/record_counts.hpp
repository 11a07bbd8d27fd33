#pragma once
// How many records of the other tables two sides have in common.

#include <sml/tables/result_sets.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace sml::results {

struct RecordCount {
    std::string   table;
    std::uint64_t olds = 0;
    std::uint64_t news = 0;
    std::uint64_t both = 0;  ///< equal in all but place, number and position; each counted once
};

/// For infos, events, functions and blocks. Files are compared by their names without directories.
std::vector<RecordCount> count_records(tables::ResultSets const& olds,
                                       tables::ResultSets const& news);

}  // namespace sml::results
