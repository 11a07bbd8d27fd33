#pragma once
// Compares the findings of two sides.

#include <sml/results/diff_store.hpp>
#include <sml/results/paths.hpp>
#include <sml/results/read_side.hpp>
#include <sml/tables/sqlite/database.hpp>

#include <atomic>
#include <optional>
#include <string>
#include <vector>

namespace sml::results {

/// One side of a diff. The result sets must outlive it.
struct SideInput {
    tables::ResultSets const*  sets;
    std::vector<FlaggedByForm> flagged;  ///< by result set; empty: not known
    std::optional<std::string> sources;  ///< the directory of the sources
};

struct DiffOptions {
    std::vector<MovedRoot> roots;  ///< that are known to have moved
};

struct DiffCounts {
    std::uint64_t added = 0;  ///< new
    std::uint64_t updated = 0;
    std::uint64_t absent = 0;
    std::uint64_t unchanged = 0;
};

/// Compares two sides and writes the diff to a store. It does not depend on the order of the
/// findings, and for swapped sides it is the same with new and absent findings exchanged. Work ends
/// with SqlError while `is_interrupted` is true.
DiffCounts diff(SideInput const& olds, SideInput const& news, DiffOptions const& options,
                DiffStore& store, std::atomic<bool> const& is_interrupted);

}  // namespace sml::results
