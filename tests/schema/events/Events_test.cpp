#include <sml/schema/Events.hpp>
#include "tests/core/string_table.hpp"
#include "tests/order.hpp"
#include "tests/schema/tables.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace {

using sml::Strings_T;
using sml::AccessProtections::T_AccessProtections;
using sml::Events::T_An_Event;
using sml::Events::T_DataRaceAccessType;
using sml::Events::T_Event_Kind;
using sml::Events::T_Imprecision_Event_Kind;
using sml::Events::T_RaceConditionAccess;
using sml::Infos::T_Range;
using std::string_literals::operator""s;

using Protections = sml::core::HashedSet<T_AccessProtections>;

constexpr tables::ArmRow event_kinds[] = {
    {"ADDRESS_OF_VARIABLE_EVENT", "FFFFFFFF 00000000  01000000"},
    {"ARGUMENT_OF_CALL_EVENT", "00000000  FFFFFFFF 00000000  01000000 01000000  01000000 01000000"},
    {"ASSIGNMENT_EVENT", "FFFFFFFF  FFFFFFFF 00000000  01000000  00000000 'F'"},
    {"CONSTRAIN_EVENT", "FFFFFFFF 00000000"},
    {"CONTROL_FLOW_POINT", "FFFFFFFF 00000000  00000000  FFFFFFFF"},
    {"CRITICAL_SECTION_EVENT", "00000000 'F'  FFFFFFFF 00000000  00000000  00000000"},
    {"DATA_RACE_ACCESS_EVENT", "00000000  FFFFFFFF 00000000  00000000  00000000  01000000"},
    {"DEFECT_EVENT"},
    {"FREE_EVENT", "FFFFFFFF 00000000  01000000 01000000"},
    {"IMPRECISION_EVENT", "FFFFFFFF"},
    {"INPUT_ABSOLUTE_ADDRESS"},
    {"INPUT_EXTERN", "'F' 'F'  FFFFFFFF 00000000  01000000 01000000  01000000 01000000"},
    {"INPUT_MAIN_GENERATOR_CALL",
     "FFFFFFFF 00000000  01000000  00000000  01000000 01000000 01000000  'F' 'F'"},
    {"INPUT_MAIN_GENERATOR_INIT",
     "'F' 'F'  FFFFFFFF 00000000  01000000 01000000  01000000 01000000"},
    {"INPUT_MAIN_GENERATOR_PERMANENT",
     "FFFFFFFF  06000000 '0X0P+0' 40000000  06000000 '0X0P+0' 40000000"
     "  FFFFFFFF 00000000  01000000 01000000  01000000 01000000"},
    {"INPUT_STUB_CALL", "FFFFFFFF 00000000  01000000 01000000  'F' 'F'"},
    {"INPUT_VOLATILE", "'F' 'F'  FFFFFFFF 00000000  01000000"},
    {"MALLOC_EVENT", "FFFFFFFF 00000000"},
    {"RACE_CONDITION_EVENT",
     "FFFFFFFF 00000000  00000000"
     "  00000000  00000000  FFFFFFFF 'FF'  00000000 00000000 01000000 00000000 0000000000000000"
     "  01000000  00000000  01000000"
     "  'F'"
     "  00000000  00000000  FFFFFFFF 'FF'  00000000 00000000 01000000 00000000 0000000000000000"
     "  01000000  00000000  01000000"},
    {"RETURN_EVENT", "FFFFFFFF 00000000  01000000 01000000"},
    {"RUNTIME_ERROR", "FFFFFFFF 00000000  01000000  00000000"},
    {"SCALAR_LOCAL_NIV"},
    {"SECURITY_EVENT", "'F'  FFFFFFFF 00000000"},
    {"SHRINK_CAST", "FFFFFFFF 00000000  01000000  01000000"},
    {"STD_LIB_EVENT", "FFFFFFFF 00000000"},
    {"THROW"},
    {"VARIABLE_ACCESS_EVENT", "'FF'  FFFFFFFF 00000000  01000000 01000000  01000000 01000000"},
    {"VARIABLE_DECLARATION_EVENT", "FFFFFFFF 00000000  01000000"},
    {"VARIABLE_TASK_ACCESS_EVENT", "FFFFFFFF 00000000  01000000  01000000"},
};

