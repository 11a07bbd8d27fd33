#pragma once
// An estimate of the heap that a reader needs, made while the bytes are walked. It is never less
// than the reader takes with the standard library, the number libraries and the allocator of this
// platform. All sizes are in bytes.

#include <sml/inspect/reader/heap_chunk.hpp>
#include <sml/inspect/reader/table_model.hpp>
#include <sml/inspect/type.hpp>

#include <algorithm>
#include <bit>
#include <cstdint>

namespace sml::inspect {

class ReaderHeap {
public:
    /// The longest text of an integer, spelled as a writer spells it, that a reader converts
    /// straight to limbs.
    static constexpr std::uint64_t plain_integer = 66;

    /// `limit` is the highest `peak()` that is allowed.
    explicit ReaderHeap(std::uint64_t limit) : most_(without_rests(limit)) {}

    /// The peak so far, plus a sixteenth: the allocator makes a block larger than it was asked for
    /// if the rest of a free block would be too small to use.
    std::uint64_t peak() const noexcept { return with_rests(std::max(peak_, kept_)); }

    // The following functions add what a reader allocates. Each returns whether the heap is still
    // within the limit.

    /// The nodes of so many entries of a list, set or map.
    bool take_nodes(Type const& type, std::uint64_t count) { return take(count * type.node_heap); }

    /// The hash table for so many entries, if the type has one, and what a reader holds while it
    /// fills it.
    bool take_table(Type const& type, std::uint64_t count) {
        if (!type.hashed || count == 0) return true;
        std::size_t const growth = growth_of(count);
        return take(buckets_size(growth) + building_size(type, count), buckets_size(growth - 1));
    }

    /// Subtracts what a reader no longer holds when that table is complete.
    void complete_table(Type const& type, std::uint64_t count) {
        if (type.hashed) give_back(building_size(type, count));
    }

    /// Subtracts the node of the last entry, since its key is repeated.
    void give_back_node(Type const& type) { give_back(type.node_heap); }

    /// The text of a definition. `is_new` is false if the same text was defined before.
    bool take_string(std::uint64_t bytes, bool is_new) {
        bool const is_in_place = bytes <= in_place;
        if (is_new && is_in_place && bytes > 0 && texts_.has_room()) [[likely]]
            return take(chunk_of(string_node));
        std::uint64_t const copy = text_size(bytes, bytes);
        std::uint64_t const passing = text_size(bytes, least_capacity);
        if (!is_new || bytes == 0) return take(0, copy + passing);
        Growth const table = texts_.add();
        return take(copy + chunk_of(string_node) + table.added, passing + table.outgrown);
    }

    /// An id of the prefix (see `StringTable::Added`); a reader holds these in a vector, which
    /// doubles when it is full.
    bool take_id_in_prefix(std::uint64_t id) {
        if (id == 1) return take(chunk_of(pinned_size));
        if (!std::has_single_bit(id - 1)) return true;
        std::uint64_t const outgrown = chunk_of(pinned_size * (id - 1));
        return take(chunk_of(2 * pinned_size * (id - 1)) - outgrown, outgrown);
    }

    /// Any other new id; a reader holds these in a hash table.
    bool take_other_id() {
        Growth const table = ids_.add();
        return take(chunk_of(id_node) + table.added, table.outgrown);
    }

    bool take_text(std::uint64_t bytes) { return take(text_size(bytes, least_capacity)); }

    bool take_boxed(Type const& element) { return take(chunk_of(element.object_size)); }

    bool take_double(std::uint64_t bytes) {
        return take(0, chunk_of(bytes + 1) + text_size(bytes, bytes));
    }

    /// An integer whose text has so many bytes. `plain` says that a reader converts it straight to
    /// limbs.
    bool take_integer(std::uint64_t bytes, bool plain) {
        constexpr std::uint64_t digits_of_limb = 16;
        constexpr std::uint64_t limb = 8;
        std::uint64_t const     limbs = bytes / digits_of_limb + (plain ? 1 : 2);
        if (plain) [[likely]]
            return take(chunk_of(limb * limbs));
        return take(chunk_of(limb * limbs), chunk_of(bytes + 1) + chunk_of(bytes + 2));
    }

