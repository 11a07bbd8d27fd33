#include <sml/schema/IL_Attribute.hpp>
#include "tests/order.hpp"
#include "tests/schema/tables.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <list>
#include <stdexcept>
#include <string>
#include <utility>

namespace {

using sml::BigInteger;
using sml::Strings_T;
using sml::IL_Attribute::T_Kind;
using std::string_literals::operator""s;

using Attribute = sml::IL_Attribute::T;
using Numerical = T_Kind::NUMERICAL_ATTRIBUTE_args;
using Pairs = std::list<std::pair<sml::int32, sml::int32>>;

Attribute numerical_attribute() {
    Attribute attribute;
    attribute.kind.choose<"NUMERICAL_ATTRIBUTE">();
    return attribute;
}

TEST(AttributeKind, EveryArmHasItsTagItsNameAndItsDefaultPayload) {
    tables::expect_arms<T_Kind>(
        {{"CONJUNCTION_ATTRIBUTE"}, {"NUMERICAL_ATTRIBUTE", "'F' 'F'"}, {"SIMPLE_ATTRIBUTE"}});
}

TEST(AttributeKind, OrdersByTagAndIsLessThanItselfWithoutPayload) {
    tables::expect_order_by_tag<T_Kind>();
}

TEST(AttributeKind, WritesTheBoundsThatThereAre) {
    wire::expect(Numerical{}, "'F' 'F'");
    wire::expect(Numerical{-1, {}}, "'T' 03000000 '-1' 00  'F'");
    wire::expect(Numerical{{}, 16}, "'F'  'T' 04000000 '10' 00 00");
}

TEST(AttributeKind, BoundsOrderAbsentFirstThenNumerically) {
    order::expect_equal(Numerical{}, Numerical{});
    order::expect_less(Numerical{{}, 9}, Numerical{-100, {}});
    order::expect_less(Numerical{9, {}}, Numerical{9, -100});
    order::expect_less(Numerical{9, 9}, Numerical{16, -16});
    order::expect_less(Numerical{9, -16}, Numerical{9, -9});
}

TEST(AttributeKind, ReadingAnotherTagBuildsTheBoundsAbsent) {
    T_Kind kind;
    kind.choose<"NUMERICAL_ATTRIBUTE">() = {1, 2};
    wire::read_over(kind, hex::bytes("02000000"));
    EXPECT_TRUE(kind.holds<"SIMPLE_ATTRIBUTE">());
    kind.choose<"NUMERICAL_ATTRIBUTE">();
    EXPECT_FALSE(kind.arm<"NUMERICAL_ATTRIBUTE">().lower.has_value());
    EXPECT_FALSE(kind.arm<"NUMERICAL_ATTRIBUTE">().upper.has_value());
}

TEST(Attribute, DefaultHasNoKindAndEmptyContainers) {
    Attribute const attribute;
    EXPECT_EQ(attribute.kind.tag, -1);
    auto expect_unused = [](auto const& table) {
        EXPECT_TRUE(table.empty());
        EXPECT_EQ(table.bucket_count(), 1u);
        EXPECT_EQ(table.max_load_factor(), 1.0f);
    };
    expect_unused(attribute.first_values);
    expect_unused(attribute.second_values);
    expect_unused(attribute.ranges);
    wire::expect(attribute, "'F'  00000000  FFFFFFFF  00000000  00000000");
}

TEST(Attribute, WritesItsFieldsInOrder) {
    Attribute attribute;
    attribute.flag = true;
    attribute.first_values = {-1};
    attribute.kind.choose<"NUMERICAL_ATTRIBUTE">().upper = 3;
    attribute.second_values = {2};
    attribute.ranges = {{"r"s, {{1, -2}, {3, 4}}}};
    wire::expect(attribute,
                 "'T'  01000000 FFFFFFFF  01000000 'F' 'T' 03000000 '3' 00 00"
                 "  01000000 02000000"
                 "  01000000 FFFFFFFF 01000000 'r' 02000000"
                 " 01000000 FEFFFFFF 03000000 04000000");
}

TEST(Attribute, WritesItsContainersInTheirOwnOrder) {
    Attribute attribute;
    for (sml::int32 i = 0; i < 40; ++i) {
        attribute.first_values.insert(i * 7919);
        attribute.ranges[std::to_string(i)];
    }
    std::string first = hex::bytes("'F' 28000000");
    for (sml::int32 const value : attribute.first_values) first += tables::tag_bytes(value);
    std::string const bytes = wire::write(attribute);
    EXPECT_EQ(hex::shown(bytes.substr(0, first.size())), hex::shown(first));

    std::string  last = tables::tag_bytes(40);
    std::int32_t id = 0;
    for (auto const& [name, pairs] : attribute.ranges)
        last += tables::tag_bytes(--id) + tables::tag_bytes(static_cast<int>(name.str().size())) +
                name.str() + tables::tag_bytes(0);
    ASSERT_LT(last.size(), bytes.size());
    EXPECT_EQ(hex::shown(bytes.substr(bytes.size() - last.size())), hex::shown(last));
    EXPECT_TRUE(wire::read<Attribute>(bytes).ranges == attribute.ranges);
}

TEST(Attribute, ReadingAddsToItsContainersAndKeepsTheFirstEntry) {
    Attribute attribute;
    attribute.first_values = {1};
    attribute.second_values = {1};
    attribute.ranges = {{"held"s, {{1, 1}}}};
    wire::read_over(attribute, hex::bytes("'T'  03000000 01000000 02000000 02000000  02000000"
                                          "  01000000 05000000"
                                          "  03000000"
                                          "  FFFFFFFF 04000000 'held' 01000000 09000000 09000000"
                                          "  FEFFFFFF 03000000 'new' 01000000 02000000 03000000"
                                          "  02000000 01000000 09000000 09000000"));
    EXPECT_EQ(attribute.first_values, (std::unordered_set<sml::int32>{1, 2}));
    EXPECT_EQ(attribute.second_values, (std::unordered_set<sml::int32>{1, 5}));
    EXPECT_EQ(attribute.ranges.size(), 2u);
    EXPECT_EQ(attribute.ranges["held"s], (Pairs{{1, 1}}));
    EXPECT_EQ(attribute.ranges["new"s], (Pairs{{2, 3}}));
}

TEST(Attribute, AnExceptionWhileReadingLeavesWhatWasStored) {
    Attribute attribute;
    EXPECT_THROW(wire::read_over(attribute, hex::bytes("'T'  01000000 07000000  02000000  00000000"
                                                       "  02000000  FFFFFFFF 01000000 'a' 00000000"
                                                       "  FEFFFFFF FFFFFFFF")),
                 std::length_error);
    EXPECT_TRUE(attribute.flag);
    EXPECT_EQ(attribute.first_values.count(7), 1u);
    EXPECT_EQ(attribute.ranges.size(), 1u);
}

TEST(Attribute, DifferentValuesOfOneSizeAreUnordered) {
    Attribute a = numerical_attribute();
    Attribute b = a;
    a.first_values = {1, 2};
    b.first_values = {3, 4};
    b.second_values = {1};
    order::expect_unordered(a, b);
    b.first_values = {2, 1};
    order::expect_less(a, b);
    a.second_values = {2};
    b.ranges[""s];
    order::expect_unordered(a, b);
    b.second_values = {2};
    order::expect_less(a, b);
}

TEST(Attribute, TheKindDecidesByItsTag) {
    Attribute conjunction;
    conjunction.kind.choose<"CONJUNCTION_ATTRIBUTE">();
    conjunction.second_values = {1, 2, 3};
    order::expect_less(conjunction, numerical_attribute());
    order::expect_less(Attribute(), conjunction);
    order::expect_unordered(Attribute(), Attribute());
}

TEST(Attribute, AKindWithoutPayloadEndsTheOrder) {
    for (std::int32_t const tag : {0, 2}) {
        Attribute a;
        a.kind.choose_tag(tag);
        Attribute b = a;
        order::expect_equal_and_each_less(a, a);
        b.second_values = {1};
        b.ranges[""s];
        order::expect_unequal_and_each_less(a, b);
        b.flag = true;
        order::expect_less(a, b);
    }
}

TEST(Attribute, RangesOrderBySizeThenByTheValuesOfTheSameKeys) {
    auto with_ranges = [](std::unordered_map<Strings_T, Pairs> ranges) {
        Attribute attribute = numerical_attribute();
        attribute.ranges = std::move(ranges);
        return attribute;
    };
    Attribute const one = with_ranges({{"a"s, {{9, 9}}}});
    order::expect_less(one, with_ranges({{"b"s, {}}, {"c"s, {}}}));
    order::expect_unordered(one, with_ranges({{"b"s, {}}}));
    order::expect_less(with_ranges({{"a"s, {}}}), one);
    order::expect_less(with_ranges({{"a"s, {{9, 8}}}}), one);
    order::expect_less(with_ranges({{"a"s, {{8, 9}}}}), one);
    order::expect_less(with_ranges({{"a"s, {{-1, 9}}}}), one);
    order::expect_less(one, with_ranges({{"a"s, {{0, 0}, {0, 0}}}}));
    order::expect_equal(one, with_ranges({{"a"s, {{9, 9}}}}));
}

TEST(Attribute, CopiesAreIndependent) {
    Attribute original = numerical_attribute();
    original.ranges["a"s] = {{1, 2}};
    Attribute copy = original;
    order::expect_equal(copy, original);
    copy.ranges["a"s].clear();
    EXPECT_EQ(original.ranges["a"s].size(), 1u);
}

}  // namespace
