#pragma once
// A simulation of a reader's hash tables without their entries: how large they grow, and with how
// many keys each new one is compared. Their hash functions and their growth are required, so bytes
// can be made whose keys all share a bucket.

#include <sml/core/table_order.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory_resource>
#include <optional>
#include <unordered_map>
#include <vector>

namespace sml::inspect {

/// How many comparisons a comparison of so many bytes counts as.
constexpr std::uint64_t comparisons_for(std::uint64_t bytes) {
    constexpr std::uint64_t bytes_of_one = 256;
    return 1 + bytes / bytes_of_one;
}

/// The numbers of buckets that a hash table has while it grows key by key. The first is that of an
/// empty table. Each of the others is also the most keys that the table can hold with so many
/// buckets.
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

/// The index in `bucket_counts()` for a table with so many keys.
inline std::size_t growth_of(std::uint64_t keys) {
    auto const& counts = bucket_counts();
    if (keys == 0) return 0;
    return static_cast<std::size_t>(std::lower_bound(counts.begin() + 1, counts.end(), keys) -
                                    counts.begin());
}

using Hashes = std::pmr::vector<std::uint64_t>;

/// The comparisons in a hash table to which keys are added.
struct Compared {
    std::uint64_t comparisons = 0;  ///< while the keys are added
    std::uint64_t pairs = 0;        ///< of keys that share a bucket in the end
    std::uint64_t longest = 0;      ///< the most keys in one bucket
};

/// The comparisons at one number of buckets. `comparisons` is for the keys with indices from `from`
/// up to `to`, which are added while the table has so many buckets. None if a bucket holds more
/// keys than a `Count` can count.
template <class Count>
std::optional<Compared> compared_at(std::uint64_t buckets, std::uint64_t from, std::uint64_t to,
                                    Hashes const& hashes) {
    std::pmr::vector<Count> chains(buckets, 0, hashes.get_allocator());
    core::Remainder const   bucket_of(buckets);
    Count                   longest = 0;
    Compared                compared;
    for (std::uint64_t i = 0; i < to; ++i) {
        Count const others = chains[bucket_of(hashes[i])]++;
        longest = std::max(longest, others);
        compared.pairs += others;
        compared.comparisons += i < from ? 0 : others;
    }
    if (longest == std::numeric_limits<Count>::max()) return std::nullopt;
    compared.longest = std::uint64_t{longest} + 1;
    return compared;
}

/// The comparisons for keys that are added one after another and are all different. `pairs` is for
/// the largest number of buckets. Takes one byte a bucket until it returns, or four if many keys
/// share one.
inline Compared compared_in_table(Hashes const& added) {
    constexpr std::uint64_t least_counted = 64;  // in smaller ones keys are taken not to collide
    Compared                all{std::min<std::uint64_t>(added.size(), least_counted), 0, 1};
    for (std::size_t growth = growth_of(least_counted); growth <= growth_of(added.size());
         ++growth) {
        std::uint64_t const buckets = bucket_counts()[growth];
        std::uint64_t const from = bucket_counts()[growth - 1];
        std::uint64_t const to = std::min<std::uint64_t>(added.size(), buckets);
        auto                at = compared_at<std::uint8_t>(buckets, from, to, added);
        if (!at) at = compared_at<std::uint32_t>(buckets, from, to, added);
        Compared const worst{to * to / 2, to * to / 2, to};
        Compared const now = at.value_or(worst);
        all = {all.comparisons + now.comparisons, now.pairs, std::max(all.longest, now.longest)};
    }
    return all;
}

/// The comparisons for keys that are added, and for `found` repeated ones. Each repeated key is
/// taken to be compared with as many keys as any bucket ever held.
inline std::uint64_t comparisons_of(Hashes const& added, std::uint64_t found) {
    Compared const all = compared_in_table(added);
    return all.comparisons + found * all.longest;
}

/// The hash table of the ids out of sequence; the hash of an id is the id. Takes 8 to 16 bytes an
/// id.
class IdTableModel {
public:
    explicit IdTableModel(std::pmr::memory_resource* memory)
        : ids_(memory), chains_(1, 0, memory) {}

    /// Adds an id that is not in the table. Returns with how many others it is compared.
    std::uint64_t add(std::int32_t id) {
        std::uint64_t const compared = look_up(id);
        if (ids_.size() == most_ids_) grow();
        ids_.push_back(id);
        ++chains_[bucket_of(id)];
        return compared;
    }

    /// With how many ids this one is compared at most, whether it is in the table or not.
    std::uint64_t look_up(std::int32_t id) const { return chains_[bucket_of(id)]; }

private:
    using Chains = std::pmr::vector<std::uint32_t>;

    std::uint64_t bucket_of(std::int32_t id) const {
        return divide_(static_cast<std::uint64_t>(static_cast<std::int64_t>(id)));
    }

    void grow() {
        most_ids_ = bucket_counts()[++growth_];
        divide_ = core::Remainder(most_ids_);
        Chains(chains_.get_allocator()).swap(chains_);
        chains_.assign(most_ids_, 0);
        for (std::int32_t const id : ids_) ++chains_[bucket_of(id)];
    }

    std::pmr::vector<std::int32_t> ids_;
    Chains                         chains_;  // how many ids each bucket holds
    core::Remainder                divide_{1};
    std::size_t                    growth_ = 0;
    std::size_t                    most_ids_ = 0;  // that it can hold before it grows
};

}  // namespace sml::inspect
