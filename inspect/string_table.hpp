#pragma once
// The strings that a walk has met, by id and by text: 16 bytes a text, and a few for the index.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace sml::inspect {

/// Another one in each process.
[[gnu::visibility("hidden")]] extern std::uint64_t const hash_seed;

/// A seeded hash: what the bytes hold can't make its values collide on purpose.
inline std::uint64_t seeded_hash(std::uint64_t word, std::uint64_t state) {
    __extension__ using Product = unsigned __int128;
    constexpr std::uint64_t odd = 0x9e3779b97f4a7c15;
    // Both halves of the full product, folded.
    Product const product =
        static_cast<Product>(word ^ hash_seed) * (state ^ odd ^ (hash_seed << 1 | 1));
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}
std::uint64_t seeded_hash(std::string_view text);

/// Texts by id as a reader's table has them. An id keeps its first text; an id that is used before
/// it is told becomes the empty text.
class StringTable {
public:
    /// Ids are positive words.
    static constexpr std::uint32_t most = 0x7FFFFFFF;

    explicit StringTable(std::string_view bytes) : bytes_(bytes) {}

    struct Told {
        bool          in_sequence;  ///< the id is the next one
        bool          text_is_new;
        std::uint64_t hash;
    };

    /// Takes a first sight: its word and where its length word stands. The text fits the bytes.
    Told tell(std::int32_t word, std::uint64_t length_offset);

    /// How many ids from 1 on are known without looking.
    std::uint32_t known_at_sight() const noexcept { return static_cast<std::uint32_t>(prefix_); }

    /// Whether the id is known; makes it the empty text when it is not.
    bool refer(std::int32_t id) { return id <= prefix_ || refer_other(id); }

    /// The text of an id that is known, and its hash.
    std::string_view text_of(std::int32_t id) const { return text_at(place_of(id)); }
    std::uint64_t    hash_of(std::int32_t id) const { return entry_of(id).hash; }

    /// The hash of a text that was told whole; known without looking for the one told last.
    std::uint64_t hash_of_told(std::uint64_t length_offset) const {
        Entry const& last = entries_.back();
        return last.length_offset == length_offset ? last.hash
                                                   : seeded_hash(text_at(length_offset));
    }

    /// Where the length word of the text stands that is told for an id, or at a place: the same one
    /// for equal texts, but for the empty text of an id that was used before it was told.
    std::uint64_t place_of(std::int32_t id) const { return entry_of(id).length_offset; }
    std::uint64_t place_of_told(std::uint64_t length_offset) const {
        auto const repetition = repetitions_.find(length_offset);
        return repetition == repetitions_.end() ? length_offset : repetition->second;
    }
    /// Whether the texts at two such places are equal, however long they are.
    bool are_equal(std::uint64_t place, std::uint64_t other) const {
        return place == other || (text_at(place).empty() && text_at(other).empty());
    }

    /// How many strings were told whole so far.
    std::uint32_t told() const noexcept { return told_; }

private:
    struct Entry {
        std::uint64_t length_offset;
        std::uint64_t hash;
    };

    static constexpr std::uint64_t nowhere = ~std::uint64_t{0};

    Entry const& entry_of(std::int32_t id) const {
        if (id >= 1 && id <= prefix_) return entries_[static_cast<std::size_t>(id - 1)];
        return entries_[others_.at(id)];
    }

    std::string_view text_at(std::uint64_t length_offset) const {
        if (length_offset == nowhere) return {};
        std::int32_t length;
        std::memcpy(&length, bytes_.data() + length_offset, sizeof length);
        return {bytes_.data() + length_offset + sizeof length, static_cast<std::size_t>(length)};
    }

    bool knows(std::int32_t id) const;
    bool refer_other(std::int32_t id);
    bool index_text(std::uint32_t entry);
    void grow_index();

    struct SeededHash {
        std::size_t operator()(std::int32_t id) const {
            return seeded_hash(static_cast<std::uint32_t>(id), 0);
        }
        std::size_t operator()(std::uint64_t place) const { return seeded_hash(place, 0); }
    };

    std::string_view           bytes_;
    std::vector<Entry>         entries_;
    std::uint32_t              told_ = 0;
    std::int32_t               prefix_ = 0;  // ids 1 to this are the first entries, in order
    std::vector<std::uint32_t> index_;       // open addressing by hash: entry + 1
    std::size_t                distinct_ = 0;

    std::unordered_map<std::int32_t, std::uint32_t, SeededHash> others_;

    // Where a text was told again, and where it was told first.
    std::unordered_map<std::uint64_t, std::uint64_t, SeededHash> repetitions_;
};

}  // namespace sml::inspect
