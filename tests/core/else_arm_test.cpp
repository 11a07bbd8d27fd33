#include <sml/core/define.hpp>
#include "tests/core/counted.hpp"
#include "tests/order.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <list>
#include <string>
#include <utility>

using sml::int32;

// The declaring macros give types members with external linkage, so the namespace has a name.
namespace else_arm_test {

/// A variant whose last arm is a catch-all arm.
struct Rest {
    // clang-format off
    using arms = sml::core::Arms<
        sml::core::Arm<"FIRST", int32>,
        sml::core::Arm<"NOTHING">,
        sml::core::ElseArm<"OTHER", Counted>>;
    // clang-format on
    SML_VARIANT(Rest);
};
SML_DEFINE_VARIANT(Rest);

/// A variant whose only arm is a catch-all arm.
struct Everything {
    using arms = sml::core::Arms<sml::core::ElseArm<"ONLY", std::list<int32>>>;
    SML_VARIANT(Everything);
};
SML_DEFINE_VARIANT(Everything);

}  // namespace else_arm_test

namespace {

using else_arm_test::Everything;
using else_arm_test::Rest;

constexpr std::int32_t remaining_tags[] = {-1, -9, INT32_MIN, 2, 3, 16, INT32_MAX};

Rest with_tag(std::int32_t tag) {
    Rest value;
    value.choose_tag(tag);
    return value;
}

/// A value with a tag that has the payload of the catch-all arm, and a number in it.
Rest with_number(std::int32_t tag, int32 number) {
    Rest value = with_tag(tag);
    value.arm<"OTHER">().number = number;
    return value;
}

std::string bytes_of(std::int32_t tag, int32 number) {
    return wire::write(tag) + wire::write(number) + hex::bytes("00 00 00 00");
}

void read_over(Rest& value, std::string const& bytes) {
    EXPECT_EQ(wire::read_over(value, bytes), bytes.size());
}

/// Bytes of the tag and a payload whose list has one element, which reading over a value appends.
std::string one_more(std::int32_t tag, int32 element) {
    return wire::write(tag) + hex::bytes("00 00 00 00  01 00 00 00") + wire::write(element);
}

class ElseArm : public testing::Test {
protected:
    void TearDown() override { EXPECT_EQ(alive(), 0); }

