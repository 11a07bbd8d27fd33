#include <sml/schema/FunctionsTypes.hpp>
#include "tests/schema/tables.hpp"

#include <gtest/gtest.h>

namespace {

TEST(BodyKind, PrintsItsNames) {
    tables::expect_enumerators<sml::FunctionsTypes::T_Body_Kind>(
        {"BK_EC_LOOKUP_TABLE", "BK_EXTERN", "BK_FUNCTION_TO_STUB", "BK_INTERNAL",
         "BK_STANDARD_LIBRARY", "BK_USERDEF", "BK_USER_STANDARD_LIBRARY"});
}

}  // namespace
