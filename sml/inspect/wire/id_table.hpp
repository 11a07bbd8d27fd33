#pragma once
// The string ids that are out of sequence. An id may have a number, whose meaning is the caller's.

#include <sml/inspect/wire/hashing.hpp>

#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <optional>
#include <utility>
#include <vector>

namespace sml::inspect {

/// Takes 5 to 11 bytes an id, twice that if any of them has a number, and half as much again while
/// it grows.
class IdTable {
public:
    static constexpr std::uint32_t no_number = ~std::uint32_t{0};

    explicit IdTable(std::pmr::memory_resource* memory) : ids_(memory), numbers_(memory) {}

    bool empty() const noexcept { return size_ == 0; }

    /// The number of an id, which is at least 1: `no_number` if the id was added with that, none if
    /// the id was not added.
    std::optional<std::uint32_t> find(std::int32_t id) const {
        if (ids_.empty()) return std::nullopt;
        std::size_t const slot = slot_of(ids_, id);
        if (ids_[slot] != id) return std::nullopt;
        return numbers_.empty() ? no_number : numbers_[slot];
    }

    /// Adds an id, which is at least 1 and is not in the table.
    void add(std::int32_t id, std::uint32_t number) {
        if (4 * size_ >= 3 * ids_.size()) grow();
        if (number != no_number && numbers_.empty()) numbers_.assign(ids_.size(), no_number);
        std::size_t const slot = slot_of(ids_, id);
        ids_[slot] = id;
        if (!numbers_.empty()) numbers_[slot] = number;
        ++size_;
    }

private:
    using Ids = std::pmr::vector<std::int32_t>;  // 0 where a slot is free
    using Numbers = std::pmr::vector<std::uint32_t>;

    /// The slot that holds the id, or the free one where it would be added.
    static std::size_t slot_of(Ids const& ids, std::int32_t id) {
        std::size_t const mask = ids.size() - 1;
        std::size_t       i = seeded_hash(static_cast<std::uint32_t>(id), 0) & mask;
        while (ids[i] != 0 && ids[i] != id) i = (i + 1) & mask;
        return i;
    }

    void grow() {
        constexpr std::size_t least_slots = 16;
        std::size_t const     slots = ids_.empty() ? least_slots : 2 * ids_.size();
        Ids                   ids(slots, 0, ids_.get_allocator());
        Numbers numbers(numbers_.empty() ? 0 : slots, no_number, numbers_.get_allocator());
        for (std::size_t old = 0; old < ids_.size(); ++old) {
            if (ids_[old] == 0) continue;
            std::size_t const slot = slot_of(ids, ids_[old]);
            ids[slot] = ids_[old];
            if (!numbers.empty()) numbers[slot] = numbers_[old];
        }
        ids_ = std::move(ids);
        numbers_ = std::move(numbers);
    }

    Ids         ids_;
    Numbers     numbers_;  // by slot; empty while no id has one
    std::size_t size_ = 0;
};

}  // namespace sml::inspect
