#pragma once
// How large the tables of result sets are.

#include <sml/tables/result_sets.hpp>
#include <sml/tables/source.hpp>

#include <memory>

namespace sml::tables {

/// The table `sizes`. It has a row for each table of each result set, and one with the name
/// `(strings)`:
///
/// - `rows`: the rows of the table, or the strings that are defined;
/// - `bytes`: the bytes of all entries, those of child tables included, without the 4 bytes of each
///   count of entries. A string is in the entry that defines it. In `(strings)`: the bytes of the
///   definitions;
/// - `largest` and `largest_row`: the bytes of the largest entry, and the first row that has as
///   many; null if there is no row. A string has no row;
/// - `depth`: levels of variants and containers inside one another, within an entry. In `root`, it
///   is the least --max-depth with which the bytes are safe. Null in `(strings)`.
///
/// Where a reader repairs the bytes, those of the repaired value are counted. `sets` must outlive
/// the table.
std::unique_ptr<Source const> sizes_of(ResultSets const& sets);

}  // namespace sml::tables
