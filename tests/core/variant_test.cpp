#include <sml/core/define.hpp>
#include <sml/schema/Atomicity_Condition.hpp>
#include <sml/schema/IL.hpp>
#include "tests/core/counted.hpp"
#include "tests/core/string_table.hpp"
#include "tests/order.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <list>
#include <stdexcept>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

using sml::int32;
using sml::Strings_T;
using sml::Atomicity_Condition::T_Atomicity_Condition;
using sml::IL::T_Info_Expr;

// The declaring macros give types members with external linkage, so the namespace has a name.
namespace variant_test {

/// A variant in which unknown tags have no payload.
struct Choice {
    // clang-format off
    using arms = sml::core::Arms<
        sml::core::Arm<"COUNTED", Counted>,
        sml::core::Arm<"LIST", std::list<int32>>,
        sml::core::Arm<"NOTHING">,
        sml::core::Arm<"OTHER_LIST", std::list<int32>>,
        sml::core::Arm<"TEXTS", std::pair<Strings_T, std::string>>>;
    // clang-format on
    SML_VARIANT(Choice);
};
SML_DEFINE_VARIANT(Choice);

}  // namespace variant_test

namespace {

using variant_test::Choice;

template <class V = Choice>
V with_tag(std::int32_t tag) {
    V value;
    value.choose_tag(tag);
    return value;
}

Choice with_list(std::list<int32> list) {
    Choice value;
    value.choose<"LIST">() = std::move(list);
    return value;
}

Choice with_counted(std::int32_t number) {
    Choice value;
    value.choose<"COUNTED">().number = number;
    return value;
}

template <class V>
void read_over(V& value, std::string_view hex) {
    std::string const bytes = hex::bytes(hex);
    EXPECT_EQ(wire::read_over(value, bytes), bytes.size());
}

TEST(Variant, ArmWithoutPayloadIsItsTag) {
    wire::expect(with_tag<T_Atomicity_Condition>(1), "01 00 00 00");
    wire::expect(with_tag<T_Atomicity_Condition>(4), "04 00 00 00");
}

TEST(Variant, ArmWithPayloadIsTagAndPayload) {
    wire::expect(with_list({7}), "01 00 00 00  01 00 00 00  07 00 00 00");
    T_Atomicity_Condition call;
    call.choose<"FUNCTION_CALL">().function_name = std::string("f");
    wire::expect(call, "02 00 00 00  FF FF FF FF  01 00 00 00 'f'");
}

TEST(Variant, PrintsItsArm) {
    char const* const names[] = {"ARCH_SIZE", "ATOMIC", "FUNCTION_CALL", "MULTI_INSTR", "UNKNOWN"};
    for (std::int32_t tag = 0; tag < 5; ++tag)
        EXPECT_STREQ(with_tag<T_Atomicity_Condition>(tag).toString(), names[tag]);
}

TEST(Variant, NegativeTagPrintsArmZeroAndUnknownPrintsNull) {
    EXPECT_STREQ(T_Atomicity_Condition().toString(), "ARCH_SIZE");
    EXPECT_STREQ(with_tag<T_Atomicity_Condition>(-7).toString(), "ARCH_SIZE");
    EXPECT_STREQ(with_tag<T_Atomicity_Condition>(INT32_MIN).toString(), "ARCH_SIZE");
    EXPECT_EQ(with_tag<T_Atomicity_Condition>(5).toString(), nullptr);
    EXPECT_EQ(with_tag<T_Atomicity_Condition>(INT32_MAX).toString(), nullptr);
}

TEST(Variant, TagReadsAsAnInt32AndIsNotAssigned) {
    static_assert(std::is_convertible_v<decltype(Choice::tag), std::int32_t>);
    static_assert(!std::is_assignable_v<decltype(Choice::tag)&, std::int32_t>);
    static_assert(!std::is_copy_assignable_v<decltype(Choice::tag)>);
    EXPECT_EQ(Choice().tag, -1);
}

TEST(Variant, UnsetIsUnequalToEverythingAndLessThanEveryArm) {
    Choice const unset;
    Choice const other;
    order::expect_unordered(unset, unset);
    order::expect_unordered(unset, other);
    for (std::int32_t tag = 0; tag < 7; ++tag) order::expect_less(unset, with_tag(tag));
}

TEST(Variant, EqualNegativeTagsAreNeverEqualOrLess) {
    order::expect_unordered(with_tag(-7), with_tag(-7));
    order::expect_unordered(with_tag(INT32_MIN), with_tag(INT32_MIN));
}

TEST(Variant, TagsCompareFirstAndAsSigned) {
    order::expect_less(with_tag(-7), with_tag(-1));
    order::expect_less(with_list({9, 9, 9}), with_tag(3));
    order::expect_less(with_tag(16), with_tag(17));
}

TEST(Variant, ArmWithoutPayloadIsLessThanItself) {
    Choice const nothing = with_tag(2);
    order::expect_equal_and_each_less(nothing, nothing);
    order::expect_equal_and_each_less(nothing, with_tag(2));
}

TEST(Variant, PayloadDecidesBetweenEqualTags) {
    order::expect_less(with_list({1}), with_list({2}));
    order::expect_equal(with_list({1}), with_list({1}));
}

TEST(Variant, UnknownTagStaysAndIsLessThanItself) {
    auto const unknown = wire::read<T_Atomicity_Condition>(hex::bytes("07 00 00 00"));
    EXPECT_EQ(unknown.tag, 7);
    EXPECT_EQ(unknown.toString(), nullptr);
    order::expect_equal_and_each_less(unknown, unknown);
    order::expect_equal_and_each_less(unknown, with_tag<T_Atomicity_Condition>(7));
    wire::expect(unknown, "07 00 00 00");
}

TEST(Variant, UnknownTagIsReadWithoutPayload) {
    std::pair<Choice, int32> value;
    read_over(value, "63 00 00 00  01 00 00 00");
    EXPECT_EQ(value.first.tag, 99);
    EXPECT_EQ(value.second, 1);
    read_over(value, "F9 FF FF FF  02 00 00 00");
    EXPECT_EQ(value.first.tag, -7);
    EXPECT_EQ(value.second, 2);
    wire::expect(with_tag(-7), "F9 FF FF FF");
}

TEST(Variant, RecordIsLessThanItselfBeforeLaterFieldsAreSeen) {
    using sml::core::Comparison;
    using Record = std::tuple<int32, Choice, int32>;
    Record const a(1, with_tag(2), 8);
    Record const b(1, with_tag(2), 9);
    EXPECT_TRUE(Comparison::less(a, a));
    EXPECT_TRUE(Comparison::less(a, b));
    EXPECT_TRUE(Comparison::less(b, a));
    EXPECT_FALSE(Comparison::less(Record(2, with_tag(2), 8), a));
}

TEST(Variant, EqualTagIsReadOverThePayload) {
    Choice value = with_list({1, 2});
    read_over(value, "01 00 00 00  01 00 00 00  03 00 00 00");
    EXPECT_EQ(value.arm<"LIST">(), (std::list<int32>{1, 2, 3}));
}

TEST(Variant, DifferingTagRebuildsThePayload) {
    Choice value = with_list({1, 2});
    read_over(value, "03 00 00 00  01 00 00 00  03 00 00 00");
    EXPECT_EQ(value.tag, 3);
    EXPECT_EQ(value.arm<"OTHER_LIST">(), std::list<int32>{3});
}

TEST(Variant, DifferingTagDestroysTheHeldPayload) {
    int const alive = Counted::alive;
    for (char const* const tag : {"02 00 00 00", "63 00 00 00", "FF FF FF FF", "F9 FF FF FF"}) {
        Choice value = with_counted(1);
        EXPECT_EQ(Counted::alive, alive + 1);
        read_over(value, tag);
        EXPECT_EQ(Counted::alive, alive) << tag;
    }
}

TEST(Variant, ReadingMakesAnUnsetOneAnew) {
    int const alive = Counted::alive;
    {
        Choice value;
        read_over(value, "00 00 00 00  05 00 00 00  00 00 00 00");
        EXPECT_EQ(value.arm<"COUNTED">().number, 5);
        EXPECT_EQ(Counted::alive, alive + 1);
    }
    EXPECT_EQ(Counted::alive, alive);
}

TEST(Variant, ChoosingMakesTheArmAnew) {
    Choice value = with_list({1});
    EXPECT_TRUE(value.choose<"LIST">().empty());
    static_assert(std::is_void_v<decltype(value.choose<"NOTHING">())>);
    value.choose<"NOTHING">();
    EXPECT_TRUE(value.holds<"NOTHING">());
    EXPECT_FALSE(value.holds<"LIST">());
}

TEST(Variant, ChoosingDestroysTheHeldPayload) {
    int const alive = Counted::alive;
    Choice    value = with_counted(1);
    value.choose<"COUNTED">();
    EXPECT_EQ(Counted::alive, alive + 1);
    value.choose_tag(-1);
    EXPECT_EQ(Counted::alive, alive);
}

TEST(Variant, CopyAndMoveFollowTheArm) {
    int const alive = Counted::alive;
    {
        Choice       first = with_counted(4);
        Choice const copy(first);
        Choice const moved(std::move(first));
        EXPECT_EQ(copy.arm<"COUNTED">().number, 4);
        EXPECT_EQ(moved.arm<"COUNTED">().number, 4);
        EXPECT_TRUE(copy == moved);
        EXPECT_EQ(Counted::alive, alive + 3);
    }
    EXPECT_EQ(Counted::alive, alive);
    for (std::int32_t const tag : {-1, -7, 2, 99}) {
        Choice const value = with_tag(tag);
        EXPECT_EQ(Choice(value).tag, tag);
        EXPECT_EQ(Choice(with_tag(tag)).tag, tag);
    }
}

TEST(Variant, AssignmentBetweenArmsDestroysTheOldPayload) {
    int const alive = Counted::alive;
    Choice    value = with_counted(1);
    value = with_list({1});
    EXPECT_EQ(Counted::alive, alive);
    EXPECT_EQ(value.arm<"LIST">(), std::list<int32>{1});

    Choice const counted = with_counted(2);
    value = counted;
    EXPECT_EQ(Counted::alive, alive + 2);
    EXPECT_EQ(value.arm<"COUNTED">().number, 2);

    value = Choice();
    EXPECT_EQ(Counted::alive, alive + 1);
    EXPECT_EQ(value.tag, -1);
}

TEST(Variant, AssignmentWithinAnArmReplacesThePayload) {
    Choice       value = with_list({1, 2});
    Choice const other = with_list({3});
    value = other;
    EXPECT_EQ(value.arm<"LIST">(), std::list<int32>{3});
}

TEST(Variant, AssignmentToItselfChangesNothing) {
    Choice  value = with_list({1, 2});
    Choice& same = value;
    value = same;
    EXPECT_EQ(value.arm<"LIST">(), (std::list<int32>{1, 2}));
    value = std::move(same);
    EXPECT_EQ(value.arm<"LIST">(), (std::list<int32>{1, 2}));
}

TEST(Variant, MovedFromOneMayBeAssignedAndRead) {
    Choice       source = with_list({1, 2});
    Choice const target(std::move(source));
    source = with_list({3});
    EXPECT_EQ(source.arm<"LIST">(), std::list<int32>{3});
    EXPECT_EQ(target.arm<"LIST">(), (std::list<int32>{1, 2}));
}

TEST(Variant, AssignmentTakesASourceInsideItsTarget) {
    auto nested = [] {
        T_Info_Expr value;
        auto&       field = value.choose<"Info_Field">();
        field.first->choose<"Info_Var">() = std::string("inner");
        field.second = std::string("outer");
        return value;
    };
    T_Info_Expr copied = nested();
    copied = *copied.arm<"Info_Field">().first;
    ASSERT_TRUE(copied.holds<"Info_Var">());
    EXPECT_EQ(copied.arm<"Info_Var">().str(), "inner");

    T_Info_Expr moved = nested();
    moved = std::move(*moved.arm<"Info_Field">().first);
    ASSERT_TRUE(moved.holds<"Info_Var">());
    EXPECT_EQ(moved.arm<"Info_Var">().str(), "inner");
}

TEST(Variant, PayloadThatCantBeMadeLeavesTheVariantUnset) {
    int const alive = Counted::alive;
    {
        Choice value = with_list({1});
        {
            Refuse const refuse(Counted::making);
            EXPECT_THROW(value.choose<"COUNTED">(), Refusal);
        }
        EXPECT_EQ(value.tag, -1);
        wire::expect(value, "FF FF FF FF");
        value.choose<"COUNTED">();
        EXPECT_EQ(Counted::alive, alive + 1);
    }
    EXPECT_EQ(Counted::alive, alive);
}

TEST(Variant, PayloadThatCantBeMadeByReadingLeavesTheVariantUnset) {
    int const alive = Counted::alive;
    Choice    value = with_list({1});
    {
        Refuse const refuse(Counted::making);
        EXPECT_THROW(wire::read_over(value, hex::bytes("00 00 00 00")), Refusal);
    }
    EXPECT_EQ(value.tag, -1);
    EXPECT_EQ(Counted::alive, alive);
}

TEST(Variant, PayloadThatCantBeCopiedLeavesTheTarget) {
    int const alive = Counted::alive;
    {
        Choice const source = with_counted(1);
        Choice       target = with_list({1, 2});
        Refuse const refuse(Counted::copying);
        EXPECT_THROW(Choice copy(source), Refusal);
        EXPECT_THROW(target = source, Refusal);
        EXPECT_EQ(target.arm<"LIST">(), (std::list<int32>{1, 2}));
    }
    EXPECT_EQ(Counted::alive, alive);
}

TEST(Variant, PayloadThatCantBeMovedLeavesNothingHalfAlive) {
    int const alive = Counted::alive;
    {
        Choice       source = with_counted(1);
        Choice       target = with_list({1, 2});
        Refuse const refuse(Counted::moving);
        EXPECT_THROW(Choice moved(std::move(source)), Refusal);
        EXPECT_THROW(target = std::move(source), Refusal);
        EXPECT_EQ(target.arm<"LIST">(), (std::list<int32>{1, 2}));
        EXPECT_THROW(target = source, Refusal);
        EXPECT_EQ(target.tag, -1);
    }
    EXPECT_EQ(Counted::alive, alive);
}

TEST(Variant, FailureInsideAPayloadKeepsWhatWasRead) {
    std::size_t const before = string_table::size();
    {
        Choice value = with_list({1});
        EXPECT_THROW(wire::read_over(value, hex::bytes("04 00 00 00"
                                                       "FF FF FF FF  04 00 00 00 'read'"
                                                       "FF FF FF FF")),
                     std::length_error);
        ASSERT_TRUE(value.holds<"TEXTS">());
        EXPECT_EQ(value.arm<"TEXTS">().first.str(), "read");
        EXPECT_EQ(value.arm<"TEXTS">().second, "");
    }
    EXPECT_EQ(string_table::size(), before);
}

TEST(VariantDeathTest, ReadingAnArmThatIsNotHeldIsCaughtInDebugBuilds) {
    Choice value = with_list({1});
    EXPECT_DEBUG_DEATH(static_cast<void>(value.arm<"OTHER_LIST">()), "alive_");
}

}  // namespace