constexpr tables::ArmRow imprecision_kinds[] = {
    {"IE_ALIAS_IMPRECISION"},
    {"IE_ALIAS_READ_BAD_TYPE"},
    {"IE_CONVERSION_POINTER_TO_INT"},
    {"IE_DVO_RANDOM"},
    {"IE_FLOAT_CONSTANT_OVERFLOW"},
    {"IE_IMPLICIT_CALL_CONVERSION"},
    {"IE_INTERNAL_STUB", "FFFFFFFF 00000000"},
    {"IE_INVALID_POINTER"},
    {"IE_LOGICAL_RIGHT_SHIFT"},
    {"IE_LWTM"},
    {"IE_OPERATION_GENERATING_FULL_RANGE", "FFFFFFFF 00000000"},
    {"IE_POINTER_ARITHMETIC"},
    {"IE_POINTER_CONVERSION"},
    {"IE_POINTER_DIFFERENCE"},
    {"IE_POINTER_TO_VOLATILE"},
    {"IE_RECURSIVE_STRUCTURE"},
    {"IE_STD_LIB", "FFFFFFFF 00000000  01000000 01000000"},
    {"IE_UNKNOWN_HIGH_ORDER_CALL", "FFFFFFFF 00000000"},
    {"IE_VOID_STAR"},
};

T_Event_Kind std_lib_event(Strings_T const& name) {
    T_Event_Kind kind;
    kind.choose<"STD_LIB_EVENT">() = name;
    return kind;
}

T_Event_Kind security_event(T_Event_Kind const& nested) {
    T_Event_Kind kind;
    kind.choose<"SECURITY_EVENT">().nested_kind.emplace(nested);
    return kind;
}

T_Range unbounded_integers() {
    T_Range range;
    range.choose<"Int_Interval">();
    return range;
}

sml::SignaturePrefixedQualifiedPrettyName::T prefixed_name() {
    return {{"s"s, {"q"s, "f"s}}, {"p"s, "v"s}};
}

constexpr auto nan_tag = "01000000";

T_Range not_a_number() {
    T_Range range;
    range.choose<"Nan">();
    return range;
}

TEST(EventKind, EveryArmHasItsTagItsNameAndItsDefaultPayload) {
    tables::expect_arms_with_catch_all<T_Event_Kind>(event_kinds);
}

TEST(EventKind, TagFortyReadsAndWritesThreeStringsAndHasNoName) {
    std::string const bytes =
        hex::bytes("28000000  FFFFFFFF 01000000 'a'  FEFFFFFF 01000000 'b'  01000000");
    auto const kind = wire::read<T_Event_Kind>(bytes);
    EXPECT_EQ(kind.tag, 40);
    EXPECT_EQ(kind.toString(), nullptr);
    EXPECT_EQ(kind.arm<"VARIABLE_TASK_ACCESS_EVENT">().first_string.str(), "a");
    EXPECT_EQ(kind.arm<"VARIABLE_TASK_ACCESS_EVENT">().second_string.str(), "b");
    EXPECT_EQ(kind.arm<"VARIABLE_TASK_ACCESS_EVENT">().third_string.str(), "a");
    wire::expect(kind, hex::shown(bytes));
    wire::expect(T_Event_Kind(kind), hex::shown(bytes));
}

TEST(EventKind, TagsPastTheLastAreOrderedByTagThenByPayload) {
    auto kind = [](std::int32_t tag, Strings_T const& third) {
        T_Event_Kind value = tables::with_tag<T_Event_Kind>(tag);
        value.arm<"VARIABLE_TASK_ACCESS_EVENT">().third_string = third;
        return value;
    };
    order::Handles const names;
    order::expect_less(kind(28, names.greater), kind(29, names.lesser));
    order::expect_less(kind(40, names.greater), kind(41, names.lesser));
    order::expect_less(kind(40, names.lesser), kind(40, names.greater));
    order::expect_equal(kind(40, names.lesser), kind(40, names.lesser));
}

TEST(EventKind, OrdersByTagAndIsLessThanItselfWithoutPayload) {
    tables::expect_order_by_tag<T_Event_Kind>();
}

TEST(EventKind, TheTagDecidesAheadOfThePayload) {
    order::Handles const names;
    T_Event_Kind         constrain;
    constrain.choose<"CONSTRAIN_EVENT">() = names.greater;
    T_Event_Kind allocate;
    allocate.choose<"MALLOC_EVENT">() = names.lesser;
    order::expect_less(constrain, allocate);
}

TEST(EventKind, StringsCompareByHandle) {
    order::Handles const names;
    order::expect_less(std_lib_event(names.lesser), std_lib_event(names.greater));
    order::expect_equal(std_lib_event(names.lesser), std_lib_event(names.lesser));
}

