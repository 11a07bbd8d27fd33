#pragma once
// Where a result set holds what a SARIF result says. fields.hpp has the table; adding and
// restoring go through it in both directions.

#include "comparisons.hpp"
#include "result_set.hpp"
#include "sarif/result.hpp"

#include <cstddef>
#include <limits>
#include <set>

namespace bradep::sarif {

/// What a set can carry: lengths, counts, ordinals and the numbers of strings are 32 bits wide,
/// with a sign. The strings are those of the process.
struct SetLimits {
    std::size_t text_bytes = std::numeric_limits<std::int32_t>::max();
    std::size_t entries = std::numeric_limits<std::int32_t>::max();
    std::size_t strings = std::numeric_limits<std::int32_t>::max();
};

/// Adds the result as the last check of the set, with its events and its further places. What
/// looking up its keys takes is counted. Throws DamagedInput where that or the set is beyond the
/// limits; the set is of no use then.
void add_result(Result const& result, ResultSet& set, Comparisons& comparisons,
                SetLimits const& limits = {});

/// The result that a check form of the set was made from. Throws DamagedInput where the set holds
/// no such check, which means that it did not come from add_result.
Result restored_result(CheckForm const& form, ResultSet const& set);

/// Whether the category is the one that import gives to all checks. A native one can have it, too.
bool has_category_of_import(Category const& category);

/// The checks with a suppression that holds: one that is accepted, or whose status is not given.
std::set<NumberedKey> suppressed_checks(ResultSet const& set);

}  // namespace bradep::sarif
