#pragma once
// The keys of the containers that are open in a walk, to find one that is there already.

#include <sml/inspect/keys/keys.hpp>

#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <utility>
#include <vector>

namespace sml::inspect {

/// Where a table of so many slots starts its search.
inline std::size_t first_slot(std::uint64_t hash, std::size_t slots) {
    __extension__ using Product = unsigned __int128;
    return static_cast<std::size_t>((static_cast<Product>(hash) * slots) >> 64);
}

/// Twice as many as there are keys, so that a search is short and ends.
inline std::size_t slots_for(std::uint64_t keys) { return static_cast<std::size_t>(2 * keys); }

/// Empties a table, and gives memory back where it takes much of it.
template <class Slots>
void close_slots(Slots& slots) {
    constexpr std::size_t most_kept = 4096;
    slots.clear();
    if (slots.capacity() > most_kept) Slots(slots.get_allocator()).swap(slots);
}

/// 8 bytes for a key that is a string defined in full, 16 for any other, each for all keys of a
/// container while it is open and has such a one; exact when hashes collide.
class KeyTable {
public:
    explicit KeyTable(std::pmr::memory_resource* memory) : tables_(memory) {}

    /// Opens a container with this many entries.
    void open(std::uint64_t count);
    void close();

    /// Gets memory ready for adding a key with this hash to the container opened last. Inlined: a
    /// call that does nothing but that is taken for one that does nothing.
    [[gnu::always_inline]] void expect(std::uint64_t hash) const {
        auto const& slots = tables_[open_ - 1].slots;
        if (!slots.empty()) __builtin_prefetch(&slots[first_slot(hash, slots.size())], 1);
    }

    /// Adds the key at an offset to the container opened last; false when it is there already.
    bool add(Keys const& keys, Type const& type, std::uint64_t key_offset, std::uint64_t hash);

    /// How often keys that were not equal have been compared; long ones count more.
    std::uint64_t comparisons() const noexcept { return comparisons_; }

private:
    // The low bits of the hash above the key's offset, which no memory holds more of; 0: free. No
    // key stands at the start of the bytes.
    using Slot = std::uint64_t;

    static constexpr int offset_bits = 48;

    struct Table {
        using allocator_type = std::pmr::polymorphic_allocator<std::byte>;

        explicit Table(allocator_type memory) : defined(memory), slots(memory) {}
        Table(Table&& other, allocator_type memory)
            : count(other.count),
              defined(std::move(other.defined), memory),
              slots(std::move(other.slots), memory) {}

        std::uint64_t count = 0;  // of the keys to come

        // The places of the keys that are strings defined in full, in ascending order. They are new
        // as their texts are, which no table has to find out.
        std::pmr::vector<std::uint64_t> defined;
        // The other keys.
        std::pmr::vector<Slot> slots;
    };

    // Of the open containers, then some to use again.
    std::pmr::vector<Table> tables_;
    std::size_t             open_ = 0;  // how many are open
    std::uint64_t           comparisons_ = 0;
};

}  // namespace sml::inspect
