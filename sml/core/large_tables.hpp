#pragma once
// Reading large hash tables.
//
// The order of a hash table's entries depends on each time it has grown, and is part of the bytes,
// so buckets can't be reserved. But while a table of large entries grows, most of them are no
// longer in the cache: each lookup waits for the memory of other entries, and each growth visits
// them all. So the growth is simulated without the entries (`TableOrder`), and they are inserted at
// the end. Small entries are dense enough in memory to be visited.

#include <sml/core/kinds.hpp>
#include <sml/core/table_order.hpp>

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>

namespace sml::core {

/// Collects entries for a new, empty table, which the caller owns; the destructor inserts those
/// that were kept.
template <HashMap Table>
class LargeTable {
public:
    /// Whether so many entries can be added to the table this way, and whether that is faster.
    static bool suits(Table const& table, std::uint32_t entries) {
        return sizeof(typename Table::value_type) >= least_size && entries >= least_count &&
               table.empty() && table.bucket_count() == 1 && table.max_load_factor() == 1;
    }

    explicit LargeTable(Table& table) : table_(table) {}
    LargeTable(LargeTable const&) = delete;
    LargeTable& operator=(LargeTable const&) = delete;
    ~LargeTable() { link(); }

    /// Makes an entry and returns its value, to be read before `keep` is called.
    typename Table::mapped_type& make(typename Table::key_type&& key) {
        maker_.try_emplace(std::move(key));
        made_ = maker_.extract(maker_.begin());
        hash_ = table_.hash_function()(made_.key());
        order_.prefetch(hash_);
        prefetch_behind(made_);
        return made_.mapped();
    }

    /// Keeps the entry made last, unless one with its key has been kept before.
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
    // Measured: reading a table of small entries one by one takes two thirds of the time.
    static constexpr std::size_t   least_size = 128;
    static constexpr std::uint32_t least_count = 64;

    using Entry = typename Table::node_type;

    /// Hashes at no cost. Not noexcept: libstdc++ then stores the hash in each entry.
    struct NoHash {
        std::size_t operator()(typename Table::key_type const&) const { return 0; }
    };

    /// Makes entries, which the table can take over if they store hashes as its own do.
    using CheapMaker = std::unordered_map<typename Table::key_type, typename Table::mapped_type,
                                          NoHash, typename Table::key_equal>;
    using Maker = std::conditional_t<std::is_same_v<typename CheapMaker::node_type, Entry>,
                                     CheapMaker, Table>;

    // So the tables that are made here hash like the caller's.
    static_assert(std::is_empty_v<typename Table::hasher>);

    bool has_its_key() const {
        return order_.has(hash_, [this](std::uint32_t number) {
            return entries_[number - 1].key() == made_.key();
        });
    }

    /// Gives the table its next number of buckets, and all vectors room for as many entries. If
    /// that throws, nothing has changed but the vectors' capacity.
    void grow() {
        Table grown;
        grown.rehash(TableOrder::more_buckets(table_.bucket_count()));
        entries_.reserve(grown.bucket_count());
        in_order_.reserve(grown.bucket_count());
        order_.grow(grown.bucket_count());
        table_.swap(grown);
    }

    /// Inserts from the last entry to the first, since a table puts a new one before those in it.
    void link() noexcept {
        order_.for_each([this](std::uint32_t number) { in_order_.push_back(number - 1); });
        for (std::size_t left = in_order_.size(); left != 0; --left) {
            constexpr std::size_t ahead = 8;
            if (left > ahead) prefetch_ends(entries_[in_order_[left - 1 - ahead]]);
            table_.insert(std::move(entries_[in_order_[left - 1]]));
        }
    }

    /// Prefetches what lies behind an entry. A heap mostly gives ascending addresses, so that is
    /// where the parts of this entry and the next entry are going to be.
    static void prefetch_behind(Entry const& entry) {
        constexpr std::size_t line = 64;
        constexpr std::size_t parts = 768;  // measured
        char const* const     end = reinterpret_cast<char const*>(&entry.mapped() + 1);
        for (std::size_t at = 0; at < sizeof(typename Table::value_type) + parts; at += line)
            __builtin_prefetch(end + at, 1);
    }

    static void prefetch_ends(Entry const& entry) {
        __builtin_prefetch(&entry.key(), 1);
        __builtin_prefetch(&entry.mapped() + 1, 1);
    }

    Table&                     table_;
    Maker                      maker_;
    Entry                      made_;
    std::size_t                hash_ = 0;
    TableOrder                 order_;
    std::vector<Entry>         entries_;
    std::vector<std::uint32_t> in_order_;
};

}  // namespace sml::core
