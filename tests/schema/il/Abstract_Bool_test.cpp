#include <sml/schema/Abstract_Bool.hpp>
#include "tests/schema/tables.hpp"

#include <gtest/gtest.h>

namespace {

TEST(AbstractBool, PrintsItsNames) {
    tables::expect_enumerators<sml::Abstract_Bool::T_Abstract_Bool>(
        {"B_BOTTOM", "B_FALSE", "B_MAY", "B_TRUE"});
}

}  // namespace
