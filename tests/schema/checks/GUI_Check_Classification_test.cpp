#include <sml/schema/GUI_Check_Classification.hpp>
#include "tests/order.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <set>

using Classification = sml::GUI_Check_Classification::T_GUI_Check_Classification;
using Event = sml::GUI_Check_Classification::T_GUI_Check_Event;
using Source = sml::GUI_Check_Classification::T_GUI_Input_Source;
using Step = sml::GUI_Events::GUI_Event_Path_Step::T;
namespace base = sml::Results_API_base::GUI_Check_Classification_base;

namespace {

Step step(std::int32_t number) { return {number, false, false, {}}; }

Event path(std::list<Step> const& steps, std::int32_t number = 0) { return {{}, steps, number}; }

Classification with_sources(std::set<Source> const& sources, bool flag = false) {
    return {base::CONTEXTUAL, {}, sources, flag};
}

// ---- input sources ----

TEST(GuiInputSource, IsOneSignedNumber) {
    wire::expect(Source(), "00000000");
    wire::expect(Source{-2}, "FEFFFFFF");
    order::expect_less(Source{-1}, Source{0});
    order::expect_equal(Source{-1}, Source{-1});
}

// ---- events ----

TEST(GuiCheckEvent, WritesFieldsInOrder) {
    wire::expect(Event{Step{1, true, false, {"a"}}, {step(2), {3, false, true, {"a"}}}, 4},
                 "54 01000000 54 46 FFFFFFFF 01000000 'a'"
                 "02000000  02000000 46 46 FEFFFFFF 00000000  03000000 46 54 01000000"
                 "04000000");
    wire::expect(Event(), "46  00000000  00000000");
}

TEST(GuiCheckEvent, AbsentStepIsLessThanPresent) {
    order::expect_less(Event{{}, {step(9)}, 9}, Event{step(-9), {}, -9});
    order::expect_less(Event{step(-9), {}, 9}, Event{step(9), {}, -9});
}

// Required: the shorter path is less, whatever its elements.
TEST(GuiCheckEvent, PathsOrderByCountThenByElements) {
    order::expect_less(path({step(9)}, 9), path({step(1), step(1)}, 1));
    order::expect_less(path({step(1), step(9)}, 9), path({step(2), step(1)}, 1));
    order::expect_less(path({step(1), step(1)}, 9), path({step(1), step(2)}, 1));
    order::expect_less(path({step(1)}, -1), path({step(1)}, 1));
    order::expect_equal(path({step(1)}, 1), path({step(1)}, 1));
}

TEST(GuiCheckEvent, ReadingAddsToThePathAndReplacesTheStep) {
    Event event{step(1), {step(2)}, 3};
    wire::read_over(event, hex::bytes("46  01000000 04000000 46 46 FFFFFFFF 00000000  05000000"));
    EXPECT_EQ(event, path({step(2), step(4)}, 5));
}

// ---- classifications ----

TEST(GuiCheckClassification, WritesFieldsInOrder) {
    wire::expect(Classification{base::UNCLASSIFIED, path({}, 7), {{5}, {-1}}, true},
                 "08000000  54 46 00000000 07000000  02000000 FFFFFFFF 05000000  54");
    wire::expect(Classification(), "00000000  46  00000000  46");
}

TEST(GuiCheckClassification, ClassOrdersAsSigned) {
    Classification negative;
    negative.classification_class = static_cast<base::T_GUI_Check_Classification_Class>(-1);
    order::expect_less(negative, Classification());
    order::expect_less(Classification{base::PROVEN, {}, {}, true},
                       Classification{base::ROBUSTNESS, {}, {}, false});
}

TEST(GuiCheckClassification, AbsentEventIsLessThanPresent) {
    order::expect_less(Classification{base::PROVEN, {}, {{9}}, true},
                       Classification{base::PROVEN, path({}, -9), {}, false});
    order::expect_less(Classification{base::PROVEN, path({}, -9), {}, true},
                       Classification{base::PROVEN, path({}, 9), {}, false});
}

TEST(GuiCheckClassification, NoSourcesAreLessThanAnyAndTheFlagIsNotReached) {
    order::expect_less(with_sources({}, true), with_sources({{-5}}, false));
    order::expect_less(with_sources({}, true), with_sources({{-5}, {5}}, false));
}

// Required: the counts are not compared first, unlike for a list.
TEST(GuiCheckClassification, SourcesOrderLexicographically) {
    order::expect_less(with_sources({{1}}, true), with_sources({{1}, {2}}, false));
    order::expect_less(with_sources({{1}, {5}, {6}}, true), with_sources({{2}}, false));
    order::expect_less(with_sources({{-1}}, true), with_sources({{0}}, false));
    order::expect_less(with_sources({{1}}, false), with_sources({{1}}, true));
    order::expect_equal(with_sources({{1}, {2}}, true), with_sources({{2}, {1}}, true));
}

TEST(GuiCheckClassification, ReadingAddsToTheSourcesAndDropsDuplicates) {
    Classification value = with_sources({{1}});
    wire::read_over(value, hex::bytes("03000000  46  03000000 01000000 02000000 02000000  54"));
    EXPECT_EQ(value, (Classification{base::CRITICAL, {}, {{1}, {2}}, true}));
}

TEST(GuiCheckClassification, ReadingAnAbsentEventDestroysTheHeldOne) {
    Classification value{base::PROVEN, path({}, 7), {}, false};
    wire::read_over(value, hex::bytes("00000000  46  00000000  46"));
    EXPECT_EQ(value, Classification());
}

}  // namespace
