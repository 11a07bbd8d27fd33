#pragma once
// The checks of a result set, whoever wrote it: imported ones, of which all is known that their log
// said, and native ones, of which the category is.

#include "result_set.hpp"
#include "sarif/mapping.hpp"

#include <cstddef>
#include <limits>
#include <optional>
#include <set>
#include <vector>

namespace bradep {

struct SetCheck {
    NumberedKey const* key;    ///< null for a form that names no check
    Check const*       check;  ///< null where no table has it
    CheckForm const*   form;   ///< null where none tells of it; one of the two is there

    Category const& category() const { return check ? check->category : form->category; }
};

/// What became of a check in reviews and since an earlier analysis: where it is not open, nobody
/// has to look at it.
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

/// The first checks, each once: in the order of the forms, then those without a form, by file and
/// ordinal. A form without a check stands for one.
std::vector<SetCheck> checks_of(ResultSet const& set,
                                std::size_t      most = std::numeric_limits<std::size_t>::max());
std::size_t           count_checks(ResultSet const& set);

/// The result that an imported check was made from; none of a native one.
std::optional<sarif::Result> imported_result(SetCheck const& check, ResultSet const& set);

}  // namespace bradep
