#pragma once
// The type of a result set and short names of the types in it.

#include <sml/schema/Base_Gui_Internal_Form_Datas.hpp>

#include <cstdint>
#include <utility>

namespace bradep {

using ResultSet = sml::Base_Gui_Internal_Form_Datas::T_Aggregated_Results;
constexpr char const* result_set_stem = "Base_Gui_Internal_Form_Datas_Aggregated_Results_T";
using Check = sml::Checks::T_A_Check;
using Category = sml::Checks::T_Check_Category;
using CheckForm = sml::Base_Gui_Internal_Form_Datas::T_Chk_Data;
using NumberedKey = std::pair<sml::Strings_T, std::int32_t>;

}  // namespace bradep
