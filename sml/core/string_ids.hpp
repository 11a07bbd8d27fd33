#pragma once
// The ids of the strings of one root object.

#include <sml/core/Strings.hpp>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <unordered_map>
#include <vector>

namespace sml::core {

/// Handles to ids from 1 on, in the order in which they are met. Pins each of them.
class IdsByString {
public:
    /// The id of the handle; 0 when it is met for the first time, and it gets the next one.
    std::int32_t find_or_add(Strings_T const& handle) {
        void const* const key = key_of(handle);
        for (std::size_t i = slot_of(key);; i = (i + 1) & mask_) {
            Slot& slot = slots_[i];
            if (slot.key == key && slot.id != 0) return slot.id;
            if (slot.id == 0) return add(handle, slot);
        }
    }

    std::size_t size() const noexcept { return pinned_.size(); }

private:
    struct Slot {
        void const*  key;
        std::int32_t id;  // 0 where the slot is free
    };

    static constexpr std::size_t first_size = 64;

    /// Handles are equal when their entries are, and a handle is nothing but its entry's address.
    static void const* key_of(Strings_T const& handle) noexcept {
        void const* key;
        static_assert(sizeof key == sizeof handle);
        std::memcpy(&key, static_cast<void const*>(&handle), sizeof key);
        return key;
    }

    /// Multiplied so that the high bits, which choose the slot, depend on all of the address.
    std::size_t slot_of(void const* key) const noexcept {
        constexpr std::uint64_t factor = 0x9e3779b97f4a7c15;
        return reinterpret_cast<std::uintptr_t>(key) * factor >> shift_;
    }

    std::int32_t add(Strings_T const& handle, Slot& slot);
    void         grow();

    Slot                    first_slots_[first_size]{};
    std::unique_ptr<Slot[]> grown_slots_;
    Slot*                   slots_ = first_slots_;
    std::size_t             mask_ = first_size - 1;
    int                     shift_ = 64 - std::countr_zero(first_size);
    std::vector<Strings_T>  pinned_;  // by id, from 1 on
};

/// Strings by id. An id keeps what it was given first; one that is asked for before it was given
/// has been given the null handle thereby. Pins each of them.
class StringsById {
public:
    /// When the handles that are given out go into the counts of their entries. A graph has far
    /// more handles than strings, so that counting in the end saves fetching an entry for each;
    /// until then nobody may look at a count, which is too high to reach zero. Only the caller's
    /// functions for memory run meanwhile.
    enum class Counting { at_once, in_the_end };

    explicit StringsById(Counting counting) : counting_(counting) {}
    StringsById(StringsById const&) = delete;
    StringsById& operator=(StringsById const&) = delete;
    ~StringsById() {
        for (InTurn const& string : in_turn_)
            if (string.entry != nullptr) settle(string);
    }

    /// Makes `handle` one of the string of `id`.
    void refer(Strings_T& handle, std::int32_t id) {
        auto const index = static_cast<std::size_t>(id) - 1;
        if (index >= in_turn_.size()) {
            handle = others_[id];
        } else if (InTurn& string = in_turn_[index]; handle.fStr != string.entry) {
            handle.release();
            handle.fStr = string.entry;
            if (counting_ == Counting::at_once)
                handle.retain();
            else
                ++string.uncounted;
        }
    }

    void give(std::int32_t id, Strings_T const& handle) {
        if (static_cast<std::size_t>(id) == in_turn_.size() + 1 && others_.empty() &&
            can_pin(handle)) {
            in_turn_.push_back({handle.fStr, 0});
            if (handle.fStr != nullptr) handle.fStr->count += pin();
        } else if (id < 1 || static_cast<std::size_t>(id) > in_turn_.size()) {
            others_.try_emplace(id, handle);
        }
    }

    std::size_t size() const noexcept { return in_turn_.size() + others_.size(); }

private:
    using Entry = Strings_T::StringWithRefCount;

    struct InTurn {
        Entry const*  entry;  // null for the empty text
        std::uint64_t uncounted;
    };

    /// More than memory has room for; so little that a string can be pinned many times, by ids of
    /// one archive that have the same text, and by archives inside one another.
    static constexpr std::uint64_t most_handles = std::uint64_t{1} << 48;
    static constexpr std::uint64_t highest_count = std::uint64_t{1} << 63;

    /// What pinning a string adds to its count.
    std::uint64_t pin() const { return counting_ == Counting::at_once ? 1 : most_handles; }

    static bool can_pin(Strings_T const& handle) {
        return handle.fStr == nullptr || handle.fStr->count < highest_count;
    }

    void settle(InTurn const& string) const {
        string.entry->count += string.uncounted - pin();
        if (string.entry->count == 0) Strings_T::fAllStrings.erase(*string.entry);
    }

    Counting                                    counting_;
    std::vector<InTurn>                         in_turn_;  // ids from 1 on, given in their turn
    std::unordered_map<std::int32_t, Strings_T> others_;
};

}  // namespace sml::core