TEST(EventKind, ThrowIsItsTagAloneAndStdLibEventAString) {
    wire::expect(tables::with_tag<T_Event_Kind>(25), "19000000");
    wire::expect(std_lib_event("memcpy"s), "18000000  FFFFFFFF 06000000 'memcpy'");
}

TEST(EventKind, OnlyTheInputThatIsNotPermanentHasFlagsAheadOfItsRange) {
    T_Event_Kind permanent;
    permanent.choose<"INPUT_MAIN_GENERATOR_PERMANENT">() = {unbounded_integers(), prefixed_name()};
    wire::expect(permanent,
                 "0E000000  00000000 'FF'"
                 "  FFFFFFFF 01000000 's'  FEFFFFFF 01000000 'q'  FDFFFFFF 01000000 'f'"
                 "  FCFFFFFF 01000000 'p'  FBFFFFFF 01000000 'v'");
    T_Event_Kind initial;
    initial.choose<"INPUT_MAIN_GENERATOR_INIT">() = {true, unbounded_integers(), prefixed_name()};
    wire::expect(initial,
                 "0D000000  'T'  'T' 00000000 'FF'"
                 "  FFFFFFFF 01000000 's'  FEFFFFFF 01000000 'q'  FDFFFFFF 01000000 'f'"
                 "  FCFFFFFF 01000000 'p'  FBFFFFFF 01000000 'v'");
}

TEST(EventKind, PayloadsThatAreNoRecordsStandBehindTheTag) {
    T_Event_Kind kind;
    kind.choose<"ADDRESS_OF_VARIABLE_EVENT">() = {"q"s, "n"s};
    wire::expect(kind, "00000000  FFFFFFFF 01000000 'q'  FEFFFFFF 01000000 'n'");
    kind.choose<"ASSIGNMENT_EVENT">().choose<"STRUCT_FIELD">() = 7;
    wire::expect(kind, "02000000  04000000 07000000");
    kind.choose<"CONSTRAIN_EVENT">() = "c";
    wire::expect(kind, "03000000  FFFFFFFF 01000000 'c'");
    kind.choose<"FREE_EVENT">() = {"s"s, {"q"s, "n"s}};
    wire::expect(kind,
                 "08000000  FFFFFFFF 01000000 's'  FEFFFFFF 01000000 'q'  FDFFFFFF 01000000 'n'");
    kind.choose<"IMPRECISION_EVENT">().choose<"IE_INTERNAL_STUB">() = "i";
    wire::expect(kind, "09000000  06000000 FFFFFFFF 01000000 'i'");
    kind.choose<"MALLOC_EVENT">() = "m";
    wire::expect(kind, "11000000  FFFFFFFF 01000000 'm'");
    kind.choose<"RETURN_EVENT">() = {"s"s, {"q"s, "n"s}};
    wire::expect(kind,
                 "13000000  FFFFFFFF 01000000 's'  FEFFFFFF 01000000 'q'  FDFFFFFF 01000000 'n'");
    kind.choose<"VARIABLE_DECLARATION_EVENT">() = {"q"s, "n"s};
    wire::expect(kind, "1B000000  FFFFFFFF 01000000 'q'  FEFFFFFF 01000000 'n'");
}

TEST(EventKind, ArgumentOfCallWritesNumberSignatureAndName) {
    wire::expect(T_Event_Kind::ARGUMENT_OF_CALL_EVENT_args{3, {"s"s, {"q"s, "f"s}}, {"p"s, "v"s}},
                 "03000000  FFFFFFFF 01000000 's'  FEFFFFFF 01000000 'q'  FDFFFFFF 01000000 'f'"
                 "  FCFFFFFF 01000000 'p'  FBFFFFFF 01000000 'v'");
}

TEST(EventKind, ControlFlowPointWritesStringNumberAndPoint) {
    T_Event_Kind::CONTROL_FLOW_POINT_args point{"a"s, 5, {}};
    point.point.choose<"BLOCK">().choose<"B_THEN">();
    wire::expect(point, "FFFFFFFF 01000000 'a'  05000000  00000000 08000000");
}

TEST(EventKind, CriticalSectionWritesItsFiveFields) {
    wire::expect(
        T_Event_Kind::CRITICAL_SECTION_EVENT_args{
            1, true, "a"s, -2, {{"p"s, {"s"s, {"q"s, "n"s}}}, {"p"s, {"s"s, {"q"s, "n"s}}}}},
        "01000000 'T'  FFFFFFFF 01000000 'a'  FEFFFFFF"
        "  02000000"
        "  FEFFFFFF 01000000 'p'  FDFFFFFF 01000000 's'  FCFFFFFF 01000000 'q'"
        "  FBFFFFFF 01000000 'n'"
        "  02000000 03000000 04000000 05000000");
}