    int alive() const { return Counted::alive - alive_before_; }

private:
    int alive_before_ = Counted::alive;
};

TEST_F(ElseArm, StandsBehindEveryRemainingTagOnTheWire) {
    for (std::int32_t const tag : remaining_tags)
        wire::expect(with_number(tag, 5), hex::shown(bytes_of(tag, 5)));
    wire::expect(with_tag(1), "01 00 00 00");
}

TEST_F(ElseArm, IsBuiltWhenItsTagIsRead) {
    for (std::int32_t const tag : remaining_tags) {
        Rest value;
        read_over(value, bytes_of(tag, 5));
        EXPECT_EQ(value.tag, tag);
        EXPECT_EQ(value.arm<"OTHER">().number, 5);
        EXPECT_EQ(alive(), 1);
    }
}

TEST_F(ElseArm, IsBuiltWhenItsTagIsChosen) {
    for (std::int32_t const tag : remaining_tags) {
        Rest value = with_tag(tag);
        EXPECT_EQ(value.arm<"OTHER">().number, 0);
        EXPECT_EQ(alive(), 1);
    }
}

TEST_F(ElseArm, IsNotBuiltByTheDefaultVariant) {
    Rest const value;
    Rest const copy(value);
    Rest       assigned = with_number(3, 1);
    assigned = value;
    EXPECT_EQ(alive(), 0);
    EXPECT_EQ(assigned.tag, -1);
}

TEST_F(ElseArm, IsWrittenAsItsDefaultWhenNeverBuilt) {
    wire::expect(Rest(), "FF FF FF FF  00 00 00 00  00 00 00 00");
    wire::expect(Everything(), "FF FF FF FF  00 00 00 00");
    Rest const copy{Rest()};
    EXPECT_EQ(wire::write(copy), wire::write(Rest()));
}

TEST_F(ElseArm, EqualTagIsReadOver) {
    for (std::int32_t const tag : remaining_tags) {
        Rest value;
        read_over(value, one_more(tag, 1));
        read_over(value, one_more(tag, 2));
        EXPECT_EQ(value.arm<"OTHER">().numbers, (std::list<int32>{1, 2})) << tag;
    }
}

TEST_F(ElseArm, DifferingTagRebuildsThoughTheArmIsTheSame) {
    for (std::int32_t const tag : {-1, -9, 3, 16}) {
        Rest value;
        read_over(value, one_more(2, 1));
        read_over(value, one_more(tag, 2));
        EXPECT_EQ(value.tag, tag);
        EXPECT_EQ(value.arm<"OTHER">().numbers, std::list<int32>{2}) << tag;
        EXPECT_EQ(alive(), 1);
    }
}

TEST_F(ElseArm, IsDestroyedWhenAnotherTagIsRead) {
    Rest value = with_number(16, 1);
    read_over(value, hex::bytes("01 00 00 00"));
    EXPECT_EQ(alive(), 0);
    read_over(value, bytes_of(-1, 1));
    EXPECT_EQ(alive(), 1);
    read_over(value, hex::bytes("00 00 00 00  07 00 00 00"));
    EXPECT_EQ(alive(), 0);
    EXPECT_EQ(value.arm<"FIRST">(), 7);
}

TEST_F(ElseArm, IsKeptByCopiesAndMoves) {
    for (std::int32_t const tag : remaining_tags) {
        Rest       source = with_number(tag, 5);
        Rest const copy(source);
        Rest       assigned;
        assigned = source;
        Rest const moved(std::move(source));
        for (Rest const* const result : {&copy, &std::as_const(assigned), &moved}) {
            EXPECT_EQ(result->tag, tag);
            EXPECT_EQ(result->arm<"OTHER">().number, 5);
        }
        EXPECT_EQ(alive(), 4);
    }
}

TEST_F(ElseArm, PrintsByTheExactTag) {
    EXPECT_STREQ(with_tag(2).toString(), "OTHER");
    EXPECT_STREQ(Rest().toString(), "FIRST");
    EXPECT_STREQ(with_tag(-9).toString(), "FIRST");
    EXPECT_EQ(with_tag(3).toString(), nullptr);
    EXPECT_EQ(with_tag(INT32_MAX).toString(), nullptr);
}

TEST_F(ElseArm, IsHeldByItsExactTagOnly) {
    EXPECT_TRUE(with_tag(2).holds<"OTHER">());
    EXPECT_FALSE(with_tag(3).holds<"OTHER">());
    EXPECT_FALSE(with_tag(-1).holds<"OTHER">());
}

TEST_F(ElseArm, PayloadDecidesBetweenEqualTagsPastTheLast) {
    for (std::int32_t const tag : {2, 3, 16, INT32_MAX}) {
        order::expect_equal(with_number(tag, 1), with_number(tag, 1));
        order::expect_less(with_number(tag, 1), with_number(tag, 2));
    }
}

TEST_F(ElseArm, RawTagsCompareBeforeThePayload) {
    order::expect_less(with_number(16, 1), with_number(17, 1));
    order::expect_less(with_number(16, 9), with_number(17, 1));
    order::expect_less(with_number(2, 9), with_number(3, 1));
    order::expect_less(with_number(-9, 9), with_number(-1, 1));
    order::expect_less(with_number(-1, 9), with_tag(0));
}

TEST_F(ElseArm, EqualNegativeTagsAreNeverEqualOrLessWhateverTheirPayload) {
    for (std::int32_t const tag : {-1, -9, INT32_MIN}) {
        order::expect_unordered(with_number(tag, 1), with_number(tag, 1));
        order::expect_unordered(with_number(tag, 1), with_number(tag, 2));
    }
    Rest const unset;
    order::expect_unordered(unset, unset);
    order::expect_unordered(unset, with_number(-1, 1));
}

TEST_F(ElseArm, ArmWithoutPayloadBesideItIsLessThanItself) {
    order::expect_equal_and_each_less(with_tag(1), with_tag(1));
}

TEST_F(ElseArm, AssignmentWithinOneTagReplacesThePayload) {
    Rest value = with_number(16, 5);
    Rest same_tag = with_number(16, 6);
    value = same_tag;
    EXPECT_EQ(value.arm<"OTHER">().number, 6);
    Rest& same = value;
    value = same;
    EXPECT_EQ(value.arm<"OTHER">().number, 6);
}

TEST_F(ElseArm, ThatCantBeMadeLeavesTheVariantUnset) {
    Rest value = with_number(16, 5);
    {
        Refuse const refuse(Counted::making);
        EXPECT_THROW(value.choose_tag(17), Refusal);
        EXPECT_THROW(wire::read_over(value, bytes_of(-1, 1)), Refusal);
        EXPECT_THROW(wire::write(value), Refusal);
    }
    EXPECT_EQ(value.tag, -1);
    EXPECT_EQ(alive(), 0);
    read_over(value, bytes_of(-1, 1));
    EXPECT_EQ(alive(), 1);
}

TEST_F(ElseArm, AloneHasEveryTag) {
    for (std::int32_t const tag : {0, 1, -1, -5}) {
        Everything value;
        value.choose_tag(tag);
        value.arm<"ONLY">() = {4};
        wire::expect(value, hex::shown(wire::write(tag)) + "01 00 00 00  04 00 00 00");
    }
}

}  // namespace
