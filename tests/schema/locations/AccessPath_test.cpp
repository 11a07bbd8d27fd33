#include <sml/schema/AccessPath.hpp>
#include "tests/order.hpp"
#include "tests/schema/tables.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <optional>

using Selector = sml::AccessPath::Selector::T_private_selector;

namespace {

Selector element(std::optional<std::int32_t> index) {
    Selector selector;
    selector.choose<"Array_element">() = index;
    return selector;
}

Selector field(sml::Strings_T const&                                  name,
               std::optional<std::pair<sml::Strings_T, std::int32_t>> owner = {}) {
    Selector selector;
    selector.choose<"Field">() = {name, owner};
    return selector;
}

TEST(Selector, HasTwoArms) {
    tables::expect_arms_with_catch_all<Selector>(
        {{"Array_element", "46"}, {"Field", "FFFFFFFF 00000000  46"}});
}

TEST(Selector, WritesIndexBehindItsFlag) { wire::expect(element(-2), "00000000  54 FEFFFFFF"); }

TEST(Selector, WritesFieldNameAndOwner) {
    wire::expect(field({"x"}), "01000000  FFFFFFFF 01000000 'x'  46");
    wire::expect(field({"x"}, {{{"S"}, 7}}),
                 "01000000  FFFFFFFF 01000000 'x'  54 FEFFFFFF 01000000 'S' 07000000");
}

// Required: every tag other than 0 is followed by a field.
TEST(Selector, EveryOtherTagHasTheFieldPayload) {
    for (char const* const tag : {"02000000", "FFFFFFFF", "00000080", "FFFFFF7F"}) {
        std::string const bytes =
            hex::bytes(tag) + hex::bytes("FFFFFFFF 01000000 'x'  54 01000000 07000000");
        auto const read = wire::read<Selector>(bytes);
        EXPECT_EQ(read.arm<"Field">().field_name.str(), "x");
        EXPECT_EQ(read.arm<"Field">().field_owner->second, 7);
        EXPECT_FALSE(read.holds<"Field">());
        wire::expect(Selector(read), hex::shown(bytes));
    }
}

TEST(Selector, TagDecidesFirst) {
    tables::expect_order_by_tag<Selector>();
    order::expect_less(element(100), field({}));
}

TEST(Selector, AbsentIndexIsLessThanPresent) {
    order::expect_less(element({}), element(-5));
    order::expect_less(element(-5), element(3));
    order::expect_equal(element({}), element({}));
    order::expect_equal(element(3), element(3));
}

TEST(Selector, FieldsOrderByNameThenOwner) {
    order::Handles const names;
    order::expect_less(field(names.lesser, {{names.greater, 9}}), field(names.greater));
    order::expect_less(field(names.lesser), field(names.lesser, {{{}, -1}}));
    order::expect_less(field({}, {{names.lesser, 9}}), field({}, {{names.greater, -9}}));
    order::expect_less(field({}, {{names.lesser, -9}}), field({}, {{names.lesser, 9}}));
    order::expect_equal(field(names.lesser, {{names.greater, 9}}),
                        field(names.lesser, {{names.greater, 9}}));
}

TEST(Selector, TagsPastTheLastArmCompareTheirPayloads) {
    auto       read = [](char const* hex) { return wire::read<Selector>(hex::bytes(hex)); };
    auto const without_owner = read("02000000  FFFFFFFF 00000000  46");
    auto const with_owner = read("02000000  FFFFFFFF 00000000  54 01000000 07000000");
    order::expect_equal(without_owner, without_owner);
    order::expect_less(without_owner, with_owner);
}

// Required, whatever their payloads.
TEST(Selector, TwoNegativeTagsAreNeitherEqualNorLess) {
    auto       read = [](char const* hex) { return wire::read<Selector>(hex::bytes(hex)); };
    auto const without_owner = read("FFFFFFFF  FFFFFFFF 00000000  46");
    auto const with_owner = read("FFFFFFFF  FFFFFFFF 00000000  54 01000000 07000000");
    order::expect_unordered(without_owner, with_owner);
    order::expect_unordered(with_owner, with_owner);
}

TEST(Selector, ReadingAnEqualTagReadsOverThePayload) {
    Selector selector = field({"x"}, {{{"S"}, 7}});
    wire::read_over(selector, hex::bytes("01000000  FFFFFFFF 01000000 'y'  46"));
    EXPECT_EQ(selector, field({"y"}));
}

TEST(Selector, ReadingAnotherTagRebuildsThePayload) {
    Selector selector = field({"x"}, {{{"S"}, 7}});
    wire::read_over(selector, hex::bytes("00000000  54 09000000"));
    EXPECT_EQ(selector, element(9));
    wire::read_over(selector, hex::bytes("01000000  FFFFFFFF 01000000 'y'  46"));
    EXPECT_EQ(selector, field({"y"}));
}

}  // namespace
