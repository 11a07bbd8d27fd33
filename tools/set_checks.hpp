#pragma once
// The checks of a result set from any writer. For imported checks, all properties from their log
// are known; for native ones, only the category.

#include "result_set.hpp"
#include "sarif/mapping.hpp"

#include <cstddef>
#include <limits>
#include <optional>
#include <set>
#include <vector>

namespace bradep {

struct SetCheck {
    NumberedKey const* key;    ///< null if the form names no check
    Check const*       check;  ///< null if `checks` has no such key
    CheckForm const*   form;   ///< null if it has no form; not both are null

    Category const& category() const { return check ? check->category : form->category; }
};

/// The state of a check: suppressed in a review, absent since an earlier analysis, or open. Only
/// open checks need to be looked at.
class Review {
public:
    explicit Review(ResultSet const& set) : suppressed_(sarif::suppressed_checks(set)) {}

    bool is_suppressed(NumberedKey const& key) const { return suppressed_.contains(key); }
    bool is_absent(Check const& check) const;
    bool is_open(NumberedKey const& key, Check const& check) const {
        return !is_suppressed(key) && !is_absent(check);
    }

private:
    std::set<NumberedKey> suppressed_;
};

/// The first `most` checks, each once: first those with a form, in the order of the forms; then
/// those without, by file and ordinal. A form whose check is missing counts as a check.
std::vector<SetCheck> checks_of(ResultSet const& set,
                                std::size_t      most = std::numeric_limits<std::size_t>::max());
std::size_t           count_checks(ResultSet const& set);

/// The result that an imported check was made from; none for a native check.
std::optional<sarif::Result> imported_result(SetCheck const& check, ResultSet const& set);

}  // namespace bradep
