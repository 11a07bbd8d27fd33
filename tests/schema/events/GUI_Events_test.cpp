#include <sml/schema/GUI_Events.hpp>
#include "tests/schema/order.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

using Step = sml::GUI_Events::GUI_Event_Path_Step::T;
using std::string_literals::operator""s;

TEST(GuiEventPathStep, WritesNumberTwoFlagsAndString) {
    wire::expect(Step(), "00000000 'FF'  FFFFFFFF 00000000");
    wire::expect(Step{-2, true, false, "a"s}, "FEFFFFFF 'TF'  FFFFFFFF 01000000 'a'");
    wire::expect(Step{3, false, true, "a"s}, "03000000 'FT'  FFFFFFFF 01000000 'a'");
}

TEST(GuiEventPathStep, OrdersByItsFieldsInTurn) {
    order::Handles const names;
    order::expect_lexicographic<Step>(
        {-1, false, false, names.lesser},
        {[](auto& v) { v.first_int = 0; }, [](auto& v) { v.first_flag = true; },
         [](auto& v) { v.second_flag = true; }, [&](auto& v) { v.first_string = names.greater; }});
}

TEST(GuiEventPathStep, TheFlagsDecideAheadOfTheString) {
    order::Handles const names;
    auto const&          low = names.lesser;
    auto const&          high = names.greater;
    order::expect_less(Step{5, false, true, high}, Step{5, true, false, low});
    order::expect_less(Step{5, true, false, high}, Step{5, true, true, low});
    order::expect_less(Step{5, true, true, low}, Step{5, true, true, high});
}

}  // namespace