    bool take_float(std::uint64_t bytes, bool plain) {
        constexpr std::uint64_t own = 32;
        constexpr std::uint64_t scratch = 512;
        if (plain) [[likely]]
            return take(own);
        return take(own, 2 * chunk_of(bytes + 1) + scratch);
    }

private:
    static constexpr std::uint64_t rests_share = 16;
    static constexpr std::uint64_t bucket_size = 8;
    static constexpr std::uint64_t string_node = 64;
    static constexpr std::uint64_t id_node = 24;
    static constexpr std::uint64_t pinned_size = 16;
    static constexpr std::uint64_t in_place = 15;  // longest text that a string holds in itself
    static constexpr std::uint64_t least_capacity = 30;  // of a string that a text is assigned to

    static constexpr std::uint64_t with_rests(std::uint64_t bytes) {
        return bytes == 0 ? 0 : bytes + bytes / rests_share + 16;
    }

    /// The inverse of `with_rests`: the most bytes for which that is not above a limit.
    static constexpr std::uint64_t without_rests(std::uint64_t limit) {
        std::uint64_t bytes = limit - limit / (rests_share + 1);
        while (bytes > 0 && with_rests(bytes) > limit) --bytes;
        return bytes;
    }

    static std::uint64_t text_size(std::uint64_t bytes, std::uint64_t least) {
        return bytes <= in_place ? 0 : chunk_of(std::max(bytes, least) + 1);
    }

    static std::uint64_t buckets_size(std::size_t growth) {
        return growth == 0 ? 0 : chunk_of(bucket_size * bucket_counts()[growth]);
    }

    struct Growth {
        std::uint64_t added;
        std::uint64_t outgrown;
    };

    /// The buckets of a hash table that grows key by key.
    class Buckets {
    public:
        /// Adds a key if the table need not grow for it; returns whether it did.
        bool has_room() { return keys_ < most_keys_ && ++keys_ > 0; }

        Growth add() {
            if (has_room()) return {0, 0};
            ++keys_;
            most_keys_ = bucket_counts()[++growth_];
            std::uint64_t const outgrown = buckets_size(growth_ - 1);
            return {buckets_size(growth_) - outgrown, outgrown};
        }

    private:
        std::uint64_t keys_ = 0;
        std::uint64_t most_keys_ = 0;
        std::size_t   growth_ = 0;
    };

    /// What a reader holds beside a large hash table while it reads that by `core::LargeTable`: the
    /// nodes' handles, and the hashes, links, buckets and order of the entries. While one of these
    /// grows, its old memory is there, too: at most half of the largest.
    static std::uint64_t building_size(Type const& type, std::uint64_t count) {
        constexpr std::uint64_t least_size = 128;
        constexpr std::uint64_t least_count = 64;
        bool const is_large = type.kind == Kind::map && !type.last_wins && count >= least_count &&
                              type.entry_size >= least_size;
        if (!is_large) return 0;
        std::uint64_t const buckets = bucket_counts()[growth_of(count)];
        return chunk_of(16 * buckets) + chunk_of(16 * (buckets + 1)) + 2 * chunk_of(4 * buckets) +
               chunk_of(8 * buckets);
    }

    /// Adds bytes that the reader keeps. `passing` are allocated at the same time, but freed right
    /// away.
    bool take(std::uint64_t kept) noexcept {
        kept_ += kept;
        return kept_ <= most_;
    }
    bool take(std::uint64_t kept, std::uint64_t passing) noexcept {
        kept_ += kept;
        peak_ = std::max(peak_, kept_ + passing);
        return kept_ + passing <= most_;
    }
    void give_back(std::uint64_t bytes) noexcept {
        peak_ = std::max(peak_, kept_);
        kept_ -= bytes;
    }

    std::uint64_t most_;  // that may be allocated at one time
    std::uint64_t kept_ = 0;
    std::uint64_t peak_ = 0;  // of earlier states, if that was above `kept_`
    Buckets       texts_;
    Buckets       ids_;
};

}  // namespace sml::inspect
