#include <sml/schema/Interrogators.hpp>
#include "tests/core/string_table.hpp"
#include "tests/order.hpp"
#include "tests/schema/tables.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <utility>

namespace {

using namespace sml::Interrogators;
using sml::Strings_T;
using sml::SourceLocRef::T_SourceLocRef;
using std::string_literals::operator""s;

constexpr std::uint64_t all_ones = 0xFFFFFFFFFFFFFFFF;
constexpr std::uint64_t top_bit = 0x8000000000000000;

template <class Reference>
Reference reference(std::int32_t which, std::uint64_t value) {
    Reference result;
    result.which = which;
    result.value = value;
    return result;
}

struct Names {
    char const* id;
    char const* pointer;
};

template <class Reference>
constexpr Names names_of{};
template <>
constexpr Names names_of<T_RepositoryRef>{"RepositoryId", "RepositoryPtr"};
template <>
constexpr Names names_of<T_InterrogatorRef>{"InterrogatorId", "InterrogatorPtr"};
template <>
constexpr Names names_of<T_QuestionRef>{"QuestionId", "QuestionPtr"};
template <>
constexpr Names names_of<T_AnswerRef>{"AnswerId", "AnswerPtr"};
template <>
constexpr Names names_of<T_ContextRef>{"ContextId", "ContextPtr"};
template <>
constexpr Names names_of<T_FunctionRef>{"FunctionId", "FunctionPtr"};

template <class Reference>
class EachReference : public testing::Test {};

using References = testing::Types<T_RepositoryRef, T_InterrogatorRef, T_QuestionRef, T_AnswerRef,
                                  T_ContextRef, T_FunctionRef>;
TYPED_TEST_SUITE(EachReference, References);

TYPED_TEST(EachReference, StartsUnsetWithAWordOfZero) {
    TypeParam const unset;
    EXPECT_EQ(unset.which, -1);
    EXPECT_EQ(unset.value, 0u);
    wire::expect(unset, "FFFFFFFF 0000000000000000");
}

TYPED_TEST(EachReference, PrintsTheNameOfItsArm) {
    constexpr auto names = names_of<TypeParam>;
    EXPECT_STREQ(reference<TypeParam>(0, 5).toString(), names.id);
    EXPECT_STREQ(reference<TypeParam>(1, 5).toString(), names.pointer);
    for (std::int32_t const negative : {-1, -7, std::numeric_limits<std::int32_t>::min()})
        EXPECT_STREQ(reference<TypeParam>(negative, 5).toString(), names.id);
    for (std::int32_t const unknown : {2, 3, std::numeric_limits<std::int32_t>::max()})
        EXPECT_EQ(reference<TypeParam>(unknown, 5).toString(), nullptr);
}

TYPED_TEST(EachReference, IsATagAndAnEightByteWordWhateverTheTag) {
    constexpr std::uint64_t word = 0x0102030405060708;
    wire::expect(reference<TypeParam>(0, word), "00000000 0807060504030201");
    wire::expect(reference<TypeParam>(1, word), "01000000 0807060504030201");
    wire::expect(reference<TypeParam>(2, word), "02000000 0807060504030201");
    wire::expect(reference<TypeParam>(-3, word), "FDFFFFFF 0807060504030201");
    wire::expect(reference<TypeParam>(0, all_ones), "00000000 FFFFFFFFFFFFFFFF");
    wire::expect(std::pair(reference<TypeParam>(1, word), std::int32_t{9}),
                 "01000000 0807060504030201  09000000");
}

TYPED_TEST(EachReference, ReadingKeepsTagAndWordAsTheyCame) {
    auto const unknown = wire::read<TypeParam>(hex::bytes("FBFFFFFF 0000000000000080"));
    EXPECT_EQ(unknown.which, -5);
    EXPECT_EQ(unknown.value, top_bit);
    TypeParam held = reference<TypeParam>(0, 1);
    wire::read_over(held, hex::bytes("01000000 FFFFFFFFFFFFFFFF"));
    EXPECT_EQ(held.which, 1);
    EXPECT_EQ(held.value, all_ones);
}

TYPED_TEST(EachReference, IdentifiersCompareAsSigned) {
    auto id = [](std::uint64_t value) { return reference<TypeParam>(0, value); };
    order::expect_less(id(all_ones), id(1));
    order::expect_less(id(top_bit), id(all_ones));
    order::expect_less(id(all_ones), id(0));
    order::expect_less(id(1), id(2));
    order::expect_equal(id(all_ones), id(all_ones));
}

TYPED_TEST(EachReference, AddressesCompareAsUnsigned) {
    for (std::int32_t const tag : {1, 2, 100}) {
        auto address = [tag](std::uint64_t value) { return reference<TypeParam>(tag, value); };
        order::expect_less(address(1), address(all_ones));
        order::expect_less(address(1), address(top_bit));
        order::expect_less(address(top_bit), address(all_ones));
        order::expect_equal(address(all_ones), address(all_ones));
    }
}

TYPED_TEST(EachReference, TheTagDecidesAheadOfTheWord) {
    order::expect_less(reference<TypeParam>(0, 100), reference<TypeParam>(1, 0));
    order::expect_less(reference<TypeParam>(0, top_bit), reference<TypeParam>(1, 0));
    order::expect_less(reference<TypeParam>(1, all_ones), reference<TypeParam>(2, 0));
    order::expect_less(reference<TypeParam>(-1, 100), reference<TypeParam>(0, top_bit));
    order::expect_less(reference<TypeParam>(-2, 100), reference<TypeParam>(-1, 0));
}

TYPED_TEST(EachReference, ANegativeTagIsUnequalToEverything) {
    for (std::int32_t const tag : {-1, -2, std::numeric_limits<std::int32_t>::min()}) {
        auto const negative = reference<TypeParam>(tag, 7);
        order::expect_unordered(negative, negative);
        order::expect_unordered(negative, reference<TypeParam>(tag, 8));
    }
}

template <class Reference, sml::core::Name Id, sml::core::Name Pointer>
void expect_arms_by_name() {
    Reference value;
    value.template choose<Pointer>() = all_ones;
    EXPECT_EQ(value.which, 1);
    EXPECT_TRUE(value.template holds<Pointer>());
    EXPECT_FALSE(value.template holds<Id>());
    EXPECT_EQ(value.template arm<Pointer>(), all_ones);
    EXPECT_EQ(value.template choose<Id>(), 0u);
    EXPECT_EQ(value.which, 0);
    value.template arm<Id>() = 5;
    EXPECT_EQ(std::as_const(value).template arm<Id>(), 5u);
    EXPECT_EQ(value.value, 5u);
}

TEST(Reference, ArmsAreReachedByName) {
    expect_arms_by_name<T_RepositoryRef, "RepositoryId", "RepositoryPtr">();
    expect_arms_by_name<T_InterrogatorRef, "InterrogatorId", "InterrogatorPtr">();
    expect_arms_by_name<T_QuestionRef, "QuestionId", "QuestionPtr">();
    expect_arms_by_name<T_AnswerRef, "AnswerId", "AnswerPtr">();
    expect_arms_by_name<T_ContextRef, "ContextId", "ContextPtr">();
    expect_arms_by_name<T_FunctionRef, "FunctionId", "FunctionPtr">();
}

TEST(Reference, AnAddressOfAllOnesIsReadBackAndSortsLast) {
    auto const bytes = wire::write(reference<T_FunctionRef>(1, all_ones));
    auto const read = wire::read<T_FunctionRef>(bytes);
    EXPECT_EQ(read.which, 1);
    EXPECT_EQ(read.value, all_ones);
    order::expect_less(reference<T_FunctionRef>(1, 1), read);
}

TEST(Reference, TheIdentifierMinusOneSortsBelowOne) {
    order::expect_less(reference<T_FunctionRef>(0, all_ones), reference<T_FunctionRef>(0, 1));
}

T_SourceLocRef place(sml::uint32 kind) { return {kind, {}, 0}; }

/// An interrogator in which every part is set.
T_Interrogator interrogator() { return {reference<T_FunctionRef>(1, 2), 3, {4, {5, ""s, 6}, -7}}; }

/// Its bytes if its empty file name has the definition of the empty text.
constexpr char const* interrogator_bytes =
    "01000000 0200000000000000  03000000"
    "  04000000 05000000 FFFFFFFF 00000000 06000000 F9FFFFFFFFFFFFFF  ";

/// An interrogator that is equal to itself and less than a raised one.
T_Interrogator lesser() { return {reference<T_FunctionRef>(0, all_ones), -1, place(1)}; }

TEST(Function, WritesKeySignatureAndPlace) {
    T_Function const function{"k"s, {"p"s, {"s"s, {"q"s, "n"s}}}, {1, {2, "k"s, 3}, 4}};
    wire::expect(function,
                 "FFFFFFFF 01000000 'k'"
                 "  FEFFFFFF 01000000 'p'  FDFFFFFF 01000000 's'  FCFFFFFF 01000000 'q'"
                 "  FBFFFFFF 01000000 'n'"
                 "  01000000 02000000 01000000 03000000 0400000000000000");
    wire::expect(T_ZvFunction{-1, true, {}},
                 "FFFFFFFF 'T'  FFFFFFFF 00000000  01000000 01000000 01000000 01000000"
                 "  00000000 00000000 01000000 00000000 0000000000000000");
}

TEST(Interrogator, WritesReferenceNumberAndPlace) {
    wire::expect(interrogator(), interrogator_bytes);
}

TEST(Interrogator, OfAnUnsetReferenceIsUnequalToItself) {
    order::expect_unordered(T_Interrogator(), T_Interrogator());
    T_Interrogator other;
    other.first_int = 1;
    order::expect_unordered(T_Interrogator(), other);
}

TEST(InterrogatorCheckZDV, CommonPartComesFirst) {
    wire::expect(T_InterrogatorCheckZDV{interrogator(), -1}, interrogator_bytes + "FFFFFFFF"s);
}

TEST(InterrogatorCheckSHF, WritesATextBetweenItsNumbers) {
    wire::expect(T_InterrogatorCheckSHF{interrogator(), 8, "a\0b"s, 9},
                 interrogator_bytes + "08000000  03000000 'a' 00 'b'  09000000"s);
}

TEST(InterrogatorCheckSHF, TextsCompareAsTexts) {
    auto with_text = [](std::string const& text) {
        return T_InterrogatorCheckSHF{lesser(), 0, text, 0};
    };
    order::expect_less(with_text(""), with_text("a"));
    order::expect_less(with_text("a"), with_text("ab"));
    order::expect_less(with_text("ab"), with_text("b"));
    order::expect_less(with_text("Z"), with_text("a"));
    order::expect_less(with_text("\x7F"), with_text("\x80"));
    order::expect_less(with_text("a\0a"s), with_text("a\0b"s));
}

TEST(InterrogatorCheckSHF, ReadingReplacesAHeldText) {
    T_InterrogatorCheckSHF check{{}, 0, "a longer text", 0};
    wire::read_over(check, wire::write(T_InterrogatorCheckSHF{{}, 0, "short", 0}));
    EXPECT_EQ(check.text, "short");
}

TEST(InterrogatorCheckSHF, TextsAreNotInterned) {
    T_InterrogatorCheckSHF const check{{}, 0, "never interned", 0};
    EXPECT_EQ(string_table::count_of("never interned"), 0u);
    auto const copy = wire::read<T_InterrogatorCheckSHF>(wire::write(check));
    EXPECT_EQ(copy.text, "never interned");
    EXPECT_EQ(string_table::count_of("never interned"), 0u);
}

TEST(InterrogatorCheckOVFL, ATextStandsAheadOfTheCommonPart) {
    T_InterrogatorCheckOVFL check{"x", interrogator(), true, -2, false, {{"a"s, "b"s}}, "yz"};
    wire::expect(check, "01000000 'x'  "s + interrogator_bytes +
                            "'T'  FEFFFFFF  'F'"
                            "  'T' FEFFFFFF 01000000 'a' FDFFFFFF 01000000 'b'  02000000 'yz'");
}

TEST(InterrogatorCheckOVFL, AnAbsentPairIsFollowedAtOnceByTheSecondText) {
    T_InterrogatorCheckOVFL check;
    check.second_text = "t";
    wire::expect(check,
                 "00000000"
                 "  FFFFFFFF 0000000000000000  00000000"
                 "  00000000 00000000 FFFFFFFF 00000000 00000000 0000000000000000"
                 "  'F'  00000000  'F'  'F'  01000000 't'");
}

TEST(InterrogatorCheckOVFL, TwoEqualStringsAreADefinitionAndABackReference) {
    T_InterrogatorCheckOVFL check{"", interrogator(), false, 0, false, {{"same"s, "same"s}}, ""};
    wire::expect(check, "00000000  "s + interrogator_bytes +
                            "'F'  00000000  'F'"
                            "  'T' FEFFFFFF 04000000 'same' 02000000  00000000");
}

TEST(InterrogatorCheckOVFL, ReadingAPairReleasesTheHeldOne) {
    T_InterrogatorCheckOVFL check{"",    interrogator(),           false, 0,
                                  false, {{"held a"s, "held b"s}}, ""};
    auto                    fresh = check;
    fresh.string_pair.emplace("new a"s, ""s);
    wire::read_over(check, wire::write(fresh));
    EXPECT_EQ(check.string_pair->first.str(), "new a");
    EXPECT_EQ(check.string_pair->second.str(), "");
    EXPECT_EQ(string_table::count_of("held a"), 0u);
    EXPECT_EQ(string_table::count_of("held b"), 0u);
    fresh.string_pair.reset();
    wire::read_over(check, wire::write(fresh));
    EXPECT_FALSE(check.string_pair.has_value());
    EXPECT_EQ(string_table::count_of("new a"), 0u);
}

TEST(InterrogatorCheckCONV_OVFL, TwoTextsAndAFlagStandAheadOfTheCommonPart) {
    T_InterrogatorCheckCONV_OVFL check{"x",   true, "y", interrogator(), -2, true, {{"a"s, "a"s}},
                                       false, "z"};
    wire::expect(check, "01000000 'x'  'T'  01000000 'y'  "s + interrogator_bytes +
                            "FEFFFFFF  'T'  'T' FEFFFFFF 01000000 'a' 02000000"
                            "  'F'  01000000 'z'");
    check.first_flag = false;
    wire::expect(check, "01000000 'x'  'F'  01000000 'y'  "s + interrogator_bytes +
                            "FEFFFFFF  'T'  'T' FEFFFFFF 01000000 'a' 02000000"
                            "  'F'  01000000 'z'");
}

TEST(InterrogatorInfoOperator, TheRelationStandsBetweenTheTexts) {
    T_InterrogatorInfoOperator info{interrogator(), 8, "x", {}, "y"};
    wire::expect(info, interrogator_bytes + "08000000  01000000 'x'  'F'  01000000 'y'"s);
    auto& relation = info.relation.emplace();
    relation.first_int = 5;
    relation.first_variable.choose<"ARRAY_CELL">() = 6;
    relation.second_variable.choose<"OTHER">();
    wire::expect(info, interrogator_bytes +
                           "08000000  01000000 'x'"
                           "  'T' 01000000 05000000  00000000 06000000  03000000  01000000"
                           "  01000000 'y'"s);
}

TEST(InterrogatorInfoConversion, ATextAndAFlagStandAheadOfTheCommonPart) {
    wire::expect(T_InterrogatorInfoConversion{"x", true, interrogator(), -2, "y"},
                 "01000000 'x'  'T'  "s + interrogator_bytes + "FEFFFFFF  01000000 'y'");
}

TEST(InterrogatorInfoReadOrAssign, WritesTheStatementBetweenCommonPartAndTexts) {
    T_InterrogatorInfoReadOrAssign info{interrogator(), {}, "x", "y"};
    info.statement_kind.choose<"IMPLICIT_CALL">() = "c";
    wire::expect(
        info, interrogator_bytes + "0C000000 FEFFFFFF 01000000 'c'  01000000 'x'  01000000 'y'"s);
}

TEST(InterrogatorInfoReadOrAssign, AStatementWithoutPayloadEndsTheOrderBeforeTheTexts) {
    T_InterrogatorInfoReadOrAssign a{lesser(), {}, "", ""};
    a.statement_kind.choose<"F_CALL">();
    T_InterrogatorInfoReadOrAssign b = a;
    b.first_text = "later";
    order::expect_equal_and_each_less(a, a);
    order::expect_unequal_and_each_less(a, b);
}

TEST(Question, AllThreeAreTheirPlaceAlone) {
    T_SourceLocRef const            where{1, {2, "f"s, 3}, 4};
    T_Question const                question{where};
    T_QuestionAssert const          assertion{question};
    T_QuestionInspectionPoint const inspection{question};
    constexpr char const*           bytes =
        "01000000 02000000 FFFFFFFF 01000000 'f' 03000000 0400000000000000";
    wire::expect(question, bytes);
    wire::expect(assertion, bytes);
    wire::expect(inspection, bytes);
    EXPECT_EQ(hex::shown(wire::write(assertion)), hex::shown(wire::write(inspection)));
}

TEST(Question, AllThreeOrderAsTheirPlaces) {
    auto expect_order = []<class Type>(auto const& make, Type const&) {
        order::expect_less<Type>(make(1), make(0xFFFFFFFF));
        order::expect_equal<Type>(make(1), make(1));
    };
    expect_order([](sml::uint32 kind) { return T_Question{place(kind)}; }, T_Question());
    expect_order([](sml::uint32 kind) { return T_QuestionAssert{{place(kind)}}; },
                 T_QuestionAssert());
    expect_order([](sml::uint32 kind) { return T_QuestionInspectionPoint{{place(kind)}}; },
                 T_QuestionInspectionPoint());
}

}  // namespace
