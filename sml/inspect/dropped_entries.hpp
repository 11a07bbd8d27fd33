#pragma once
// Entries with repeated keys: those that a reader drops, or whose values it reads over.

#include <sml/inspect/finding.hpp>
#include <sml/inspect/memory.hpp>
#include <sml/inspect/type.hpp>
#include <sml/inspect/verify.hpp>
#include <sml/inspect/wire/hashing.hpp>

#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace sml::inspect {

struct DroppedEntries {
    explicit DroppedEntries(std::pmr::memory_resource* memory) : entries(memory) {}

    /// The offsets of the keys of the entries to be left out of a dump. Of two entries with equal
    /// keys that is the later one; in a map whose values are read over, the earlier one.
    std::pmr::unordered_set<std::uint64_t, SeededHash> entries;

    std::vector<Finding> findings;  ///< the first ones, as many as are to be listed

    /// Whether an entry is in a map in which a later value is read over an earlier one.
    bool are_read_over = false;
};

/// Finds the entries in two walks. An unsafe finding ends a walk. Takes 8 bytes from the budget for
/// each key of the open containers.
DroppedEntries dropped_entries(Root const& root, std::string_view bytes,
                               VerifyOptions const& options, Budget& budget);

}  // namespace sml::inspect
