// The enumerations of checks, and the data of overflows, calls and data-flow findings.

#include <sml/schema/Checks.hpp>
#include "tests/core/string_table.hpp"
#include "tests/order.hpp"
#include "tests/schema/tables.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <string>

using sml::Checks::T_Incorrect_Call;
using sml::Checks::T_Ovfl_Data;
using sml::Checks::T_Valid_Args_Checks_Datas;
using Flow_Kind = sml::Checks::Data_Flow_Kind::T;

namespace {

TEST(Checks, EnumeratorsPrintTheirNames) {
    tables::expect_enumerators<sml::Checks::T_Check_Color>(
        {"DARKORANGE", "GRAY", "GREEN", "ORANGE", "RED"});
    tables::expect_enumerators<sml::Checks::T_Leak_Kind>({"LEAK_ASSIGNMENT", "LEAK_END_OF_SCOPE"});
    tables::expect_enumerators<sml::Checks::T_Standard_Lib_Family>(
        {"STD_LIB_AUTOSAR_COMPLIANCE", "STD_LIB_AUTOSAR_IMPL", "STD_LIB_AUTOSAR_NOIMPL",
         "STD_LIB_AUTOSAR_USE", "STD_LIB_EC", "STD_LIB_I2C_SMBUS_COMPLIANCE", "STD_LIB_STANDARD",
         "STD_LIB_VA_ARG"});
}

TEST(Checks, EnumerationsAreWordsOnTheWire) {
    wire::expect(sml::Checks::RED, "04000000");
    wire::expect(sml::Checks::LEAK_END_OF_SCOPE, "01000000");
    wire::expect(sml::Checks::STD_LIB_VA_ARG, "07000000");
    wire::expect(static_cast<sml::Checks::T_Check_Color>(-2), "FEFFFFFF");
}

// ---- overflows ----

T_Ovfl_Data single(bool flag) {
    T_Ovfl_Data data;
    data.choose<"Single_Ovfl">().first_flag = flag;
    return data;
}

TEST(OvflData, HasThreeArms) {
    tables::expect_arms_with_catch_all<T_Ovfl_Data>({{"Linked_Ovfl", "FFFFFFFF 00000000  00000000"},
                                                     {"Merged_Ovfl", "00000000  00000000"},
                                                     {"Single_Ovfl", "46"}});
}

TEST(OvflData, SingleIsFiveBytes) {
    wire::expect(single(true), "02000000  54");
    wire::expect(single(false), "02000000  46");
}

// Required: the last arm is a catch-all arm, so its flag follows an unknown tag.
TEST(OvflData, EveryOtherTagHasTheFlag) {
    for (char const* const tag : {"03000000", "07000000", "FFFFFFFF"}) {
        auto const read = wire::read<T_Ovfl_Data>(hex::bytes(tag) + "T");
        EXPECT_TRUE(read.arm<"Single_Ovfl">().first_flag);
        wire::expect(read, std::string(tag) + "54");
    }
    EXPECT_EQ(tables::with_tag<T_Ovfl_Data>(3).toString(), nullptr);
    EXPECT_EQ(wire::write(tables::with_tag<T_Ovfl_Data>(3)).size(), 5u);
}

TEST(OvflData, RecordsWriteFieldsInOrder) {
    wire::expect(T_Ovfl_Data::Linked_Ovfl_args{{"a"}, 7}, "FFFFFFFF 01000000 'a'  07000000");
    wire::expect(T_Ovfl_Data::Merged_Ovfl_args{7, 8}, "07000000  08000000");
    wire::expect(T_Ovfl_Data::Single_Ovfl_args{true}, "54");
}

TEST(OvflData, OrdersByTagThenPayload) {
    tables::expect_order_by_tag<T_Ovfl_Data>();
    order::expect_less(single(false), single(true));
    order::expect_equal(single(true), single(true));
    auto const stray = wire::read<T_Ovfl_Data>(hex::bytes("03000000 46"));
    auto const greater_stray = wire::read<T_Ovfl_Data>(hex::bytes("03000000 54"));
    order::expect_less(stray, greater_stray);
    order::expect_equal(stray, stray);
    order::expect_less(single(true), stray);
    auto const negative = wire::read<T_Ovfl_Data>(hex::bytes("FFFFFFFF 46"));
    auto const other_negative = wire::read<T_Ovfl_Data>(hex::bytes("FFFFFFFF 54"));
    order::expect_unordered(negative, other_negative);
    order::expect_unordered(negative, negative);
}

TEST(OvflData, ReadingAnotherTagDestroysTheArm) {
    T_Ovfl_Data data;
    data.choose<"Linked_Ovfl">() = {{"in the old arm"}, 7};
    wire::read_over(data, hex::bytes("01000000  01000000 02000000"));
    EXPECT_EQ(string_table::count_of("in the old arm"), 0u);
    EXPECT_EQ(data.arm<"Merged_Ovfl">(), (T_Ovfl_Data::Merged_Ovfl_args{1, 2}));
}

// ---- faulty calls ----

TEST(IncorrectCall, HasThreeArms) {
    tables::expect_arms_with_catch_all<T_Incorrect_Call>(
        {{"CALL_RTF", "FFFFFFFF 00000000  01000000 01000000 01000000  01000000"},
         {"CALL_WNA", "46  FFFFFFFF 00000000 01000000 01000000  46"},
         {"CALL_WTA", "00000000  FFFFFFFF 00000000  46  01000000 01000000 01000000  01000000"}});
}

TEST(IncorrectCall, RecordsWriteFieldsInOrder) {
    wire::expect(T_Incorrect_Call::CALL_RTF_args{{"a"}, {{"s"}, {{"q"}, {"n"}}}, {"b"}},
                 "FFFFFFFF 01000000 'a'"
                 "FEFFFFFF 01000000 's' FDFFFFFF 01000000 'q' FCFFFFFF 01000000 'n'"
                 "FBFFFFFF 01000000 'b'");
    wire::expect(T_Incorrect_Call::CALL_WNA_args{5, {{"s"}, {{"q"}, {"n"}}}, 6},
                 "54 05000000"
                 "FFFFFFFF 01000000 's' FEFFFFFF 01000000 'q' FDFFFFFF 01000000 'n'"
                 "54 06000000");
    wire::expect(T_Incorrect_Call::CALL_WTA_args{7, {"a"}, true, {{"s"}, {{"q"}, {"n"}}}, {"b"}},
                 "07000000  FFFFFFFF 01000000 'a'  54"
                 "FEFFFFFF 01000000 's' FDFFFFFF 01000000 'q' FCFFFFFF 01000000 'n'"
                 "FBFFFFFF 01000000 'b'");
}

// Required, as for overflows.
TEST(IncorrectCall, EveryOtherTagHasTheLastRecord) {
    for (char const* const tag : {"03000000", "07000000", "FFFFFFFF"}) {
        std::string const bytes =
            std::string(tag) + "09000000  FFFFFFFF 01000000 'a'  54" +
            "FEFFFFFF 01000000 's' FDFFFFFF 01000000 'q' FCFFFFFF 01000000 'n'  01000000";
        auto const read = wire::read<T_Incorrect_Call>(hex::bytes(bytes));
        EXPECT_EQ(read.arm<"CALL_WTA">().first_int, 9);
        wire::expect(read, bytes);
    }
}

TEST(IncorrectCall, AbsentNumberIsLessThanPresent) {
    using Wna = T_Incorrect_Call::CALL_WNA_args;
    order::expect_less(Wna{{}, {}, 9}, Wna{-9, {}, {}});
    order::expect_less(Wna{1, {}, {}}, Wna{1, {}, -9});
    order::expect_less(Wna{-1, {}, {}}, Wna{1, {}, {}});
    order::expect_equal(Wna{{}, {}, {}}, Wna{{}, {}, {}});
}

TEST(IncorrectCall, OrdersByTagThenPayload) {
    tables::expect_order_by_tag<T_Incorrect_Call>();
    T_Incorrect_Call lesser;
    lesser.choose<"CALL_WTA">().first_int = -1;
    T_Incorrect_Call greater;
    greater.choose<"CALL_WTA">().first_int = 1;
    order::expect_less(lesser, greater);
    order::expect_equal(lesser, T_Incorrect_Call(lesser));
}

// ---- valid arguments ----

TEST(ValidArgs, WritesFieldsInOrder) {
    wire::expect(
        T_Valid_Args_Checks_Datas{
            {"a"}, {"b"}, {{{"c"}, 1}}, {"d"}, {"e"}, {{"f"}}, {{{"g"}, 2}, {{"a"}, 3}}},
        "FFFFFFFF 01000000 'a'  FEFFFFFF 01000000 'b'"
        "01000000 FDFFFFFF 01000000 'c' 01000000"
        "FCFFFFFF 01000000 'd'  FBFFFFFF 01000000 'e'"
        "54 FAFFFFFF 01000000 'f'"
        "02000000 F9FFFFFF 01000000 'g' 02000000  01000000 03000000");
    wire::expect(T_Valid_Args_Checks_Datas(),
                 "FFFFFFFF 00000000  01000000  00000000  01000000  01000000  46  00000000");
}

// Required: the count goes first, then string by address and number as signed.
TEST(ValidArgs, NamedIntsOrderByCountThenByElements) {
    order::Handles const texts;
    auto                 data = [](std::list<std::pair<sml::Strings_T, std::int32_t>> const& list) {
        T_Valid_Args_Checks_Datas result;
        result.first_named_ints = list;
        return result;
    };
    order::expect_less(data({{texts.greater, 9}}), data({{texts.lesser, 1}, {texts.lesser, 1}}));
    order::expect_less(data({{texts.lesser, 9}, {{}, 9}}), data({{texts.greater, 1}, {{}, 1}}));
    order::expect_less(data({{texts.lesser, -1}, {{}, 9}}), data({{texts.lesser, 1}, {{}, 1}}));

    T_Valid_Args_Checks_Datas shorter;
    shorter.second_named_ints = {{texts.greater, 9}};
    T_Valid_Args_Checks_Datas longer;
    longer.second_named_ints = {{texts.lesser, 1}, {texts.lesser, 1}};
    order::expect_less(shorter, longer);
}

TEST(ValidArgs, ReadingAddsToBothLists) {
    T_Valid_Args_Checks_Datas data;
    data.first_named_ints = {{{"a"}, 1}};
    data.second_named_ints = {{{"b"}, 2}};
    wire::read_over(data, hex::bytes("FFFFFFFF 00000000  01000000  01000000 FEFFFFFF 01000000 'c'"
                                     "03000000  01000000  01000000  46"
                                     "01000000 02000000 04000000"));
    EXPECT_EQ(data.first_named_ints.size(), 2u);
    EXPECT_EQ(data.first_named_ints.back().second, 3);
    EXPECT_EQ(data.second_named_ints.size(), 2u);
    EXPECT_EQ(data.second_named_ints.back().first.str(), "c");
}

// ---- data flow ----

TEST(DataFlowKind, HasFiveArms) {
    tables::expect_arms<Flow_Kind>({{"ARRAY_PARTIALLY_READ", "46"},
                                    {"ARRAY_PARTIALLY_WRITTEN", "46"},
                                    {"DOUBLE_WRITE"},
                                    {"NIV"},
                                    {"USELESS_WRITE"}});
}

TEST(DataFlowKind, ArraysWriteAnOptionalPair) {
    Flow_Kind kind;
    kind.choose<"ARRAY_PARTIALLY_READ">();
    wire::expect(kind, "00000000  46");
    kind.arm<"ARRAY_PARTIALLY_READ">() = {1, -2};
    wire::expect(kind, "00000000  54 01000000 FEFFFFFF");
    kind.choose<"ARRAY_PARTIALLY_WRITTEN">() = {3, 4};
    wire::expect(kind, "01000000  54 03000000 04000000");
}

TEST(DataFlowKind, NivIsAnotherThingThanTheCategoryNiv) {
    Flow_Kind kind;
    kind.choose<"NIV">();
    sml::Checks::T_Check_Category category;
    category.choose<"NIV">();
    EXPECT_EQ(kind.tag, 3);
    EXPECT_EQ(category.tag, 47);
    EXPECT_STREQ(kind.toString(), category.toString());
    wire::expect(kind, "03000000");
    wire::expect(category, "2F000000  46  FFFFFFFF 00000000");
}

TEST(DataFlowKind, OrdersByTagThenPair) {
    tables::expect_order_by_tag<Flow_Kind>();
    auto kind = [](std::optional<std::pair<std::int32_t, std::int32_t>> const& pair) {
        Flow_Kind result;
        result.choose<"ARRAY_PARTIALLY_WRITTEN">() = pair;
        return result;
    };
    order::expect_less(kind({}), kind({{-9, -9}}));
    order::expect_less(kind({{-1, 9}}), kind({{1, -9}}));
    order::expect_less(kind({{1, -9}}), kind({{1, 9}}));
    order::expect_equal(kind({{1, 9}}), kind({{1, 9}}));
    order::expect_equal(kind({}), kind({}));
}

}  // namespace
