#include <sml/schema/Infos.hpp>
#include "tests/core/string_table.hpp"
#include "tests/order.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <string>
#include <utility>

using Info = sml::Infos::T_An_Info;
using Category = sml::Infos::T_Information_Category;
using sml::Infos::T_Information_Value;
using sml::InfosTypes::T_Variable_Name;

namespace {

T_Variable_Name cell(std::int32_t index) {
    T_Variable_Name result;
    result.choose<"ARRAY_CELL">() = index;
    return result;
}

/// A record that is equal to itself and not less, so that every field decides.
Info tooltip(char const* text = "") {
    Info result;
    result.category.choose<"TOOLTIP_INFO">().tooltip = std::string(text);
    return result;
}

template <sml::core::Name ArmName>
Info of_statement(std::int32_t index) {
    Info result;
    result.category.choose<ArmName>().template choose<"ASSIGN">() = cell(index);
    return result;
}

/// A record with `text` in every string, and an arm with lists, maps and big numbers.
Info full(std::string const& text) {
    Info info;
    info.first_string = text;
    info.first_int = 1;
    auto& arm = info.category.choose<"VORP">();
    arm.first_value.first_string = text;
    arm.first_value.type.choose<"Inf_Type_Ada_Fixed">().first_list = {1, 2};
    arm.first_value.range.choose<"Value_Range">().intervals.resize(2);
    for (auto& interval : arm.first_value.range.arm<"Value_Range">().intervals)
        interval.choose<"Real_Interval">();
    arm.first_value.range.arm<"Value_Range">().multiplicity.choose<"Multiple">() = 7;
    arm.second_value = arm.first_value;
    arm.null_value.value = arm.first_value;
    arm.statement_kind.choose<"IMPLICIT_CALL">() = text;
    arm.third_value = arm.first_value;
    arm.escape_info = {{{text, sml::Infos::Stack_Escape_Info_Data::No_Escape}}, true};
    arm.first_string = text;
    arm.big_number = sml::BigInteger("0x123456789ABCDEF0123456789");
    info.second_string = text;
    info.second_int = 2;
    info.string_and_int = {text, 3};
    info.third_string = text;
    info.third_int = 4;
    info.flag = true;
    info.location = {5, {6, text, 7}, 8};
    info.fourth_string = text;
    info.fourth_int = 9;
    return info;
}
constexpr std::uint64_t strings_in_full = 13;

TEST(AnInfo, DefaultIsZeroAndEmptyThroughout) {
    Info const info;
    EXPECT_EQ(info.category.tag, -1);
    wire::expect(info,
                 "FFFFFFFF 00000000  00000000"
                 "FFFFFFFF  00000000 46 FFFFFFFF FFFFFFFF 01000000 01000000 00000000 46"
                 "01000000  00000000  46  01000000  00000000  46"
                 "00000000 00000000 01000000 00000000 0000000000000000"
                 "01000000  00000000");
    order::expect_unordered(info, info);
}

TEST(AnInfo, WritesFieldsInOrder) {
    Info info = tooltip("t");
    info.first_string = std::string("a");
    info.first_int = 1;
    info.second_string = std::string("b");
    info.second_int = 2;
    info.string_and_int = {{"c"}, 3};
    info.third_string = std::string("d");
    info.third_int = 4;
    info.flag = true;
    info.location = {5, {6, {"e"}, 7}, 8};
    info.fourth_string = std::string("f");
    info.fourth_int = 9;
    wire::expect(info,
                 "FFFFFFFF 01000000 'a'  01000000"
                 "03000000 FEFFFFFF 01000000 't'"
                 "FDFFFFFF 01000000 'b'  02000000"
                 "54 FCFFFFFF 01000000 'c' 03000000"
                 "FBFFFFFF 01000000 'd'  04000000  54"
                 "05000000 06000000 FAFFFFFF 01000000 'e' 07000000 0800000000000000"
                 "F9FFFFFF 01000000 'f'  09000000");
}

TEST(AnInfo, AbsentStringAndNumberIsOneFlag) {
    wire::expect(tooltip(),
                 "FFFFFFFF 00000000  00000000  03000000 01000000"
                 "01000000  00000000  46  01000000  00000000  46"
                 "00000000 00000000 01000000 00000000 0000000000000000"
                 "01000000  00000000");
}

TEST(AnInfo, LesserLocationIsLess) {
    Info lesser = tooltip();
    Info greater = tooltip();
    greater.location.localization.first_position = 1;
    order::expect_less(lesser, greater);
    lesser.fourth_int = 9;
    order::expect_less(lesser, greater);
}

TEST(AnInfo, StringsOrderByAddressAndAbsentOnesFirst) {
    order::Handles const texts;
    Info                 lesser = tooltip();
    Info                 greater = tooltip();
    lesser.second_string = texts.lesser;
    greater.second_string = texts.greater;
    order::expect_less(lesser, greater);

    Info with_string = tooltip();
    with_string.string_and_int.emplace();
    order::expect_less(tooltip(), with_string);
}

// ---- category ----

TEST(AnInfo, PayloadHeldTwiceOrdersByTheTagOfTheCategory) {
    order::expect_less(of_statement<"VOBJ">(7), of_statement<"VOBJFE">(7));
    order::expect_less(of_statement<"VOBJ">(9), of_statement<"VOBJFE">(1));
    order::expect_less(of_statement<"VOBJ">(1), of_statement<"VOBJ">(2));
    order::expect_less(of_statement<"VOBJFE">(1), of_statement<"VOBJFE">(2));
    order::expect_equal(of_statement<"VOBJ">(1), of_statement<"VOBJ">(1));
}

// Required: no field after such a category is compared.
TEST(AnInfo, StatementWithoutPayloadMakesRecordsEachLess) {
    Info first;
    first.category.choose<"VOBJ">().choose<"F_CALL">();
    Info second = first;
    order::expect_equal_and_each_less(first, second);
    second.second_int = 1;
    order::expect_unequal_and_each_less(first, second);
}

TEST(AnInfo, UnsetPayloadEndsTheComparison) {
    Info lesser;
    lesser.category.choose<"VCC">();
    Info greater = lesser;
    order::expect_unordered(lesser, greater);
    greater.second_int = 1;
    order::expect_unordered(lesser, greater);

    greater.category.arm<"VCC">().choose<"ConcurrentItem">();
    order::expect_less(lesser, greater);
}

TEST(AnInfo, UnsetCategoryEndsTheComparison) {
    Info       lesser;
    Info       greater;
    Info const set = tooltip();
    greater.second_int = 1;
    order::expect_unordered(lesser, greater);
    order::expect_less(lesser, set);
}

TEST(AnInfo, UnknownCategoryTagsCompareTheirPayloads) {
    auto read = [](std::int32_t tag, bool flag) {
        Info info;
        info.category.choose_tag(tag);
        info.category.arm<"VORS">().flag = flag;
        info.category.arm<"VORS">().statement_kind.choose<"ASSIGN">() = cell(0);
        return info;
    };
    order::expect_less(read(17, false), read(17, true));
    order::expect_equal(read(17, true), read(17, true));
    order::expect_less(read(16, true), read(17, false));
    order::expect_unordered(read(-1, false), read(-1, true));
    order::expect_unordered(read(-1, true), read(-1, true));
}

// ---- reading ----

TEST(AnInfo, ReadingTheHeldArmAddsToItsContainers) {
    Info held;
    held.category.choose<"RELATION">().variables = {cell(1)};
    held.string_and_int.emplace();
    Info read;
    read.category.choose<"RELATION">().variables = {cell(2)};
    read.fourth_int = 7;
    wire::read_over(held, wire::write(read));
    read.category.arm<"RELATION">().variables = {cell(1), cell(2)};
    EXPECT_EQ(held, read);
}

// ---- life ----

// Required: a move copies. Callers go on using the source.
TEST(AnInfo, MoveLeavesTheSourceWholeAndEqual) {
    Info       source = full("shared with the source");
    Info const before = source;
    EXPECT_EQ(string_table::count_of("shared with the source"), 2 * strings_in_full);

    Info const moved = std::move(source);

    EXPECT_EQ(moved, before);
    EXPECT_EQ(source, before);
    EXPECT_EQ(string_table::count_of("shared with the source"), 3 * strings_in_full);
}

TEST(AnInfo, MovedRecordsShareNothingButStrings) {
    Info  source = full("text");
    Info  moved = std::move(source);
    auto& intervals = moved.category.arm<"VORP">().first_value.range.arm<"Value_Range">().intervals;
    intervals.clear();
    moved.category.arm<"VORP">().escape_info->first.clear();
    moved.category.arm<"VORP">().big_number += 1;
    EXPECT_EQ(source, full("text"));
}

TEST(AnInfo, MoveOfListsAndMapsCopiesThem) {
    Info source;
    source.category.choose<"RELATION">() = {{cell(1), cell(2)}, {"a"}, 3, {"b"}};
    Info const relation = std::move(source);
    EXPECT_EQ(source, relation);

    auto& spawners =
        source.category.choose<"VCC">().choose<"ConcurrentRoutine">().spawners.emplace();
    spawners[{{"p"}, {}}] = 7;
    Info const concurrency = std::move(source);
    EXPECT_EQ(source, concurrency);
    EXPECT_EQ(source.category.arm<"VCC">().arm<"ConcurrentRoutine">().spawners->size(), 1u);
}

// Required: a move assigns, which leaves a float as it is. A copy would round it to the mantissa of
// its width, which here has fewer bits.
TEST(AnInfo, MoveDoesNotRoundFloats) {
    auto const float_of = [](auto& info) -> auto& {
        auto& value = info.category.template arm<"VORP">().first_value;
        return value.type.template arm<"Inf_Type_DRSFloat">().first_float;
    };
    Info source;
    source.category.choose<"VORP">().first_value.type.choose<"Inf_Type_DRSFloat">();
    float_of(source).width = 32;
    mpfr_set_prec(float_of(source).number(), 53);
    mpfr_set_d(float_of(source).number(), 1.1, MPFR_RNDN);
    Info const copy(std::as_const(source));
    Info const moved(std::move(source));
    EXPECT_EQ(mpfr_get_d(float_of(moved).number(), MPFR_RNDN), 1.1);
    EXPECT_NE(mpfr_get_d(float_of(copy).number(), MPFR_RNDN), 1.1);
}

TEST(AnInfo, MoveAssignmentCopiesToo) {
    Info source = full("text");
    Info target = full("let go");
    target = std::move(source);
    EXPECT_EQ(source, full("text"));
    EXPECT_EQ(target, source);
    EXPECT_EQ(string_table::count_of("let go"), 0u);
}

TEST(AnInfo, MoveOfAnUnsetCategoryBuildsNoArm) {
    Info       source;
    Info const moved = std::move(source);
    EXPECT_EQ(moved.category.tag, -1);
    EXPECT_EQ(source.category.tag, -1);
}

TEST(AnInfo, DestructionReleasesEveryString) {
    {
        Info const info = full("held by a record");
        EXPECT_EQ(string_table::count_of("held by a record"), strings_in_full);
    }
    EXPECT_EQ(string_table::count_of("held by a record"), 0u);
}

}  // namespace