TEST(EventKind, DataRaceAccessWritesItsTwoListsBetweenItsStrings) {
    wire::expect(
        T_Event_Kind::DATA_RACE_ACCESS_EVENT_args{
            T_DataRaceAccessType::DR_WRITE, "a"s, {"b"s, "a"s}, {"c"s}, "d"s},
        "02000000  FFFFFFFF 01000000 'a'"
        "  02000000  FEFFFFFF 01000000 'b'  01000000"
        "  01000000  FDFFFFFF 01000000 'c'"
        "  FCFFFFFF 01000000 'd'");
}

TEST(EventKind, ExternInputWritesFlagRangeAndName) {
    wire::expect(T_Event_Kind::INPUT_EXTERN_args{true, not_a_number(), prefixed_name()},
                 "'T'  'T' "s + nan_tag +
                     "  FFFFFFFF 01000000 's'  FEFFFFFF 01000000 'q'  FDFFFFFF 01000000 'f'"
                     "  FCFFFFFF 01000000 'p'  FBFFFFFF 01000000 'v'");
}

TEST(EventKind, MainGeneratorCallWritesItsRangeLast) {
    wire::expect(
        T_Event_Kind::INPUT_MAIN_GENERATOR_CALL_args{
            {"p"s, "v"s}, 4, {"s"s, {"q"s, "f"s}}, true, not_a_number()},
        "FFFFFFFF 01000000 'p'  FEFFFFFF 01000000 'v'  04000000"
        "  FDFFFFFF 01000000 's'  FCFFFFFF 01000000 'q'  FBFFFFFF 01000000 'f'  'T'  'T' "s +
            nan_tag);
}

TEST(EventKind, StubCallWritesSignatureFlagAndRange) {
    wire::expect(T_Event_Kind::INPUT_STUB_CALL_args{{"s"s, {"q"s, "f"s}}, true, not_a_number()},
                 "FFFFFFFF 01000000 's'  FEFFFFFF 01000000 'q'  FDFFFFFF 01000000 'f'  'T'  'T' "s +
                     nan_tag);
}

TEST(EventKind, VolatileInputWritesTwoFlagsAndName) {
    wire::expect(T_Event_Kind::INPUT_VOLATILE_args{false, true, {"q"s, "n"s}},
                 "'FT'  FFFFFFFF 01000000 'q'  FEFFFFFF 01000000 'n'");
}

TEST(EventKind, RuntimeErrorAndCastsWriteTheirStringsInOrder) {
    wire::expect(T_Event_Kind::RUNTIME_ERROR_args{"a"s, "b"s, 9},
                 "FFFFFFFF 01000000 'a'  FEFFFFFF 01000000 'b'  09000000");
    wire::expect(T_Event_Kind::SHRINK_CAST_args{"a"s, "b"s, "c"s},
                 "FFFFFFFF 01000000 'a'  FEFFFFFF 01000000 'b'  FDFFFFFF 01000000 'c'");
    wire::expect(T_Event_Kind::VARIABLE_TASK_ACCESS_EVENT_args{"a"s, "b"s, "c"s},
                 "FFFFFFFF 01000000 'a'  FEFFFFFF 01000000 'b'  FDFFFFFF 01000000 'c'");
}

TEST(EventKind, VariableAccessWritesTwoFlagsAndName) {
    wire::expect(T_Event_Kind::VARIABLE_ACCESS_EVENT_args{true, false, prefixed_name()},
                 "'TF'  FFFFFFFF 01000000 's'  FEFFFFFF 01000000 'q'  FDFFFFFF 01000000 'f'"
                 "  FCFFFFFF 01000000 'p'  FBFFFFFF 01000000 'v'");
}

TEST(EventKind, RaceConditionWritesItsFlagBetweenTheAccesses) {
    T_Event_Kind::RACE_CONDITION_EVENT_args race{"r"s, 6, {}, true, {}};
    race.first_access.data_access.variable = "x";
    race.second_access.data_access.variable = "y";
    wire::expect(race,
                 "FFFFFFFF 01000000 'r'  06000000"
                 "  00000000  00000000  FFFFFFFF 'FF'"
                 "  00000000 00000000 FEFFFFFF 00000000 00000000 0000000000000000"
                 "  FDFFFFFF 01000000 'x'  00000000  02000000"
                 "  'T'"
                 "  00000000  00000000  FFFFFFFF 'FF'"
                 "  00000000 00000000 02000000 00000000 0000000000000000"
                 "  FCFFFFFF 01000000 'y'  00000000  02000000");
}

