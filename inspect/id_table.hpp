#pragma once
// Numbers by string id, for the ids that come out of sequence: 16 to 32 bytes an id.

#include "inspect/hashing.hpp"

#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <utility>
#include <vector>

namespace sml::inspect {

class IdTable {
public:
    explicit IdTable(std::pmr::memory_resource* memory) : slots_(memory) {}

    bool empty() const noexcept { return size_ == 0; }

    /// The number of an id from 1 on, null where it has none.
    std::uint32_t const* find(std::int32_t id) const {
        if (slots_.empty()) return nullptr;
        Slot const& slot = slots_[slot_of(slots_, id)];
        return slot.id == id ? &slot.number : nullptr;
    }

    /// Adds an id from 1 on that has no number yet.
    void add(std::int32_t id, std::uint32_t number) {
        if (2 * size_ >= slots_.size()) grow();
        slots_[slot_of(slots_, id)] = {id, number};
        ++size_;
    }

private:
    struct Slot {
        std::int32_t  id;  // 0 where the slot is free
        std::uint32_t number;
    };
    using Slots = std::pmr::vector<Slot>;

    /// Where the id is, or where it belongs.
    static std::size_t slot_of(Slots const& slots, std::int32_t id) {
        std::size_t const mask = slots.size() - 1;
        std::size_t       i = seeded_hash(static_cast<std::uint32_t>(id), 0) & mask;
        while (slots[i].id != 0 && slots[i].id != id) i = (i + 1) & mask;
        return i;
    }

    void grow() {
        constexpr std::size_t least_slots = 16;
        Slots                 larger(slots_.empty() ? least_slots : 2 * slots_.size(), Slot{0, 0},
                     slots_.get_allocator());
        for (Slot const& slot : slots_)
            if (slot.id != 0) larger[slot_of(larger, slot.id)] = slot;
        slots_ = std::move(larger);
    }

    Slots       slots_;
    std::size_t size_ = 0;
};

}  // namespace sml::inspect
