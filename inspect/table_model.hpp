#pragma once
// The hash tables of the readers, played through without their entries: how large they grow, and
// how many keys a new one is compared with. Their hash functions and growth are part of what is
// required, so bytes can be made on purpose whose keys share a bucket.

#include "core/table_order.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory_resource>
#include <optional>
#include <unordered_map>
#include <vector>

namespace sml::inspect {

/// The numbers of buckets that a table has while it grows key by key: the first one while it is
/// empty, each of the others up to as many keys.
inline std::vector<std::uint64_t> const& bucket_counts() {
    static std::vector<std::uint64_t> const counts = [] {
        std::vector<std::uint64_t>          all{1};
        std::__detail::_Prime_rehash_policy policy;
        constexpr std::uint64_t             most = std::uint64_t{1} << 40;
        while (all.back() < most)
            all.push_back(policy._M_need_rehash(all.back(), all.back(), 1).second);
        return all;
    }();
    return counts;
}

/// The place in `bucket_counts()` of a table with so many keys.
inline std::size_t growth_of(std::uint64_t keys) {
    auto const& counts = bucket_counts();
    if (keys == 0) return 0;
    return static_cast<std::size_t>(std::lower_bound(counts.begin() + 1, counts.end(), keys) -
                                    counts.begin());
}

using Hashes = std::pmr::vector<std::uint64_t>;

/// The comparisons of the keys that a table gets while it has so many buckets, from one key up to
/// another. None where a bucket holds more keys than `Count` holds.
template <class Count>
std::optional<std::uint64_t> comparisons_at(std::uint64_t buckets, std::uint64_t from,
                                            std::uint64_t to, Hashes const& hashes) {
    std::pmr::vector<Count> chains(buckets, 0, hashes.get_allocator());
    core::Remainder const   bucket_of(buckets);
    Count                   longest = 0;
    std::uint64_t           comparisons = 0;
    for (std::uint64_t i = 0; i < to; ++i) {
        Count const others = chains[bucket_of(hashes[i])]++;
        longest = std::max(longest, others);
        comparisons += i < from ? 0 : others;
    }
    if (longest == std::numeric_limits<Count>::max()) return std::nullopt;
    return comparisons;
}

/// The comparisons of keys, no two of them equal, that a table gets one after another, and of
/// others that it finds there. Takes a byte a key for the time being, four where many share a
/// bucket.
inline std::uint64_t comparisons_of(Hashes const& added, Hashes const& found) {
    constexpr std::uint64_t least_counted = 64;  // in smaller ones each is compared with few
    std::uint64_t           comparisons = std::min<std::uint64_t>(added.size(), least_counted);
    for (std::size_t growth = growth_of(least_counted); growth <= growth_of(added.size());
         ++growth) {
        std::uint64_t const buckets = bucket_counts()[growth];
        std::uint64_t const from = bucket_counts()[growth - 1];
        std::uint64_t const to = std::min<std::uint64_t>(added.size(), buckets);
        auto                at = comparisons_at<std::uint8_t>(buckets, from, to, added);
        if (!at) at = comparisons_at<std::uint32_t>(buckets, from, to, added);
        comparisons += at.value_or(to * to / 2);
    }
    if (found.empty()) return comparisons;
    std::uint64_t const             buckets = bucket_counts()[growth_of(added.size())];
    core::Remainder const           bucket_of(buckets);
    std::pmr::vector<std::uint32_t> chains(buckets, 0, added.get_allocator());
    for (std::uint64_t const hash : added) ++chains[bucket_of(hash)];
    for (std::uint64_t const hash : found) comparisons += chains[bucket_of(hash)];
    return comparisons;
}

/// One table, known by the hashes of its keys: 12 to 20 bytes a key.
class TableModel {
public:
    explicit TableModel(std::pmr::memory_resource* memory)
        : hashes_(memory), chains_(1, 0, memory) {}

    /// Adds a key that is not there. Gives how many keys it is compared with.
    std::uint64_t add(std::uint64_t hash) {
        std::uint64_t const compared = look_up(hash);
        if (hashes_.size() == most_keys_) grow();
        hashes_.push_back(hash);
        ++chains_[bucket_of_(hash)];
        return compared;
    }

    /// With how many keys one with this hash is compared at most, as one that is there or not.
    std::uint64_t look_up(std::uint64_t hash) const { return chains_[bucket_of_(hash)]; }

private:
    void grow() {
        std::size_t const buckets = bucket_counts()[++growth_];
        chains_.assign(buckets, 0);
        most_keys_ = buckets;
        bucket_of_ = core::Remainder(buckets);
        for (std::uint64_t const hash : hashes_) ++chains_[bucket_of_(hash)];
    }

    std::pmr::vector<std::uint64_t> hashes_;
    std::pmr::vector<std::uint32_t> chains_;  // how many keys each bucket holds
    core::Remainder                 bucket_of_{1};
    std::size_t                     growth_ = 0;
    std::size_t                     most_keys_ = 0;  // before it grows
};

}  // namespace sml::inspect
