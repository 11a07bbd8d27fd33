#include <sml/schema/Base_Gui_Internal_Form_Datas.hpp>
#include "tests/order.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <utility>

namespace {

using sml::Strings_T;
using sml::Base_Gui_Internal_Form_Datas::T_Chk_Data;
using std::string_literals::operator""s;

using Aggregated = sml::Base_Gui_Internal_Form_Datas::T_Aggregated_Results;
using Key = std::pair<Strings_T, sml::int32>;

T_Chk_Data check_data(int number) {
    T_Chk_Data data;
    data.first_int = number;
    data.category.choose<"CC">();
    return data;
}

TEST(AggregatedResults, EmptyOnesAreSeventeenWordsOfZero) {
    wire::expect(Aggregated(), hex::shown(std::string(17 * 4, '\0')));
}

TEST(AggregatedResults, TheirMapsFollowTheApplicationResultsAtOnce) {
    Aggregated results;
    results.application_results.first_int = -1;
    results.info_definitions[5];
    results.kernel_to_gui_info_ids[Key("k"s, 1)] = 2;
    results.check_data.emplace_back(3, T_Chk_Data());
    wire::expect(results,
                 "FFFFFFFF"
                 "  00000000 00000000 00000000 00000000 00000000 00000000 00000000"
                 "  00000000 00000000 00000000 00000000 00000000 00000000"
                 "  01000000  05000000"
                 "  00000000 'F' 00000000 'F' 00000000 FFFFFFFF 00000000 00000000 01000000 'F'"
                 "  01000000  FEFFFFFF 01000000 'k' 01000000  02000000"
                 "  01000000  03000000"
                 "  'F' 'F' 'F'  00000000 'F' 00000000 'F'  00000000  00000000  'F'  00000000"
                 "  00000000  'F' 'F' 'F'  'F' 'F'  00000000 01000000 00000000  01000000"
                 "  00000000 00000000  0000000000000000  'F'  FFFFFFFF");
}

TEST(AggregatedResults, CheckDataKeepsTheOrderOfTheList) {
    Aggregated results;
    for (int const id : {3, 1, 2, 1}) results.check_data.emplace_back(id, check_data(id));
    auto const read = wire::read<Aggregated>(wire::write(results));
    EXPECT_TRUE(read == results);
    auto next = read.check_data.begin();
    for (int const id : {3, 1, 2, 1}) EXPECT_EQ((next++)->first, id);
}

TEST(AggregatedResults, SmallerMapsAreLessAndDifferentKeysUnordered) {
    Aggregated a;
    Aggregated b;
    a.info_definitions[1];
    order::expect_less(b, a);
    b.info_definitions[2];
    order::expect_unordered(a, b);
    b.info_definitions[3];
    order::expect_less(a, b);

    a = b = Aggregated();
    a.kernel_to_gui_info_ids[Key("k"s, 1)] = 5;
    order::expect_less(b, a);
    b.kernel_to_gui_info_ids[Key("k"s, 2)] = 5;
    order::expect_unordered(a, b);
    a.check_data.emplace_back();
    order::expect_unordered(a, b);
    b.kernel_to_gui_info_ids[Key("l"s, 1)] = 5;
    order::expect_less(a, b);
}

TEST(AggregatedResults, IdsHashAsTheirSignExtendedValue) {
    Aggregated const results;
    auto const       hash = results.info_definitions.hash_function();
    EXPECT_EQ(hash(0), 0u);
    EXPECT_EQ(hash(7), 7u);
    EXPECT_EQ(hash(-1), std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(results.kernel_to_gui_info_ids.hash_function()(Key()), 0xe6546b64u);
}

Aggregated with_check_data(std::list<std::pair<sml::int32, T_Chk_Data>> data) {
    Aggregated results;
    results.check_data = std::move(data);
    return results;
}

TEST(AggregatedResults, TheShorterListOfCheckDataIsLess) {
    order::expect_less(with_check_data({{100, check_data(100)}}),
                       with_check_data({{-1, check_data(-1)}, {-1, check_data(-1)}}));
}

TEST(AggregatedResults, CheckDataOfOneCountCompareIdThenForm) {
    order::expect_less(with_check_data({{-1, check_data(9)}}),
                       with_check_data({{0, check_data(1)}}));
    order::expect_less(with_check_data({{1, check_data(1)}, {9, check_data(9)}}),
                       with_check_data({{1, check_data(2)}, {0, check_data(0)}}));
    order::expect_less(with_check_data({{1, check_data(1)}, {2, check_data(9)}}),
                       with_check_data({{1, check_data(1)}, {3, check_data(0)}}));
    order::expect_equal(with_check_data({{1, check_data(1)}}),
                        with_check_data({{1, check_data(1)}}));
}

TEST(AggregatedResults, CheckDataThatIsNeitherLessNorGreaterIsPassedOver) {
    T_Chk_Data const unset;
    order::expect_less(with_check_data({{1, unset}, {2, check_data(0)}}),
                       with_check_data({{1, unset}, {3, check_data(0)}}));
    order::expect_unordered(with_check_data({{1, unset}}), with_check_data({{1, unset}}));
}

TEST(AggregatedResults, CheckDataThatIsLessThanItselfMakesTheResultsLess) {
    T_Chk_Data data;
    data.category.choose<"ZDV">();
    Aggregated const results = with_check_data({{1, data}});
    order::expect_equal_and_each_less(results, results);
}

TEST(AggregatedResults, ApplicationResultsThatAreLessThanThemselvesDecide) {
    Aggregated a;
    a.application_results.blocks[Key()].kind.choose<"B_THEN">();
    Aggregated b = a;
    b.info_definitions[1];
    order::expect_unequal_and_each_less(a, b);
}

TEST(AggregatedResults, ReadingAppendsToCheckDataAndKeepsOldEntries) {
    Aggregated results;
    results.info_definitions[1].first_int = 1;
    results.kernel_to_gui_info_ids[Key("k"s, 1)] = 1;
    results.check_data.emplace_back(1, check_data(1));
    auto const* const held = &results.check_data.front();
    Aggregated        fresh;
    fresh.info_definitions[1].first_int = 9;
    fresh.info_definitions[2].first_int = 2;
    fresh.kernel_to_gui_info_ids = {{Key("k"s, 1), 9}, {Key("k"s, 2), 2}};
    fresh.check_data.emplace_back(1, check_data(2));
    wire::read_over(results, wire::write(fresh));
    EXPECT_EQ(results.info_definitions.size(), 2u);
    EXPECT_EQ(results.info_definitions[1].first_int, 1);
    EXPECT_EQ(results.info_definitions[2].first_int, 2);
    EXPECT_EQ(results.kernel_to_gui_info_ids.size(), 2u);
    EXPECT_EQ(results.kernel_to_gui_info_ids[Key("k"s, 1)], 1);
    ASSERT_EQ(results.check_data.size(), 2u);
    EXPECT_EQ(&results.check_data.front(), held);
    EXPECT_EQ(held->second.first_int, 1);
    EXPECT_EQ(results.check_data.back().second.first_int, 2);

    wire::read_over(results, wire::write(with_check_data({{7, T_Chk_Data()}})));
    EXPECT_EQ(results.check_data.back().second.category.tag, -1);
}

TEST(AggregatedResults, OneStringTableIsOfTheWholeObject) {
    Aggregated results;
    results.application_results.check_numbers["name"s] = 1;
    results.kernel_to_gui_info_ids[Key("name"s, 1)] = 2;
    std::string const bytes = wire::write(results);
    EXPECT_EQ(bytes.find("name"), bytes.rfind("name"));
    EXPECT_NE(bytes.find("name"), std::string::npos);
    EXPECT_TRUE(wire::read<Aggregated>(bytes) == results);
}

TEST(TablesOfResults, ChecksByIdKeepTheFirstEntryOfAnId) {
    std::unordered_map<sml::int32, T_Chk_Data> checks{{-5, check_data(1)}};
    std::string const                          bytes = wire::write(checks);
    EXPECT_EQ(hex::shown(bytes),
              hex::shown(hex::bytes("01000000 FBFFFFFF") + wire::write(check_data(1))));
    checks.at(-5).first_int = 2;
    wire::read_over(checks, bytes);
    EXPECT_EQ(checks.size(), 1u);
    EXPECT_EQ(checks.at(-5).first_int, 2);
}

TEST(TablesOfResults, ARepeatedNameKeepsItsFirstSetOfNames) {
    using Sets = std::unordered_map<Strings_T, std::unordered_set<Strings_T>>;
    auto const sets =
        wire::read<Sets>(hex::bytes("02000000"
                                    "  FFFFFFFF 01000000 'k'  01000000 FEFFFFFF 01000000 'a'"
                                    "  01000000  02000000 02000000 FDFFFFFF 01000000 'b'"));
    EXPECT_EQ(sets, (Sets{{"k"s, {"a"s}}}));
}

}  // namespace
