#pragma once
// The strings of a walk, by id and by text. Takes 16 bytes a text, and 11 to 21 for the index.

#include <sml/inspect/reader/reader_model.hpp>
#include <sml/inspect/wire/hashing.hpp>
#include <sml/inspect/wire/id_table.hpp>
#include <sml/inspect/wire/string_word.hpp>
#include <sml/inspect/wire/walked_bytes.hpp>

#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace sml::inspect {

/// The texts of ids, as a reader has them. An id keeps its first text; an id that is referred to
/// before its definition keeps the empty text.
class StringTable {
public:
    /// The most strings: ids are positive words.
    static constexpr std::uint32_t most = 0x7FFFFFFF;

    StringTable(std::string_view bytes, std::pmr::memory_resource* memory)
        : bytes_(bytes),
          entries_(memory),
          index_(memory),
          repeated_(memory),
          others_(memory),
          repetitions_(memory) {}

    /// Must be called before any other function, or not at all. From then on, ids out of sequence
    /// are counted by `model`, which must outlive this object, and texts are hashed as readers hash
    /// them. Where texts were made to collide, this table compares them as often as a reader does;
    /// `comparisons` counts that.
    void model_reader(ReaderModel& model) {
        model_ = &model;
        of_unknown_ids_.hash = ReaderModel::text_hash({});
    }

    /// How many comparisons of texts a reader makes while it reads them and when its object is
    /// destroyed. Requires `model_reader`.
    std::uint64_t readers_comparisons() const;

    /// How many comparisons of texts with equal hashes were made; a comparison of many bytes counts
    /// as several.
    std::uint64_t comparisons() const noexcept { return comparisons_; }

    struct Added {
        bool in_sequence;  ///< the id is the number of definitions, this one included
        bool text_is_new;
        /// The id has joined the prefix: it and all ids before it are in sequence, and no id was
        /// referred to before its definition. Their texts are the first entries, in the order of
        /// the ids.
        bool in_prefix;
        bool id_is_new;  ///< neither defined nor referred to before
    };

    /// Adds a definition: its id, and the offset of its length word. The text must be within the
    /// bytes.
    Added add(std::int32_t id, std::uint64_t length_offset);

    /// Whether a word is a back-reference to an id of the prefix (see `Added`), which needs no
    /// lookup.
    bool is_in_prefix(StringWord word) const noexcept { return word.refers_up_to(prefix_); }

    // For ids of at least 1.

    /// Returns whether the id was defined or referred to before. If not, it gets the empty text.
    bool refer(std::int32_t id) { return id <= prefix_ || refer_other(id); }

    /// The text of an id that was defined or referred to before, and the hash of the text.
    std::string_view text_of(std::int32_t id) const { return text_at(place_of(id)); }
    std::uint64_t    hash_of(std::int32_t id) const { return entry_of(id).hash; }

    /// The hash of the text of a definition. That of the last definition is stored; others are
    /// computed.
    std::uint64_t hash_at(std::uint64_t length_offset) const {
        Entry const& last = entries_.back();
        return last.length_offset == length_offset ? last.hash : hash_of(text_at(length_offset));
    }

    /// The offset of the empty text that an id has if it was referred to before its definition.
    static constexpr std::uint64_t nowhere = ~std::uint64_t{0};

    /// The offset of the first definition of a text, at the length word: of the text of an id, or
    /// of the text that is defined at `length_offset`. Equal texts have the same one, except for an
    /// id that was referred to before its definition.
    std::uint64_t place_of(std::int32_t id) const { return entry_of(id).length_offset; }
    std::uint64_t place_at(std::uint64_t length_offset) const {
        auto const repetition = repetitions_.find(length_offset);
        return repetition == repetitions_.end() ? length_offset : repetition->second;
    }
    /// Whether the texts at two such offsets are equal, in a time that does not depend on their
    /// lengths.
    bool are_equal(std::uint64_t place, std::uint64_t other) const {
        return place == other || (text_at(place).empty() && text_at(other).empty());
    }

    /// The number of definitions so far.
    std::uint32_t count() const noexcept { return count_; }

private:
    struct Entry {
        std::uint64_t length_offset;
        std::uint64_t hash;
    };

    /// An id that was referred to before its definition.
    static constexpr std::uint32_t unknown = IdTable::no_number;

    /// The index of the entry of an id that was defined or referred to before, or `unknown`.
    std::uint32_t number_of(std::int32_t id) const {
        if (id <= prefix_) return static_cast<std::uint32_t>(id) - 1;
        return *others_.find(id);
    }

    Entry const& entry_of(std::int32_t id) const {
        std::uint32_t const number = number_of(id);
        return number == unknown ? of_unknown_ids_ : entries_[number];
    }

    std::string_view text_at(std::uint64_t length_offset) const {
        if (length_offset == nowhere) return {};
        return WalkedBytes(bytes_, length_offset).take_block();
    }

    std::uint64_t hash_of(std::string_view text) const {
        return model_ == nullptr ? seeded_hash(text) : ReaderModel::text_hash(text);
    }

    // A slot of the index: the lower 32 bits are the index of an entry plus 1, or 0 in a free slot.
    // The others are bits of the hash; the highest of them are the number of the slot where a
    // search starts.
    using Slot = std::uint64_t;

    static constexpr int entry_bits = 32;

    /// The slot of an entry. Its upper 32 bits are those of the product of the hash and a secret
    /// number.
    static Slot slot_for(std::uint64_t hash, std::uint32_t entry) {
        return ((hash * (hash_seed | 1)) >> entry_bits << entry_bits) | (entry + 1);
    }

    bool has_id(std::int32_t id) const;
    bool refer_other(std::int32_t id);
    bool add_other(std::int32_t id, std::uint32_t entry);
    bool index_text(std::uint32_t entry);
    void grow_index();

    std::string_view                bytes_;
    ReaderModel*                    model_ = nullptr;
    std::pmr::vector<Entry>         entries_;  // of the definitions, in their order
    Entry                           of_unknown_ids_{nowhere, seeded_hash(std::string_view())};
    std::uint32_t                   count_ = 0;
    std::int32_t                    prefix_ = 0;  // ids from 1 to this are the prefix
    std::pmr::vector<Slot>          index_;       // open addressing by hash
    int                             shift_ = 0;   // shifts a slot to its number
    std::size_t                     distinct_ = 0;
    std::uint64_t                   comparisons_ = 0;
    std::pmr::vector<std::uint32_t> repeated_;  // repeated definitions
    IdTable                         others_;    // indices of entries, or `unknown`

    // Whether 0 and INT32_MIN have been defined, ids that no word can refer to.
    bool has_0_ = false;
    bool has_least_ = false;

    // The offsets of repeated definitions, and for each that of the first definition of its text.
    std::pmr::unordered_map<std::uint64_t, std::uint64_t, SeededHash> repetitions_;
};

}  // namespace sml::inspect
