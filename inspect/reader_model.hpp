#pragma once
// The comparisons of keys that a reader makes in its hash tables, counted while the bytes are
// walked.

#include "inspect/table_model.hpp"

#include <bits/hash_bytes.h>

#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <string_view>
#include <utility>
#include <vector>

namespace sml::inspect {

/// The ids out of sequence, and the hashed containers that are open. The texts are counted by the
/// table that has them.
class ReaderModel {
public:
    explicit ReaderModel(std::pmr::memory_resource* memory) : ids_(memory), open_(memory) {}

    /// As the required one for interned texts; the empty text is the null handle, whose hash is 0.
    static std::uint64_t text_hash(std::string_view text) {
        constexpr std::size_t seed = 0xc70f6907;
        return text.empty() ? 0 : std::_Hash_bytes(text.data(), text.size(), seed);
    }

    /// An id out of sequence, written or referred to.
    void use_id(std::int32_t id, bool is_new) {
        comparisons += is_new ? ids_.add(id) : ids_.look_up(id);
    }

    void open_table(std::uint64_t entries) {
        if (open_count_ == open_.size()) open_.emplace_back();
        open_[open_count_++].added.reserve(entries);
    }

    /// The hash of a key of the table opened last.
    void use_key(std::uint64_t hash, bool is_new) {
        Keys& keys = open_[open_count_ - 1];
        if (is_new)
            keys.added.push_back(hash);
        else
            ++keys.found;
    }

    void close_table() {
        Keys& keys = open_[--open_count_];
        comparisons += comparisons_of(keys.added, keys.found);
        keys.clear();
    }

    std::uint64_t comparisons = 0;

private:
    struct Keys {
        using allocator_type = std::pmr::polymorphic_allocator<std::uint64_t>;

        explicit Keys(allocator_type memory) : added(memory) {}
        Keys(Keys&& other, allocator_type memory)
            : added(std::move(other.added), memory), found(other.found) {}

        void clear() {
            Hashes(added.get_allocator()).swap(added);
            found = 0;
        }

        Hashes        added;
        std::uint64_t found = 0;  // there already
    };

    IdTableModel           ids_;
    std::pmr::vector<Keys> open_;
    std::size_t            open_count_ = 0;
};

}  // namespace sml::inspect
