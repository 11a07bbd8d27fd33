#include <sml/schema/ChecksTypes.hpp>
#include "tests/schema/tables.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

namespace {

TEST(ChecksTypes, EnumeratorsPrintTheirNames) {
    tables::expect_enumerators<sml::ChecksTypes::T_Scalar_Or_Float>(
        {"SF_FLOAT", "SF_OTHER", "SF_SCALAR"});
    wire::expect(sml::ChecksTypes::SF_SCALAR, "02000000");
}

}  // namespace
