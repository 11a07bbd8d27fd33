#pragma once
// Entries that a reader drops because their container has another one with an equal key.

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

    /// The offsets of their keys.
    std::pmr::unordered_set<std::uint64_t, SeededHash> entries;

    std::vector<Finding> findings;  ///< as many as are to be listed

    /// Whether one is in a table whose reader reads the later value over the earlier one.
    bool are_read_over = false;
};

/// Finds them with 8 bytes a key of the open containers. An unsafe byte ends the search.
DroppedEntries dropped_entries(Root const& root, std::string_view bytes,
                               VerifyOptions const& options, Budget& budget);

}  // namespace sml::inspect
