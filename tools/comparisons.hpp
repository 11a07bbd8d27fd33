#pragma once
// Counts comparisons of keys in the hash tables that an import fills: the string table and the maps
// and sets of the result set. Their hash functions are fixed, so a log can be made on purpose whose
// keys share a bucket. The time then grows with the square of the number of keys.

#include <sml/core/Strings.hpp>
#include <sml/inspect/finding.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace bradep {

/// Counts a look-up after it was made. The members that count throw DamagedInput when more than
/// `most` comparisons have been counted.
class Comparisons {
public:
    explicit Comparisons(std::uint64_t most = sml::inspect::Limits().work);

    std::uint64_t counted() const { return counted_; }

    /// Interns the text and counts the look-up, if one is needed. A text that is new to the string
    /// table stays there until the process ends.
    sml::Strings_T interned(std::string_view text);

    /// Counts one look-up of `key` in `table`. The key must be in the table.
    template <class Table>
    void count_key(Table const& table, typename Table::key_type const& key) {
        count_look_up(table.bucket_size(table.bucket(key)));
    }

    /// Counts one look-up in a bucket of so many keys.
    void count_look_up(std::size_t keys) {
        if (keys > ordinary) [[unlikely]]
            spend(keys);
    }

private:
    // Keys that share a bucket by chance: a table has at least as many buckets as keys, and one
    // bucket in a million holds more than these. A look-up in such a bucket is not counted, since a
    // large log makes any number of them.
    static constexpr std::size_t ordinary = 8;

    // Returns how many keys were compared.
    std::size_t look_up(std::string_view text, sml::Strings_T& handle);
    void        spend(std::uint64_t comparisons);

    std::uint64_t               most_;
    std::uint64_t               counted_ = 0;
    std::vector<sml::Strings_T> recent_;  // found again without a look-up
};

}  // namespace bradep
