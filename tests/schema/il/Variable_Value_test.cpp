#include <sml/schema/Variable_Value.hpp>
#include "tests/schema/tables.hpp"

#include <gtest/gtest.h>

namespace {

TEST(InitMode, PrintsItsNames) {
    tables::expect_enumerators<sml::Variable_Value::T_Init_Mode>(
        {"MODE_DRS_INIT", "MODE_DRS_RANDOM", "MODE_RANDOM", "MODE_USER_INIT"});
}

}  // namespace
