#pragma once
// Filling a large hash table whose keys are known to differ.

#include "comparisons.hpp"

#include <sml/core/table_order.hpp>

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>

namespace bradep::sarif {

/// Collects entries for an empty table and inserts them all at the end, in the order that the table
/// would have if they had been inserted one by one. While a large table grows, each insertion waits
/// for the memory of other entries, and each growth visits them all; here only hashes are visited.
template <class Table>
class LateTable {
public:
    using Key = typename Table::key_type;

    /// The table must be empty and outlive this object.
    explicit LateTable(Table& table) : table_(table) {}
    LateTable(LateTable const&) = delete;
    LateTable& operator=(LateTable const&) = delete;

    std::size_t size() const { return entries_.size(); }

    /// The value of a key that was not added before. Its address stays. The comparisons with other
    /// keys that the table would make are counted.
    typename Table::mapped_type& add(Key const& key, Comparisons& comparisons) {
        if (order_.is_full()) grow();
        maker_.try_emplace(key);
        auto&      made = entries_.emplace_back(maker_.extract(maker_.begin()));
        auto const hash = typename Table::hasher()(key);
        hashes_.push_back(hash);
        order_.add(hash);
        comparisons.count_look_up(++keys_[hash % keys_.size()]);
        return made.mapped();
    }

    /// Inserts all entries into the table. Call it once.
    void insert_all() {
        if (entries_.empty()) return;
        table_.rehash(keys_.size());
        std::vector<std::uint32_t> in_order;
        in_order.reserve(entries_.size());
        order_.for_each([&](std::uint32_t number) { in_order.push_back(number - 1); });
        // A table puts a new entry before those in it.
        for (std::size_t left = in_order.size(); left > 0; --left) {
            constexpr std::size_t ahead = 8;
            if (left > ahead) prefetch(entries_[in_order[left - 1 - ahead]]);
            table_.insert(std::move(entries_[in_order[left - 1]]));
        }
        entries_.clear();
    }

private:
    using Entry = typename Table::node_type;

    /// Not noexcept: libstdc++ then stores the hash in each entry, as the table does.
    struct NoHash {
        std::size_t operator()(Key const&) const { return 0; }
    };
    using Maker =
        std::unordered_map<Key, typename Table::mapped_type, NoHash, typename Table::key_equal>;
    static_assert(std::is_same_v<typename Maker::node_type, Entry>);

    static void prefetch(Entry const& entry) { __builtin_prefetch(&entry.key(), 1); }

    void grow() {
        Table grown;
        grown.rehash(sml::core::TableOrder::more_buckets(keys_.size()));
        keys_.assign(grown.bucket_count(), 0);
        for (auto const hash : hashes_) ++keys_[hash % keys_.size()];
        order_.grow(keys_.size());
    }

    Table&                     table_;
    Maker                      maker_;
    std::vector<Entry>         entries_;
    std::vector<std::size_t>   hashes_;
    std::vector<std::uint32_t> keys_ = {0};  // of each bucket
    sml::core::TableOrder      order_;
};

}  // namespace bradep::sarif
