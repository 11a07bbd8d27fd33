#include <sml/schema/Base_Gui_Internal_Form_Datas.hpp>
#include "tests/order.hpp"
#include "tests/schema/tables.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <utility>

namespace {

using sml::Strings_T;
using sml::Base_Gui_Internal_Form_Datas::T_Caller;
using sml::Base_Gui_Internal_Form_Datas::T_Chk_Context;
using sml::Base_Gui_Internal_Form_Datas::T_Chk_Data;
using sml::Base_Gui_Internal_Form_Datas::T_Info_Definition;
using std::string_literals::operator""s;

using CloneArgs = T_Chk_Context::Chk_Clone_args;
using ContextArgs = T_Chk_Context::Chk_Context_args;

T_Chk_Context clone(int number) {
    T_Chk_Context context;
    context.choose<"Chk_Clone">().first_int = number;
    return context;
}

T_Chk_Context call(int number) {
    T_Chk_Context context;
    context.choose<"Chk_Context">().first_int = number;
    return context;
}

TEST(Caller, WritesNumberSignatureFlagAndPlace) {
    wire::expect(T_Caller{-1, {"p"s, {"s"s, {"q"s, "n"s}}}, true, {1, "f"s, 2}},
                 "FFFFFFFF"
                 "  FFFFFFFF 01000000 'p'  FEFFFFFF 01000000 's'  FDFFFFFF 01000000 'q'"
                 "  FCFFFFFF 01000000 'n'"
                 "  'T'  01000000 FBFFFFFF 01000000 'f' 02000000");
}

TEST(CheckContext, EveryArmHasItsTagItsNameAndItsDefaultPayload) {
    tables::expect_arms_with_catch_all<T_Chk_Context>(
        {{"Chk_Clone", "FFFFFFFF 00000000  00000000  'F'"},
         {"Chk_Context",
          "00000000  FFFFFFFF 00000000 01000000 01000000 01000000  'F'  00000000 01000000 00000000"
          "  00000000  'F'"}});
}

TEST(CheckContext, WritesNamesNumbersAndOptionalNumbers) {
    wire::expect(CloneArgs{"a"s, 1, -2}, "FFFFFFFF 01000000 'a'  01000000  'T' FEFFFFFF");
    wire::expect(CloneArgs{"a"s, 1, {}}, "FFFFFFFF 01000000 'a'  01000000  'F'");
    wire::expect(ContextArgs{{5, {}, false, {}}, 6, 7},
                 "05000000  FFFFFFFF 00000000 01000000 01000000 01000000  'F'"
                 "  00000000 01000000 00000000"
                 "  06000000  'T' 07000000");
}

TEST(CheckContext, OrdersByTagThenByTheNumbers) {
    tables::expect_order_by_tag<T_Chk_Context>();
    order::expect_less(CloneArgs{}, CloneArgs{{}, 0, -100});
    order::expect_less(ContextArgs{}, ContextArgs{{}, 0, -100});
    order::expect_less(clone(100), call(-100));
    order::expect_less(clone(-1), clone(0));
    order::expect_less(call(-1), call(0));
}

TEST(InfoDefinition, WritesItsSevenFieldsInOrder) {
    wire::expect(T_Info_Definition(),
                 "00000000 'F' 00000000 'F'  00000000 FFFFFFFF 00000000 00000000  01000000 'F'");
    wire::expect(T_Info_Definition{1, -2, 3, true, {4, "f"s, 5}, "n"s, 6},
                 "01000000 'T' FEFFFFFF 03000000 'T'  04000000 FFFFFFFF 01000000 'f' 05000000"
                 "  FEFFFFFF 01000000 'n'  'T' 06000000");
}

TEST(InfoDefinition, AbsentNumbersAreLess) {
    using Info = T_Info_Definition;
    order::expect_less(Info{0, {}, 100, true, {}, {}, {}}, Info{0, -100, 0, false, {}, {}, {}});
    order::expect_less(Info{}, Info{0, {}, 0, false, {}, {}, -100});
}

/// A check form that is equal to itself and not less.
T_Chk_Data check_data() {
    T_Chk_Data data;
    data.category.choose<"CC">();
    return data;
}

TEST(CheckData, DefaultHasNoCategory) {
    T_Chk_Data const data;
    EXPECT_EQ(data.category.tag, -1);
    wire::expect(data,
                 "'F' 'F' 'F'  00000000 'F' 00000000 'F'  00000000  00000000  'F'  00000000"
                 "  00000000  'F' 'F' 'F'  'F' 'F'  00000000 FFFFFFFF 00000000 00000000  01000000"
                 "  00000000 00000000  0000000000000000  'F'  FFFFFFFF");
    order::expect_unordered(data, data);
}

TEST(CheckData, WritesItsFieldsInOrder) {
    T_Chk_Data data;
    data.first_optional_int = 1;
    data.second_optional_int = 2;
    data.first_optional_name = "a";
    data.classification.classification_class =
        sml::Results_API_base::GUI_Check_Classification_base::CRITICAL;
    data.first_int = 3;
    data.contexts.emplace_back().choose<"Chk_Clone">() = {"b"s, 4, 5};
    data.first_flag = true;
    data.second_int = 6;
    data.signature_locations.emplace(
        sml::Localization::T_Localization{7, "f"s, 8},
        std::pair(sml::PackagedPrettySignature::T{"p"s, {}}, Strings_T("a"s)));
    data.third_optional_int = 9;
    data.second_optional_name = "b";
    data.second_flag = false;
    data.first_numbered_name.emplace("a"s, 10);
    data.second_numbered_name.emplace("b"s, -1);
    data.localization = {11, "f"s, 12};
    data.name = "c";
    data.third_int = 13;
    data.fourth_int = 14;
    data.word = 0x0102030405060708;
    data.fourth_optional_int = 15;
    data.category.choose<"ACER">();
    wire::expect(data,
                 "'T' 01000000  'T' 02000000  'T' FFFFFFFF 01000000 'a'"
                 "  03000000 'F' 00000000 'F'"
                 "  03000000"
                 "  01000000  00000000 FEFFFFFF 01000000 'b' 04000000 'T' 05000000"
                 "  'T'  06000000"
                 "  01000000  07000000 FDFFFFFF 01000000 'f' 08000000"
                 "  FCFFFFFF 01000000 'p'  FBFFFFFF 00000000 05000000 05000000  01000000"
                 "  'T' 09000000  'T' 02000000  'F'"
                 "  'T' 01000000 0A000000  'T' 02000000 FFFFFFFF"
                 "  0B000000 03000000 0C000000"
                 "  FAFFFFFF 01000000 'c'  0D000000  0E000000  0807060504030201"
                 "  'T' 0F000000  01000000");
}

TEST(CheckData, AnAbsentLastNumberIsFollowedAtOnceByTheCategory) {
    T_Chk_Data data;
    data.category.choose<"DV_ASSERT">().first_int = 5;
    std::string const tail = hex::bytes("'F'  1F000000 05000000");
    std::string const absent = wire::write(data);
    EXPECT_EQ(hex::shown(absent.substr(absent.size() - tail.size())), hex::shown(tail));
    data.fourth_optional_int = -1;
    std::string const present = wire::write(data);
    EXPECT_EQ(hex::shown(present.substr(0, present.size() - tail.size() - 4)),
              hex::shown(absent.substr(0, absent.size() - tail.size())));
    std::string const longer = hex::bytes("'T' FFFFFFFF  1F000000 05000000");
    EXPECT_EQ(hex::shown(present.substr(present.size() - longer.size())), hex::shown(longer));
}

TEST(CheckData, AnAbsentNumberIsLessWhateverFollows) {
    T_Chk_Data absent = check_data();
    absent.first_int = 100;
    absent.contexts.resize(3);
    absent.category.choose<"ZDV">();
    T_Chk_Data present = check_data();
    present.first_optional_int = -100;
    order::expect_less(absent, present);
}

TEST(CheckData, TheWordComparesAsSigned) {
    T_Chk_Data a = check_data();
    T_Chk_Data b = a;
    a.word = -1;
    order::expect_less(a, b);
    a.word = std::numeric_limits<std::int64_t>::min();
    b.word = std::numeric_limits<std::int64_t>::max();
    order::expect_less(a, b);
}

T_Chk_Data with_contexts(std::list<T_Chk_Context> contexts) {
    T_Chk_Data data = check_data();
    data.contexts = std::move(contexts);
    return data;
}

TEST(CheckData, TheShorterListOfContextsIsLess) {
    order::expect_less(with_contexts({}), with_contexts({clone(-100)}));
    order::expect_less(with_contexts({call(100)}), with_contexts({clone(-1), clone(-1)}));
    T_Chk_Data without = with_contexts({});
    without.second_int = 100;
    order::expect_less(without, with_contexts({clone(0)}));
}

TEST(CheckData, ContextsOfOneCountCompareElementByElement) {
    order::expect_less(with_contexts({clone(100)}), with_contexts({call(-100)}));
    order::expect_less(with_contexts({clone(1), call(9)}), with_contexts({clone(2), clone(0)}));
    order::expect_less(with_contexts({clone(1), clone(1)}), with_contexts({clone(1), clone(2)}));
    order::expect_equal(with_contexts({clone(1), call(2)}), with_contexts({clone(1), call(2)}));
}

TEST(CheckData, UnsetContextsArePassedOverButAreUnequal) {
    T_Chk_Context const unset;
    order::expect_less(with_contexts({unset, clone(1)}), with_contexts({unset, clone(2)}));
    T_Chk_Data a = with_contexts({unset});
    T_Chk_Data b = a;
    b.second_int = 1;
    order::expect_unordered(a, b);
}

TEST(CheckData, SignatureLocationsCompareElementByElementBeforeTheirSize) {
    order::Handles const names;
    auto const&          low = names.lesser;
    auto const&          high = names.greater;
    using Places = decltype(T_Chk_Data::signature_locations);
    auto place = [](int position, Strings_T const& package, Strings_T const& name) {
        return Places::value_type({position, {}, 0}, {{package, {}}, name});
    };
    auto with = [](Places places) {
        T_Chk_Data data = check_data();
        data.signature_locations = std::move(places);
        return data;
    };
    auto const base = with({place(-1, low, low)});
    order::expect_less(with({}), base);
    order::expect_less(base, with({place(-1, low, low), place(0, low, low)}));
    order::expect_less(with({place(-1, low, low), place(0, low, low)}), with({place(0, low, low)}));
    order::expect_less(with({place(-1, high, high)}), with({place(0, low, low)}));
    order::expect_less(with({place(-1, low, high)}), with({place(-1, high, low)}));
    order::expect_less(base, with({place(-1, low, high)}));
    order::expect_equal(base, with({place(-1, low, low)}));
}

TEST(CheckData, OfACategoryWithoutPayloadIsLessThanItselfAndEqual) {
    T_Chk_Data a;
    a.category.choose<"ACER">();
    T_Chk_Data const b = a;
    order::expect_equal_and_each_less(a, a);
    order::expect_equal_and_each_less(a, b);
    a.name = "other";
    order::expect_less(b, a);
}

TEST(CheckData, TheCategoryDecidesLast) {
    T_Chk_Data a = check_data();
    T_Chk_Data b = a;
    a.category.choose<"BAD_LOCK">();
    order::expect_less(a, b);
    b.category.choose<"CTR">();
    a.category.choose<"CC">();
    order::expect_less(a, b);
    a.fourth_optional_int = 0;
    order::expect_less(b, a);
    order::expect_less(T_Chk_Data(), check_data());
}

TEST(CheckData, ReadingAddsToItsContainers) {
    T_Chk_Data fresh = check_data();
    fresh.contexts = {clone(1), T_Chk_Context()};
    fresh.signature_locations.emplace();
    T_Chk_Data        data = fresh;
    auto const* const held = &data.contexts.front();
    fresh.signature_locations.insert({{1, {}, 1}, {}});
    wire::read_over(data, wire::write(fresh));
    EXPECT_EQ(data.contexts.size(), 4u);
    EXPECT_EQ(&data.contexts.front(), held);
    EXPECT_EQ(std::next(data.contexts.begin(), 2)->arm<"Chk_Clone">().first_int, 1);
    EXPECT_EQ(data.contexts.back().tag, -1);
    EXPECT_EQ(data.signature_locations.size(), 2u);
}

TEST(CheckData, AnElementThatCannotBeReadLeavesTheOnesBefore) {
    T_Chk_Data data;
    EXPECT_THROW(
        wire::read_over(data, hex::bytes("'F' 'F' 'F'  00000000 'F' 00000000 'F'  00000000"
                                         "  02000000  00000000 FFFFFFFF 01000000 'a' 05000000 'F'"
                                         "  00000000 FEFFFFFF FFFFFFFF")),
        std::length_error);
    ASSERT_EQ(data.contexts.size(), 1u);
    EXPECT_EQ(data.contexts.front().arm<"Chk_Clone">().name.str(), "a");
}

}  // namespace
