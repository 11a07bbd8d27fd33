#include <sml/schema/InfosTypes.hpp>
#include "tests/core/string_table.hpp"
#include "tests/order.hpp"
#include "tests/schema/tables.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <string>

using sml::Strings_T;
using sml::InfosTypes::T_Info_Statement_Kind;
using sml::InfosTypes::T_Variable_Name;
using Relation = sml::InfosTypes::Relation_Info::T;

namespace {

T_Variable_Name cell(std::int32_t index) {
    T_Variable_Name result;
    result.choose<"ARRAY_CELL">() = index;
    return result;
}

T_Variable_Name variable(Strings_T const& name, sml::InfosTypes::T_Scope scope, bool flag) {
    T_Variable_Name result;
    result.choose<"VARIABLE">() = {{{}, name}, scope, flag};
    return result;
}

template <sml::core::Name ArmName, class Payload>
T_Info_Statement_Kind kind(Payload const& payload) {
    T_Info_Statement_Kind result;
    result.choose<ArmName>() = payload;
    return result;
}

TEST(InfosTypes, EnumeratorsPrintTheirNames) {
    tables::expect_enumerators<sml::InfosTypes::T_Scope>(
        {"EXTERN", "GLOBAL", "INTERNAL", "LOCAL", "PARAMETER", "STATIC"});
    tables::expect_enumerators<sml::InfosTypes::T_Stdlib_Param_Kind>(
        {"STDLIB_PARAM_POINTER_ALLOCATION", "STDLIB_PARAM_POINTER_NULL",
         "STDLIB_PARAM_POINTER_NULL_AND_ALLOCATION", "STDLIB_PARAM_VALUE", "STDLIB_PARAM_VA_ARG"});
    tables::expect_enumerators<sml::InfosTypes::T_Operation_Computation_Mode>(
        {"NORMAL_MODE", "NO_CHECK_WRAP_AROUND_MODE", "TRUNCATED_MODE", "WRAP_AROUND_MODE"});
}

TEST(InfosTypes, ScopeSixHasNoName) {
    EXPECT_STREQ(toString(sml::InfosTypes::STATIC), "STATIC");
    EXPECT_EQ(toString(static_cast<sml::InfosTypes::T_Scope>(6)), nullptr);
}

TEST(InfosTypes, EnumerationsAreWordsOnTheWire) {
    wire::expect(sml::InfosTypes::STATIC, "05000000");
    wire::expect(sml::InfosTypes::STDLIB_PARAM_VA_ARG, "04000000");
    wire::expect(sml::InfosTypes::WRAP_AROUND_MODE, "03000000");
}

// ---- the place of a value ----

TEST(VariableName, HasSixArms) {
    tables::expect_arms_with_catch_all<T_Variable_Name>(
        {{"ARRAY_CELL", "00000000"},
         {"DEREFERENCED_VALUE"},
         {"INTERNAL_VARIABLE", "FFFFFFFF 00000000"},
         {"OTHER"},
         {"STRUCT_FIELD", "00000000"},
         {"VARIABLE", "FFFFFFFF 00000000 01000000  00000000  46"}});
}

TEST(VariableName, WritesEachPayload) {
    wire::expect(cell(-2), "00000000  FEFFFFFF");
    T_Variable_Name value;
    value.choose<"INTERNAL_VARIABLE">() = Strings_T("v");
    wire::expect(value, "02000000  FFFFFFFF 01000000 'v'");
    value.choose<"STRUCT_FIELD">() = 7;
    wire::expect(value, "04000000  07000000");
    value.choose<"VARIABLE">() = {{{"q"}, {"n"}}, sml::InfosTypes::STATIC, true};
    wire::expect(value, "05000000  FFFFFFFF 01000000 'q' FEFFFFFF 01000000 'n'  05000000  54");
}

// Required: every tag without an arm of its own is followed by a variable.
TEST(VariableName, EveryOtherTagHasTheVariablePayload) {
    for (char const* const tag : {"06000000", "FFFFFFFF"}) {
        std::string const bytes =
            std::string(tag) + "FFFFFFFF 01000000 'q' FEFFFFFF 01000000 'n'  05000000  54";
        auto const read = wire::read<T_Variable_Name>(hex::bytes(bytes));
        EXPECT_EQ(read.arm<"VARIABLE">().name.name.str(), "n");
        wire::expect(read, bytes);
    }
    EXPECT_EQ(tables::with_tag<T_Variable_Name>(6).toString(), nullptr);
}

TEST(VariableName, OrdersByTagThenPayload) {
    tables::expect_order_by_tag<T_Variable_Name>();
    order::expect_less(cell(-1), cell(1));
    order::expect_equal(cell(1), cell(1));

    T_Variable_Name lesser;
    T_Variable_Name greater;
    lesser.choose<"STRUCT_FIELD">() = -1;
    greater.choose<"STRUCT_FIELD">() = 1;
    order::expect_less(lesser, greater);

    order::Handles const texts;
    lesser.choose<"INTERNAL_VARIABLE">() = texts.lesser;
    greater.choose<"INTERNAL_VARIABLE">() = texts.greater;
    order::expect_less(lesser, greater);
}

TEST(VariableName, VariablesOrderByNameScopeAndFlag) {
    using namespace sml::InfosTypes;
    order::Handles const texts;
    order::expect_less(variable(texts.lesser, STATIC, true),
                       variable(texts.greater, EXTERN, false));
    order::expect_less(variable(texts.lesser, EXTERN, true), variable(texts.lesser, STATIC, false));
    order::expect_less(variable(texts.lesser, STATIC, false), variable(texts.lesser, STATIC, true));
    order::expect_equal(variable(texts.lesser, STATIC, true), variable(texts.lesser, STATIC, true));

    auto stray = [](char const* flag) {
        return wire::read<T_Variable_Name>(
            hex::bytes("06000000 FFFFFFFF 00000000 01000000 00000000" + std::string(flag)));
    };
    order::expect_less(stray("46"), stray("54"));
    order::expect_equal(stray("54"), stray("54"));
    order::expect_less(variable(texts.greater, STATIC, true), stray("46"));
}

TEST(VariableName, ReadingAnotherTagDestroysTheArm) {
    T_Variable_Name value = variable({"in the old arm"}, sml::InfosTypes::STATIC, true);
    wire::read_over(value, hex::bytes("06000000 FFFFFFFF 00000000 01000000 00000000 46"));
    EXPECT_EQ(value.tag, 6);
    EXPECT_EQ(string_table::count_of("in the old arm"), 0u);
    wire::read_over(value, hex::bytes("03000000"));
    EXPECT_TRUE(value.holds<"OTHER">());
}

// ---- statements ----

constexpr char unset_variable[] = "FFFFFFFF  FFFFFFFF 00000000 01000000  00000000  46";

TEST(StatementKind, Has21Arms) {
    tables::expect_arms_with_catch_all<T_Info_Statement_Kind>({
        {"ASSIGN", unset_variable},
        {"CALL_RETURN", "FFFFFFFF 00000000  01000000 01000000"},
        {"CALL_THROW", "46"},
        {"CONSTRUCTION_VIRTUAL_CALL", "FFFFFFFF 00000000  01000000"},
        {"DEREF_ASSIGN", unset_variable},
        {"DEREF_READ", unset_variable},
        {"DESTRUCTION_VIRTUAL_CALL", "FFFFFFFF 00000000  01000000"},
        {"DISPATCH_VIRTUAL_CALL", "FFFFFFFF 00000000  01000000"},
        {"FUNCTION_THROW"},
        {"F_CALL"},
        {"F_PARAM", "FFFFFFFF 00000000  01000000"},
        {"F_RETURN"},
        {"IMPLICIT_CALL", "FFFFFFFF 00000000"},
        {"NO_OBJECT_FOR_CLASS_OR_DERIVED", "FFFFFFFF 00000000"},
        {"POINTER_MEMBER_CALL", "FFFFFFFF 00000000"},
        {"READ", unset_variable},
        {"RETURN"},
        {"STDLIB_PARAM", "00000000  46"},
        {"STUB_ADDED_TO_PREVENT_RECURSION"},
        {"STUB_OF_VIRTUAL_CALL", "FFFFFFFF 00000000"},
        {"USERDEF_INSPECTION_POINT", unset_variable},
    });
}

TEST(StatementKind, CallIsItsTagAndImplicitCallHasAString) {
    T_Info_Statement_Kind value;
    value.choose<"F_CALL">();
    wire::expect(value, "09000000");
    wire::expect(kind<"IMPLICIT_CALL">(Strings_T("f")), "0C000000  FFFFFFFF 01000000 'f'");
}

TEST(StatementKind, CallThrowWithoutStringIsTagAndFlag) {
    wire::expect(kind<"CALL_THROW">(std::optional<Strings_T>()), "02000000  46");
    wire::expect(kind<"CALL_THROW">(Strings_T("e")), "02000000  54 FFFFFFFF 01000000 'e'");
}

TEST(StatementKind, WritesEachPayload) {
    using Kind = T_Info_Statement_Kind;
    wire::expect(kind<"ASSIGN">(cell(7)), "00000000  00000000 07000000");
    wire::expect(kind<"DEREF_ASSIGN">(cell(7)), "04000000  00000000 07000000");
    wire::expect(kind<"DEREF_READ">(cell(7)), "05000000  00000000 07000000");
    wire::expect(kind<"READ">(cell(7)), "0F000000  00000000 07000000");
    wire::expect(kind<"USERDEF_INSPECTION_POINT">(cell(7)), "14000000  00000000 07000000");
    wire::expect(kind<"CALL_RETURN">(sml::QualifiedPrettySignature::T{{"s"}, {{"q"}, {"n"}}}),
                 "01000000  FFFFFFFF 01000000 's' FEFFFFFF 01000000 'q' FDFFFFFF 01000000 'n'");
    wire::expect(kind<"F_PARAM">(sml::QualifiedPrettyName::T{{"q"}, {"n"}}),
                 "0A000000  FFFFFFFF 01000000 'q' FEFFFFFF 01000000 'n'");
    wire::expect(kind<"NO_OBJECT_FOR_CLASS_OR_DERIVED">(Strings_T("c")),
                 "0D000000  FFFFFFFF 01000000 'c'");
    wire::expect(kind<"POINTER_MEMBER_CALL">(Strings_T("p")), "0E000000  FFFFFFFF 01000000 'p'");
    wire::expect(
        kind<"CONSTRUCTION_VIRTUAL_CALL">(Kind::CONSTRUCTION_VIRTUAL_CALL_args{{"a"}, {"b"}}),
        "03000000  FFFFFFFF 01000000 'a'  FEFFFFFF 01000000 'b'");
    wire::expect(
        kind<"DESTRUCTION_VIRTUAL_CALL">(Kind::DESTRUCTION_VIRTUAL_CALL_args{{"a"}, {"b"}}),
        "06000000  FFFFFFFF 01000000 'a'  FEFFFFFF 01000000 'b'");
    wire::expect(kind<"DISPATCH_VIRTUAL_CALL">(Kind::DISPATCH_VIRTUAL_CALL_args{{"a"}, {"b"}}),
                 "07000000  FFFFFFFF 01000000 'a'  FEFFFFFF 01000000 'b'");
    wire::expect(kind<"STUB_OF_VIRTUAL_CALL">(Kind::STUB_OF_VIRTUAL_CALL_args{{"a"}}),
                 "13000000  FFFFFFFF 01000000 'a'");
    wire::expect(kind<"STDLIB_PARAM">(
                     Kind::STDLIB_PARAM_args{sml::InfosTypes::STDLIB_PARAM_VA_ARG, {{"a"}}}),
                 "11000000  04000000  54 FFFFFFFF 01000000 'a'");
}

// Required: every tag without an arm of its own is followed by a variable.
TEST(StatementKind, EveryOtherTagHasTheLastPayload) {
    for (char const* const tag : {"15000000", "FFFFFFFF", "00000080"}) {
        std::string const bytes = std::string(tag) + "00000000 07000000";
        auto const        read = wire::read<T_Info_Statement_Kind>(hex::bytes(bytes));
        EXPECT_EQ(read.arm<"USERDEF_INSPECTION_POINT">(), cell(7));
        wire::expect(read, bytes);
    }
    EXPECT_EQ(tables::with_tag<T_Info_Statement_Kind>(21).toString(), nullptr);
    EXPECT_STREQ(T_Info_Statement_Kind().toString(), "ASSIGN");
}

TEST(StatementKind, ReadAndDerefReadOfOneVariableDifferByTag) {
    order::expect_less(kind<"DEREF_READ">(cell(7)), kind<"READ">(cell(7)));
    order::expect_less(kind<"DEREF_READ">(cell(9)), kind<"READ">(cell(1)));
}

TEST(StatementKind, OrdersByTagThenPayload) {
    tables::expect_order_by_tag<T_Info_Statement_Kind>();
    order::Handles const texts;
    for (std::int32_t const tag : {0, 4, 5, 15, 20, 21}) {
        SCOPED_TRACE(tag);
        auto read = [&](char const* variable_bytes) {
            return wire::read<T_Info_Statement_Kind>(
                hex::bytes(hex::shown(tables::tag_bytes(tag)) + variable_bytes));
        };
        order::expect_less(read("00000000 FFFFFFFF"), read("00000000 01000000"));
        order::expect_equal(read("00000000 01000000"), read("00000000 01000000"));
        order::expect_less(read("00000000 01000000"), read("04000000 FFFFFFFF"));
        order::expect_equal_and_each_less(read("03000000"), read("03000000"));
        order::expect_unordered(tables::with_tag<T_Info_Statement_Kind>(tag),
                                tables::with_tag<T_Info_Statement_Kind>(tag));
    }
    order::expect_less(kind<"IMPLICIT_CALL">(texts.lesser), kind<"IMPLICIT_CALL">(texts.greater));
    order::expect_less(kind<"NO_OBJECT_FOR_CLASS_OR_DERIVED">(texts.lesser),
                       kind<"NO_OBJECT_FOR_CLASS_OR_DERIVED">(texts.greater));
    order::expect_less(kind<"POINTER_MEMBER_CALL">(texts.lesser),
                       kind<"POINTER_MEMBER_CALL">(texts.greater));
    order::expect_less(kind<"F_PARAM">(sml::QualifiedPrettyName::T{texts.lesser, texts.greater}),
                       kind<"F_PARAM">(sml::QualifiedPrettyName::T{texts.greater, texts.lesser}));
    order::expect_less(kind<"CALL_RETURN">(sml::QualifiedPrettySignature::T{texts.lesser, {}}),
                       kind<"CALL_RETURN">(sml::QualifiedPrettySignature::T{texts.greater, {}}));
}

TEST(StatementKind, AbsentThrownStringIsLessThanPresent) {
    order::Handles const texts;
    auto const           none = kind<"CALL_THROW">(std::optional<Strings_T>());
    order::expect_less(none, kind<"CALL_THROW">(Strings_T()));
    order::expect_less(kind<"CALL_THROW">(texts.lesser), kind<"CALL_THROW">(texts.greater));
    order::expect_equal(none, none);
}

TEST(StatementKind, AbsentStringOfAParameterIsLessThanPresent) {
    using Parameter = T_Info_Statement_Kind::STDLIB_PARAM_args;
    order::expect_less(Parameter{}, Parameter{{}, Strings_T()});
}

TEST(StatementKind, ReadingAnotherTagDestroysTheArmAndAnEqualOneKeepsIt) {
    T_Info_Statement_Kind value = kind<"IMPLICIT_CALL">(Strings_T("in the old arm"));
    wire::read_over(value, hex::bytes("0C000000  FFFFFFFF 08000000 'replaced'"));
    EXPECT_EQ(string_table::count_of("in the old arm"), 0u);
    EXPECT_EQ(value, kind<"IMPLICIT_CALL">(Strings_T("replaced")));
    wire::read_over(value, hex::bytes("02000000  46"));
    EXPECT_EQ(string_table::count_of("replaced"), 0u);
    EXPECT_EQ(value, kind<"CALL_THROW">(std::optional<Strings_T>()));
}

// ---- relations ----

TEST(RelationInfo, WritesFieldsInOrder) {
    wire::expect(Relation{{"a"}, 7, cell(1), cell(2), {"b"}},
                 "FFFFFFFF 01000000 'a'  07000000  00000000 01000000  00000000 02000000"
                 "FEFFFFFF 01000000 'b'");
    wire::expect(Relation(),
                 "FFFFFFFF 00000000  00000000"
                 "FFFFFFFF 01000000 01000000 00000000 46"
                 "FFFFFFFF 01000000 01000000 00000000 46"
                 "01000000");
}

// Required: the first such variable ends the comparison.
TEST(RelationInfo, FirstVariableWithoutPayloadMakesRelationsEachLess) {
    T_Variable_Name other;
    other.choose<"OTHER">();
    order::expect_unequal_and_each_less(Relation{{}, 0, other, cell(1), {}},
                                        Relation{{}, 0, other, cell(2), {}});
    order::expect_unequal_and_each_less(Relation{{}, 0, cell(1), other, {"a"}},
                                        Relation{{}, 0, cell(1), other, {"b"}});
    order::expect_less(Relation{{}, 0, cell(1), other, {}}, Relation{{}, 0, cell(2), other, {}});
}

TEST(RelationInfo, UnsetVariableMakesRelationUnequalToItsCopy) {
    order::expect_unordered(Relation(), Relation());
    order::expect_unordered(Relation{{}, 0, {}, cell(1), {}}, Relation{{}, 0, {}, cell(2), {}});
}

}  // namespace
