#include <sml/schema/Critical_Section_Funtype_Base.hpp>
#include <sml/schema/Localization.hpp>
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <array>
#include <list>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <type_traits>
#include <unordered_map>
#include <unordered_set>
#include <utility>

using sml::int32;
using sml::int64;
using sml::Strings_T;
using sml::uint32;
using sml::uint64;

namespace {

/// Two parts that are no record of the schema.
struct Parts {
    int32 number{};
    bool  flag{};

    SML_FIELDS(Parts, number, flag);
};

TEST(Encoding, WordsAreLittleEndianWithoutPadding) {
    wire::expect(int32{1}, "01 00 00 00");
    wire::expect(int32{-2}, "FE FF FF FF");
    wire::expect(uint32{0xfffefdfc}, "FC FD FE FF");
    wire::expect(int64{-2}, "FE FF FF FF FF FF FF FF");
    wire::expect(int64{0x0102030405060708}, "08 07 06 05 04 03 02 01");
    wire::expect(uint64{0xfffefdfcfbfaf9f8}, "F8 F9 FA FB FC FD FE FF");
    wire::expect(std::tuple(true, int64{1}, false, int32{2}),
                 "54"
                 "01 00 00 00 00 00 00 00"
                 "46"
                 "02 00 00 00");
}

TEST(Encoding, EnumerationIsItsValueAsAWord) {
    using namespace sml::Critical_Section_Funtype_Base;
    wire::expect(Destroy, "00 00 00 00");
    wire::expect(Unlock, "02 00 00 00");
    wire::expect(static_cast<T>(3), "03 00 00 00");
    wire::expect(static_cast<T>(-1), "FF FF FF FF");
}

TEST(Encoding, FlagIsOneCharacter) {
    wire::expect(true, "54");
    wire::expect(false, "46");
    wire::expect(std::array<bool, 4>{true, false, false, true}, "54 46 46 54");
}

TEST(Encoding, EveryFlagByteButTIsFalse) {
    for (char const* const byte : {"46", "00", "FF", "74", "01", "55"}) {
        SCOPED_TRACE(byte);
        std::string const bytes = hex::bytes(byte);
        EXPECT_FALSE(wire::read<bool>(bytes));
        EXPECT_FALSE(wire::read_from_stream<bool>(bytes));
        EXPECT_FALSE(wire::read<std::optional<int32>>(bytes).has_value());
        EXPECT_FALSE(wire::read_from_stream<std::optional<int32>>(bytes).has_value());
    }
}

TEST(Encoding, OptionalIsAFlagAndItsValue) {
    wire::expect(std::optional<int32>(7), "54 07 00 00 00");
    wire::expect(std::optional<int32>(), "46");
    wire::expect(std::optional<bool>(false), "54 46");
}

TEST(Encoding, OptionalIsMadeAnewByReading) {
    std::optional<std::list<int32>> value(std::list<int32>{1, 2});
    wire::read_over(value, hex::bytes("54"
                                      "01 00 00 00"
                                      "03 00 00 00"));
    EXPECT_EQ(value, std::list<int32>{3});
    wire::read_over(value, hex::bytes("46"));
    EXPECT_FALSE(value.has_value());
}

TEST(Encoding, EmptyContainerIsACountOfZero) {
    wire::expect(std::list<int32>(), "00 00 00 00");
    wire::expect(std::set<int32>(), "00 00 00 00");
    wire::expect(std::map<int32, int32>(), "00 00 00 00");
    wire::expect(std::unordered_set<int32>(), "00 00 00 00");
    wire::expect(std::unordered_map<int32, int32>(), "00 00 00 00");
}

TEST(Encoding, ListKeepsItsOrderAndEqualElements) {
    wire::expect(std::list<int32>{3, 1, 3},
                 "03 00 00 00"
                 "03 00 00 00  01 00 00 00  03 00 00 00");
}

TEST(Encoding, SetAndMapGoOutInAscendingOrder) {
    wire::expect(std::set<int32>{3, -1, 2},
                 "03 00 00 00"
                 "FF FF FF FF  02 00 00 00  03 00 00 00");
    wire::expect(std::map<int32, bool>{{2, true}, {1, false}},
                 "02 00 00 00"
                 "01 00 00 00 46"
                 "02 00 00 00 54");
}

TEST(Encoding, HashedContainersGoOutInTheirOwnOrder) {
    std::unordered_set<int32> const       set{5, 900, -3, 17};
    std::unordered_map<int32, bool> const map{{5, true}, {900, false}, {-3, true}};

    std::string set_bytes = wire::write(int32{4});
    for (int32 const element : set) set_bytes += wire::write(element);
    std::string map_bytes = wire::write(int32{3});
    for (auto const& entry : map) map_bytes += wire::write(entry);

    EXPECT_EQ(hex::shown(wire::write(set)), hex::shown(set_bytes));
    EXPECT_EQ(hex::shown(wire::write_to_stream(set)), hex::shown(set_bytes));
    EXPECT_EQ(hex::shown(wire::write(map)), hex::shown(map_bytes));
    EXPECT_EQ(wire::read<std::unordered_set<int32>>(set_bytes), set);
    EXPECT_EQ((wire::read<std::unordered_map<int32, bool>>(map_bytes)), map);
}

TEST(Encoding, PartsStandSideBySideWithoutFraming) {
    wire::expect(std::pair(int32{1}, true), "01 00 00 00 54");
    wire::expect(std::tuple(int32{1}, false, int64{2}),
                 "01 00 00 00"
                 "46"
                 "02 00 00 00 00 00 00 00");
    wire::expect(Parts{1, true}, "01 00 00 00 54");
    wire::expect(std::list<std::pair<int32, Parts>>{{1, {2, true}}},
                 "01 00 00 00"
                 "01 00 00 00"
                 "02 00 00 00 54");
}

TEST(Encoding, RecordIsItsFieldsInOrder) {
    sml::Localization::T_Localization place;
    place.first_position = 1;
    place.file = std::string("f");
    place.second_position = 2;
    wire::expect(place,
                 "01 00 00 00"
                 "FF FF FF FF  01 00 00 00  'f'"
                 "02 00 00 00");
}

TEST(Encoding, PlainTextIsALengthAndBytesEachTime) {
    wire::expect(std::string(), "00 00 00 00");
    wire::expect(std::pair(std::string("ab"), std::string("ab")),
                 "02 00 00 00 'ab'"
                 "02 00 00 00 'ab'");
    wire::expect(std::string("a\0b", 3), "03 00 00 00 61 00 62");
}

TEST(Encoding, BoxIsWhatItHolds) {
    wire::expect(sml::core::Box<int32>(7), "07 00 00 00");
    wire::expect(sml::core::Box<std::string>(std::string("x")), "01 00 00 00 'x'");
}

TEST(Archives, ArePlainClasses) {
    static_assert(!std::is_polymorphic_v<sml::UnbufferedOArchive>);
    static_assert(!std::is_polymorphic_v<sml::StreamOArchive>);
    static_assert(!std::is_polymorphic_v<sml::StreamIArchive>);
    static_assert(!std::is_polymorphic_v<sml::StringOArchive>);
    static_assert(!std::is_polymorphic_v<sml::StringIArchive>);
    static_assert(!std::is_same_v<sml::StreamOArchive, sml::StringOArchive>);
    static_assert(!std::is_same_v<sml::StreamIArchive, sml::StringIArchive>);
}

/// The hash table of ids starts with 64 places and grows when half of them are used.
TEST(Archives, KnowEveryStringAroundEachGrowthOfTheirIds) {
    for (std::int32_t const most : {31, 32, 33, 34, 63, 64, 65, 127, 128, 129, 1000}) {
        SCOPED_TRACE(most);
        std::list<Strings_T> strings;
        std::string          expected = wire::write(3 * most);
        for (std::int32_t i = 1; i <= most; ++i) {
            std::string const text = "text " + std::to_string(i);
            expected += wire::write(-i) + wire::write(text) + wire::write(i);
            strings.insert(strings.end(), 2, Strings_T(text));
        }
        for (std::int32_t i = 1; i <= most; ++i) {
            expected += wire::write(i);
            strings.emplace_back("text " + std::to_string(i));
        }
        EXPECT_EQ(wire::write(strings), expected);
        EXPECT_EQ(wire::read<std::list<Strings_T>>(expected), strings);
    }
}

TEST(Archives, BeginWithoutStrings) {
    std::string               bytes;
    sml::StringOArchive const writing(bytes);
    EXPECT_EQ(writing.string_ids.size(), 0u);

    sml::StringIArchive const reading("");
    EXPECT_EQ(reading.strings_by_id.size(), 0u);
}

}  // namespace
