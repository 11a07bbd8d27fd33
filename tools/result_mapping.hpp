#pragma once
// Where a result set holds what a SARIF result says. docs/sarif.md has the table; adding and
// restoring are each other's inverse.

#include <cstdint>

#include "sarif_result.hpp"
#include "schema/Base_Gui_Internal_Form_Datas.hpp"

namespace bradep {

using Result_Set = sml::Base_Gui_Internal_Form_Datas::T_Aggregated_Results;
using Check_Form = sml::Base_Gui_Internal_Form_Datas::T_Chk_Data;
using Numbered_Key = std::pair<sml::Strings_T, std::int32_t>;

// `first_string` of the information records that tell of a suppression.
constexpr char const* suppression_role = "suppression";

// Adds the result as the last check of the set, with its events and its further places.
void add_result(sarif::Result const& result, Result_Set& set);

// The result that a check form of the set was made from. Throws Damaged_Input where the set holds
// no such check, which means that it did not come from add_result.
sarif::Result restored_result(Check_Form const& form, Result_Set const& set);

}  // namespace bradep
