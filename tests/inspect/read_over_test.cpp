// Compares the value that `read_over` computes from bytes alone with the value of the real reader,
// where values are read over one another: one test for each rule of reading.

#include <sml/inspect/read_over.hpp>

#include <sml/inspect/canonical.hpp>
#include <sml/inspect/describe.hpp>
#include <sml/schema/Check_Classification.hpp>
#include <sml/schema/IL.hpp>
#include <sml/schema/Infos.hpp>
#include <sml/schema/Interrogators.hpp>
#include "tests/inspect/small_stack.hpp"
#include "tests/inspect/wire_bytes.hpp"
#include "tests/runs.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <sstream>
#include <string>

namespace {

using sml::BigInteger;
using sml::Strings_T;
using sml::core::LastWinsMap;
using sml::core::LastWinsUnorderedMap;
using sml::inspect::Answer;
using sml::inspect::describe;
using sml::inspect::Limits;
using sml::inspect::Root;
using sml::inspect::verify;
using sml::inspect::VerifyOptions;
using namespace std::string_literals;
using wire_bytes::block;
using wire_bytes::in_full;
using wire_bytes::word;

std::string kept_of(sml::inspect::Root const& root, std::string_view bytes,
                    sml::inspect::VerifyOptions const& options) {
    sml::inspect::Budget budget(options.limits.own_memory);
    return std::string(sml::inspect::bytes_kept(root, bytes, options, budget));
}

template <class T>
using Table = LastWinsMap<std::int32_t, T>;

std::string canonical(Root const& root, std::string const& bytes) {
    std::ostringstream out;
    write_canonical(root, bytes, out);
    return out.str();
}

/// The bytes that remain, as hex. Expects that the reader has the same value.
template <class T>
std::string kept(std::string const& bytes) {
    Root const root{"R", describe<T>()};
    EXPECT_NE(verify(root, bytes).answer, Answer::unsafe);
    std::string const result = kept_of(root, bytes, {});
    T                 read{};
    EXPECT_EQ(wire::read_over(read, bytes), bytes.size());
    EXPECT_EQ(hex::shown(canonical(root, result)), hex::shown(canonical(root, wire::write(read))));
    return hex::shown(result);
}

template <class T>
void expect_kept(std::string const& hex, std::string const& expected) {
    EXPECT_EQ(kept<T>(hex::bytes(hex)), hex::shown(hex::bytes(expected)));
}

/// The bytes of a map in which all entries have the key 7 and these values.
std::string table(std::initializer_list<std::string> values) {
    std::string hex = "0" + std::to_string(values.size()) + " 00 00 00 ";
    for (std::string const& value : values) hex += " 07 00 00 00 " + value;
    return hex;
}

/// Expects that of these values of one key, this one remains.
template <class T>
void expect_value(std::initializer_list<std::string> values, std::string const& expected) {
    expect_kept<Table<T>>(table(values), table({expected}));
}

TEST(ReadOverRule, OfWordsTheLastIsKept) {
    expect_value<std::int32_t>({"01 00 00 00", "02 00 00 00"}, "02 00 00 00");
    expect_value<std::uint32_t>({"01 00 00 00", "02 00 00 00"}, "02 00 00 00");
    expect_value<std::int64_t>({"01 00 00 00 00 00 00 00", "02 00 00 00 00 00 00 00"},
                               "02 00 00 00 00 00 00 00");
    expect_value<std::uint64_t>({"02 00 00 00 00 00 00 00", "01 00 00 00 00 00 00 00"},
                                "01 00 00 00 00 00 00 00");
}

TEST(ReadOverRule, OfFlagsAndEnumeratorsTheLastIsKept) {
    expect_value<bool>({"'T'", "'F'"}, "'F'");
    expect_value<bool>({"'F'", "'T'", "'x'"}, "'x'");
    using Kind = sml::Infos::T_NTC_Kind;
    expect_value<Kind>({"01 00 00 00", "00 00 00 00"}, "00 00 00 00");
    expect_value<Kind>({"01 00 00 00", "63 00 00 00"}, "63 00 00 00");
}

TEST(ReadOverRule, OfTextsDoublesAndFloatsTheLastIsKept) {
    expect_value<std::string>({"02 00 00 00 'ab'", "01 00 00 00 'c'"}, "01 00 00 00 'c'");
    expect_value<std::string>({"02 00 00 00 'ab'", "00 00 00 00"}, "00 00 00 00");
    expect_value<double>({"03 00 00 00 '1.5'", "02 00 00 00 '2.'"}, "02 00 00 00 '2.'");
    using Float = zelvanite::IEEE754Float;
    expect_value<Float>({"06 00 00 00 '0X1P+0' 40 00 00 00", "04 00 00 00 '-INF' 20 00 00 00"},
                        "04 00 00 00 '-INF' 20 00 00 00");
    // A text that is not a number gives a NaN, whatever the value was.
    expect_value<Float>({"06 00 00 00 '0X1P+0' 40 00 00 00", "00 00 00 00 20 00 00 00"},
                        "00 00 00 00 20 00 00 00");
    expect_value<Float>({"06 00 00 00 '0X1P+0' 40 00 00 00", "01 00 00 00 'q' 40 00 00 00"},
                        "01 00 00 00 'q' 40 00 00 00");
}

TEST(ReadOverRule, OfReferencesTheLastIsKept) {
    expect_value<sml::Interrogators::T_QuestionRef>(
        {"00 00 00 00 05 00 00 00 00 00 00 00", "63 00 00 00 06 00 00 00 00 00 00 00"},
        "63 00 00 00 06 00 00 00 00 00 00 00");
}

TEST(ReadOverRule, TextThatIsNoIntegerLeavesTheOneBefore) {
    expect_value<BigInteger>({"03 00 00 00 '5' 00 00", "03 00 00 00 '6' 00 00"},
                             "03 00 00 00 '6' 00 00");
    expect_value<BigInteger>({"03 00 00 00 '5' 00 00", "01 00 00 00 'z'"}, "03 00 00 00 '5' 00 00");
    expect_value<BigInteger>({"03 00 00 00 '5' 00 00", "00 00 00 00", "02 00 00 00 '+6'"},
                             "03 00 00 00 '5' 00 00");
    expect_value<BigInteger>({"01 00 00 00 'z'", "03 00 00 00 ' 0A'", "03 00 00 00 '- 1'"},
                             "03 00 00 00 ' 0A'");
    expect_value<BigInteger>({"03 00 00 00 '5' 00 00", "05 00 00 00 '7' 00 'zz' 00"},
                             "05 00 00 00 '7' 00 'zz' 00");
    // If no text is a number, the value is 0, as for every text that is none.
    expect_value<BigInteger>({"01 00 00 00 'z'", "02 00 00 00 '+6'"}, "01 00 00 00 'z'");
}

TEST(ReadOverRule, WhatIsAnIntegerTheNumberLibraryDecides) {
    constexpr char  characters[] = {'0',  '1',  'a',  'F',  'g',  'G', '-',    '+',    ' ',   '\t',
                                    '\n', '\v', '\f', '\r', '\0', 'x', '\x1f', '\xA0', '\xFF'};
    std::mt19937_64 random(runs::seed());
    Root const      root{"R", describe<Table<BigInteger>>()};
    int             numbers = 0;
    for (int i = 0; i < 20000; ++i) {
        std::string text;
        for (auto left = random() % 5; left > 0; --left)
            text += characters[random() % std::size(characters)];
        std::string bytes =
            hex::bytes("02 00 00 00  07 00 00 00 03 00 00 00 '5' 00 00 07 00 00 00");
        auto const length = static_cast<char>(text.size());
        bytes += length + "\0\0\0"s + text;
        Table<BigInteger> read;
        wire::read_over(read, bytes);
        std::string const result = kept_of(root, bytes, {});
        ASSERT_EQ(canonical(root, result), canonical(root, wire::write(read))) << hex::shown(bytes);
        numbers += read.begin()->second != 5 ? 1 : 0;
    }
    EXPECT_GT(numbers, 2000);
    EXPECT_LT(numbers, 18000);
}

TEST(ReadOverRule, StringsAreDefinedAnewWhereTheyOccurFirst) {
    // id 1 is defined in a part that is lost, id 2 in a part that remains
    expect_kept<Table<std::pair<Strings_T, Strings_T>>>(
        "02 00 00 00 "
        "07 00 00 00  FF FF FF FF 01 00 00 00 'a'  FE FF FF FF 01 00 00 00 'b' "
        "07 00 00 00  02 00 00 00                  01 00 00 00",
        "01 00 00 00 "
        "07 00 00 00  FF FF FF FF 01 00 00 00 'b'  FE FF FF FF 01 00 00 00 'a'");
}

TEST(ReadOverRule, AnIdThatIsDefinedTwiceKeepsItsFirstText) {
    expect_kept<Table<std::list<Strings_T>>>(
        "02 00 00 00 "
        "07 00 00 00  01 00 00 00  FF FF FF FF 01 00 00 00 'a' "
        "07 00 00 00  02 00 00 00  FF FF FF FF 01 00 00 00 'b'  01 00 00 00",
        "01 00 00 00 "
        "07 00 00 00  03 00 00 00 "
        "FF FF FF FF 01 00 00 00 'a'  FE FF FF FF 01 00 00 00 'b'  01 00 00 00");
}

TEST(ReadOverRule, AnIdThatIsUsedBeforeItIsDefinedIsTheEmptyTextForGood) {
    expect_kept<Table<std::list<Strings_T>>>(
        "02 00 00 00 "
        "07 00 00 00  02 00 00 00  05 00 00 00  FB FF FF FF 01 00 00 00 'a' "
        "07 00 00 00  03 00 00 00  05 00 00 00  00 00 00 00 00 00 00 00  09 00 00 00",
        "01 00 00 00 "
        "07 00 00 00  05 00 00 00 "
        "FF FF FF FF 00 00 00 00  FE FF FF FF 01 00 00 00 'a' "
        "01 00 00 00  01 00 00 00  01 00 00 00");
}

TEST(ReadOverRule, ATextThatIsDefinedAgainIsOneString) {
    expect_kept<Table<std::list<Strings_T>>>(
        "02 00 00 00 "
        "07 00 00 00  01 00 00 00  FF FF FF FF 01 00 00 00 'a' "
        "07 00 00 00  02 00 00 00  FE FF FF FF 01 00 00 00 'a'  02 00 00 00",
        "01 00 00 00 "
        "07 00 00 00  03 00 00 00  FF FF FF FF 01 00 00 00 'a'  01 00 00 00  01 00 00 00");
}

TEST(ReadOverRule, TheLastReadingOfAnOptionalDecides) {
    using Element = std::optional<std::list<std::int32_t>>;
    std::string const one = "'T' 01 00 00 00 05 00 00 00";
    expect_value<Element>({one, "'F'"}, "'F'");
    expect_value<Element>({"'F'", one}, one);
    expect_value<Element>({one, "'x'"}, "'F'");
    // The element of an optional is replaced, not read over.
    expect_value<Element>({one, "'T' 01 00 00 00 06 00 00 00"}, "'T' 01 00 00 00 06 00 00 00");
}

TEST(ReadOverRule, PartsAreReadOverOneByOne) {
    using List = std::list<std::int32_t>;
    expect_value<std::pair<std::int32_t, List>>(
        {"01 00 00 00  01 00 00 00 05 00 00 00", "02 00 00 00  01 00 00 00 06 00 00 00"},
        "02 00 00 00  02 00 00 00 05 00 00 00 06 00 00 00");
    expect_value<std::tuple<List, bool, List>>(
        {"01 00 00 00 05 00 00 00  'T'  00 00 00 00", "00 00 00 00  'F'  01 00 00 00 06 00 00 00"},
        "01 00 00 00 05 00 00 00  'F'  01 00 00 00 06 00 00 00");
    // A record with a map, a flag and a variant with an empty list.
    using Record = sml::Infos::Concurrency_Info::T_Origin::Spawned_args;
    expect_value<Record>({"00 00 00 00  'T'", "00 00 00 00  'F'"}, "00 00 00 00  'F'");
}

TEST(ReadOverRule, OfRowsOfFlagsTheLastIsKept) {
    expect_value<std::array<bool, 3>>({"'TTT'", "'FTF'"}, "'FTF'");
}

TEST(ReadOverRule, ListsAreAddedOneBehindTheOther) {
    expect_value<std::list<std::int32_t>>(
        {"02 00 00 00 05 00 00 00 06 00 00 00", "00 00 00 00", "01 00 00 00 05 00 00 00"},
        "03 00 00 00 05 00 00 00 06 00 00 00 05 00 00 00");
}

TEST(ReadOverRule, SetsAreUnited) {
    std::string const first = "02 00 00 00  05 00 00 00 06 00 00 00";
    std::string const second = "03 00 00 00  06 00 00 00 07 00 00 00 07 00 00 00";
    std::string const both = "03 00 00 00  05 00 00 00 06 00 00 00 07 00 00 00";
    expect_value<std::set<std::int32_t>>({first, second}, both);
    expect_value<std::unordered_set<std::int32_t>>({first, second}, both);
}

TEST(ReadOverRule, MapsWhereTheFirstWinsKeepTheFirstValueOfAKey) {
    std::string const first = "01 00 00 00  05 00 00 00 01 00 00 00";
    std::string const second =
        "03 00 00 00  05 00 00 00 02 00 00 00  06 00 00 00 03 00 00 00 "
        "06 00 00 00 04 00 00 00";
    std::string const both = "02 00 00 00  05 00 00 00 01 00 00 00  06 00 00 00 03 00 00 00";
    expect_value<std::map<std::int32_t, std::int32_t>>({first, second}, both);
    expect_value<std::unordered_map<std::int32_t, std::int32_t>>({first, second}, both);
}

TEST(ReadOverRule, MapsThatAreReadOverAreSoInEachOther) {
    using Hash = sml::core::LastWins<std::hash<std::int32_t>>;
    using Inner = std::unordered_map<std::int32_t, std::list<std::int32_t>, Hash>;
    expect_value<Inner>(
        {"02 00 00 00  05 00 00 00 01 00 00 00 0A 00 00 00  06 00 00 00 00 00 00 00",
         "02 00 00 00  05 00 00 00 01 00 00 00 0B 00 00 00  05 00 00 00 01 00 00 00 0C 00 00 00",
         "01 00 00 00  06 00 00 00 01 00 00 00 0D 00 00 00"},
        "02 00 00 00 "
        "05 00 00 00 03 00 00 00 0A 00 00 00 0B 00 00 00 0C 00 00 00 "
        "06 00 00 00 01 00 00 00 0D 00 00 00");
}

TEST(ReadOverRule, KeysStandInTheOrderInWhichTheyAreMetFirst) {
    expect_kept<Table<bool>>(
        "04 00 00 00  09 00 00 00 'T'  03 00 00 00 'T'  09 00 00 00 'F'  05 00 00 00 'T'",
        "03 00 00 00  09 00 00 00 'F'  03 00 00 00 'T'  05 00 00 00 'T'");
}

TEST(ReadOverRule, KeysAreEqualWhateverTheirSpelling) {
    using Flags = LastWinsMap<BigInteger, bool>;
    expect_kept<Flags>("02 00 00 00  03 00 00 00 'a' 00 00 'T'  04 00 00 00 ' 00A' 'F'",
                       "01 00 00 00  03 00 00 00 'a' 00 00 'F'");
    using Named = LastWinsMap<Strings_T, bool>;
    expect_kept<Named>(
        "02 00 00 00  FF FF FF FF 01 00 00 00 'a' 'T'  FE FF FF FF 01 00 00 00 'a' 'F'",
        "01 00 00 00  FF FF FF FF 01 00 00 00 'a' 'F'");
    expect_kept<Named>("02 00 00 00  09 00 00 00 'T'  FF FF FF FF 00 00 00 00 'F'",
                       "01 00 00 00  FF FF FF FF 00 00 00 00 'F'");
}

// The catch-all arm of a Check_Classification has a string and a number.
using Class = sml::Check_Classification::T_Check_Classification;

TEST(ReadOverRule, AKeyWithANegativeTagEqualsNoOther) {
    using Flags = LastWinsUnorderedMap<Class, bool>;
    std::string const args = " 01 00 00 00 03 00 00 00 ";
    std::string const definition = " FF FF FF FF 01 00 00 00 'a' 03 00 00 00 ";
    expect_kept<Flags>("02 00 00 00  FF FF FF FF" + definition + "'T'  FF FF FF FF" + args + "'F'",
                       "02 00 00 00  FF FF FF FF" + definition + "'T'  FF FF FF FF" + args + "'F'");
    expect_kept<Flags>("02 00 00 00  63 00 00 00" + definition + "'T'  63 00 00 00" + args + "'F'",
                       "01 00 00 00  63 00 00 00" + definition + "'F'");
}

TEST(ReadOverRule, AnEqualTagReadsOverThePayload) {
    using Range = sml::Infos::T_Value_Range;  // arm 2 has a list of ranges and a variant
    static_assert(Range::arms::count == 3);
    std::string const two = "02 00 00 00  02 00 00 00  01 00 00 00  01 00 00 00  00 00 00 00";
    std::string const one = "02 00 00 00  01 00 00 00  01 00 00 00  03 00 00 00";
    std::string const both =
        "02 00 00 00  03 00 00 00  01 00 00 00  01 00 00 00  01 00 00 00 "
        "03 00 00 00";
    expect_value<Range>({two, one}, both);
    // Another tag in between replaces the payload.
    std::string const other = "00 00 00 00  'F' 'F'";
    expect_value<Range>({two, other, one}, one);
    expect_value<Range>({two, one, other}, other);
    expect_value<Range>({other, two, one}, both);
}

TEST(ReadOverRule, TheCatchAllPayloadIsReadOverForAnEqualTagOnly) {
    // Unknown tags and -1 have the payload of the catch-all arm, a list of ranges.
    using Range = sml::Infos::T_Value_Range;
    auto const tagged = [](std::string const& tag) {
        return tag + " 01 00 00 00  01 00 00 00  03 00 00 00";
    };
    auto const both = [](std::string const& tag) {
        return tag + " 02 00 00 00  01 00 00 00  01 00 00 00  03 00 00 00";
    };
    ASSERT_TRUE(Range::arms::has_catch_all);
    for (std::string const tag : {"63 00 00 00", "FF FF FF FF", "FE FF FF FF", "02 00 00 00"}) {
        SCOPED_TRACE(tag);
        expect_value<Range>({tagged(tag), tagged(tag)}, both(tag));
        expect_value<Range>({tagged("64 00 00 00"), tagged(tag)}, tagged(tag));
        expect_value<Range>({tagged(tag), tagged("64 00 00 00")}, tagged("64 00 00 00"));
    }
}

TEST(ReadOverRule, TagsWithoutPayloadAreKeptAsTheyAre) {
    using Multiplicity = sml::Infos::Multiplicity::T;
    static_assert(!Multiplicity::arms::has_catch_all);
    std::string const five = "02 00 00 00  03 00 00 00 '5' 00 00";
    expect_value<Multiplicity>({five, "FF FF FF FF"}, "FF FF FF FF");
    expect_value<Multiplicity>({"63 00 00 00", "63 00 00 00"}, "63 00 00 00");
    expect_value<Multiplicity>({five, "03 00 00 00"}, "03 00 00 00");
    expect_value<Multiplicity>({five, "02 00 00 00  01 00 00 00 'z'"}, five);
    expect_value<Multiplicity>({five, "03 00 00 00", "02 00 00 00  01 00 00 00 'z'"},
                               "02 00 00 00  01 00 00 00 'z'");
}

TEST(ReadOverRule, ABoxedValueIsReadOver) {
    // A field of a constant: the box has an expression, and a string follows it.
    std::string const field = "02 00 00 00 ";
    expect_value<sml::IL::T_Info_Expr>(
        {field + "01 00 00 00  03 00 00 00 '5' 00 00  FF FF FF FF 01 00 00 00 'a'",
         field + "01 00 00 00  01 00 00 00 'z'        01 00 00 00"},
        field + "01 00 00 00  03 00 00 00 '5' 00 00  FF FF FF FF 01 00 00 00 'a'");
}

TEST(ReadOverCost, TheGreatestDepthRunsOnEightMegabytes) {
    using Expressions = Table<sml::IL::T_Info_Expr>;
    Root const          root{"R", describe<Expressions>()};
    VerifyOptions const deep{.limits = {.depth = Limits::depth_cap}};
    std::string         expression;
    // The map and the innermost variant are two levels of the depth.
    for (std::uint32_t left = Limits::depth_cap - 2; left > 0; --left) expression += word(2);
    expression += word(5) + word(9);
    for (std::uint32_t left = Limits::depth_cap - 2; left > 0; --left) expression += word(9);
    std::string bytes = word(3);
    for (std::uint32_t const key : {7u, 8u, 7u}) bytes += word(key) + expression;
    ASSERT_EQ(verify(root, bytes, deep).answer, Answer::odd);
    ASSERT_EQ(verify(root, bytes, {.limits = {.depth = Limits::depth_cap - 1}}).answer,
              Answer::unsafe);
    std::string result;
    run_on_stack(std::size_t{8} << 20, [&] { result = kept_of(root, bytes, deep); });
    // The first occurrence is the definition.
    EXPECT_EQ(result.size(), 2 * (sizeof(std::uint32_t) + expression.size()) + 8);
    EXPECT_EQ(verify(root, result, deep).answer, Answer::good);
}

// Each of these tests would take hours in quadratic time.
TEST(ReadOverCost, ManyReadingsOfOneKeyTakeLinearTime) {
    using Lists = Table<std::pair<std::list<std::int32_t>, sml::Infos::T_Value_Range>>;
    constexpr std::uint32_t count = 300000;
    std::string             bytes = word(count);
    for (std::uint32_t i = 0; i < count; ++i)
        bytes +=
            word(7) + word(1) + word(i) + word(i % 5 == 4 ? 99 : 2) + word(1) + word(1) + word(3);
    std::string const result = kept_of({"R", describe<Lists>()}, bytes, {});
    EXPECT_EQ(result.size(), 8 + 4 + 4 * std::size_t{count} + 4 + 4 + 4 + 4);
}

TEST(ReadOverCost, LongTextsAndNumbersOfManyReadingsTakeLinearTime) {
    constexpr std::uint32_t count = 300000;
    constexpr std::uint32_t length = 1 << 20;
    std::string             strings = word(count) + word(7) + in_full(1, std::string(length, 'x'));
    for (std::uint32_t i = 1; i < count; ++i) strings += word(i % 2) + word(1);
    Root const        by_word{"R", describe<Table<Strings_T>>()};
    std::string const result = kept_of(by_word, strings, {});
    EXPECT_EQ(result.size(), 4 + (4 + 8 + length) + 2 * 8u);

    // The same long number as a key, once with leading zeros.
    std::string numbers = word(count) + block(std::string(length - 1, '0') + "1") + "T";
    for (std::uint32_t i = 1; i < count; ++i) numbers += block("1") + "F";
    EXPECT_EQ(kept_of({"R", describe<LastWinsMap<BigInteger, bool>>()}, numbers, {}),
              word(1) + block(std::string(length - 1, '0') + "1") + "F");
}

}  // namespace