TEST(EventKind, ARangeOrPointWithoutPayloadEndsTheOrder) {
    using Input = T_Event_Kind::INPUT_MAIN_GENERATOR_PERMANENT_args;
    Input const input{not_a_number(), {}};
    order::expect_unequal_and_each_less(input, Input{not_a_number(), prefixed_name()});
    order::expect_equal_and_each_less(input, input);

    using Point = T_Event_Kind::CONTROL_FLOW_POINT_args;
    Point point;
    order::expect_unordered(point, point);
    point.point.choose<"UNIT_FRONTIER">();
    order::expect_equal_and_each_less(point, point);
}

TEST(EventKind, NestedSecurityEventsAreWrittenDepthFirst) {
    T_Event_Kind assignment;
    assignment.choose<"ASSIGNMENT_EVENT">().choose<"ARRAY_CELL">() = 2;
    T_Event_Kind inner = security_event(assignment);
    inner.arm<"SECURITY_EVENT">().first_string = "in";
    T_Event_Kind outer = security_event(inner);
    outer.arm<"SECURITY_EVENT">().first_string = "out";
    wire::expect(outer,
                 "16000000 'T'"
                 "  16000000 'T'"
                 "  02000000  00000000 02000000"
                 "  FFFFFFFF 02000000 'in'"
                 "  FEFFFFFF 03000000 'out'");
    T_Event_Kind const copy = outer;
    EXPECT_TRUE(copy == outer);
}

TEST(EventKind, NestsDeep) {
    T_Event_Kind kind = std_lib_event("x"s);
    std::string  bytes = hex::bytes("18000000  FFFFFFFF 01000000 'x'");
    for (int depth = 0; depth < 100; ++depth) {
        kind = security_event(kind);
        kind.arm<"SECURITY_EVENT">().first_string = "x";
        bytes = hex::bytes("16000000 'T'") + bytes + hex::bytes("01000000");
    }
    wire::expect(kind, hex::shown(bytes));
    auto const read = wire::read<T_Event_Kind>(bytes);
    order::expect_equal(read, kind);
}

TEST(EventKind, NestedKindComparesByValueAndAbsentIsLess) {
    T_Event_Kind   absent;
    order::Handles names;
    absent.choose<"SECURITY_EVENT">();
    order::expect_less(absent, security_event(std_lib_event(names.lesser)));
    order::expect_less(security_event(std_lib_event(names.lesser)),
                       security_event(std_lib_event(names.greater)));
    order::expect_equal(security_event(std_lib_event(names.lesser)),
                        security_event(std_lib_event(names.lesser)));
    auto const thrown = security_event(tables::with_tag<T_Event_Kind>(25));
    order::expect_equal_and_each_less(thrown, thrown);
}

TEST(EventKind, ReadingAPresentNestedKindMakesItAnew) {
    T_Event_Kind section;
    section.choose<"CRITICAL_SECTION_EVENT">().signatures.resize(3);
    auto kind = security_event(section);
    wire::read_over(kind, hex::bytes("16000000 'T'"
                                     "  05000000 00000000 'F' FFFFFFFF 00000000 00000000"
                                     "  01000000 01000000 01000000 01000000 01000000"
                                     "  01000000"));
    auto const& nested = *kind.arm<"SECURITY_EVENT">().nested_kind;
    EXPECT_EQ(nested->arm<"CRITICAL_SECTION_EVENT">().signatures.size(), 1u);
}

TEST(EventKind, ReadingAnAbsentNestedKindLetsTheHeldOneGo) {
    for (char const flag : {'F', '\0', '\xFF'}) {
        auto kind = security_event(std_lib_event("held once"s));
        wire::read_over(kind, hex::bytes("16000000") + flag + hex::bytes("FFFFFFFF 00000000"));
        EXPECT_FALSE(kind.arm<"SECURITY_EVENT">().nested_kind.has_value());
    }
}

