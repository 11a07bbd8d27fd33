#pragma once
// The order of the entries of a hash table, simulated without the entries.

#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#ifndef __GLIBCXX__
#error "the order of hash tables, and so the bytes, is that of libstdc++"
#endif

namespace sml::core {

/// Computes remainders of division by one number, without dividing.
class Remainder {
public:
    explicit Remainder(std::uint64_t divisor)
        : divisor_(divisor), inverse_(~std::uint64_t{0} / divisor) {}

    std::uint64_t operator()(std::uint64_t value) const {
        auto const quotient = static_cast<std::uint64_t>((Wide{value} * inverse_) >> 64);
        // The quotient may be one too small.
        std::uint64_t const rest = value - quotient * divisor_;
        return rest < divisor_ ? rest : rest - divisor_;
    }

private:
    __extension__ using Wide = unsigned __int128;

    std::uint64_t divisor_;
    std::uint64_t inverse_;
};

/// The order in which libstdc++ has the entries of a hash table that grows while they are added one
/// by one, with a maximum load factor of 1. All entries are in one chain, in which those of a
/// bucket are neighbours. A new entry comes first in its bucket, or first in the chain if the
/// bucket is empty. When the table grows, all entries are added anew in the order of the chain.
/// Entries are numbered from 1 in the order in which they were added.
class TableOrder {
public:
    /// What `rehash` of an empty table must be given for the number of buckets to which a full
    /// table of `buckets` buckets grows. That number is a prime; this one may be less.
    static std::size_t more_buckets(std::size_t buckets) { return buckets == 1 ? 12 : 2 * buckets; }

    /// Whether the table has to grow before another entry is added.
    bool is_full() const { return entries() == most_entries_; }

    /// Grows to so many buckets. If that throws `std::bad_alloc`, nothing has changed.
    void grow(std::size_t buckets) {
        std::vector<std::uint32_t> before_bucket(buckets, none);
        links_.reserve(buckets + 1);
        before_bucket_.swap(before_bucket);
        bucket_of_ = Remainder(buckets);
        most_entries_ = buckets;
        std::uint32_t number = std::exchange(links_[edge].next, edge);
        while (number != edge) link(std::exchange(number, links_[number].next));
    }

    /// Prefetches the memory that `has` and `add` read first for this hash.
    void prefetch(std::size_t hash) const { __builtin_prefetch(&before_bucket_[bucket_of_(hash)]); }

    /// Whether `is_same(number)` is true for an entry with this hash.
    template <class IsSame>
    bool has(std::size_t hash, IsSame&& is_same) const {
        std::size_t const bucket = bucket_of_(hash);
        if (before_bucket_[bucket] == none) return false;
        for (std::uint32_t at = links_[before_bucket_[bucket]].next;
             at != edge && bucket_of_(links_[at].hash) == bucket; at = links_[at].next) {
            if (links_[at].hash == hash && is_same(at)) return true;
        }
        return false;
    }

    /// Adds an entry with this hash; `is_full()` is false. Doesn't throw.
    void add(std::size_t hash) {
        links_.push_back({hash, edge});
        link(static_cast<std::uint32_t>(entries()));
    }

    /// Calls `use(number)` for each entry in the order of the table.
    template <class Use>
    void for_each(Use&& use) const {
        for (std::uint32_t at = links_[edge].next; at != edge; at = links_[at].next) use(at);
    }

private:
    struct Link {
        std::size_t   hash;
        std::uint32_t next;
    };

    static constexpr std::uint32_t edge = 0;  // before the first entry and after the last
    static constexpr std::uint32_t none = std::numeric_limits<std::uint32_t>::max();

    std::size_t entries() const { return links_.size() - 1; }

    void link(std::uint32_t number) {
        std::uint32_t& before = before_bucket_[bucket_of_(links_[number].hash)];
        if (before == none) {
            std::uint32_t const first = links_[edge].next;
            if (first != edge) before_bucket_[bucket_of_(links_[first].hash)] = number;
            before = edge;
        }
        links_[number].next = std::exchange(links_[before].next, number);
    }

    std::vector<Link>          links_{{0, edge}};  // by number
    std::vector<std::uint32_t> before_bucket_{none};
    Remainder                  bucket_of_{1};
    std::size_t                most_entries_ = 0;
};

}  // namespace sml::core
