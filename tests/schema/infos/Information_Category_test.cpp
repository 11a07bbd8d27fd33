// The category of information records: its arms, and the types that only they use.

#include <sml/schema/Infos.hpp>
#include "tests/order.hpp"
#include "tests/schema/tables.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <string>
#include <utility>

using Category = sml::Infos::T_Information_Category;
using Escape = sml::Infos::Stack_Escape_Info_Data::Stack_Escape_Map;
using Statement = sml::InfosTypes::T_Info_Statement_Kind;
using sml::Infos::T_Field_Information_Kind;
using sml::Infos::T_Info_Operator_Kind;
using sml::Infos::T_Information_Value;
using sml::InfosTypes::T_Variable_Name;
namespace escape_info = sml::Infos::Stack_Escape_Info_Data;

namespace {

// The bytes of unset values: one with the definition of the empty text, one with a back-reference.
#define FIRST_UNSET_VALUE "FFFFFFFF 00000000 00000000 FFFFFFFF FFFFFFFF 00000000 FFFFFFFF"
#define UNSET_VALUE       "01000000 00000000 FFFFFFFF FFFFFFFF 00000000 FFFFFFFF"

// The same for an unset statement.
#define FIRST_UNSET_STATEMENT "FFFFFFFF FFFFFFFF FFFFFFFF 00000000 01000000 00000000 46"
#define UNSET_STATEMENT       "FFFFFFFF FFFFFFFF 01000000 01000000 00000000 46"

T_Variable_Name cell(std::int32_t index) {
    T_Variable_Name result;
    result.choose<"ARRAY_CELL">() = index;
    return result;
}

Statement statement(std::int32_t index) {
    Statement result;
    result.choose<"ASSIGN">() = cell(index);
    return result;
}

/// A value with few bytes: string, number, 06000000, 02000000 00000000 04000000.
T_Information_Value short_value(std::int32_t number) {
    T_Information_Value result;
    result.first_int = number;
    result.type.choose<"Inf_Type_None">();
    result.range.choose<"Value_Range">().multiplicity.choose<"Top">();
    return result;
}

/// A value that is equal to itself and not less.
T_Information_Value value(std::int32_t number) {
    T_Information_Value result;
    result.first_int = number;
    result.type.choose<"Inf_Type_Integer">();
    result.range.choose<"Int_Full_Range">();
    return result;
}

T_Information_Value with_interval(std::int32_t lower) {
    T_Information_Value result = value(0);
    auto&               parts = result.range.choose<"Value_Range">();
    parts.intervals.emplace_back().choose<"Int_Interval">().lower = lower;
    parts.multiplicity.choose<"Multiple">();
    return result;
}

T_Field_Information_Kind pointer(T_Information_Value const& held) {
    T_Field_Information_Kind result;
    result.choose<"Field_Pointer">() = held;
    return result;
}

T_Field_Information_Kind scalar(T_Information_Value const& held) {
    T_Field_Information_Kind result;
    result.choose<"Field_Scalar">() = held;
    return result;
}

using Fields = decltype(Category::VORS_args::fields);

Category::VORS_args read_fields(Fields const& held) { return {held, false, statement(0)}; }

Category::VORPF_args escaping(std::optional<Escape> const& escape) {
    return {value(0), {0, value(0)}, statement(0), escape, {}, {}};
}

// ---- enumerations ----

TEST(Infos, EnumeratorsPrintTheirNames) {
    tables::expect_enumerators<sml::Infos::T_NTC_Kind>(
        {"NTC_Accept", "NTC_Call", "NTC_Function_Pointer", "NTC_Noreturn_Stub",
         "NTC_Pointer_To_Member_Call", "NTC_Virtual_Call"});
    tables::expect_enumerators<escape_info::T_Stack_Escape_Info>(
        {"May_Escape", "No_Escape", "Not_Computed", "Surely_Out_Of_Stack"});
}

TEST(Infos, EnumerationsAreWordsOnTheWire) {
    wire::expect(sml::Infos::NTC_Virtual_Call, "05000000");
    wire::expect(escape_info::Surely_Out_Of_Stack, "03000000");
}

// ---- operators ----

TEST(OperatorKind, HasThreeArms) {
    tables::expect_arms_with_catch_all<T_Info_Operator_Kind>(
        {{"BINARY_OP", "FFFFFFFF 00000000  01000000"},
         {"CONV", "FFFFFFFF 00000000  46  01000000"},
         {"UNARY_OP", "FFFFFFFF 00000000  01000000"}});
}

TEST(OperatorKind, RecordsWriteFieldsInOrder) {
    wire::expect(T_Info_Operator_Kind::BINARY_OP_args{{"a"}, {"b"}},
                 "FFFFFFFF 01000000 'a'  FEFFFFFF 01000000 'b'");
    wire::expect(T_Info_Operator_Kind::CONV_args{{"a"}, true, {"b"}},
                 "FFFFFFFF 01000000 'a'  54  FEFFFFFF 01000000 'b'");
    wire::expect(T_Info_Operator_Kind::UNARY_OP_args{{"a"}, {"b"}},
                 "FFFFFFFF 01000000 'a'  FEFFFFFF 01000000 'b'");
}

// Required: every tag other than 0 and 1 is followed by a unary operator.
TEST(OperatorKind, EveryOtherTagHasTheUnaryOperator) {
    for (char const* const tag : {"03000000", "FFFFFFFF"}) {
        std::string const bytes = tag + std::string("FFFFFFFF 01000000 'a' FEFFFFFF 01000000 'b'");
        auto const        read = wire::read<T_Info_Operator_Kind>(hex::bytes(bytes));
        EXPECT_EQ(read.arm<"UNARY_OP">().second_string.str(), "b");
        wire::expect(read, bytes);
    }
}

TEST(OperatorKind, OrdersByTagThenRecord) {
    using Kind = T_Info_Operator_Kind;
    tables::expect_order_by_tag<Kind>();
    order::expect_equal(tables::with_tag<Kind>(2), tables::with_tag<Kind>(2));
    order::expect_equal(tables::with_tag<Kind>(3), tables::with_tag<Kind>(3));
}

// ---- arms ----

TEST(InformationCategory, Has17Arms) {
    tables::expect_arms_with_catch_all<Category>({
        {"IPT", "FFFFFFFF FFFFFFFF 00000000 01000000 00000000 46" UNSET_VALUE},
        {"QUESTION_IPT", "46" FIRST_UNSET_VALUE "FFFFFFFF 0000000000000000  46"},
        {"RELATION", "00000000  FFFFFFFF 00000000  00000000  01000000"},
        {"TOOLTIP_INFO", "FFFFFFFF 00000000"},
        {"VAI", FIRST_UNSET_VALUE "46"},
        {"VCC", "FFFFFFFF 46 00000000 FFFFFFFF 00000000 01000000 01000000 01000000"},
        {"VCS", "FFFFFFFF 00000000  01000000" UNSET_VALUE},
        {"VNTC", "46  FFFFFFFF 00000000 01000000 01000000 01000000  00000000"},
        {"VNTL", "46  46"},
        {"VOBJ", FIRST_UNSET_STATEMENT},
        {"VOBJFE", FIRST_UNSET_STATEMENT},
        {"VOL", "46" FIRST_UNSET_VALUE UNSET_VALUE},
        {"VOO", "FFFFFFFF FFFFFFFF 00000000 01000000  46  00000000  46" UNSET_VALUE UNSET_VALUE},
        {"VOR", FIRST_UNSET_STATEMENT "46" UNSET_VALUE},
        {"VORP", FIRST_UNSET_VALUE UNSET_VALUE "00000000" UNSET_VALUE UNSET_STATEMENT
                                               "00000000" UNSET_VALUE "46  46  03000000 '0' 00 00"},
        {"VORPF", FIRST_UNSET_VALUE "00000000" UNSET_VALUE UNSET_STATEMENT "46  46  46"},
        {"VORS", "00000000  46" FIRST_UNSET_STATEMENT},
    });
}

// Required: every other tag is followed by a read structure.
TEST(InformationCategory, EveryOtherTagHasTheLastPayload) {
    for (char const* const tag : {"11000000", "FFFFFFFF"}) {
        std::string const bytes =
            tag + std::string(
                      "01000000 FFFFFFFF 01000000 'f' 07000000 00000000"
                      "FEFFFFFF 00000000 00000000 06000000 02000000 00000000 04000000"
                      "54  09000000");
        auto const read = wire::read<Category>(hex::bytes(bytes));
        EXPECT_EQ(read.arm<"VORS">().fields.size(), 1u);
        EXPECT_TRUE(read.arm<"VORS">().flag);
        wire::expect(read, bytes);
        wire::expect(Category(read), bytes);
    }
}

TEST(InformationCategory, Tag17HoldsAStructureAndPrintsNothing) {
    auto const read =
        wire::read<Category>(hex::bytes("11000000  00000000  54  00000000 00000000 07000000"));
    EXPECT_EQ(read.tag, 17);
    EXPECT_EQ(read.arm<"VORS">(), (Category::VORS_args{{}, true, statement(7)}));
    EXPECT_EQ(read.toString(), nullptr);
    order::expect_equal(read, read);
}

TEST(InformationCategory, PayloadsHeldDirectlyHaveTheirTagBehindTheCategorys) {
    Category held;
    held.choose<"VCC">().choose<"ConcurrentItem">().origin.choose<"Manual">();
    wire::expect(held, "05000000  00000000  FFFFFFFF 00000000  02000000");
    held.choose<"VOBJ">().choose<"F_CALL">();
    wire::expect(held, "09000000  09000000");
    held.choose<"VOBJFE">().choose<"F_CALL">();
    wire::expect(held, "0A000000  09000000");
}

// ---- the arms' records on the wire ----

TEST(InformationCategory, SmallRecordsWriteFieldsInOrder) {
    wire::expect(Category::IPT_args{cell(7), short_value(8)},
                 "00000000 07000000"
                 "FFFFFFFF 00000000 08000000 06000000 02000000 00000000 04000000");
    wire::expect(Category::RELATION_args{{cell(1), cell(2)}, {"a"}, 3, {"b"}},
                 "02000000 00000000 01000000 00000000 02000000"
                 "FFFFFFFF 01000000 'a'  03000000  FEFFFFFF 01000000 'b'");
    wire::expect(Category::TOOLTIP_INFO_args{{"a"}}, "FFFFFFFF 01000000 'a'");
    wire::expect(Category::VAI_args{short_value(8), 9},
                 "FFFFFFFF 00000000 08000000 06000000 02000000 00000000 04000000  54 09000000");
    wire::expect(Category::VCS_args{{"a"}, {"b"}, short_value(8)},
                 "FFFFFFFF 01000000 'a'  FEFFFFFF 01000000 'b'"
                 "FDFFFFFF 00000000 08000000 06000000 02000000 00000000 04000000");
    wire::expect(Category::VNTC_args{{{{"a"}, 7}}, {{"p"}, {}}, sml::Infos::NTC_Virtual_Call},
                 "54 FFFFFFFF 01000000 'a' 07000000"
                 "FEFFFFFF 01000000 'p' FDFFFFFF 00000000 03000000 03000000  05000000");
    wire::expect(Category::VNTL_args{{{{"a"}, 7}}, true}, "54 FFFFFFFF 01000000 'a' 07000000  54");
    wire::expect(Category::VNTL_args{{}, true}, "46  54");
}

TEST(InformationCategory, QuestionWritesFieldsInOrder) {
    Category::QUESTION_IPT_args record{1, short_value(8), {}, 2};
    record.question.choose<"QuestionId">() = 7;
    wire::expect(record,
                 "54 01000000"
                 "FFFFFFFF 00000000 08000000 06000000 02000000 00000000 04000000"
                 "00000000 0700000000000000  54 02000000");
}

TEST(InformationCategory, TwoValuesOfAnOperatorStandInARow) {
    wire::expect(Category::VOL_args{true, short_value(8), short_value(9)},
                 "54"
                 "FFFFFFFF 00000000 08000000 06000000 02000000 00000000 04000000"
                 "01000000          09000000 06000000 02000000 00000000 04000000");
}

TEST(InformationCategory, OperatorWritesFieldsInOrder) {
    Category::VOO_args record;
    record.operator_kind.choose<"CONV">() = {{"a"}, true, {"b"}};
    record.optional_value = short_value(7);
    record.computation_mode = sml::InfosTypes::WRAP_AROUND_MODE;
    record.relation = {{"a"}, 1, cell(2), cell(3), {"b"}};
    record.first_value = short_value(8);
    record.second_value = short_value(9);
    wire::expect(record,
                 "01000000 FFFFFFFF 01000000 'a' 54 FEFFFFFF 01000000 'b'"
                 "54 FDFFFFFF 00000000 07000000 06000000 02000000 00000000 04000000"
                 "03000000"
                 "54 01000000 01000000 00000000 02000000 00000000 03000000 02000000"
                 "03000000 08000000 06000000 02000000 00000000 04000000"
                 "03000000 09000000 06000000 02000000 00000000 04000000");
}

TEST(InformationCategory, ReadWritesFieldsInOrder) {
    wire::expect(Category::VOR_args{statement(7), {{"a"}}, short_value(8)},
                 "00000000 00000000 07000000  54 FFFFFFFF 01000000 'a'"
                 "FEFFFFFF 00000000 08000000 06000000 02000000 00000000 04000000");
}

TEST(InformationCategory, PointerReadWritesFieldsInOrder) {
    Category::VORP_args record;
    record.first_value = short_value(1);
    record.second_value = short_value(2);
    record.null_value = {3, short_value(4)};
    record.statement_kind = statement(5);
    record.first_int = 6;
    record.third_value = short_value(7);
    record.escape_info = {{{{"a"}, escape_info::Not_Computed}}, true};
    record.first_string = {"b"};
    record.big_number = -0x1F;
    wire::expect(record,
                 "FFFFFFFF 00000000 01000000 06000000 02000000 00000000 04000000"
                 "01000000 02000000 06000000 02000000 00000000 04000000"
                 "03000000 01000000 04000000 06000000 02000000 00000000 04000000"
                 "00000000 00000000 05000000"
                 "06000000"
                 "01000000 07000000 06000000 02000000 00000000 04000000"
                 "54 01000000 FEFFFFFF 01000000 'a' 02000000 54"
                 "54 FDFFFFFF 01000000 'b'"
                 "04000000 '-1f' 00");
}

TEST(InformationCategory, FunctionPointerReadWritesFieldsInOrder) {
    Category::VORPF_args record;
    record.value = short_value(1);
    record.null_value = {2, short_value(3)};
    record.statement_kind = statement(4);
    record.first_escape_info = {{{{"a"}, escape_info::Not_Computed}}, true};
    record.second_escape_info = {{{{"a"}, escape_info::No_Escape}}, false};
    record.first_string = {"b"};
    wire::expect(record,
                 "FFFFFFFF 00000000 01000000 06000000 02000000 00000000 04000000"
                 "02000000 01000000 03000000 06000000 02000000 00000000 04000000"
                 "00000000 00000000 04000000"
                 "54 01000000 FEFFFFFF 01000000 'a' 02000000 54"
                 "54 01000000 02000000 01000000 46"
                 "54 FDFFFFFF 01000000 'b'");
}

TEST(InformationCategory, StructureReadWritesFieldsInOrder) {
    wire::expect(Category::VORS_args{{{{"f"}, {7, scalar(short_value(8))}}}, true, statement(9)},
                 "01000000 FFFFFFFF 01000000 'f' 07000000 01000000"
                 "FEFFFFFF 00000000 08000000 06000000 02000000 00000000 04000000"
                 "54  00000000 00000000 09000000");
}

// ---- order ----

TEST(InformationCategory, OrdersByTagAndIsLessThanItselfWithoutPayload) {
    tables::expect_order_by_tag<Category>();
}

// Required: the shorter list is less, whatever its elements are.
TEST(InformationCategory, RelationOfFewerVariablesIsLess) {
    using Relation = Category::RELATION_args;
    order::expect_less(Relation{{cell(9)}, {}, 9, {}}, Relation{{cell(1), cell(1)}, {}, 1, {}});
    order::expect_less(Relation{{T_Variable_Name()}, {}, 9, {}},
                       Relation{{cell(1), cell(1)}, {}, 1, {}});
    order::expect_less(Relation{{cell(1), cell(9)}, {}, 9, {}},
                       Relation{{cell(2), cell(1)}, {}, 1, {}});
}

// Required: variables that are neither less nor greater do not end the comparison.
TEST(InformationCategory, UnsetVariablesArePassedOverInTheWalk) {
    using Relation = Category::RELATION_args;
    order::expect_less(Relation{{{}, cell(1)}, {}, 0, {}}, Relation{{{}, cell(2)}, {}, 0, {}});
    order::expect_unordered(Relation{{T_Variable_Name()}, {}, 1, {}},
                            Relation{{T_Variable_Name()}, {}, 2, {}});
}

TEST(InformationCategory, AbsentOptionalIsLessThanPresent) {
    order::expect_less(Category::VNTL_args{{}, true}, Category::VNTL_args{{{{}, -9}}, false});
    order::expect_less(Category::VNTL_args{{}, false}, Category::VNTL_args{{}, true});
    order::expect_less(Category::VAI_args{value(0), {}}, Category::VAI_args{value(0), -9});
    order::expect_less(Category::VOR_args{statement(0), {}, value(9)},
                       Category::VOR_args{statement(0), sml::Strings_T(), value(1)});
}

// Required: a statement or operator's value without payload ends the comparison.
TEST(InformationCategory, StatementWithoutPayloadMakesRecordsEachLess) {
    Statement call;
    call.choose<"F_CALL">();
    order::expect_unequal_and_each_less(Category::VOR_args{call, {}, value(1)},
                                        Category::VOR_args{call, {}, value(2)});
    order::expect_unequal_and_each_less(Category::VOL_args{false, short_value(1), value(1)},
                                        Category::VOL_args{false, short_value(1), value(2)});
}

// ---- reading ----

TEST(InformationCategory, ReadingTheHeldArmAddsToItsList) {
    Category held;
    held.choose<"RELATION">() = {{cell(1)}, {"a"}, 2, {"b"}};
    Category read;
    read.choose<"RELATION">() = {{cell(3)}, {"c"}, 4, {"d"}};
    wire::read_over(held, wire::write(read));
    EXPECT_EQ(held.arm<"RELATION">(),
              (Category::RELATION_args{{cell(1), cell(3)}, {"c"}, 4, {"d"}}));

    held.choose<"TOOLTIP_INFO">();
    wire::read_over(held, wire::write(read));
    EXPECT_EQ(held, read);
}

// ---- fields of read structures ----

TEST(FieldInformation, HasTwoArmsWithAValueEach) {
    tables::expect_arms_with_catch_all<T_Field_Information_Kind>(
        {{"Field_Pointer", FIRST_UNSET_VALUE}, {"Field_Scalar", FIRST_UNSET_VALUE}});
    wire::expect(pointer(short_value(7)),
                 "00000000  FFFFFFFF 00000000 07000000 06000000 02000000 00000000 04000000");
    wire::expect(scalar(short_value(7)),
                 "01000000  FFFFFFFF 00000000 07000000 06000000 02000000 00000000 04000000");
}

TEST(FieldInformation, EveryOtherTagHasAValueToo) {
    auto const read = wire::read<T_Field_Information_Kind>(
        hex::bytes("FFFFFFFF"
                   "FFFFFFFF 00000000 07000000 06000000 02000000 00000000 04000000"));
    EXPECT_EQ(read.arm<"Field_Scalar">().first_int, 7);
}

TEST(FieldInformation, OrdersByTagThenValue) {
    tables::expect_order_by_tag<T_Field_Information_Kind>();
    order::expect_less(pointer(value(9)), scalar(value(1)));
    order::expect_less(pointer(value(1)), pointer(value(2)));
    order::expect_less(scalar(value(1)), scalar(value(2)));
    order::expect_equal(scalar(value(1)), scalar(value(1)));
    order::expect_equal_and_each_less(scalar(short_value(1)), scalar(short_value(1)));
}

TEST(FieldInformation, ReadingTheHeldArmAddsToItsIntervals) {
    T_Field_Information_Kind held = scalar(with_interval(1));
    wire::read_over(held, wire::write(scalar(with_interval(2))));
    EXPECT_EQ(held.arm<"Field_Scalar">().range.arm<"Value_Range">().intervals.size(), 2u);
    wire::read_over(held, wire::write(pointer(with_interval(3))));
    EXPECT_EQ(held, pointer(with_interval(3)));
}

TEST(StructureFields, StandInAddressOrderWhateverTheOrderOfInsertion) {
    order::Handles const names;
    Category::VORS_args  one_way = read_fields({});
    one_way.fields.emplace(names.lesser, std::pair(1, scalar(short_value(7))));
    one_way.fields.emplace(names.greater, std::pair(2, pointer(short_value(8))));
    Category::VORS_args other_way = read_fields({});
    other_way.fields.emplace(names.greater, std::pair(2, pointer(short_value(8))));
    other_way.fields.emplace(names.lesser, std::pair(1, scalar(short_value(7))));
    std::string const bytes =
        "02000000"
        "FFFFFFFF 01000000 '" +
        names.lesser.str() +
        "' 01000000 01000000"
        "FEFFFFFF 00000000 07000000 06000000 02000000 00000000 04000000"
        "FDFFFFFF 01000000 '" +
        names.greater.str() +
        "' 02000000 00000000"
        "02000000 08000000 06000000 02000000 00000000 04000000"
        "46  00000000 00000000 00000000";
    wire::expect(one_way, bytes);
    wire::expect(other_way, bytes);
}

// Required: the counts are not compared first, unlike for a list.
TEST(StructureFields, OrderLexicographically) {
    order::Handles const names;
    auto const           known = std::pair(1, scalar(value(0)));
    order::expect_less(read_fields({}), read_fields({{{}, known}}));
    order::expect_less(read_fields({{names.lesser, known}}),
                       read_fields({{names.lesser, known}, {names.greater, known}}));
    order::expect_less(read_fields({{names.lesser, known}, {names.greater, known}}),
                       read_fields({{names.greater, known}}));
    order::expect_equal(read_fields({{names.lesser, known}}), read_fields({{names.lesser, known}}));
}

TEST(StructureFields, EntriesOrderByNameNumberKindAndValue) {
    order::Handles const names;
    order::expect_less(read_fields({{names.lesser, {9, scalar(value(9))}}}),
                       read_fields({{names.greater, {1, pointer(value(1))}}}));
    order::expect_less(read_fields({{{}, {-1, scalar(value(9))}}}),
                       read_fields({{{}, {1, pointer(value(1))}}}));
    order::expect_less(read_fields({{{}, {1, pointer(value(9))}}}),
                       read_fields({{{}, {1, scalar(value(1))}}}));
    order::expect_less(read_fields({{{}, {1, scalar(value(1))}}}),
                       read_fields({{{}, {1, scalar(value(2))}}}));
}

// Required: entries that are neither less nor greater do not end the comparison.
TEST(StructureFields, EntriesOfUnsetKindArePassedOverInTheWalk) {
    order::Handles const names;
    auto                 with_unset = [&](std::int32_t number) {
        return read_fields({{names.lesser, {1, {}}}, {names.greater, {number, scalar(value(0))}}});
    };
    order::expect_less(with_unset(1), with_unset(2));
    order::expect_unordered(with_unset(1), with_unset(1));
}

// Required: the number is replaced, and the kind is read over that of the entry.
TEST(StructureFields, NameThatComesTwiceIsReadOverItsEntry) {
    auto read = [](char const* second_entry) {
        std::string const bytes =
            "02000000"
            "FFFFFFFF 01000000 'f' 05000000"
            "01000000 FEFFFFFF 00000000 00000000  05000000 03000000 '0' 00 00 03000000 '0' 00 00 46"
            "02000000 01000000 00000000 54 03000000 '1' 00 00 46  02000000 03000000 '0' 00 00"
            "01000000 06000000" +
            std::string(second_entry) + "46  09000000";
        return wire::read<Category::VORS_args>(hex::bytes(bytes)).fields;
    };
    auto const same_kind = read(
        "01000000 02000000 00000000  05000000 03000000 '0' 00 00 03000000 '0' 00 00 46"
        "02000000 01000000 00000000 54 03000000 '2' 00 00 46  02000000 03000000 '0' 00 00");
    ASSERT_EQ(same_kind.size(), 1u);
    EXPECT_EQ(same_kind.at({"f"}).first, 6);
    T_Information_Value both = with_interval(1);
    both.range.arm<"Value_Range">().intervals.emplace_back().choose<"Int_Interval">().lower = 2;
    EXPECT_EQ(same_kind.at({"f"}).second, scalar(both));

    auto const other_kind = read(
        "00000000 02000000 00000000  05000000 03000000 '0' 00 00 03000000 '0' 00 00 46"
        "02000000 01000000 00000000 54 03000000 '2' 00 00 46  02000000 03000000 '0' 00 00");
    ASSERT_EQ(other_kind.size(), 1u);
    EXPECT_EQ(other_kind.at({"f"}).first, 6);
    EXPECT_EQ(other_kind.at({"f"}).second, pointer(with_interval(2)));
}

TEST(StructureFields, ReadingOverHeldFieldsGrowsTheirIntervals) {
    Category::VORS_args held = read_fields(
        {{{"f"}, {1, scalar(with_interval(1))}}, {{"g"}, {2, scalar(with_interval(2))}}});
    wire::read_over(held, wire::write(read_fields({{{"f"}, {3, scalar(with_interval(4))}},
                                                   {{"h"}, {5, scalar(with_interval(6))}}})));
    ASSERT_EQ(held.fields.size(), 3u);
    EXPECT_EQ(held.fields.at({"f"}).first, 3);
    EXPECT_EQ(held.fields.at({"f"})
                  .second.arm<"Field_Scalar">()
                  .range.arm<"Value_Range">()
                  .intervals.size(),
              2u);
    EXPECT_EQ(held.fields.at({"g"}), std::pair(2, scalar(with_interval(2))));
    EXPECT_EQ(held.fields.at({"h"}), std::pair(5, scalar(with_interval(6))));
}

// ---- stack escape data ----

TEST(StackEscape, WritesEntriesInAddressOrderThenTheFlag) {
    order::Handles const names;
    wire::expect(Escape{{{names.greater, escape_info::May_Escape},
                         {names.lesser, escape_info::Surely_Out_Of_Stack}},
                        true},
                 "02000000  FFFFFFFF 01000000 '" + names.lesser.str() +
                     "' 03000000  FEFFFFFF 01000000 '" + names.greater.str() + "' 00000000  54");
    wire::expect(Escape(), "00000000  46");
}

// Required: a key is inserted before its value is read, so the last state of a repeated key is
// kept.
TEST(StackEscape, RepeatedKeyTakesItsLastState) {
    auto const read = wire::read<Escape>(
        hex::bytes("02000000  FFFFFFFF 01000000 'a' 01000000  01000000 03000000  46"));
    EXPECT_EQ(read, (Escape{{{{"a"}, escape_info::Surely_Out_Of_Stack}}, false}));

    constexpr char twice[] = "54 02000000 FFFFFFFF 01000000 'a' 01000000 01000000 03000000 46";
    Escape const   last{{{{"a"}, escape_info::Surely_Out_Of_Stack}}, false};
    EXPECT_EQ(wire::read<decltype(Category::VORP_args::escape_info)>(hex::bytes(twice)), last);
    EXPECT_EQ(wire::read<decltype(Category::VORPF_args::first_escape_info)>(hex::bytes(twice)),
              last);
    EXPECT_EQ(wire::read<decltype(Category::VORPF_args::second_escape_info)>(hex::bytes(twice)),
              last);
}

TEST(StackEscape, ReadingOptionalDataStartsAFreshMap) {
    std::optional<Escape> held = Escape{{{{"a"}, escape_info::No_Escape}}, true};
    wire::read_over(held, hex::bytes("54 01000000 FFFFFFFF 01000000 'b' 02000000 46"));
    EXPECT_EQ(held, (Escape{{{{"b"}, escape_info::Not_Computed}}, false}));
    wire::read_over(held, hex::bytes("46"));
    EXPECT_FALSE(held);
}

TEST(StackEscape, OrdersByMapThenFlag) {
    using namespace sml::Infos::Stack_Escape_Info_Data;
    order::Handles const names;
    order::expect_less(escaping({}), escaping(Escape()));
    order::expect_less(escaping(Escape({}, true)), escaping(Escape({{{}, May_Escape}}, false)));
    order::expect_less(escaping(Escape({{names.lesser, No_Escape}}, true)),
                       escaping(Escape({{names.greater, May_Escape}}, false)));
    order::expect_less(escaping(Escape({{names.lesser, May_Escape}}, true)),
                       escaping(Escape({{names.lesser, No_Escape}}, false)));
    order::expect_less(
        escaping(Escape({{names.lesser, May_Escape}, {names.greater, May_Escape}}, true)),
        escaping(Escape({{names.greater, May_Escape}}, false)));
    order::expect_less(escaping(Escape({{names.lesser, No_Escape}}, false)),
                       escaping(Escape({{names.lesser, No_Escape}}, true)));
    order::expect_equal(escaping(Escape({{names.lesser, No_Escape}}, true)),
                        escaping(Escape({{names.lesser, No_Escape}}, true)));
}

}  // namespace