TEST(EventKind, ReadingAnEqualTagReadsOverThePayload) {
    T_Event_Kind kind;
    auto&        section = kind.choose<"CRITICAL_SECTION_EVENT">();
    section.signatures.push_back({"kept"s, {}});
    auto const* const payload = &section;
    wire::read_over(kind,
                    hex::bytes("05000000  07000000 'T'  FFFFFFFF 00000000  08000000"
                               "  01000000  FEFFFFFF 03000000 'new' 01000000 01000000 01000000"));
    EXPECT_EQ(&kind.arm<"CRITICAL_SECTION_EVENT">(), payload);
    EXPECT_EQ(section.first_int, 7);
    ASSERT_EQ(section.signatures.size(), 2u);
    EXPECT_EQ(section.signatures.front().package.str(), "kept");
    EXPECT_EQ(section.signatures.back().package.str(), "new");
}

TEST(EventKind, ReadingAnotherTagMakesTheArmAnew) {
    T_Event_Kind kind;
    kind.choose<"CRITICAL_SECTION_EVENT">().signatures.resize(2);
    wire::read_over(kind, hex::bytes("19000000"));
    EXPECT_TRUE(kind.holds<"THROW">());
    wire::read_over(kind, hex::bytes("05000000 00000000 'F' FFFFFFFF 00000000 00000000 00000000"));
    EXPECT_TRUE(kind.arm<"CRITICAL_SECTION_EVENT">().signatures.empty());
}

TEST(EventKind, CopiesAreDeep) {
    auto const  original = security_event(std_lib_event("a"s));
    auto        copy = original;
    auto&       copied = *copy.arm<"SECURITY_EVENT">().nested_kind;
    auto const& nested = *original.arm<"SECURITY_EVENT">().nested_kind;
    EXPECT_NE(&*copied, &*nested);
    copied->arm<"STD_LIB_EVENT">() = "b";
    EXPECT_EQ(nested->arm<"STD_LIB_EVENT">().str(), "a");
}

TEST(EventKind, TakesWhatIsNestedInItself) {
    auto kind = security_event(security_event(std_lib_event("a"s)));
    kind = *kind.arm<"SECURITY_EVENT">().nested_kind.value();
    order::expect_equal(kind, security_event(std_lib_event("a"s)));
    kind = std::move(*kind.arm<"SECURITY_EVENT">().nested_kind.value());
    order::expect_equal(kind, std_lib_event("a"s));
}

TEST(ImprecisionEventKind, EveryArmHasItsTagItsNameAndItsDefaultPayload) {
    tables::expect_arms<T_Imprecision_Event_Kind>(imprecision_kinds);
}

TEST(ImprecisionEventKind, OrdersByTagAndIsLessThanItselfWithoutPayload) {
    tables::expect_order_by_tag<T_Imprecision_Event_Kind>();
}

TEST(ImprecisionEventKind, ArmsWithoutPayloadAreLessAlsoInsideAnEvent) {
    for (std::int32_t tag = 0; tag < 19; ++tag) {
        T_Event_Kind kind;
        kind.choose<"IMPRECISION_EVENT">().choose_tag(tag);
        bool const bare = tag != 6 && tag != 10 && tag != 16 && tag != 17;
        EXPECT_EQ(kind < kind, bare) << tag;
        EXPECT_TRUE(kind == kind) << tag;
    }
}

TEST(ImprecisionEventKind, StringsCompareByHandleOnTagSeventeenOnly) {
    order::Handles const     names;
    T_Imprecision_Event_Kind a;
    T_Imprecision_Event_Kind b;
    a.choose<"IE_UNKNOWN_HIGH_ORDER_CALL">() = names.lesser;
    b.choose<"IE_UNKNOWN_HIGH_ORDER_CALL">() = names.greater;
    order::expect_less(a, b);
    a.choose<"IE_VOID_STAR">();
    b.choose<"IE_VOID_STAR">();
    order::expect_equal_and_each_less(a, b);
}

TEST(DataRaceAccessType, PrintsItsNames) {
    tables::expect_enumerators<T_DataRaceAccessType>({"DR_CALL", "DR_READ", "DR_WRITE"});
}

T_AccessProtections resource(Strings_T const& name) {
    T_AccessProtections protection;
    protection.choose<"RESOURCE">() = name;
    return protection;
}

T_RaceConditionAccess access_with_atomicity_of_a_call() {
    T_RaceConditionAccess access;
    access.data_access.atomicity.choose<"FUNCTION_CALL">();
    return access;
}

