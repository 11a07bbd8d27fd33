#include <sml/schema/Functions.hpp>
#include "tests/order.hpp"
#include "tests/schema/tables.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <unordered_map>
#include <utility>

namespace {

using sml::Strings_T;
using sml::Functions::T_A_Function;
using sml::Functions::T_Function_Context;
using sml::Functions::T_Function_Context_Option;
using std::string_literals::operator""s;

using Clone = sml::Functions::Cxx_Clone_Context::T;
using During = Clone::During_Constr_Destr_args;

TEST(CloneContext, EveryArmHasItsTagItsNameAndItsDefaultPayload) {
    tables::expect_arms<Clone>({{"During_Constr_Destr", "'F' 'F' 'F'  FFFFFFFF 00000000"},
                                {"Specialized", "FFFFFFFF 00000000"},
                                {"Sub_Ctor", "FFFFFFFF 00000000"},
                                {"Sub_Dtor", "FFFFFFFF 00000000"},
                                {"Top_Ctor"},
                                {"Top_Dtor"}});
}

TEST(CloneContext, WritesFlagsAndNames) {
    wire::expect(During{true, false, "a"s, "b"s},
                 "'T' 'F'  'T' FFFFFFFF 01000000 'a'  FEFFFFFF 01000000 'b'");
    wire::expect(During{false, true, {}, "b"s}, "'F' 'T'  'F'  FFFFFFFF 01000000 'b'");
    Clone clone;
    clone.choose<"Specialized">() = "a";
    wire::expect(clone, "01000000  FFFFFFFF 01000000 'a'");
}

TEST(CloneContext, OrdersByTagThenByPayload) {
    tables::expect_order_by_tag<Clone>();
    order::Handles const names;
    order::expect_less(During{false, false, {}, names.greater},
                       During{false, false, names.lesser, names.lesser});
    for (std::int32_t const tag : {1, 2, 3}) {
        Clone a = tables::with_tag<Clone>(tag);
        Clone b = a;
        auto  name = [tag](Clone& clone) -> Strings_T& {
            if (tag == 1) return clone.arm<"Specialized">();
            if (tag == 2) return clone.arm<"Sub_Ctor">();
            return clone.arm<"Sub_Dtor">();
        };
        name(a) = names.lesser;
        name(b) = names.greater;
        order::expect_less(a, b);
    }
}

TEST(CloneContext, ReadingAnotherTagClearsTheArm) {
    Clone clone;
    clone.choose<"During_Constr_Destr">() = {true, true, "a"s, "b"s};
    clone.choose<"Sub_Ctor">() = "c";
    wire::read_over(clone, hex::bytes("00000000 'F' 'F' 'F' FFFFFFFF 00000000"));
    EXPECT_FALSE(clone.arm<"During_Constr_Destr">().optional_name.has_value());
    wire::read_over(clone, hex::bytes("03000000 FFFFFFFF 00000000"));
    EXPECT_TRUE(clone.holds<"Sub_Dtor">());
    EXPECT_EQ(clone.arm<"Sub_Dtor">().str(), "");
}

TEST(FunctionContext, WritesPlaceAndTwoNames) {
    wire::expect(T_Function_Context{{1, {2, "f"s, 3}, 4}, "a"s, "f"s},
                 "01000000 02000000 FFFFFFFF 01000000 'f' 03000000 0400000000000000"
                 "  FEFFFFFF 01000000 'a'  01000000");
}

constexpr auto default_function_context =
    "00000000 00000000 FFFFFFFF 00000000 00000000 0000000000000000  01000000  01000000";

TEST(FunctionContextOption, EveryArmHasItsTagItsNameAndItsDefaultPayload) {
    tables::expect_arms_with_catch_all<T_Function_Context_Option>(
        {{"No_Function_Context"},
         {"Some_Clone_Context", "FFFFFFFF 00000000  FFFFFFFF"},
         {"Some_Function_Context", default_function_context}});
}

TEST(FunctionContextOption, NoneIsItsTagAlone) {
    wire::expect(tables::with_tag<T_Function_Context_Option>(0), "00000000");
}

TEST(FunctionContextOption, WritesTheNameAheadOfTheClone) {
    T_Function_Context_Option context;
    auto& [name, clone] = context.choose<"Some_Clone_Context">();
    name = "a";
    clone.choose<"Specialized">() = "b";
    wire::expect(context, "01000000  FFFFFFFF 01000000 'a'  01000000 FEFFFFFF 01000000 'b'");
}

TEST(FunctionContextOption, OrdersByTagAndIsLessThanItselfWithoutPayload) {
    tables::expect_order_by_tag<T_Function_Context_Option>();
}

T_A_Function function() {
    T_A_Function value;
    value.context.choose<"Some_Function_Context">();
    return value;
}

TEST(AFunction, DefaultHasNoContext) {
    T_A_Function const value;
    EXPECT_EQ(value.context.tag, -1);
    wire::expect(value,
                 "00000000  00000000  00000000"
                 "  FFFFFFFF 00000000 00000000 FFFFFFFF 00000000 00000000 0000000000000000"
                 " 01000000 01000000"
                 "  'F'  00000000  'F'"
                 "  00000000 00000000 01000000 00000000 0000000000000000"
                 "  01000000 01000000 01000000 01000000  'F'");
}

TEST(AFunction, WritesItsTenFieldsInOrder) {
    T_A_Function value;
    value.first_key_set = {{"k"s, 2}, {"k"s, -1}};
    value.first_int = 5;
    value.numbers = {{"n"s, -6}};
    value.context.choose<"No_Function_Context">();
    value.optional_location = {7, {}, 0};
    value.second_key_set = {{"k"s, 8}};
    value.first_flag = true;
    value.location = {9, {}, 0};
    value.signature.package = "p";
    wire::expect(value,
                 "02000000 FFFFFFFF 01000000 'k' FFFFFFFF 01000000 02000000"
                 "  05000000"
                 "  01000000 FEFFFFFF 01000000 'n' FAFFFFFF"
                 "  00000000"
                 "  'T' 07000000 00000000 FDFFFFFF 00000000 00000000 0000000000000000"
                 "  01000000 01000000 08000000"
                 "  'T'"
                 "  09000000 00000000 03000000 00000000 0000000000000000"
                 "  FCFFFFFF 01000000 'p' 03000000 03000000 03000000"
                 "  'F'");
}

TEST(AFunction, SetsAreWrittenInTheOrderOfTheirHandles) {
    order::Handles const names;
    T_A_Function         value;
    value.first_key_set = {{names.greater, 1}, {names.lesser, 2}};
    std::string const bytes = hex::bytes("02000000  FFFFFFFF 01000000") + names.lesser.str() +
                              hex::bytes("02000000  FEFFFFFF 01000000") + names.greater.str() +
                              hex::bytes("01000000");
    EXPECT_EQ(hex::shown(wire::write(value).substr(0, bytes.size())), hex::shown(bytes));
}

TEST(AFunction, KeySetsCompareElementByElementBeforeTheirSize) {
    order::Handles const names;
    using Keys = std::set<std::pair<Strings_T, sml::int32>>;
    std::pair const low(names.lesser, 5);
    std::pair const high(names.greater, -5);
    for (auto const set : {&T_A_Function::first_key_set, &T_A_Function::second_key_set}) {
        auto with = [set](Keys keys) {
            T_A_Function value = function();
            value.*set = std::move(keys);
            return value;
        };
        order::expect_less(with({}), with({low}));
        order::expect_less(with({low}), with({low, high}));
        order::expect_less(with({low, high}), with({high}));
        order::expect_less(with({low}), with({high}));
        order::expect_less(with({{names.lesser, -1}}), with({{names.lesser, 0}}));
        order::expect_equal(with({low, high}), with({high, low}));
    }
}

TEST(AFunction, NumbersOrderBySizeThenByTheValuesOfTheSameKeys) {
    auto with = [](std::unordered_map<Strings_T, sml::int32> numbers) {
        T_A_Function value = function();
        value.numbers = std::move(numbers);
        return value;
    };
    order::expect_less(with({{"a"s, 100}}), with({{"b"s, 1}, {"c"s, 1}}));
    order::expect_unordered(with({{"a"s, 1}}), with({{"b"s, 2}}));
    order::expect_less(with({{"a"s, -1}}), with({{"a"s, 0}}));
    order::expect_less(with({{"a"s, 1}, {"b"s, 2}}), with({{"b"s, 3}, {"a"s, 1}}));
    order::expect_equal(with({{"a"s, 1}, {"b"s, 2}}), with({{"b"s, 2}, {"a"s, 1}}));
    auto later = with({{"b"s, 2}});
    later.optional_location.emplace();
    order::expect_unordered(with({{"a"s, 1}}), later);

    auto const a = with({{"a"s, 1}, {"b"s, 2}});
    auto const b = with({{"a"s, 2}, {"b"s, 1}});
    auto       first_is_less = [](auto const& left, auto const& right) {
        auto const& [name, number] = *left.numbers.begin();
        return number < right.numbers.at(name);
    };
    EXPECT_EQ(a < b, first_is_less(a, b));
    EXPECT_EQ(b < a, first_is_less(b, a));
    EXPECT_FALSE(a == b);
}

TEST(AFunction, WithoutContextEndsTheOrder) {
    T_A_Function a;
    a.context.choose<"No_Function_Context">();
    T_A_Function b = a;
    b.second_flag = true;
    order::expect_equal_and_each_less(a, a);
    order::expect_unequal_and_each_less(a, b);
    b.first_int = 1;
    order::expect_less(a, b);
}

T_A_Function clone_of(Strings_T const& name, std::int32_t tag) {
    T_A_Function value;
    auto& [clone_name, clone] = value.context.choose<"Some_Clone_Context">();
    clone_name = name;
    clone.choose_tag(tag);
    return value;
}

TEST(AFunction, ATopCloneOfTheSameNameEndsTheOrder) {
    order::Handles const names;
    for (std::int32_t const tag : {4, 5}) {
        auto const a = clone_of(names.lesser, tag);
        auto       b = a;
        b.second_flag = true;
        order::expect_equal_and_each_less(a, a);
        order::expect_unequal_and_each_less(a, b);
        order::expect_less(a, clone_of(names.greater, tag));
        order::expect_less(a, clone_of(names.lesser, tag + 1));
    }
}

TEST(AFunction, ANamedCloneGoesOnToTheNextField) {
    for (std::int32_t const tag : {0, 1, 2, 3}) {
        auto const a = clone_of("a"s, tag);
        auto       b = a;
        order::expect_equal(a, b);
        b.optional_location.emplace();
        order::expect_less(a, b);
    }
}

TEST(AFunction, AnUnsetContextOrCloneIsNeitherLessNorEqual) {
    order::expect_unordered(T_A_Function(), T_A_Function());
    order::expect_unordered(clone_of("a"s, -1), clone_of("a"s, -1));
    auto later = clone_of("a"s, -1);
    later.second_flag = true;
    order::expect_unordered(clone_of("a"s, -1), later);
}

TEST(AFunction, ReadingAddsToItsContainers) {
    T_A_Function value = function();
    value.first_key_set = {{"held"s, 1}};
    value.numbers = {{"held"s, 1}};
    auto fresh = value;
    fresh.first_key_set.emplace("new"s, 2);
    fresh.numbers = {{"held"s, 7}, {"new"s, 2}};
    wire::read_over(value, wire::write(fresh));
    EXPECT_EQ(value.first_key_set.size(), 2u);
    EXPECT_EQ(value.numbers,
              (std::unordered_map<Strings_T, sml::int32>{{"held"s, 1}, {"new"s, 2}}));
}

}  // namespace
