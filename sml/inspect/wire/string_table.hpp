#pragma once
// The strings that a walk has met, by id and by text: 16 bytes a text, and 11 to 21 for the index.

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

/// Texts by id as a reader's table has them. An id keeps its first text; an id that is used before
/// it has a text becomes the empty text.
class StringTable {
public:
    /// Ids are positive words.
    static constexpr std::uint32_t most = 0x7FFFFFFF;

    StringTable(std::string_view bytes, std::pmr::memory_resource* memory)
        : bytes_(bytes),
          entries_(memory),
          index_(memory),
          repeated_(memory),
          others_(memory),
          repetitions_(memory) {}

    /// To be called first: passes ids out of sequence on to a model that lives as long as this, and
    /// hashes texts as the readers do. Texts that collide on purpose are compared here as often as
    /// a reader compares them, which `comparisons` counts.
    void model_reader(ReaderModel& model) {
        model_ = &model;
        of_unknown_ids_.hash = ReaderModel::text_hash({});
    }

    /// How often a reader, whose hashes these texts have, compares one with another while it reads
    /// them and when it gives them up.
    std::uint64_t readers_comparisons() const;

    /// How often texts with the hash of another one were compared with it; long ones count more.
    std::uint64_t comparisons() const noexcept { return comparisons_; }

    struct Added {
        bool in_sequence;  ///< the id is the next one
        bool text_is_new;
        bool in_turn;    ///< so were all ids before it, and none was used before it had a text
        bool id_is_new;  ///< neither used nor given a text before
    };

    /// Adds a string that is written in full: its id and where its length word stands. The text
    /// fits the bytes.
    Added add(std::int32_t id, std::uint64_t length_offset);

    /// Whether a word refers to an id that is known without looking.
    bool is_in_sequence(StringWord word) const noexcept { return word.refers_up_to(prefix_); }

    // Of ids that words refer to.

    /// Whether the id is known; makes it the empty text when it is not.
    bool refer(std::int32_t id) { return id <= prefix_ || refer_other(id); }

    /// The text of an id that is known, and its hash.
    std::string_view text_of(std::int32_t id) const { return text_at(place_of(id)); }
    std::uint64_t    hash_of(std::int32_t id) const { return entry_of(id).hash; }

    /// The hash of a text that is written in full; known without looking for the last one.
    std::uint64_t hash_at(std::uint64_t length_offset) const {
        Entry const& last = entries_.back();
        return last.length_offset == length_offset ? last.hash : hash_of(text_at(length_offset));
    }

    /// The place of the empty text of an id that was used before it had a text.
    static constexpr std::uint64_t nowhere = ~std::uint64_t{0};

    /// Where the length word of the text stands that an id has, or that is written at a place: the
    /// same one for equal texts, but for the empty text of an id that was used before it had a
    /// text.
    std::uint64_t place_of(std::int32_t id) const { return entry_of(id).length_offset; }
    std::uint64_t place_at(std::uint64_t length_offset) const {
        auto const repetition = repetitions_.find(length_offset);
        return repetition == repetitions_.end() ? length_offset : repetition->second;
    }
    /// Whether the texts at two such places are equal, however long they are.
    bool are_equal(std::uint64_t place, std::uint64_t other) const {
        return place == other || (text_at(place).empty() && text_at(other).empty());
    }

    /// How many strings were written in full so far.
    std::uint32_t count() const noexcept { return count_; }

private:
    struct Entry {
        std::uint64_t length_offset;
        std::uint64_t hash;
    };

    static constexpr std::uint32_t unknown = IdTable::no_number;  // used before it had a text

    /// The number of the entry of an id that is known.
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

    // Of the index: an entry's number, one more than that, below bits of its hash, of which the
    // highest are the number of the slot where a search starts. 0: free.
    using Slot = std::uint64_t;

    static constexpr int entry_bits = 32;

    /// The high half of the product with a secret, above an entry.
    static Slot slot_for(std::uint64_t hash, std::uint32_t entry) {
        return ((hash * (hash_seed | 1)) >> entry_bits << entry_bits) | (entry + 1);
    }

    bool knows(std::int32_t id) const;
    bool refer_other(std::int32_t id);
    bool add_other(std::int32_t id, std::uint32_t entry);
    bool index_text(std::uint32_t entry);
    void grow_index();

    std::string_view                bytes_;
    ReaderModel*                    model_ = nullptr;
    std::pmr::vector<Entry>         entries_;  // of the texts written in full, in their order
    Entry                           of_unknown_ids_{nowhere, seeded_hash(std::string_view())};
    std::uint32_t                   count_ = 0;
    std::int32_t                    prefix_ = 0;  // ids 1 to this are the first entries, in order
    std::pmr::vector<Slot>          index_;       // open addressing by hash
    int                             shift_ = 0;   // leaves the bits of a slot's number
    std::size_t                     distinct_ = 0;
    std::uint64_t                   comparisons_ = 0;
    std::pmr::vector<std::uint32_t> repeated_;  // entries whose text was there before
    IdTable                         others_;    // entries by id, or unknown

    // Whether there were strings under the ids that no word refers to: 0 and the least number.
    bool has_0_ = false;
    bool has_least_ = false;

    // Where a text is written again, and where it was written first.
    std::pmr::unordered_map<std::uint64_t, std::uint64_t, SeededHash> repetitions_;
};

}  // namespace sml::inspect