TEST(RaceConditionAccess, WritesAccessesProtectionsAndData) {
    auto access = access_with_atomicity_of_a_call();
    access.accesses.emplace_back(sml::PackagedPrettySignature::T{"p"s, {"s"s, {"q"s, "n"s}}},
                                 sml::Localization::T_Localization{1, "f"s, 2},
                                 Protections{resource("r"s)});
    access.accesses.emplace_back();
    access.protections.insert(tables::with_tag<T_AccessProtections>(6));
    access.data_access.variable = "x";
    wire::expect(access,
                 "02000000"
                 "  FFFFFFFF 01000000 'p'  FEFFFFFF 01000000 's'  FDFFFFFF 01000000 'q'"
                 "  FCFFFFFF 01000000 'n'  01000000 FBFFFFFF 01000000 'f' 02000000"
                 "  'T' 01000000 05000000 FAFFFFFF 01000000 'r'"
                 "  F9FFFFFF 00000000  07000000 07000000 07000000  00000000 07000000 00000000  'F'"
                 "  01000000  06000000"
                 "  02000000 07000000  'FF'  00000000 00000000 07000000 00000000 0000000000000000"
                 "  F8FFFFFF 01000000 'x'  00000000  07000000");
}

TEST(RaceConditionAccess, ComparesTheCountOfAccessesFirst) {
    order::Handles const names;
    auto                 one = access_with_atomicity_of_a_call();
    std::get<0>(one.accesses.emplace_back()).package = names.greater;
    auto two = access_with_atomicity_of_a_call();
    two.accesses.resize(2);
    order::expect_less(one, two);
}

TEST(RaceConditionAccess, AFewerOfProtectionsIsLess) {
    auto one = access_with_atomicity_of_a_call();
    auto two = one;
    one.protections = {resource("a"s)};
    two.protections = {resource("b"s), resource("c"s)};
    order::expect_less(one, two);
}

TEST(RaceConditionAccess, DifferentProtectionsOfOneSizeAreUnordered) {
    auto a = access_with_atomicity_of_a_call();
    auto b = a;
    a.protections = {resource("a"s)};
    b.protections = {resource("b"s)};
    b.data_access.first_flag = true;
    order::expect_unordered(a, b);
}

TEST(RaceConditionAccess, EqualProtectionsWithPayloadPassToTheData) {
    auto a = access_with_atomicity_of_a_call();
    a.protections = {resource("a"s), resource("b"s)};
    a.protections.insert(tables::with_tag<T_AccessProtections>(1));
    auto b = a;
    order::expect_equal(a, b);
    b.data_access.first_flag = true;
    order::expect_less(a, b);
}

TEST(RaceConditionAccess, AProtectionWithoutPayloadMakesEqualSetsLess) {
    auto a = access_with_atomicity_of_a_call();
    a.protections = {tables::with_tag<T_AccessProtections>(0)};
    auto b = a;
    b.data_access.first_flag = true;
    order::expect_equal_and_each_less(a, a);
    order::expect_unequal_and_each_less(a, b);
}

TEST(RaceConditionAccess, AccessesThatAreNeitherLessNorGreaterArePassedOver) {
    auto access = [](Strings_T const& protection, std::int32_t position) {
        auto value = access_with_atomicity_of_a_call();
        std::get<2>(value.accesses.emplace_back()) = Protections{resource(protection)};
        std::get<1>(value.accesses.emplace_back()).first_position = position;
        return value;
    };
    order::expect_less(access("a"s, 1), access("b"s, 2));
    auto a = access("a"s, 1);
    auto b = access("b"s, 1);
    b.protections.insert(resource("later"s));
    order::expect_unordered(a, b);
}

TEST(RaceConditionAccess, CopyAssignmentIsDeep) {
    auto source = access_with_atomicity_of_a_call();
    source.accesses.resize(1);
    source.protections = {resource("a"s)};
    T_RaceConditionAccess target;
    target.accesses.resize(4);
    target = source;
    order::expect_equal(target, source);
    EXPECT_NE(&target.accesses.front(), &source.accesses.front());
    target.protections.clear();
    EXPECT_EQ(source.protections.size(), 1u);
    auto const& itself = source;
    source = itself;
    EXPECT_EQ(source.accesses.size(), 1u);
}

TEST(RaceConditionAccess, ReadingAddsToWhatIsHeld) {
    auto access = access_with_atomicity_of_a_call();
    access.accesses.resize(1);
    access.protections = {resource("a"s)};
    std::string const bytes = wire::write(access);
    wire::read_over(access, bytes);
    EXPECT_EQ(access.accesses.size(), 2u);
    EXPECT_EQ(access.protections.size(), 1u);
}

T_An_Event event_of(T_Event_Kind const& kind) {
    T_An_Event event;
    *event.kind = kind;
    return event;
}

