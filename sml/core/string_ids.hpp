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

/// The ids that a writer has given to strings: 1, 2, 3, ... in the order of their definitions. It
/// holds a handle to each, so that no entry is released meanwhile.
class IdsByString {
public:
    /// Returns the string's id. If it has none yet, it gets the next one, `size()`, and 0 is
    /// returned.
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

    /// The address of the handle's entry, which is all that a handle consists of.
    static void const* key_of(Strings_T const& handle) noexcept {
        void const* key;
        static_assert(sizeof key == sizeof handle);
        std::memcpy(&key, static_cast<void const*>(&handle), sizeof key);
        return key;
    }

    /// Multiplies, so that the high bits, which choose the slot, depend on the whole address.
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

/// When handles that a reader makes are added to the counts of their entries. A graph has far more
/// handles than strings, so counting them at the end saves an access to an entry for each. Until
/// then a pin, a large number added to each count, keeps it from reaching zero, and nobody may look
/// at a count: so the only code of the caller that may run is its memory functions.
enum class Counting { immediately, at_end };

/// The strings that a reader has by their ids. An id keeps its first text, and an id that is
/// referred to before its definition gets the empty text. It keeps the entry of each string alive.
template <Counting counting>
class StringsById {
public:
    StringsById() = default;
    StringsById(StringsById const&) = delete;
    StringsById& operator=(StringsById const&) = delete;
    ~StringsById() {
        for (InSequence const& string : in_sequence_)
            if (string.entry != nullptr) count_handles(string);
    }

    /// Makes `handle` refer to the string of `id`, which is at least 1.
    void refer(Strings_T& handle, std::int32_t id) {
        auto const index = static_cast<std::size_t>(id) - 1;
        if (index >= in_sequence_.size()) [[unlikely]]
            return refer_to_other(handle, id);
        InSequence& string = in_sequence_[index];
        if (handle.fStr == string.entry) return;
        handle.release();
        handle.fStr = string.entry;
        if constexpr (counting == Counting::immediately)
            handle.retain();
        else
            ++string.uncounted;
    }

    /// Sets the string of `id`, unless the id has one.
    void define(std::int32_t id, Strings_T const& handle) {
        if (static_cast<std::size_t>(id) == in_sequence_.size() + 1 && others_.empty() &&
            can_pin(handle)) {
            in_sequence_.push_back({handle.fStr, 0});
            if (handle.fStr != nullptr) handle.fStr->count += pin;
        } else if (id < 1 || static_cast<std::size_t>(id) > in_sequence_.size()) {
            others_.try_emplace(id, handle);
        }
    }

    std::size_t size() const noexcept { return in_sequence_.size() + others_.size(); }

private:
    using Entry = Strings_T::StringWithRefCount;

    struct InSequence {
        Entry const*  entry;  // null for the empty text
        std::uint64_t uncounted;
    };

    /// More handles than memory has room for, and yet so few that a string can be pinned many
    /// times: by ids of one archive that have the same text, and by archives inside one another.
    static constexpr std::uint64_t most_handles = std::uint64_t{1} << 48;
    static constexpr std::uint64_t highest_count = std::uint64_t{1} << 63;

    /// The number that is added to a string's count as long as this object holds it.
    static constexpr std::uint64_t pin = counting == Counting::immediately ? 1 : most_handles;

    static bool can_pin(Strings_T const& handle) {
        return handle.fStr == nullptr || handle.fStr->count < highest_count;
    }

    [[gnu::noinline]] void refer_to_other(Strings_T& handle, std::int32_t id) {
        handle = others_[id];
    }

    void count_handles(InSequence const& string) const {
        string.entry->count += string.uncounted - pin;
        if (string.entry->count == 0) Strings_T::fAllStrings.erase(*string.entry);
    }

    std::vector<InSequence>                     in_sequence_;  // ids from 1 on, in sequence
    std::unordered_map<std::int32_t, Strings_T> others_;
};

}  // namespace sml::core
