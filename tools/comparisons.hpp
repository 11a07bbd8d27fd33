#pragma once
// The comparisons of keys in the hash tables that an import fills: the one of all texts and those
// of the result set. Their hash functions are part of what is required, so a log can be made on
// purpose whose keys share a bucket, and then time grows with the square of their number.

#include <sml/core/Strings.hpp>
#include <sml/inspect/finding.hpp>

#include <cstddef>
#include <cstdint>
#include <string>

namespace bradep {

/// Counts look-ups right after they were made. Beyond a limit, what counts throws DamagedInput.
class Comparisons {
public:
    explicit Comparisons(std::uint64_t most = sml::inspect::Limits().work) : most_(most) {}

    std::uint64_t counted() const { return counted_; }

    /// Looks the text up among all texts, or adds it to them until the process ends.
    sml::Strings_T interned(std::string const& text);

    /// The key was looked up in the table, or added to it.
    template <class Table>
    void count_key(Table const& table, typename Table::key_type const& key) {
        count_look_up(table.bucket_size(table.bucket(key)));
    }

private:
    // So many keys share a bucket by chance: a table has as many buckets as keys or more, and one
    // bucket in a million holds more. A look-up among them is not counted, since a large log makes
    // any number of those.
    static constexpr std::size_t ordinary = 8;

    void count_look_up(std::size_t keys) {
        if (keys > ordinary) [[unlikely]]
            spend(keys);
    }
    void spend(std::uint64_t comparisons);

    std::uint64_t most_;
    std::uint64_t counted_ = 0;
};

}  // namespace bradep
