#include <sml/schema/IL_Extras.hpp>
#include "tests/core/string_table.hpp"
#include "tests/order.hpp"
#include "tests/schema/tables.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <concepts>
#include <list>
#include <stdexcept>
#include <string>
#include <utility>

namespace {

using sml::Strings_T;
using sml::IL_Extras::T_ZelvaniteResultData;
using sml::IL_Extras::VVIRZelvanitePragmasTag::T_PragmaParameter;
using std::string_literals::operator""s;

using Data = T_ZelvaniteResultData;
using ExtraData = sml::IL_Extras::ExprExtraData::T;
using Pragmas = std::list<T_PragmaParameter>;

template <class T>
concept HasLess = requires(T const& value) {
    value < value;
};
static_assert(!HasLess<Data> && !std::equality_comparable<Data>);
static_assert(!HasLess<T_PragmaParameter> && !std::equality_comparable<T_PragmaParameter>);

constexpr tables::ArmRow result_data[] = {
    {"ATTRIBUTE_COPY", "00000000"},
    {"ATTRIBUTE_COPY_ALL_EXCEPT", "00000000 'F'"},
    {"ATTRIBUTE_MODIFY", "00000000"},
    {"ATTRIBUTE_START", "00000000"},
    {"Annotated_Command", "00000000"},
    {"Assert", "FFFFFFFF 00000000  00000000"},
    {"Attribute_Pred", "FFFFFFFF 00000000  00000000"},
    {"Call", "'F' 'F'"},
    {"Clone", "FFFFFFFF 00000000  FFFFFFFF"},
    {"Environment_Modify_Attribute", "00000000"},
    {"Event", "'F'"},
    {"ExtraExprData", "FFFFFFFF  00000000"},
    {"FLOAT_MODEL_ROUND", "'F'  00000000 00000000 00000000"},
    {"Inspection_Point_IPT", "FFFFFFFF 00000000  00000000  FFFFFFFF"},
    {"Inspection_Point_Points_To", "'F'  FFFFFFFF 00000000  00000000"},
    {"Inspection_Point_UNR", "FFFFFFFF 00000000  00000000"},
    {"Loop_Until", "'F' 'F'  00000000"},
    {"MEMORY_BUILTIN", "00000000"},
    {"MEM_ALLOC", "'F'  FFFFFFFF  FFFFFFFF 00000000"},
    {"Marker", "FFFFFFFF 00000000  01000000"},
    {"No_Data"},
    {"POINTER_BUILTIN", "00000000"},
    {"Procedure_Declaration", "'F'  'FFFF'  00000000"},
    {"Program", "'F'  00000000  00000000"},
    {"QuestionRef", "FFFFFFFF 0000000000000000"},
    {"Variable_Value_Scalar", "00000000"},
};

TEST(ResultData, EveryArmHasItsTagItsNameAndItsDefaultPayload) {
    tables::expect_arms_with_catch_all<Data>(result_data);
}

TEST(ResultData, AnUnknownTagKeepsItsWord) {
    for (char const* const tag : {"1A000000", "F6FFFFFF"}) {
        std::string const bytes = hex::bytes(tag + "  2A000000"s);
        auto const        data = wire::read<Data>(bytes);
        EXPECT_EQ(data.arm<"Variable_Value_Scalar">(), 42);
        wire::expect(data, hex::shown(bytes));
        wire::expect(Data(data), hex::shown(bytes));
    }
}

TEST(ResultData, NoDataIsItsTagAlone) { wire::expect(tables::with_tag<Data>(20), "14000000"); }

TEST(ResultData, ListsOfAttributesWriteTheirCountAndElements) {
    Data  data;
    auto& copied = data.choose<"ATTRIBUTE_COPY">();
    copied.push_back({"a"s, {}});
    copied.push_back({"b"s, {{"a"s, -1}}});
    wire::expect(data,
                 "00000000  02000000  FFFFFFFF 01000000 'a' 'F'"
                 "  FEFFFFFF 01000000 'b' 'T' 01000000 FFFFFFFF");
    data.choose<"ATTRIBUTE_MODIFY">().push_back({"a"s, "b"s, {{"c"s, 1}}});
    wire::expect(data,
                 "02000000  01000000  FFFFFFFF 01000000 'a'  FEFFFFFF 01000000 'b'"
                 "  'T' FDFFFFFF 01000000 'c' 01000000");
    data.choose<"ATTRIBUTE_START">().push_back({"a"s, {{"c"s, 1}}, 2});
    wire::expect(data,
                 "03000000  01000000  FFFFFFFF 01000000 'a'"
                 "  'T' FEFFFFFF 01000000 'c' 01000000  02000000");
    data.choose<"Environment_Modify_Attribute">().push_back({"a"s, "b"s, {}});
    wire::expect(data, "09000000  01000000  FFFFFFFF 01000000 'a'  FEFFFFFF 01000000 'b'  'F'");
    data.choose<"ATTRIBUTE_COPY_ALL_EXCEPT">() = {{"a"s, "b"s}, {{"b"s, 3}}};
    wire::expect(data,
                 "01000000  02000000 FFFFFFFF 01000000 'a' FEFFFFFF 01000000 'b'"
                 "  'T' 02000000 03000000");
}

TEST(ResultData, AnnotationsFollowOneAnother) {
    Data  data;
    auto& annotations = data.choose<"Annotated_Command">();
    annotations.emplace_back().choose<"Simple_Annote">() = "a";
    annotations.emplace_back().choose<"Event_Annote">() = {"a"s, 1};
    wire::expect(data,
                 "04000000  02000000  02000000 FFFFFFFF 01000000 'a'"
                 "  00000000 01000000 01000000");
}

TEST(ResultData, PayloadsThatAreNoRecordsStandBehindTheTag) {
    Data data;
    data.choose<"Assert">() = {"a"s, -1};
    wire::expect(data, "05000000  FFFFFFFF 01000000 'a' FFFFFFFF");
    auto& [name, context] = data.choose<"Clone">();
    EXPECT_EQ(context.tag, -1);
    name = "c";
    context.choose<"Sub_Ctor">() = "d";
    wire::expect(data, "08000000  FFFFFFFF 01000000 'c'  02000000 FEFFFFFF 01000000 'd'");
    data.choose<"Inspection_Point_UNR">() = {"a"s, 2};
    wire::expect(data, "0F000000  FFFFFFFF 01000000 'a' 02000000");
    data.choose<"MEMORY_BUILTIN">() = sml::IL::Memset;
    wire::expect(data, "11000000  02000000");
    data.choose<"POINTER_BUILTIN">() = sml::IL::Pointer_Offset;
    wire::expect(data, "15000000  02000000");
    auto& question = data.choose<"QuestionRef">();
    EXPECT_EQ(question.which, -1);
    question.which = 1;
    question.value = 0x0102030405060708;
    wire::expect(data, "18000000  01000000 0807060504030201");
    data.choose<"Variable_Value_Scalar">() = sml::Variable_Value::MODE_USER_INIT;
    wire::expect(data, "19000000  03000000");
}

TEST(ResultData, RecordsOfTheArmsWriteTheirFieldsInOrder) {
    wire::expect(Data::Attribute_Pred_args{"a"s, {-2}}, "FFFFFFFF 01000000 'a'  01000000 FEFFFFFF");
    wire::expect(ExtraData{tables::with_tag<sml::Checks::T_Check_Category>(1), 5},
                 "01000000  05000000");
    wire::expect(Data::FLOAT_MODEL_ROUND_args{true, {1, 2, 3}}, "'T'  01000000 02000000 03000000");
    wire::expect(Data::Inspection_Point_IPT_args{"a"s, 4, tables::with_tag<sml::IL::T_Type_Op>(1)},
                 "FFFFFFFF 01000000 'a'  04000000  01000000");
    wire::expect(Data::Inspection_Point_Points_To_args{true, "a"s, -4},
                 "'T'  FFFFFFFF 01000000 'a'  FCFFFFFF");
    wire::expect(
        Data::Loop_Until_args{{{"a"s, 1}}, {{{"b"s, 2}, {"a"s, 3}}}, sml::IL::TRIVIAL_LOOP},
        "'T' FFFFFFFF 01000000 'a' 01000000"
        "  'T' FEFFFFFF 01000000 'b' 02000000 01000000 03000000  02000000");
    Data::MEM_ALLOC_args allocation{true, {}, "a"s};
    allocation.operation.choose<"Malloc">().flag = true;
    wire::expect(allocation, "'T'  02000000 'T'  FFFFFFFF 01000000 'a'");
    wire::expect(Data::Marker_args{"a"s, "b"s}, "FFFFFFFF 01000000 'a'  FEFFFFFF 01000000 'b'");
}

TEST(ResultData, ReadingAnEqualTagAddsToAList) {
    Data data;
    data.choose<"ATTRIBUTE_COPY">().push_back({"held"s, {}});
    auto const* const held = &data.arm<"ATTRIBUTE_COPY">().front();
    wire::read_over(data, hex::bytes("00000000  01000000  FFFFFFFF 03000000 'new' 'F'"));
    ASSERT_EQ(data.arm<"ATTRIBUTE_COPY">().size(), 2u);
    EXPECT_EQ(&data.arm<"ATTRIBUTE_COPY">().front(), held);
    EXPECT_EQ(held->name.str(), "held");
    EXPECT_EQ(data.arm<"ATTRIBUTE_COPY">().back().name.str(), "new");
}

TEST(ResultData, ReadingAnotherTagDestroysTheArm) {
    Data data;
    data.choose<"Marker">().first_name = "dropped by the data";
    wire::read_over(data, hex::bytes("14000000"));
    EXPECT_TRUE(data.holds<"No_Data">());
    EXPECT_EQ(string_table::count_of("dropped by the data"), 0u);
    wire::read_over(data, hex::bytes("13000000 FFFFFFFF 00000000 01000000"));
    EXPECT_EQ(data.arm<"Marker">().first_name.str(), "");
}

TEST(ResultData, CopiesAreDeep) {
    Data original;
    original.choose<"Event">().event.emplace()->choose<"MALLOC_EVENT">() = "a";
    Data copy = original;
    copy.arm<"Event">().event.value()->arm<"MALLOC_EVENT">() = "b";
    EXPECT_EQ(original.arm<"Event">().event.value()->arm<"MALLOC_EVENT">().str(), "a");
}

TEST(EventData, AnAbsentEventIsOneByte) {
    wire::expect(Data::Event_args{}, "'F'");
    Data::Event_args event;
    event.event.emplace()->choose<"THROW">();
    wire::expect(event, "'T' 19000000");
}

TEST(EventData, ReadingAnAbsentEventFreesThePresentOne) {
    Data::Event_args event;
    event.event.emplace()->choose<"MALLOC_EVENT">() = "freed with the event";
    wire::read_over(event, "F");
    EXPECT_FALSE(event.event.has_value());
    EXPECT_EQ(string_table::count_of("freed with the event"), 0u);
}

TEST(EventData, ReadingAPresentEventMakesItAnew) {
    Data::Event_args event;
    event.event.emplace()->choose<"CRITICAL_SECTION_EVENT">().signatures.resize(2);
    std::string const bytes = wire::write(event);
    wire::read_over(event, bytes);
    EXPECT_EQ(event.event.value()->arm<"CRITICAL_SECTION_EVENT">().signatures.size(), 2u);
}

TEST(EventData, ComparesByValueAndAbsentIsLess) {
    Data::Event_args const absent;
    Data::Event_args       present;
    present.event.emplace()->choose<"MALLOC_EVENT">() = "a";
    order::expect_equal(absent, absent);
    order::expect_less(absent, present);
    order::expect_equal(present, Data::Event_args(present));
    present.event.value()->choose<"THROW">();
    order::expect_equal_and_each_less(present, Data::Event_args(present));
}

TEST(AttributePredicate, OfOneNameAndSizeAreNeverOrdered) {
    Data::Attribute_Pred_args const first{"a"s, {1, 2}};
    order::expect_unordered(first, Data::Attribute_Pred_args{"a"s, {3, 4}});
    order::expect_unordered(first, Data::Attribute_Pred_args{"a"s, {1, 3}});
    order::expect_equal(first, Data::Attribute_Pred_args{"a"s, {2, 1}});
}

TEST(AttributePredicate, OrdersByNameThenSize) {
    order::Handles const names;
    using Predicate = Data::Attribute_Pred_args;
    order::expect_less(Predicate{names.lesser, {1, 2}}, Predicate{names.greater, {}});
    order::expect_less(Predicate{"a"s, {100}}, Predicate{"a"s, {1, 2}});
}

TEST(AttributePredicate, ReadingAddsToTheValues) {
    Data::Attribute_Pred_args predicate{"a"s, {1}};
    wire::read_over(predicate, hex::bytes("FFFFFFFF 01000000 'b'  02000000 01000000 02000000"));
    EXPECT_EQ(predicate.name.str(), "b");
    EXPECT_EQ(predicate.values, (std::unordered_set<sml::int32>{1, 2}));
    Data fresh;
    EXPECT_EQ(fresh.choose<"Attribute_Pred">().values.bucket_count(), 1u);
    EXPECT_EQ(fresh.arm<"Attribute_Pred">().values.max_load_factor(), 1.0f);
}

TEST(ResultData, AbsentNumberedNamesAreLess) {
    order::expect_less(Data::__unnamed_record_1{}, Data::__unnamed_record_1{{}, {{""s, -9}}});
    order::expect_less(Data::Loop_Until_args{}, Data::Loop_Until_args{{{""s, -9}}, {}, {}});
    Data::Loop_Until_args pair;
    pair.name_pair.emplace();
    order::expect_less(Data::Loop_Until_args{}, pair);
}

TEST(ResultData, ExceptedNamesCompareTheirCountFirst) {
    order::Handles const names;
    using Except = Data::ATTRIBUTE_COPY_ALL_EXCEPT_args;
    order::expect_less(Except{{names.greater}, {}}, Except{{names.lesser, names.lesser}, {}});
    order::expect_less(Except{{names.lesser, names.greater}, {}},
                       Except{{names.greater, names.lesser}, {}});
    order::expect_less(Except{{names.lesser}, {}}, Except{{names.lesser}, {{""s, 0}}});
}

using Key = std::pair<Strings_T, sml::int32>;

TEST(CallData, MappingsAreWrittenInTheOrderOfTheirKeys) {
    order::Handles const names;
    Data::Call_args      call;
    call.mapping.emplace();
    (*call.mapping)[Key(names.greater, 1)] = {"x"s, 2};
    (*call.mapping)[Key(names.lesser, 4)] = {"x"s, 5};
    (*call.mapping)[Key(names.lesser, -3)] = {"x"s, 6};
    wire::expect(call,
                 "'T' 03000000"
                 "  FFFFFFFF 01000000 '" +
                     names.lesser.str() +
                     "' FDFFFFFF"
                     "  FEFFFFFF 01000000 'x' 06000000"
                     "  01000000 04000000  02000000 05000000"
                     "  FDFFFFFF 01000000 '" +
                     names.greater.str() +
                     "' 01000000"
                     "  02000000 02000000"
                     "  'F'");
}

TEST(CallData, AKeyThatComesTwiceKeepsItsFirstValue) {
    auto const call = wire::read<Data::Call_args>(
        hex::bytes("'T' 02000000"
                   "  FFFFFFFF 01000000 'k' 01000000  FEFFFFFF 05000000 'first' 02000000"
                   "  01000000 01000000  FDFFFFFF 04000000 'last' 03000000"
                   "  'F'"));
    ASSERT_EQ(call.mapping->size(), 1u);
    EXPECT_EQ(call.mapping->begin()->second, Key("first"s, 2));
}

TEST(CallData, MappingsCompareEntryByEntryBeforeTheirSize) {
    order::Handles const names;
    auto call = [](std::map<Key, Key> mapping) { return Data::Call_args{std::move(mapping), {}}; };
    Key const low(names.lesser, 0);
    Key const high(names.greater, 0);
    order::expect_less(Data::Call_args{}, call({}));
    order::expect_less(call({}), call({{low, low}}));
    order::expect_less(call({{low, low}}), call({{low, low}, {high, low}}));
    order::expect_less(call({{low, low}, {high, low}}), call({{high, low}}));
    order::expect_less(call({{low, low}, {high, high}}), call({{low, high}}));
    Data::Call_args numbered = call({{low, low}});
    numbered.numbered_name.emplace();
    order::expect_less(call({{low, low}}), numbered);
}

TEST(InspectionPoint, AnIntegerOperationEndsTheOrder) {
    order::Handles const            names;
    Data::Inspection_Point_IPT_args point{names.lesser, 0, tables::with_tag<sml::IL::T_Type_Op>(1)};
    order::expect_equal_and_each_less(point, Data::Inspection_Point_IPT_args(point));
    Data::Inspection_Point_IPT_args other = point;
    other.name = names.greater;
    order::expect_less(point, other);
    other = point;
    other.type_op.choose<"Float_Op">().format.first_int = 100;
    order::expect_less(other, point);
    other.type_op = sml::IL::T_Type_Op();
    order::expect_less(other, point);
    order::expect_unordered(other, other);
}

TEST(MemAllocData, AnOperationWithoutPayloadEndsTheOrderBeforeTheName) {
    order::Handles const names;
    using Arms = sml::Mem_Alloc_BuiltIn_Operation::T_Operation::arms;
    for (std::int32_t tag = 0; tag < Arms::count; ++tag) {
        SCOPED_TRACE(tag);
        Data::MEM_ALLOC_args a;
        a.operation.choose_tag(tag);
        a.name = names.lesser;
        Data::MEM_ALLOC_args b = a;
        b.name = names.greater;
        bool const bare = !Arms::has_payload[static_cast<std::size_t>(tag)];
        EXPECT_EQ(a < a, bare);
        EXPECT_TRUE(a == a);
        EXPECT_TRUE(a < b);
        EXPECT_EQ(b < a, bare);
        EXPECT_FALSE(a == b);
    }
    Data::MEM_ALLOC_args const unset;
    order::expect_unordered(unset, unset);
    Data::MEM_ALLOC_args a;
    a.operation.choose<"Malloc">();
    a.name = names.greater;
    Data::MEM_ALLOC_args b = a;
    b.operation.arm<"Malloc">().flag = true;
    b.name = names.lesser;
    order::expect_less(a, b);
}

TEST(ExtraExprData, ACategoryWithoutPayloadEndsTheOrderBeforeTheNumber) {
    ExtraData a;
    a.category.choose<"ACER">();
    ExtraData b = a;
    b.first_int = 1;
    order::expect_equal_and_each_less(a, a);
    order::expect_unequal_and_each_less(a, b);
    a.category.choose<"CC">();
    b.category.choose<"CC">();
    order::expect_less(a, b);
    order::expect_unordered(ExtraData(), ExtraData());
}

TEST(ProcedureDeclaration, AlwaysWritesFourFlagBytes) {
    Data::Procedure_Declaration_args declaration;
    wire::expect(declaration, "'F'  'FFFF'  00000000");
    declaration.flags = {true, false, true, false};
    wire::expect(declaration, "'F'  'TFTF'  00000000");
    declaration.flags = {true, true, true, true};
    declaration.text = "f()";
    declaration.first_int = -1;
    wire::expect(declaration, "'T' 03000000 'f()'  'TTTT'  FFFFFFFF");
    declaration.text = "";
    wire::expect(declaration, "'T' 00000000  'TTTT'  FFFFFFFF");
}

TEST(ProcedureDeclaration, ItsTextIsNotInterned) {
    Data::Procedure_Declaration_args declaration;
    declaration.text = "same";
    wire::expect(std::pair(declaration, declaration),
                 "'T' 04000000 'same' 'FFFF' 00000000  'T' 04000000 'same' 'FFFF' 00000000");
    EXPECT_EQ(string_table::count_of("same"), 0u);
}

TEST(ProcedureDeclaration, TextsCompareAsTextsAndFlagsOneByOne) {
    using Declaration = Data::Procedure_Declaration_args;
    order::expect_less(Declaration{{}, {true}, 0}, Declaration{"", {}, 0});
    order::expect_less(Declaration{{}, {false, true, true, true}, 0}, Declaration{{}, {true}, 0});
    order::expect_less(Declaration{{}, {}, 1}, Declaration{{}, {false, false, false, true}, 0});
    order::expect_less(Declaration{"ab", {}, 0}, Declaration{"b", {}, 0});
    order::expect_less(Declaration{"a", {}, 0}, Declaration{"ab", {}, 0});
    order::expect_less(Declaration{"\x7F", {}, 0}, Declaration{"\x80", {}, 0});
}

TEST(ProgramData, WritesResultsAttributesAndMaps) {
    Data::Program_args program;
    program.results.emplace().first_int = 7;
    program.attributes["a"s].flag = true;
    program.tables["t"s]["u"s] = {{-1, true}, "a"s};
    wire::expect(program,
                 "'T' 07000000"
                 "  00000000 00000000 00000000 00000000 00000000 00000000 00000000"
                 "  00000000 00000000 00000000 00000000 00000000 00000000"
                 "  01000000 FFFFFFFF 01000000 'a'  'T' 00000000 FFFFFFFF 00000000 00000000"
                 "  01000000 FEFFFFFF 01000000 't'  01000000 FDFFFFFF 01000000 'u'"
                 "  FFFFFFFF 'T' 01000000");
}

TEST(ProgramData, StartsWithoutResultsAndWithEmptyMaps) {
    Data        data;
    auto const& program = data.choose<"Program">();
    EXPECT_FALSE(program.results.has_value());
    EXPECT_TRUE(program.attributes.empty());
    EXPECT_EQ(program.attributes.bucket_count(), 1u);
    EXPECT_EQ(program.attributes.max_load_factor(), 1.0f);
    EXPECT_TRUE(program.tables.empty());
}

TEST(ProgramData, MapsAreWrittenInTheOrderOfTheirHandles) {
    order::Handles const names;
    Data::Program_args   program;
    program.tables[names.greater];
    auto& inner = program.tables[names.lesser];
    inner[names.greater] = {{1, false}, {}};
    inner[names.lesser] = {{2, false}, {}};
    wire::expect(program,
                 "'F'  00000000  02000000"
                 "  FFFFFFFF 01000000 '" +
                     names.lesser.str() +
                     "'  02000000"
                     "  01000000  02000000 'F' FEFFFFFF 00000000"
                     "  FDFFFFFF 01000000 '" +
                     names.greater.str() +
                     "'  01000000 'F' 02000000"
                     "  03000000  00000000");
}

TEST(ProgramData, ReadingKeepsTheOldAttributesAndAddsNewOnes) {
    Data::Program_args program;
    program.attributes["held"s].flag = true;
    auto const* const held = &program.attributes["held"s];
    wire::read_over(program,
                    hex::bytes("'F'  02000000"
                               "  FFFFFFFF 04000000 'held'  'F' 00000000 00000000 00000000 00000000"
                               "  FEFFFFFF 03000000 'new'  'F' 00000000 02000000 00000000 00000000"
                               "  00000000"));
    ASSERT_EQ(program.attributes.size(), 2u);
    EXPECT_EQ(&program.attributes["held"s], held);
    EXPECT_TRUE(held->flag);
    EXPECT_EQ(held->kind.tag, -1);
    EXPECT_EQ(program.attributes["new"s].kind.tag, 2);
}

TEST(ProgramData, ATableThatComesTwiceKeepsItsFirstEntriesWhole) {
    auto const program =
        wire::read<Data::Program_args>(hex::bytes("'F'  00000000  02000000"
                                                  "  FFFFFFFF 01000000 't'  02000000"
                                                  "  FEFFFFFF 01000000 'u' 01000000 'T' 01000000"
                                                  "  02000000 02000000 'F' 02000000"
                                                  "  01000000  01000000"
                                                  "  FDFFFFFF 01000000 'v' 03000000 'F' 03000000"));
    ASSERT_EQ(program.tables.size(), 1u);
    auto const& inner = program.tables.begin()->second;
    ASSERT_EQ(inner.size(), 1u);
    EXPECT_EQ(inner.begin()->first.str(), "u");
    EXPECT_EQ(inner.begin()->second.first, std::pair(1, true));
}

TEST(ProgramData, ReadingResultsMakesThemAnew) {
    Data::Program_args program;
    program.results.emplace().check_numbers["held"s] = 1;
    std::string const bytes =
        hex::bytes("'T' 02000000") + std::string(13 * 4, '\0') + hex::bytes("00000000 00000000");
    wire::read_over(program, bytes);
    EXPECT_EQ(program.results->first_int, 2);
    EXPECT_TRUE(program.results->check_numbers.empty());
    wire::read_over(program, hex::bytes("'F'  00000000  00000000"));
    EXPECT_FALSE(program.results.has_value());
}

TEST(ProgramData, AnEntryThatCannotBeReadLeavesTheOnesBefore) {
    Data::Program_args program;
    EXPECT_THROW(
        wire::read_over(program,
                        hex::bytes("'F'  02000000"
                                   "  FFFFFFFF 05000000 'first'  'T' 00000000 02000000 00000000"
                                   " 00000000"
                                   "  FEFFFFFF 06000000 'second'  'T' 00000000 01000000 'F' 'F'"
                                   " 00000000 01000000 FDFFFFFF FEFFFFFF")),
        std::length_error);
    ASSERT_EQ(program.attributes.size(), 1u);
    EXPECT_TRUE(program.attributes["first"s].flag);
    EXPECT_EQ(string_table::count_of("second"), 0u);
}

Data::Program_args with_attributes(std::initializer_list<std::pair<char const*, bool>> flags) {
    Data::Program_args program;
    for (auto const& [name, flag] : flags) {
        auto& attribute = program.attributes[Strings_T(name)];
        attribute.flag = flag;
        attribute.kind.choose<"NUMERICAL_ATTRIBUTE">();
    }
    return program;
}

TEST(ProgramData, AttributesOrderBySizeThenByTheValuesOfTheSameKeys) {
    order::expect_less(with_attributes({{"a", true}}),
                       with_attributes({{"b", false}, {"c", false}}));
    order::expect_unordered(with_attributes({{"a", false}}), with_attributes({{"b", true}}));
    order::expect_less(with_attributes({{"a", false}}), with_attributes({{"a", true}}));
    order::expect_less(with_attributes({{"a", false}, {"b", false}}),
                       with_attributes({{"b", true}, {"a", false}}));
    order::expect_equal(with_attributes({{"a", false}, {"b", true}}),
                        with_attributes({{"b", true}, {"a", false}}));
    auto with_table = with_attributes({{"b", true}});
    with_table.tables["t"s];
    order::expect_unordered(with_attributes({{"a", false}}), with_table);
    order::expect_less(with_attributes({{"b", true}}), with_table);
}

TEST(ProgramData, TheWalkOverAttributesStopsAtTheFirstThatDiffers) {
    auto const a = with_attributes({{"a", false}, {"b", true}});
    auto const b = with_attributes({{"a", true}, {"b", false}});
    auto       first_is_less = [](auto const& left, auto const& right) {
        auto const& [name, value] = *left.attributes.begin();
        return value.flag < right.attributes.at(name).flag;
    };
    EXPECT_EQ(a < b, first_is_less(a, b));
    EXPECT_EQ(b < a, first_is_less(b, a));
    EXPECT_FALSE(a == b);
}

TEST(ProgramData, AnAttributeThatIsLessThanItselfMakesTheProgramLess) {
    Data::Program_args program;
    program.attributes["a"s].kind.choose<"SIMPLE_ATTRIBUTE">();
    order::expect_equal_and_each_less(program, program);
}

TEST(ProgramData, AnUnsetAttributeIsPassedOverButNotEqual) {
    Data::Program_args program;
    program.attributes["a"s];
    Data::Program_args other = program;
    other.tables["t"s];
    order::expect_unordered(program, other);
}

TEST(ProgramData, MapsOrderEntryByEntryBeforeTheirSize) {
    order::Handles const names;
    auto                 program = [](Strings_T const& table, std::initializer_list<int> numbers,
                      Strings_T const& key, bool flag, Strings_T const& text) {
        Data::Program_args result;
        for (int const number : numbers) result.tables[table][key] = {{number, flag}, text};
        return result;
    };
    auto const& low = names.lesser;
    auto const& high = names.greater;
    auto const  base = program(low, {-1}, low, false, low);
    order::expect_less(program(low, {}, low, false, low), base);
    order::expect_less(base, program(high, {-1}, low, false, low));
    order::expect_less(base, program(low, {-1}, high, false, low));
    order::expect_less(base, program(low, {0}, low, false, low));
    order::expect_less(base, program(low, {-1}, low, true, low));
    order::expect_less(base, program(low, {-1}, low, false, high));
    order::expect_less(program(low, {-1}, low, true, high), program(low, {0}, low, false, low));
    order::expect_less(program(low, {-1}, low, false, high), program(low, {-1}, low, true, low));
    auto longer = base;
    longer.tables[high];
    order::expect_less(base, longer);
    order::expect_less(longer, program(high, {-1}, low, false, low));
}

TEST(PragmaParameter, EveryArmHasItsTagItsNameAndItsDefaultPayload) {
    tables::expect_arms_with_catch_all<T_PragmaParameter>(
        {{"BOOL_PRAGMA_PARAMETER", "'F'"},
         {"INT_PRAGMA_PARAMETER", "00000000"},
         {"OBJ_PRAGMA_PARAMETER", "0000000000000000"},
         {"PATH_PRAGMA_PARAMETER", "0000000000000000"},
         {"SOURCE_LOC_PRAGMA_PARAMETER", "00000000 0000000000000000 00000000"},
         {"STRING_PRAGMA_PARAMETER", "0000000000000000"}});
}

TEST(PragmaParameter, EveryUnknownTagHasAnOpaqueWord) {
    auto const parameter = wire::read<T_PragmaParameter>(hex::bytes("06000000 0807060504030201"));
    EXPECT_EQ(parameter.arm<"STRING_PRAGMA_PARAMETER">(), 0x0102030405060708u);
    wire::expect(parameter, "06000000 0807060504030201");
}

TEST(PragmaParameter, OpaqueWordsCrossAsTheyStand) {
    T_PragmaParameter parameter;
    parameter.choose<"BOOL_PRAGMA_PARAMETER">() = true;
    wire::expect(parameter, "00000000 'T'");
    parameter.choose<"INT_PRAGMA_PARAMETER">() = -2;
    wire::expect(parameter, "01000000 FEFFFFFF");
    parameter.choose<"OBJ_PRAGMA_PARAMETER">() = 0xFFFFFFFFFFFFFFFF;
    wire::expect(parameter, "02000000 FFFFFFFFFFFFFFFF");
    parameter.choose<"PATH_PRAGMA_PARAMETER">() = 0x0102030405060708;
    wire::expect(parameter, "03000000 0807060504030201");
    parameter.choose<"SOURCE_LOC_PRAGMA_PARAMETER">() = {0xFFFFFFFF, 0x0102030405060708, 1};
    wire::expect(parameter, "04000000  FFFFFFFF  0807060504030201  01000000");
    parameter.choose<"STRING_PRAGMA_PARAMETER">() = 0x8000000000000000;
    wire::expect(parameter, "05000000 0000000000000080");
}

TEST(PragmaParameter, PlacesCompareAsUnsignedOneAfterAnother) {
    using Place = T_PragmaParameter::SOURCE_LOC_PRAGMA_PARAMETER_args;
    order::expect_less(Place{1, 2, 2}, Place{0xFFFFFFFF, 1, 1});
    order::expect_less(Place{1, 1, 2}, Place{1, 0xFFFFFFFFFFFFFFFF, 1});
    order::expect_less(Place{1, 1, 1}, Place{1, 1, 0xFFFFFFFF});
}

TEST(PragmaParameter, ListsAreCountedAndReadingAppends) {
    Pragmas pragmas;
    pragmas.emplace_back().choose<"BOOL_PRAGMA_PARAMETER">() = true;
    wire::expect(pragmas, "01000000  00000000 'T'");
    wire::read_over(pragmas, hex::bytes("02000000  01000000 05000000  FFFFFFFF 0900000000000000"));
    ASSERT_EQ(pragmas.size(), 3u);
    EXPECT_TRUE(pragmas.front().arm<"BOOL_PRAGMA_PARAMETER">());
    EXPECT_EQ(std::next(pragmas.begin())->arm<"INT_PRAGMA_PARAMETER">(), 5);
    EXPECT_EQ(pragmas.back().tag, -1);
    EXPECT_EQ(pragmas.back().arm<"STRING_PRAGMA_PARAMETER">(), 9u);
}

}  // namespace
