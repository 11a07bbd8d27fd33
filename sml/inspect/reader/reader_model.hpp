#pragma once
// An estimate of the comparisons of keys that a reader makes in its hash tables, made while the
// bytes are walked.

#include <sml/inspect/reader/table_model.hpp>
#include <sml/inspect/type.hpp>

#include <bits/hash_bytes.h>

#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <string_view>
#include <utility>
#include <vector>

namespace sml::inspect {

/// Counts the comparisons of ids out of sequence, and those in hashed sets and maps. `StringTable`
/// counts those of texts.
class ReaderModel {
public:
    explicit ReaderModel(std::pmr::memory_resource* memory) : ids_(memory), open_(memory) {}

    /// The required hash of an interned text. The empty text is the null handle, whose hash is 0.
    static std::uint64_t text_hash(std::string_view text) {
        constexpr std::size_t seed = 0xc70f6907;
        return text.empty() ? 0 : std::_Hash_bytes(text.data(), text.size(), seed);
    }

    /// Counts a definition of, or a back-reference to, an id out of sequence.
    void use_id(std::int32_t id, bool is_new) {
        comparisons += is_new ? ids_.add(id) : ids_.look_up(id);
    }

    /// Opens a set or map with so many keys. Sorted ones and small ones are not counted: each key
    /// is compared with few others there.
    void open_table(Type const& type, std::uint64_t keys) {
        constexpr std::uint64_t least_counted = 64;
        if (open_count_ == open_.size()) open_.emplace_back();
        top_ = &open_[open_count_++];
        top_->is_counted = type.hashed && keys >= least_counted;
        if (top_->is_counted) top_->added.reserve(keys);
    }

    /// Whether `use_key` must be called for the keys of the container opened last.
    bool counts_keys() const { return top_->is_counted; }

    /// Adds a key of the container opened last, by its hash in a reader.
    void use_key(std::uint64_t hash, bool is_new) {
        if (is_new)
            top_->added.push_back(hash);
        else
            ++top_->found;
    }

    void close_table() {
        if (top_->is_counted) {
            comparisons += comparisons_of(top_->added, top_->found);
            top_->clear();
        }
        --open_count_;
        top_ = open_count_ == 0 ? nullptr : &open_[open_count_ - 1];
    }

    std::uint64_t comparisons = 0;

private:
    struct Keys {
        using allocator_type = std::pmr::polymorphic_allocator<std::uint64_t>;

        explicit Keys(allocator_type memory) : added(memory) {}
        Keys(Keys&& other, allocator_type memory)
            : added(std::move(other.added), memory),
              found(other.found),
              is_counted(other.is_counted) {}

        void clear() {
            Hashes(added.get_allocator()).swap(added);
            found = 0;
        }

        Hashes        added;
        std::uint64_t found = 0;  // repeated keys
        bool          is_counted = false;
    };

    IdTableModel           ids_;
    std::pmr::vector<Keys> open_;
    std::size_t            open_count_ = 0;
    Keys*                  top_ = nullptr;  // the container opened last
};

}  // namespace sml::inspect
