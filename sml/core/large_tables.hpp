#pragma once
// Reading large hash tables.
//
// The order of a table's entries follows from all of its growth and is part of the bytes, so room
// can't be reserved. But when a table of large entries grows, they are no longer in the cache: each
// lookup waits for the memory of others, and each growth visits them all. So its growth is played
// through without them, and the table gets its entries in the end. Small entries are dense enough
// in memory to be visited.

#include <sml/core/kinds.hpp>
#include <sml/core/table_order.hpp>

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>
#include <vector>

namespace sml::core {

/// Adds entries to a new table, which has those that were kept when this is destroyed.
template <HashMap Table>
class LargeTable {
public:
    /// Whether adding so many entries this way is possible, and pays.
    static bool suits(Table const& table, std::uint32_t entries) {
        return sizeof(typename Table::value_type) >= least_size && entries >= least_count &&
               table.empty() && table.bucket_count() == 1 && table.max_load_factor() == 1;
    }

    explicit LargeTable(Table& table) : table_(table) {}
    LargeTable(LargeTable const&) = delete;
    LargeTable& operator=(LargeTable const&) = delete;
    ~LargeTable() { link(); }

    /// Makes an entry and gives its value, to be kept when it is complete.
    typename Table::mapped_type& make(typename Table::key_type&& key) {
        maker_.try_emplace(std::move(key));
        made_ = maker_.extract(maker_.begin());
        hash_ = table_.hash_function()(made_.key());
        order_.prefetch(hash_);
        return made_.mapped();
    }

    /// Keeps the entry, unless there is one with its key.
    void keep() {
        if (has_its_key()) {
            made_ = Entry();
            return;
        }
        if (order_.is_full()) grow();
        order_.add(hash_);
        entries_.push_back(std::move(made_));
    }

private:
    // Measured: tables of numbers read entry by entry take two thirds of the time.
    static constexpr std::size_t   least_size = 128;
    static constexpr std::uint32_t least_count = 64;

    using Entry = typename Table::node_type;

    // The tables that are made here hash alike.
    static_assert(std::is_empty_v<typename Table::hasher>);

    bool has_its_key() const {
        return order_.has(hash_, [this](std::uint32_t number) {
            return entries_[number - 1].key() == made_.key();
        });
    }

    /// So does the table itself, which has room for the entries then. All or nothing.
    void grow() {
        Table grown;
        grown.rehash(TableOrder::more_buckets(table_.bucket_count()));
        entries_.reserve(grown.bucket_count());
        in_order_.reserve(grown.bucket_count());
        order_.grow(grown.bucket_count());
        table_.swap(grown);
    }

    /// From the last to the first, since each comes before those that are there.
    void link() noexcept {
        order_.for_each([this](std::uint32_t number) { in_order_.push_back(number - 1); });
        for (std::size_t left = in_order_.size(); left != 0; --left) {
            constexpr std::size_t ahead = 8;
            if (left > ahead) prefetch_ends(entries_[in_order_[left - 1 - ahead]]);
            table_.insert(std::move(entries_[in_order_[left - 1]]));
        }
    }

    static void prefetch_ends(Entry const& entry) {
        __builtin_prefetch(&entry.key(), 1);
        __builtin_prefetch(&entry.mapped() + 1, 1);
    }

    Table&                     table_;
    Table                      maker_;
    Entry                      made_;
    std::size_t                hash_ = 0;
    TableOrder                 order_;
    std::vector<Entry>         entries_;
    std::vector<std::uint32_t> in_order_;
};

}  // namespace sml::core
