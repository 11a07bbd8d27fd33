#include <sml/schema/GUI_Events.hpp>
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

}  // namespace
