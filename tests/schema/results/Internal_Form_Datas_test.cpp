#include <sml/schema/Internal_Form_Datas.hpp>
#include "tests/schema/tables.hpp"

#include <gtest/gtest.h>

namespace {

TEST(CallKind, PrintsItsNames) {
    tables::expect_enumerators<sml::Internal_Form_Datas::T_CallKind>(
        {"ACCEPT_CALL", "HIGH_ORDER_CALL", "POINTER_TO_MEMBER_CALL", "REGULAR_CALL",
         "VIRTUAL_CALL"});
}

TEST(CheckDataType, PrintsItsNames) {
    tables::expect_enumerators<sml::Internal_Form_Datas::T_Chk_Data_Type>(
        {"FLOAT", "SCALAR", "SIGNED", "UNSIGNED"});
}

TEST(InfoCategory, PrintsItsNames) {
    tables::expect_enumerators<sml::Internal_Form_Datas::T_Info_Category>(
        {"IC_FNC", "IC_FNR", "IC_IPT", "IC_NTC", "IC_NTL", "IC_TOOLTIP_INFO", "IC_VAI", "IC_VCC",
         "IC_VCS", "IC_VOBJ", "IC_VOBJFE", "IC_VOFP", "IC_VOL", "IC_VOO", "IC_VOP", "IC_VOR"});
}

}  // namespace
