#pragma once
// The checks of a result set, whoever wrote it: imported ones, of which all is known that their log
// said, and native ones, of which the category is.

#include <optional>
#include <vector>

#include "result_mapping.hpp"

namespace bradep {

using Check = sml::Checks::T_A_Check;
using Category = sml::Checks::T_Check_Category;

struct Set_Check {
    Numbered_Key const* key;    // null for a form that names no check
    Check const*        check;  // null where no table has it
    Check_Form const*   form;   // null where none tells of it; one of the two is there

    Category const& category() const { return check ? check->category : form->category; }
};

// Each check once: in the order of the forms, then those without a form, by file and ordinal.
std::vector<Set_Check> checks_of(Result_Set const& set);

// Whether the category is the one that import gives to all checks. A native one can have it, too.
bool has_category_of_import(Category const& category);

// The result that an imported check was made from; none of a native one.
std::optional<sarif::Result> imported_result(Set_Check const& check, Result_Set const& set);

}  // namespace bradep