TEST(AnEvent, DefaultHasAKindWithoutArm) {
    T_An_Event const event;
    ASSERT_TRUE(event.kind);
    EXPECT_EQ(event.kind->tag, -1);
    EXPECT_STREQ(event.kind->toString(), "ADDRESS_OF_VARIABLE_EVENT");
    wire::expect(event,
                 "'F' 'F'  FFFFFFFF 00000000 01000000 01000000 01000000  'F'  01000000  00000000"
                 "  FFFFFFFF 01000000 01000000 01000000"
                 "  00000000 00000000 01000000 00000000 0000000000000000");
}

TEST(AnEvent, TheBoxedKindStandsInPlaceOnTheWire) {
    T_An_Event event = event_of(tables::with_tag<T_Event_Kind>(25));
    event.optional_string = "o";
    event.first_flag = true;
    event.signature = {"p"s, {"s"s, {"q"s, "n"s}}};
    event.first_string = "a";
    event.first_int = -3;
    event.source_ref = {9, {1, "f"s, 2}, -1};
    wire::expect(event,
                 "'T' FFFFFFFF 01000000 'o'  'T'"
                 "  FEFFFFFF 01000000 'p'  FDFFFFFF 01000000 's'  FCFFFFFF 01000000 'q'"
                 "  FBFFFFFF 01000000 'n'"
                 "  'F'  FAFFFFFF 01000000 'a'  FDFFFFFF"
                 "  19000000"
                 "  09000000  01000000 F9FFFFFF 01000000 'f' 02000000  FFFFFFFFFFFFFFFF");
}

TEST(AnEvent, AKindWithoutPayloadEndsTheOrderBeforeThePlace) {
    auto const a = event_of(tables::with_tag<T_Event_Kind>(7));
    auto       b = a;
    order::expect_equal_and_each_less(a, a);
    b.source_ref.kind = 1;
    order::expect_unequal_and_each_less(a, b);
}

TEST(AnEvent, AnUnsetKindIsUnequalToItself) {
    T_An_Event const event;
    order::expect_unordered(event, event);
}

TEST(AnEvent, CopiesAreDeep) {
    auto const original = event_of(std_lib_event("a"s));
    auto       copy = original;
    EXPECT_NE(&*copy.kind, &*original.kind);
    order::expect_equal(copy, original);
    copy.kind->arm<"STD_LIB_EVENT">() = "b";
    EXPECT_EQ(original.kind->arm<"STD_LIB_EVENT">().str(), "a");
}

TEST(AnEvent, ReadingKeepsTheBoxAndReadsOverAnEqualTag) {
    T_Event_Kind section;
    section.choose<"CRITICAL_SECTION_EVENT">().signatures.resize(1);
    T_An_Event          event = event_of(section);
    T_Event_Kind const* box = &*event.kind;
    std::string const   same = wire::write(event);
    wire::read_over(event, same);
    EXPECT_EQ(&*event.kind, box);
    EXPECT_EQ(event.kind->arm<"CRITICAL_SECTION_EVENT">().signatures.size(), 2u);

    wire::read_over(event, wire::write(event_of(tables::with_tag<T_Event_Kind>(25))));
    EXPECT_EQ(&*event.kind, box);
    EXPECT_TRUE(event.kind->holds<"THROW">());
}

TEST(AnEvent, WithoutBoxItsOtherFieldsAreDestroyedAsUsual) {
    {
        T_An_Event event = event_of(std_lib_event("of the kind"s));
        event.first_string = "of the event";
        {
            T_An_Event taken = std::move(event);
            EXPECT_EQ(string_table::count_of("of the kind"), 1u);
            EXPECT_EQ(taken.kind->arm<"STD_LIB_EVENT">().str(), "of the kind");
        }
        EXPECT_FALSE(event.kind);
        EXPECT_EQ(string_table::count_of("of the kind"), 0u);
        EXPECT_EQ(string_table::count_of("of the event"), 1u);
    }
    EXPECT_EQ(string_table::count_of("of the event"), 0u);
}

TEST(AnEvent, WithoutBoxItCanBeCopiedAndAssigned) {
    T_An_Event       event = event_of(std_lib_event("a"s));
    T_An_Event       taken = std::move(event);
    T_An_Event const copy = event;
    EXPECT_FALSE(copy.kind);
    event = taken;
    order::expect_equal(event, taken);
    taken = copy;
    EXPECT_FALSE(taken.kind);
}

}  // namespace
