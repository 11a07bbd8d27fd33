#include <sml/schema/Event_Path.hpp>
#include "tests/order.hpp"
#include "tests/schema/tables.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

using sml::BigInteger;
using sml::Strings_T;
using sml::Event_Path::Event_Value::T_value;
using std::string_literals::operator""s;

T_value iteration(BigInteger const& count) {
    T_value value;
    value.choose<"LoopIteration">() = count;
    return value;
}

TEST(EventValue, EveryArmHasItsTagItsNameAndItsDefaultPayload) {
    tables::expect_arms_with_catch_all<T_value>(
        {{"LoopIteration", "03000000 '0' 00 00"}, {"WithValue", "'F'  FFFFFFFF 00000000"}});
}

TEST(EventValue, AnUnknownTagKeepsItsPayload) {
    for (char const* const tag : {"02000000", "F7FFFFFF"}) {
        std::string const bytes =
            hex::bytes(tag + "  'T' FFFFFFFF 01000000 'a' FEFFFFFF 01000000 'b'  01000000"s);
        auto const value = wire::read<T_value>(bytes);
        EXPECT_EQ(value.arm<"WithValue">().string_pair->second.str(), "b");
        EXPECT_EQ(value.arm<"WithValue">().first_string.str(), "a");
        wire::expect(value, hex::shown(bytes));
    }
}

TEST(EventValue, LoopIterationsAreTextBlocksThatAreNeverEmpty) {
    wire::expect(iteration(0), "00000000  03000000 '0' 00 00");
    wire::expect(iteration(31), "00000000  04000000 '1f' 00 00");
    wire::expect(iteration(-31), "00000000  04000000 '-1f' 00");
    wire::expect(iteration(BigInteger("0x10000000000000000")),
                 "00000000  13000000 '10000000000000000' 00 00");
}

TEST(EventValue, WithValueAndAnAbsentPairIsAFlagAndAString) {
    T_value value;
    value.choose<"WithValue">().first_string = "s";
    wire::expect(value, "01000000 'F'  FFFFFFFF 01000000 's'");
    value.arm<"WithValue">().string_pair.emplace("a"s, "s"s);
    wire::expect(value, "01000000 'T' FFFFFFFF 01000000 'a' FEFFFFFF 01000000 's'  02000000");
}

TEST(EventValue, OrdersByTagAndIsLessThanItselfWithoutPayload) {
    tables::expect_order_by_tag<T_value>();
}

TEST(EventValue, LoopIterationsCompareNumerically) {
    order::expect_less(iteration(9), iteration(10));
    order::expect_less(iteration(15), iteration(BigInteger("0x100")));
    order::expect_less(iteration(-10), iteration(-9));
    order::expect_less(iteration(BigInteger("0xFFFFFFFFFFFFFFFF")),
                       iteration(BigInteger("0x10000000000000000")));
    order::expect_equal(iteration(7), iteration(7));
}

TEST(EventValue, TheTagDecidesAheadOfThePayload) {
    T_value with_value;
    with_value.choose<"WithValue">();
    order::expect_less(iteration(100), with_value);
    order::expect_less(T_value(), iteration(-100));
}

TEST(EventValue, TagsPastTheLastAreOrderedByTagThenByPayload) {
    order::Handles const names;
    auto                 value = [](std::int32_t tag, Strings_T const& text) {
        auto result = tables::with_tag<T_value>(tag);
        result.arm<"WithValue">().first_string = text;
        return result;
    };
    order::expect_less(value(2, names.greater), value(3, names.lesser));
    order::expect_less(value(2, names.lesser), value(2, names.greater));
    order::expect_equal(value(2, names.lesser), value(2, names.lesser));
}

TEST(EventValue, ReadingAPairLetsTheHeldOneGo) {
    T_value value;
    value.choose<"WithValue">().string_pair.emplace("a"s, "b"s);
    wire::read_over(value, hex::bytes("01000000 'F'  FFFFFFFF 00000000"));
    EXPECT_FALSE(value.arm<"WithValue">().string_pair.has_value());
}

}  // namespace
