#pragma once
// Finds repeated keys in the containers that are open in a walk.

#include <sml/inspect/keys/keys.hpp>

#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <utility>
#include <vector>

namespace sml::inspect {

/// The slot where the search for a hash starts, in a table of `slots` slots.
inline std::size_t first_slot(std::uint64_t hash, std::size_t slots) {
    __extension__ using Product = unsigned __int128;
    return static_cast<std::size_t>((static_cast<Product>(hash) * slots) >> 64);
}

/// The number of slots for a number of keys: twice as many, so that searches are short, and end at
/// a free slot.
inline std::size_t slots_for(std::uint64_t keys) { return static_cast<std::size_t>(2 * keys); }

/// Empties a table. Frees its memory if that is large.
template <class Slots>
void close_slots(Slots& slots) {
    constexpr std::size_t most_kept = 4096;
    slots.clear();
    if (slots.capacity() > most_kept) Slots(slots.get_allocator()).swap(slots);
}

/// Finds repeated keys exactly, also where hashes collide. While a container is open, this takes 8
/// bytes for each of its keys if any of them is a definition of a string, and 16 for each if any is
/// another key.
class KeyTable {
public:
    explicit KeyTable(std::pmr::memory_resource* memory) : tables_(memory) {}

    /// Opens a container with this many entries.
    void open(std::uint64_t count);
    /// Closes the container opened last.
    void close();

    /// Prefetches the slot where the search for a key with this hash starts, in the container
    /// opened last. Always inlined: the compiler removes calls of a function that only prefetches.
    [[gnu::always_inline]] void expect(std::uint64_t hash) const {
        auto const& slots = tables_[open_ - 1].slots;
        if (!slots.empty()) __builtin_prefetch(&slots[first_slot(hash, slots.size())], 1);
    }

    /// Adds the key at an offset to the container opened last. Returns false if an equal key is
    /// there already.
    bool add(Keys const& keys, Type const& type, std::uint64_t key_offset, std::uint64_t hash);

    /// How many comparisons of keys gave unequal; a comparison of many bytes counts as several.
    std::uint64_t comparisons() const noexcept { return comparisons_; }

private:
    // The upper 16 bits are the lowest bits of the hash, the others the offset of the key: no
    // memory holds 2^48 bytes. 0 is a free slot: no key is at offset 0.
    using Slot = std::uint64_t;

    static constexpr int offset_bits = 48;

    struct Table {
        using allocator_type = std::pmr::polymorphic_allocator<std::byte>;

        explicit Table(allocator_type memory) : defined(memory), slots(memory) {}
        Table(Table&& other, allocator_type memory)
            : count(other.count),
              defined(std::move(other.defined), memory),
              slots(std::move(other.slots), memory) {}

        std::uint64_t count = 0;  // number of the keys of the container

        // For the keys that are definitions of strings: the offsets of the texts, in ascending
        // order. Such a key is new because its text is new, so it needs no slot.
        std::pmr::vector<std::uint64_t> defined;
        // The other keys.
        std::pmr::vector<Slot> slots;
    };

    // For the open containers; the tables after these are used again.
    std::pmr::vector<Table> tables_;
    std::size_t             open_ = 0;  // how many are open
    std::uint64_t           comparisons_ = 0;
};

}  // namespace sml::inspect
