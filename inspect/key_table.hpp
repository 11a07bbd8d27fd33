#pragma once
// The keys of the containers that are open in a walk, to find one that is there already.

#include "inspect/walk.hpp"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace sml::inspect {

/// Where a table of so many slots starts its search.
inline std::size_t first_slot(std::uint64_t hash, std::size_t slots) {
    __extension__ using Product = unsigned __int128;
    return static_cast<std::size_t>((static_cast<Product>(hash) * slots) >> 64);
}

/// Twice as many as there are keys, so that a search is short and ends.
inline std::size_t slots_for(std::uint64_t keys) { return static_cast<std::size_t>(2 * keys); }

/// 16 bytes a key, for as long as its container is open; exact when hashes collide.
class KeyTable {
public:
    /// Opens a container with this many entries.
    void open(std::uint64_t count);
    void close();

    /// Gets memory ready for adding a key with this hash to the container opened last.
    void expect(std::uint64_t hash) const {
        auto const& table = tables_[open_ - 1];
        __builtin_prefetch(&table[first_slot(hash, table.size())], 1);
    }

    /// Adds the key at an offset to the container opened last; false when it is there already.
    bool add(Walk const& walk, Type const& type, std::uint64_t key_offset, std::uint64_t hash);

private:
    // The low bits of the hash above the key's offset, which no memory holds more of; 0: free. No
    // key stands at the start of the bytes.
    using Slot = std::uint64_t;

    static constexpr int offset_bits = 48;

    std::vector<std::vector<Slot>> tables_;    // of the open containers, then some to use again
    std::size_t                    open_ = 0;  // how many are open
};

}  // namespace sml::inspect
