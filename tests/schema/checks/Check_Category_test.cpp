#include <sml/schema/Checks.hpp>
#include "tests/core/string_table.hpp"
#include "tests/order.hpp"
#include "tests/schema/tables.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <list>
#include <string>
#include <utility>

using Category = sml::Checks::T_Check_Category;
using sml::Checks::T_Incorrect_Call;
using sml::Checks::T_Ovfl_Data;
using Selector = sml::AccessPath::Selector::T_private_selector;

namespace {

// "FFFFFFFF 00000000" is the first empty text, "01000000" each later one.
constexpr tables::ArmRow arms[] = {
    {"ABSOLUTE_ADDRESS", "46  FFFFFFFF 00000000"},
    {"ACER"},
    {"ADA_EXCP", "FFFFFFFF 00000000"},
    {"ADA_FE", "FFFFFFFF 00000000"},
    {"ADA_POW"},
    {"ASSERT"},
    {"ASSERT_QUESTION", "46  46  FFFFFFFF 0000000000000000  46"},
    {"BAD_FLOAT_OP"},
    {"BAD_LOCK"},
    {"BAD_UNLOCK"},
    {"BF_CHECKER_SILENT"},
    {"BF_CHECKER_WITH_PRECOMPUTED_MESSAGE", "FFFFFFFF 00000000"},
    {"BLOCKING_WHILE_LOCKED", "FFFFFFFF FFFFFFFF 00000000"},
    {"CALL_FPPF", "00000000  46  46"},
    {"CALL_IRV", "FFFFFFFF 00000000"},
    {"CC", "FFFFFFFF 00000000"},
    {"CONV_NAN_TO_INT"},
    {"CONV_OVFL", "FFFFFFFF 00000000  01000000  FFFFFFFF 46  46  01000000"},
    {"CPP_Vor", "FFFFFFFF  FFFFFFFF  FFFFFFFF 00000000 01000000  00000000  46"},
    {"CTR", "46"},
    {"DATA_FLOW_FINDING", "FFFFFFFF  FFFFFFFF 00000000 01000000"},
    {"DATA_RACE",
     "46  00000000  FFFFFFFF 00000000"
     "00000000 00000000 01000000 00000000 0000000000000000"},
    {"DATA_RACE_BIT_FIELDS",
     "46  00000000  FFFFFFFF 00000000"
     "00000000 00000000 01000000 00000000 0000000000000000"},
    {"DATA_RACE_STD_LIB", "FFFFFFFF 00000000"},
    {"DCTp"},
    {"DCTr"},
    {"DEADLOCK"},
    {"DESTROY_LOCKED",
     "00000000  FFFFFFFF 00000000"
     "01000000 01000000 01000000 01000000  01000000 01000000 01000000 01000000"},
    {"DOUBLE_LOCK"},
    {"DOUBLE_UNLOCK"},
    {"DRS", "FFFFFFFF 00000000"},
    {"DV_ASSERT", "00000000"},
    {"EEXU"},
    {"EXD"},
    {"FAP"},
    {"FLOAT_ABSORPTION", "46  FFFFFFFF 00000000"},
    {"FNC", "FFFFFFFF 00000000 01000000 01000000 01000000"},
    {"FNR", "FFFFFFFF 00000000 01000000 01000000 01000000"},
    {"FRV"},
    {"GLOBAL_SET_AT_INITIALIZATION"},
    {"IDP"},
    {"IDR", "46  46"},
    {"INIT_EXCEED_ALLOC"},
    {"INT_TO_FLOAT_PRECISION_LOSS"},
    {"LEAK", "FFFFFFFF 00000000  00000000"},
    {"LSHFP"},
    {"NIP", "46  46"},
    {"NIV", "46  FFFFFFFF 00000000"},
    {"NIV_STRUCT", "46"},
    {"NNR", "46"},
    {"NON_FINITE_INF", "46  46"},
    {"NON_FINITE_NAN", "46"},
    {"NTA", "46"},
    {"NTC", "46  FFFFFFFF 00000000 01000000 01000000 01000000  46  00000000"},
    {"NTL", "FFFFFFFF 00000000  00000000  46  46"},
    {"NULL"},
    {"OBAI", "FFFFFFFF 00000000  00000000"},
    {"OVFL", "FFFFFFFF 00000000  46  FFFFFFFF 46  46  01000000"},
    {"PAS"},
    {"PCF"},
    {"PLACEMENT_NEW"},
    {"PMF"},
    {"POSITIVE_VLA"},
    {"PVC", "46"},
    {"RESOURCE", "FFFFFFFF 00000000 01000000  01000000"},
    {"SECURITY", "FFFFFFFF 00000000 01000000  01000000"},
    {"SEH"},
    {"SHF", "FFFFFFFF 00000000  00000000"},
    {"STACK_POINTER", "00000000  FFFFFFFF 00000000"},
    {"STD_LIB",
     "00000000  00000000  00000000  FFFFFFFF 00000000 01000000 01000000"
     "00000000  01000000  00000000"},
    {"SUBNORMAL", "46  46"},
    {"THD", "46  46"},
    {"THR", "46"},
    {"TID"},
    {"UNR"},
    {"USER_GLOBAL_ASSERT", "FFFFFFFF 00000000  01000000"},
    {"ZDV"},
};

template <sml::core::Name ArmName>
Category category() {
    Category result;
    result.choose<ArmName>();
    return result;
}

template <sml::core::Name ArmName, class Payload>
Category category(Payload const& payload) {
    Category result;
    result.choose<ArmName>() = payload;
    return result;
}

T_Ovfl_Data single_ovfl(bool flag) {
    T_Ovfl_Data data;
    data.choose<"Single_Ovfl">().first_flag = flag;
    return data;
}

T_Incorrect_Call wrong_call(std::int32_t number) {
    T_Incorrect_Call call;
    call.choose<"CALL_WTA">().first_int = number;
    return call;
}

Selector element(std::int32_t index) {
    Selector selector;
    selector.choose<"Array_element">() = index;
    return selector;
}

sml::PackagedPrettySignature::T signature(char const* text) {
    return {{text}, {{text}, {{text}, {text}}}};
}

// ---- arms ----

TEST(CheckCategory, Has77ArmsWithTheirPayloads) { tables::expect_arms<Category>(arms); }

TEST(CheckCategory, ArmsAreReachedByName) {
    EXPECT_EQ(category<"ABSOLUTE_ADDRESS">().tag, 0);
    EXPECT_EQ(category<"CPP_Vor">().tag, 18);
    EXPECT_EQ(category<"CTR">().tag, 19);
    EXPECT_EQ(category<"DCTp">().tag, 24);
    EXPECT_EQ(category<"DCTr">().tag, 25);
    EXPECT_EQ(category<"NULL">().tag, 55);
    EXPECT_EQ(category<"ZDV">().tag, 76);
    EXPECT_TRUE(category<"NULL">().holds<"NULL">());
    EXPECT_FALSE(category<"NULL">().holds<"OBAI">());
}

TEST(CheckCategory, AcerIsFourBytes) { wire::expect(category<"ACER">(), "01 00 00 00"); }

TEST(CheckCategory, ZdvUnrAndTidAreTheirTagAloneAndThdAndThrAreNot) {
    wire::expect(category<"ZDV">(), "4C000000");
    wire::expect(category<"UNR">(), "4A000000");
    wire::expect(category<"TID">(), "49000000");
    wire::expect(category<"THD">(), "47000000  46  46");
    wire::expect(category<"THR">(), "48000000  46");
}

TEST(CheckCategory, CppVorIsFollowedByTheTagOfItsStatementKind) {
    Category value;
    value.choose<"CPP_Vor">().choose<"F_CALL">();
    wire::expect(value, "12000000  09000000");
    value.choose<"CPP_Vor">().choose<"IMPLICIT_CALL">() = std::string("f");
    wire::expect(value, "12000000  0C000000 FFFFFFFF 01000000 'f'");
}

// ---- the arms' records on the wire ----

TEST(CheckCategory, RecordsOfOneFieldWriteThatField) {
    wire::expect(Category::ADA_EXCP_args{{"a"}}, "FFFFFFFF 01000000 'a'");
    wire::expect(Category::ADA_FE_args{{"a"}}, "FFFFFFFF 01000000 'a'");
    wire::expect(Category::BF_CHECKER_WITH_PRECOMPUTED_MESSAGE_args{{"a"}},
                 "FFFFFFFF 01000000 'a'");
    wire::expect(Category::CALL_IRV_args{{"a"}}, "FFFFFFFF 01000000 'a'");
    wire::expect(Category::CC_args{{"a"}}, "FFFFFFFF 01000000 'a'");
    wire::expect(Category::CTR_args{{{"a"}}}, "54 FFFFFFFF 01000000 'a'");
    wire::expect(Category::DATA_RACE_STD_LIB_args{{"a"}}, "FFFFFFFF 01000000 'a'");
    wire::expect(Category::DRS_args{{"a"}}, "FFFFFFFF 01000000 'a'");
    wire::expect(Category::DV_ASSERT_args{-2}, "FEFFFFFF");
    wire::expect(Category::FNC_args{{{"p"}, {{"s"}, {{"q"}, {"n"}}}}},
                 "FFFFFFFF 01000000 'p' FEFFFFFF 01000000 's'"
                 "FDFFFFFF 01000000 'q' FCFFFFFF 01000000 'n'");
    wire::expect(Category::FNR_args{{{"p"}, {{"s"}, {{"q"}, {"n"}}}}},
                 "FFFFFFFF 01000000 'p' FEFFFFFF 01000000 's'"
                 "FDFFFFFF 01000000 'q' FCFFFFFF 01000000 'n'");
    wire::expect(Category::NIV_STRUCT_args{true}, "54");
    wire::expect(Category::NNR_args{{{"a"}}}, "54 FFFFFFFF 01000000 'a'");
    wire::expect(Category::NON_FINITE_NAN_args{true}, "54");
    wire::expect(Category::NTA_args{true}, "54");
    wire::expect(Category::PVC_args{{{"a"}}}, "54 FFFFFFFF 01000000 'a'");
    wire::expect(Category::THR_args{{{"a"}}}, "54 FFFFFFFF 01000000 'a'");
}

TEST(CheckCategory, RecordsOfFlagsStringsAndNumbersWriteFieldsInOrder) {
    wire::expect(Category::ABSOLUTE_ADDRESS_args{true, {"a"}}, "54  FFFFFFFF 01000000 'a'");
    wire::expect(Category::FLOAT_ABSORPTION_args{true, {"a"}}, "54  FFFFFFFF 01000000 'a'");
    wire::expect(Category::NIV_args{true, {"a"}}, "54  FFFFFFFF 01000000 'a'");
    wire::expect(Category::NIP_args{true, false}, "54  46");
    wire::expect(Category::NON_FINITE_INF_args{true, false}, "54  46");
    wire::expect(Category::SUBNORMAL_args{true, false}, "54  46");
    wire::expect(Category::IDR_args{{{"a"}}, {}}, "54 FFFFFFFF 01000000 'a'  46");
    wire::expect(Category::THD_args{{{"a"}}, {}}, "54 FFFFFFFF 01000000 'a'  46");
    wire::expect(Category::LEAK_args{{"a"}, sml::Checks::LEAK_END_OF_SCOPE},
                 "FFFFFFFF 01000000 'a'  01000000");
    wire::expect(Category::OBAI_args{{"a"}, 7}, "FFFFFFFF 01000000 'a'  07000000");
    wire::expect(Category::SHF_args{{"a"}, 7}, "FFFFFFFF 01000000 'a'  07000000");
    wire::expect(Category::USER_GLOBAL_ASSERT_args{{"a"}, {"b"}},
                 "FFFFFFFF 01000000 'a'  FEFFFFFF 01000000 'b'");
    wire::expect(Category::RESOURCE_args{{{"q"}, {"n"}}, {"a"}},
                 "FFFFFFFF 01000000 'q' FEFFFFFF 01000000 'n'  FDFFFFFF 01000000 'a'");
    wire::expect(Category::SECURITY_args{{{"q"}, {"n"}}, {"a"}},
                 "FFFFFFFF 01000000 'q' FEFFFFFF 01000000 'n'  FDFFFFFF 01000000 'a'");
    wire::expect(Category::STACK_POINTER_args{{{"a"}, {"b"}}, {"a"}},
                 "02000000 FFFFFFFF 01000000 'a' FEFFFFFF 01000000 'b'  01000000");
}

TEST(CheckCategory, AssertQuestionWritesFieldsInOrder) {
    Category::ASSERT_QUESTION_args record{5, true, {}, 6};
    record.question.choose<"QuestionPtr">() = 0x0102030405060708;
    wire::expect(record, "54 05000000  54  01000000 0807060504030201  54 06000000");
}

TEST(CheckCategory, BlockingWhileLockedWritesTheOperation) {
    Category::BLOCKING_WHILE_LOCKED_args record;
    record.operation.choose<"FUNCTION">() = {{"q"}, {"n"}};
    wire::expect(record, "00000000 FFFFFFFF 01000000 'q' FEFFFFFF 01000000 'n'");
    record.operation.choose<"LOOP">() = std::string("l");
    wire::expect(record, "01000000 FFFFFFFF 01000000 'l'");
}

TEST(CheckCategory, CallFppfWritesFieldsInOrder) {
    Category::CALL_FPPF_args record;
    record.incorrect_calls.emplace_back().choose<"CALL_WNA">().first_optional_int = 9;
    record.first_flag = true;
    wire::expect(record,
                 "01000000  01000000 54 09000000 FFFFFFFF 00000000 01000000 01000000 46  54  46");
}

TEST(CheckCategory, OverflowsWriteFieldsInOrder) {
    T_Ovfl_Data data;
    data.choose<"Merged_Ovfl">() = {3, 4};
    wire::expect(Category::CONV_OVFL_args{{"a"}, {"b"}, data, {{{"c"}, {"d"}}}, {"e"}},
                 "FFFFFFFF 01000000 'a'  FEFFFFFF 01000000 'b'  01000000 03000000 04000000"
                 "54 FDFFFFFF 01000000 'c' FCFFFFFF 01000000 'd'  FBFFFFFF 01000000 'e'");
    wire::expect(Category::OVFL_args{{"a"}, true, data, {{{"c"}, {"d"}}}, {"e"}},
                 "FFFFFFFF 01000000 'a'  54  01000000 03000000 04000000"
                 "54 FEFFFFFF 01000000 'c' FDFFFFFF 01000000 'd'  FCFFFFFF 01000000 'e'");
}

TEST(CheckCategory, DataFlowFindingWritesKindThenName) {
    Category::DATA_FLOW_FINDING_args record;
    record.kind.choose<"ARRAY_PARTIALLY_READ">() = {1, 2};
    record.name = {{"q"}, {"n"}};
    wire::expect(record,
                 "00000000 54 01000000 02000000"
                 "FFFFFFFF 01000000 'q' FEFFFFFF 01000000 'n'");
}

// The two are distinct types with the same parts. Only the tag distinguishes them.
TEST(CheckCategory, BothDataRacesWriteTheSameBytes) {
    constexpr std::string_view bytes =
        "54  01000000 00000000 54 03000000  FFFFFFFF 01000000 'a'"
        "01000000 02000000 FEFFFFFF 01000000 'f' 03000000 0400000000000000";
    Category::DATA_RACE_args const race{true, {element(3)}, {"a"}, {1, {2, {"f"}, 3}, 4}};
    Category::DATA_RACE_BIT_FIELDS_args const bit_fields{
        true, {element(3)}, {"a"}, {1, {2, {"f"}, 3}, 4}};
    wire::expect(race, bytes);
    wire::expect(bit_fields, bytes);
    wire::expect(category<"DATA_RACE">(race), "15000000" + std::string(bytes));
    wire::expect(category<"DATA_RACE_BIT_FIELDS">(bit_fields), "16000000" + std::string(bytes));
}

TEST(CheckCategory, DestroyLockedWritesFieldsInOrder) {
    wire::expect(Category::DESTROY_LOCKED_args{{{"a"}}, {"b"}, signature("c"), signature("d")},
                 "01000000 FFFFFFFF 01000000 'a'  FEFFFFFF 01000000 'b'"
                 "FDFFFFFF 01000000 'c' 03000000 03000000 03000000"
                 "FCFFFFFF 01000000 'd' 04000000 04000000 04000000");
}

TEST(CheckCategory, NtcWritesFieldsInOrder) {
    wire::expect(Category::NTC_args{{{{"a"}, 1}}, signature("b"), {{{"c"}, 2, true}}, 3},
                 "54 FFFFFFFF 01000000 'a' 01000000"
                 "FEFFFFFF 01000000 'b' 02000000 02000000 02000000"
                 "54 FDFFFFFF 01000000 'c' 02000000 54  03000000");
}

TEST(CheckCategory, NtlWritesFieldsInOrder) {
    wire::expect(Category::NTL_args{{"a"}, 1, {{{"b"}, 2, false}}, true},
                 "FFFFFFFF 01000000 'a'  01000000  54 FEFFFFFF 01000000 'b' 02000000 46  54");
}

TEST(CheckCategory, StdLibWritesFieldsInOrder) {
    Category::STD_LIB_args record;
    record.named_ints = {{{"a"}, 1}, {{"b"}, 2}};
    record.valid_args_by_name.emplace_back(std::string("c"),
                                           std::list<sml::Checks::T_Valid_Args_Checks_Datas>(1));
    record.first_int = 3;
    record.signature = {{"s"}, {{"q"}, {"n"}}};
    record.strings = {{"a"}, {"b"}};
    record.first_string = std::string("c");
    record.second_int = 4;
    wire::expect(record,
                 "02000000  FFFFFFFF 01000000 'a' 01000000  FEFFFFFF 01000000 'b' 02000000"
                 "01000000  FDFFFFFF 01000000 'c'"
                 "01000000  FCFFFFFF 00000000 04000000 00000000 04000000 04000000 46 00000000"
                 "03000000"
                 "FBFFFFFF 01000000 's' FAFFFFFF 01000000 'q' F9FFFFFF 01000000 'n'"
                 "02000000 01000000 02000000"
                 "03000000"
                 "04000000");
}

// ---- reading ----

TEST(CheckCategory, ReadingTheHeldArmReplacesValuesAndKeepsTheArm) {
    Category value =
        category<"STACK_POINTER">(Category::STACK_POINTER_args{{{"kept"}}, {"replaced"}});
    wire::read_over(value, hex::bytes("44000000  01000000 FFFFFFFF 05000000 'added'"
                                      "FEFFFFFF 03000000 'new'"));
    EXPECT_EQ(value.arm<"STACK_POINTER">(),
              (Category::STACK_POINTER_args{{{"kept"}, {"added"}}, {"new"}}));
    EXPECT_EQ(string_table::count_of("replaced"), 0u);
}

TEST(CheckCategory, ReadingAnotherTagDestroysTheArmAndMakesTheNewOneAfresh) {
    Category value = category<"STACK_POINTER">(
        Category::STACK_POINTER_args{{{"in the old arm"}}, {"in the old arm"}});
    EXPECT_EQ(string_table::count_of("in the old arm"), 2u);
    wire::read_over(value, hex::bytes("01000000"));
    EXPECT_TRUE(value.holds<"ACER">());
    EXPECT_EQ(string_table::count_of("in the old arm"), 0u);
    wire::read_over(value, hex::bytes("44000000  01000000 FFFFFFFF 08000000 'next arm'  01000000"));
    EXPECT_EQ(value.arm<"STACK_POINTER">(),
              (Category::STACK_POINTER_args{{{"next arm"}}, {"next arm"}}));
    wire::read_over(value, hex::bytes("4D000000"));
    EXPECT_EQ(value.tag, 77);
    EXPECT_EQ(string_table::count_of("next arm"), 0u);
}

TEST(CheckCategory, FreshNestedVariantsAreUnset) {
    EXPECT_EQ(category<"ASSERT_QUESTION">().arm<"ASSERT_QUESTION">().question.which, -1);
    EXPECT_EQ(category<"CONV_OVFL">().arm<"CONV_OVFL">().ovfl_data.tag, -1);
    EXPECT_EQ(category<"OVFL">().arm<"OVFL">().ovfl_data.tag, -1);
    EXPECT_EQ(category<"BLOCKING_WHILE_LOCKED">().arm<"BLOCKING_WHILE_LOCKED">().operation.tag, -1);
    EXPECT_EQ(category<"DATA_FLOW_FINDING">().arm<"DATA_FLOW_FINDING">().kind.tag, -1);
    EXPECT_EQ(category<"CPP_Vor">().arm<"CPP_Vor">().tag, -1);
}

// ---- order ----

// Required: this order is no strict weak one.
TEST(CheckCategory, OrdersByTagAndIsLessThanItselfWithoutPayload) {
    tables::expect_order_by_tag<Category>();
}

TEST(CheckCategory, AbsentOptionalIsLessThanPresent) {
    using Idr = Category::IDR_args;
    order::Handles const texts;
    order::expect_less(Idr{{}, texts.greater}, Idr{texts.lesser, {}});
    order::expect_less(Idr{{}, {}}, Idr{{}, texts.lesser});
    order::expect_less(Idr{texts.lesser, {}}, Idr{texts.greater, {}});
    order::expect_equal(Idr{{}, {}}, Idr{{}, {}});

    using Question = Category::ASSERT_QUESTION_args;
    Question lesser;
    lesser.question.choose<"QuestionId">();
    lesser.second_optional_int = 1;
    Question greater = lesser;
    greater.first_optional_int = -1;
    order::expect_less(lesser, greater);
}

TEST(CheckCategory, PairsAndTuplesOrderPartByPart) {
    order::Handles const texts;
    using Ntc = Category::NTC_args;
    auto ntc = [](std::pair<sml::Strings_T, std::int32_t> const& pair) {
        Ntc record;
        record.string_and_int = pair;
        return record;
    };
    order::expect_less(ntc({texts.lesser, 2}), ntc({texts.greater, 1}));
    order::expect_less(ntc({texts.lesser, -1}), ntc({texts.lesser, 1}));
    order::expect_less(Ntc(), ntc({{}, -1}));

    using Ntl = Category::NTL_args;
    auto ntl = [](sml::Strings_T const& text, std::int32_t number, bool flag) {
        Ntl record;
        record.string_int_flag = {text, number, flag};
        return record;
    };
    order::expect_less(ntl(texts.lesser, 2, true), ntl(texts.greater, 1, false));
    order::expect_less(ntl(texts.lesser, -1, true), ntl(texts.lesser, 1, false));
    order::expect_less(ntl(texts.lesser, 1, false), ntl(texts.lesser, 1, true));
}

// Required: the shorter list is less, whatever its elements.
TEST(CheckCategory, ListsOrderByCountThenByElements) {
    order::Handles const texts;
    using Pointer = Category::STACK_POINTER_args;
    order::expect_less(Pointer{{texts.greater}, {}}, Pointer{{texts.lesser, texts.lesser}, {}});
    order::expect_less(Pointer{{texts.lesser, texts.greater}, {}},
                       Pointer{{texts.greater, texts.lesser}, {}});
    order::expect_less(Pointer{{}, texts.greater}, Pointer{{{}}, texts.lesser});

    using Fppf = Category::CALL_FPPF_args;
    order::expect_less(Fppf{{wrong_call(9)}, true, true},
                       Fppf{{wrong_call(1), wrong_call(1)}, false, false});
    order::expect_less(Fppf{{wrong_call(1), wrong_call(9)}, true, true},
                       Fppf{{wrong_call(2), wrong_call(1)}, false, false});
    order::expect_less(Fppf{{wrong_call(1), wrong_call(1)}, true, true},
                       Fppf{{wrong_call(1), wrong_call(2)}, false, false});

    using Race = Category::DATA_RACE_args;
    Race two_elements;
    two_elements.selectors = {element(1), element(1)};
    Race one_element;
    one_element.selectors = {element(9)};
    order::expect_less(one_element, two_elements);
}

// Required: elements that are neither less nor greater do not end the comparison.
TEST(CheckCategory, UnsetListElementsArePassedOverInTheWalk) {
    using Fppf = Category::CALL_FPPF_args;
    T_Incorrect_Call const unset;
    order::expect_less(Fppf{{unset, wrong_call(1)}, false, false},
                       Fppf{{unset, wrong_call(2)}, false, false});
    order::expect_unordered(Fppf{{unset}, false, false}, Fppf{{unset}, true, true});
}

// Required: the order of these records is only partial.
TEST(CheckCategory, SetsOfOneSizeWithDifferentElementsAreUnordered) {
    using Locked = Category::DESTROY_LOCKED_args;
    order::Handles const texts;
    Locked const         none{{}, texts.greater, {}, {}};
    Locked const         one{{{"a"}}, texts.lesser, {}, {}};
    Locked const         another{{{"b"}}, texts.greater, {}, {}};
    Locked const         two{{{"a"}, {"b"}}, texts.lesser, {}, {}};
    order::expect_less(none, one);
    order::expect_less(one, two);
    order::expect_less(another, two);
    order::expect_unordered(one, another);

    Locked const one_too{{{"a"}}, texts.greater, {}, {}};
    order::expect_less(one, one_too);
    order::expect_equal(two, Locked{{{"b"}, {"a"}}, texts.lesser, {}, {}});
}

// Required: a kind without payload ends `<`, but not `==`.
TEST(CheckCategory, DataFlowFindingsOfOneKindWithoutPayloadAreEachLess) {
    using Finding = Category::DATA_FLOW_FINDING_args;
    for (std::int32_t const tag : {2, 3, 4}) {
        Finding first;
        first.kind.choose_tag(tag);
        Finding second = first;
        order::expect_equal_and_each_less(first, second);
        second.name.name = std::string("n");
        order::expect_unequal_and_each_less(first, second);
    }
}

TEST(CheckCategory, NestedVariantsOrderByTagThenPayload) {
    using Ovfl = Category::OVFL_args;
    Ovfl lesser;
    lesser.ovfl_data = single_ovfl(false);
    Ovfl greater;
    greater.ovfl_data = single_ovfl(true);
    Ovfl linked;
    linked.ovfl_data.choose<"Linked_Ovfl">().first_int = 9;
    Ovfl const unset;
    order::expect_less(lesser, greater);
    order::expect_less(linked, lesser);
    order::expect_less(unset, linked);
    order::expect_unordered(unset, unset);

    using Blocking = Category::BLOCKING_WHILE_LOCKED_args;
    order::Handles const texts;
    Blocking             function;
    function.operation.choose<"FUNCTION">().qualifier = texts.greater;
    Blocking loop;
    loop.operation.choose<"LOOP">() = texts.lesser;
    Blocking other_loop;
    other_loop.operation.choose<"LOOP">() = texts.greater;
    order::expect_less(function, loop);
    order::expect_less(loop, other_loop);
}

}  // namespace
