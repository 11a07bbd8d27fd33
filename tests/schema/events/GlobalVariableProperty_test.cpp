#include <sml/schema/GlobalVariableProperty.hpp>
#include "tests/schema/tables.hpp"

#include <gtest/gtest.h>

namespace {

TEST(CsKind, PrintsItsNames) {
    tables::expect_enumerators<sml::GlobalVariableProperty::T_CS_KIND>({"C_SECTION", "MUTEX"});
}

}  // namespace
