#include "tests/core/string_table.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <ios>
#include <list>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>

using sml::int32;
using sml::Strings_T;
using sml::core::LastWinsMap;
using string_table::count_of;

namespace {

template <class T>
struct NumberHash {
    std::size_t operator()(T value) const { return static_cast<std::size_t>(value); }
};
using LastWinsHashed =
    std::unordered_map<int32, std::list<int32>, sml::core::LastWins<NumberHash<int32>>>;

using StringSets = std::unordered_map<Strings_T, std::unordered_set<Strings_T>>;

/// A map that has key 1 twice, each time with one list.
constexpr char const* key_one_twice =
    "02 00 00 00"
    "01 00 00 00  01 00 00 00  0A 00 00 00"
    "01 00 00 00  01 00 00 00  0B 00 00 00";

/// A text with a negative length: reading it throws.
constexpr char const* unreadable_text = "FF FF FF FF";

TEST(Containers, ReadingAppendsToAList) {
    std::list<int32> list{1, 2};
    wire::read_over(list, hex::bytes("02 00 00 00  03 00 00 00  01 00 00 00"));
    EXPECT_EQ(list, (std::list<int32>{1, 2, 3, 1}));
}

TEST(Containers, ReadingAddsToASet) {
    std::set<int32> sorted{1, 5};
    wire::read_over(sorted, hex::bytes("02 00 00 00  03 00 00 00  05 00 00 00"));
    EXPECT_EQ(sorted, (std::set<int32>{1, 3, 5}));

    std::unordered_set<int32> hashed{1, 5};
    wire::read_over(hashed, hex::bytes("02 00 00 00  03 00 00 00  05 00 00 00"));
    EXPECT_EQ(hashed, (std::unordered_set<int32>{1, 3, 5}));
}

TEST(Containers, ReadingAddsToAMapAndKeepsWhatItHeld) {
    std::string const bytes = hex::bytes(
        "02 00 00 00"
        "01 00 00 00  63 00 00 00"
        "02 00 00 00  14 00 00 00");
    std::map<int32, int32> sorted{{1, 10}};
    wire::read_over(sorted, bytes);
    EXPECT_EQ(sorted, (std::map<int32, int32>{{1, 10}, {2, 20}}));

    std::unordered_map<int32, int32> hashed{{1, 10}};
    wire::read_over(hashed, bytes);
    EXPECT_EQ(hashed, (std::unordered_map<int32, int32>{{1, 10}, {2, 20}}));
}

TEST(Containers, DuplicateInASetIsDropped) {
    std::string const bytes = hex::bytes("03 00 00 00  07 00 00 00  07 00 00 00  08 00 00 00");
    EXPECT_EQ(wire::read<std::set<int32>>(bytes), (std::set<int32>{7, 8}));
    EXPECT_EQ(wire::read<std::unordered_set<int32>>(bytes), (std::unordered_set<int32>{7, 8}));
}

TEST(Containers, FirstEntryForAKeyStays) {
    std::string const bytes = hex::bytes(key_one_twice);
    EXPECT_EQ((wire::read<std::map<int32, std::list<int32>>>(bytes)),
              (std::map<int32, std::list<int32>>{{1, {10}}}));
    EXPECT_EQ((wire::read<std::unordered_map<int32, std::list<int32>>>(bytes)),
              (std::unordered_map<int32, std::list<int32>>{{1, {10}}}));
}

TEST(Containers, LastValueForAKeyIsReadOverTheHeldOne) {
    std::string const bytes = hex::bytes(key_one_twice);
    auto const        sorted = wire::read<LastWinsMap<int32, std::list<int32>>>(bytes);
    ASSERT_EQ(sorted.size(), 1u);
    EXPECT_EQ(sorted.at(1), (std::list<int32>{10, 11}));

    auto const hashed = wire::read<LastWinsHashed>(bytes);
    ASSERT_EQ(hashed.size(), 1u);
    EXPECT_EQ(hashed.at(1), (std::list<int32>{10, 11}));

    auto const numbers =
        wire::read<LastWinsMap<int32, int32>>(hex::bytes("02 00 00 00"
                                                         "01 00 00 00  0A 00 00 00"
                                                         "01 00 00 00  0B 00 00 00"));
    EXPECT_EQ(numbers.at(1), 11);
}

TEST(Containers, LastWinsMapReadsOverWhatItHeldBefore) {
    LastWinsMap<int32, std::list<int32>> map;
    map[1] = {9};
    wire::read_over(map, hex::bytes(key_one_twice));
    EXPECT_EQ(map.at(1), (std::list<int32>{9, 10, 11}));
}

// With doubles one can see which of two equal keys is kept: the zeros differ in their sign.
TEST(Containers, FirstKeyObjectStaysInBothMapForms) {
    std::string const bytes = hex::bytes(
        "02 00 00 00"
        "09 00 00 00 '-0.000000'  0A 00 00 00"
        "08 00 00 00 '0.000000'   0B 00 00 00");
    auto const first_wins = wire::read<std::map<double, int32>>(bytes);
    auto const last_wins = wire::read<LastWinsMap<double, int32>>(bytes);
    ASSERT_EQ(first_wins.size(), 1u);
    EXPECT_TRUE(std::signbit(first_wins.begin()->first));
    EXPECT_EQ(first_wins.begin()->second, 10);
    ASSERT_EQ(last_wins.size(), 1u);
    EXPECT_TRUE(std::signbit(last_wins.begin()->first));
    EXPECT_EQ(last_wins.begin()->second, 11);
}

TEST(Containers, BothMapFormsLookAlikeOnTheWire) {
    LastWinsMap<int32, bool> map;
    map[2] = true;
    map[1] = false;
    wire::expect(map,
                 "02 00 00 00"
                 "01 00 00 00 46"
                 "02 00 00 00 54");
}

TEST(Containers, SizeIsWrittenAsACountOfAllElements) {
    std::list<bool> const flags(300, true);
    EXPECT_EQ(hex::shown(wire::write(flags)),
              hex::shown(hex::bytes("2C 01 00 00") + std::string(300, 'T')));
}

TEST(Containers, SetOfOneStringInATable) {
    wire::expect(StringSets{{{"alpha"}, {{"beta"}}}},
                 "01 00 00 00"
                 "FF FF FF FF  05 00 00 00 'alpha'"
                 "01 00 00 00"
                 "FE FF FF FF  04 00 00 00 'beta'");
    wire::expect(StringSets{{{"alpha"}, {{"alpha"}}}},
                 "01 00 00 00"
                 "FF FF FF FF  05 00 00 00 'alpha'"
                 "01 00 00 00"
                 "01 00 00 00");
    wire::expect(StringSets{{{"alpha"}, {Strings_T()}}},
                 "01 00 00 00"
                 "FF FF FF FF  05 00 00 00 'alpha'"
                 "01 00 00 00"
                 "FE FF FF FF  00 00 00 00");
    wire::expect(StringSets{{Strings_T(), {}}},
                 "01 00 00 00"
                 "FF FF FF FF  00 00 00 00"
                 "00 00 00 00");
}

TEST(Containers, ElementWhoseReadingThrowsIsNotLeftInAList) {
    std::list<std::string> list{"held"};
    EXPECT_THROW(wire::read_over(list, hex::bytes("03 00 00 00  01 00 00 00 'a'") +
                                           hex::bytes(unreadable_text)),
                 std::length_error);
    EXPECT_EQ(list, (std::list<std::string>{"held", "a"}));
}

TEST(Containers, ElementWhoseReadingThrowsIsNotLeftInASet) {
    std::string const bytes =
        hex::bytes("03 00 00 00  01 00 00 00 'a'") + hex::bytes(unreadable_text);
    std::set<std::string> sorted{"held"};
    EXPECT_THROW(wire::read_over(sorted, bytes), std::length_error);
    EXPECT_EQ(sorted, (std::set<std::string>{"a", "held"}));

    std::unordered_set<std::string> hashed{"held"};
    EXPECT_THROW(wire::read_over(hashed, bytes), std::length_error);
    EXPECT_EQ(hashed, (std::unordered_set<std::string>{"a", "held"}));
}

TEST(Containers, EntryWhoseReadingThrowsIsNotLeftInATable) {
    std::string const bytes = hex::bytes(
                                  "03 00 00 00"
                                  "01 00 00 00  01 00 00 00 'a'"
                                  "02 00 00 00") +
                              hex::bytes(unreadable_text);
    std::map<int32, std::string> sorted{{0, "held"}};
    EXPECT_THROW(wire::read_over(sorted, bytes), std::length_error);
    EXPECT_EQ(sorted, (std::map<int32, std::string>{{0, "held"}, {1, "a"}}));

    std::unordered_map<int32, std::string> hashed{{0, "held"}};
    EXPECT_THROW(wire::read_over(hashed, bytes), std::length_error);
    EXPECT_EQ(hashed, (std::unordered_map<int32, std::string>{{0, "held"}, {1, "a"}}));
}

// In these maps the entry is added before its value is read.
TEST(Containers, EntryWhoseReadingThrowsStaysInALastWinsMap) {
    LastWinsMap<int32, std::string> map;
    EXPECT_THROW(
        wire::read_over(map, hex::bytes("01 00 00 00  05 00 00 00") + hex::bytes(unreadable_text)),
        std::length_error);
    ASSERT_EQ(map.size(), 1u);
    EXPECT_EQ(map.at(5), "");
}

TEST(Containers, NegativeCountIsAnUnsignedOne) {
    // A list of texts ends at the one that can't be read.
    std::string bytes = hex::bytes("FF FF FF FF");
    for (int i = 0; i < 1000; ++i) bytes += hex::bytes("01 00 00 00 'x'");
    bytes += hex::bytes(unreadable_text);
    std::list<std::string> list;
    EXPECT_THROW(wire::read_over(list, bytes), std::length_error);
    EXPECT_EQ(list.size(), 1000u);
}

TEST(Containers, NegativeCountOfAStreamRunsUntilTheStreamThrows) {
    std::istringstream stream(hex::bytes("00 00 00 80  01 00 00 00  02 00 00 00  03 00"));
    stream.exceptions(std::ios::eofbit | std::ios::failbit);
    std::list<int32> list;
    EXPECT_THROW(sml::core::read_from_stream(list, stream), std::ios_base::failure);
    EXPECT_EQ(list, (std::list<int32>{1, 2}));
}

TEST(Containers, StringsOfAnElementThatThrewAreReleased) {
    std::size_t const                            before = string_table::size();
    std::list<std::pair<Strings_T, std::string>> list;
    EXPECT_THROW(wire::read_over(list, hex::bytes("02 00 00 00"
                                                  "FF FF FF FF  04 00 00 00 'kept'"
                                                  "00 00 00 00"
                                                  "FE FF FF FF  04 00 00 00 'gone'") +
                                           hex::bytes(unreadable_text)),
                 std::length_error);
    EXPECT_EQ(count_of("kept"), 1u);
    EXPECT_EQ(count_of("gone"), 0u);
    list.clear();
    EXPECT_EQ(string_table::size(), before);
}

}  // namespace
