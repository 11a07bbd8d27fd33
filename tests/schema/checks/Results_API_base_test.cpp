#include <sml/schema/Checks.hpp>
#include <sml/schema/Results_API_base.hpp>
#include "tests/schema/tables.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <type_traits>

namespace color = sml::Results_API_base::Check_Color_Type;
namespace base = sml::Results_API_base::GUI_Check_Classification_base;

namespace {

TEST(ResultsApiBase, EnumeratorsPrintTheirNames) {
    tables::expect_enumerators<color::T_Check_Color>(
        {"DARKORANGE", "GRAY", "GREEN", "ORANGE", "RED"});
    tables::expect_enumerators<base::T_GUI_Check_Classification_Class>(
        {"CONTEXTUAL", "CONTEXTUAL_INTRA", "CONTEXTUAL_UNREACHABLE", "CRITICAL", "INTERNAL",
         "PROVEN", "ROBUSTNESS", "ROBUSTNESS_WITH_DRS", "UNCLASSIFIED"});
}

TEST(ResultsApiBase, ColorIsATypeOfItsOwn) {
    static_assert(!std::is_same_v<color::T_Check_Color, sml::Checks::T_Check_Color>);
    EXPECT_STREQ(toString(color::RED), toString(sml::Checks::RED));
}

TEST(ResultsApiBase, EnumerationsAreWordsOnTheWire) {
    wire::expect(color::RED, "04000000");
    wire::expect(base::UNCLASSIFIED, "08000000");
}

}  // namespace
