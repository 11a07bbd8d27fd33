#pragma once
// Adds results to a result set and restores them. Both use the rows in fields.hpp.

#include "comparisons.hpp"
#include "result_set.hpp"
#include "sarif/result.hpp"

#include <cstddef>
#include <limits>
#include <memory>
#include <set>
#include <vector>

namespace bradep::sarif {

/// The most that a set can hold: lengths, counts, ordinals and string ids are signed words of 32
/// bits. The strings of the whole process are counted.
struct SetLimits {
    std::size_t text_bytes = std::numeric_limits<std::int32_t>::max();
    std::size_t entries = std::numeric_limits<std::int32_t>::max();
    std::size_t strings = std::numeric_limits<std::int32_t>::max();
};

/// Adds the result as the last check of the set, with its events and information records. The
/// look-ups of keys are counted. Throws DamagedInput if a limit is exceeded, that of `comparisons`
/// or of `limits`; the set must not be used then.
void add_result(Result const& result, ResultSet& set, Comparisons& comparisons,
                SetLimits const& limits = {});

/// Adds many results to an empty set. Most of its entries are in it only after `finish`.
class SetFiller {
public:
    /// The set and the count must outlive this object.
    SetFiller(ResultSet& set, Comparisons& comparisons);
    ~SetFiller();

    /// As `add_result` does, with the same bytes in the end, but faster.
    void add(Result const& result);
    void add(RunFacts const& facts);
    void finish();

private:
    struct Tables;

    ResultSet&              set_;
    Comparisons&            comparisons_;
    std::unique_ptr<Tables> tables_;
};

/// The result that a check form of the set was made from. Throws DamagedInput if the set does not
/// hold that check as `add_result` writes it.
Result restored_result(CheckForm const& form, ResultSet const& set);

/// What is kept of each run beside results, in the order of the runs.
std::vector<RunFacts> restored_facts(ResultSet const& set);

/// Whether the category is the one that `add_result` gives to all checks. A native check can have
/// it, too.
bool has_category_of_import(Category const& category);

/// The checks with a suppression in effect: its status is `accepted` or not given.
std::set<NumberedKey> suppressed_checks(ResultSet const& set);

}  // namespace bradep::sarif
