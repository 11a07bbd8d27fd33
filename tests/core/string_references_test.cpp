#include "tests/core/string_table.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <list>
#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>

using sml::int32;
using sml::Strings_T;
using string_table::count_of;
using string_table::entry_of;

namespace {

using Two = std::pair<Strings_T, Strings_T>;
using Three = std::tuple<Strings_T, Strings_T, Strings_T>;

/// The texts that both readers read from the bytes.
std::list<std::string> texts(std::size_t count, std::string const& hex) {
    // The texts follow a count, as a list has it.
    std::string const bytes = wire::write(static_cast<int32>(count)) + hex::bytes(hex);

    std::list<std::string> result;
    for (Strings_T const& handle : wire::read<std::list<Strings_T>>(bytes))
        result.push_back(handle.str());
    std::list<std::string> from_stream;
    for (Strings_T const& handle : wire::read_from_stream<std::list<Strings_T>>(bytes))
        from_stream.push_back(handle.str());
    EXPECT_EQ(from_stream, result);
    return result;
}

TEST(StringReference, DefinitionHasALengthAndABackReferenceHasNone) {
    wire::expect(Two("text", "text"),
                 "FF FF FF FF  04 00 00 00 'text'"
                 "01 00 00 00");
}

TEST(StringReference, EmptyTextTakesAnIdLikeAnyOther) {
    wire::expect(Two(), "FF FF FF FF  00 00 00 00  01 00 00 00");
    wire::expect(Three("a", "", "a"),
                 "FF FF FF FF  01 00 00 00 'a'"
                 "FE FF FF FF  00 00 00 00"
                 "01 00 00 00");
}

TEST(StringReference, IdsCountFromOneInOrderOfDefinition) {
    wire::expect(std::list<Strings_T>{{"c"}, {"a"}, {"b"}, {"a"}, {"b"}, {"c"}},
                 "06 00 00 00"
                 "FF FF FF FF  01 00 00 00 'c'"
                 "FE FF FF FF  01 00 00 00 'a'"
                 "FD FF FF FF  01 00 00 00 'b'"
                 "02 00 00 00"
                 "03 00 00 00"
                 "01 00 00 00");
}

TEST(StringReference, TableSpansTheWholeObject) {
    using Nested = std::map<int32, std::list<std::optional<std::pair<Strings_T, bool>>>>;
    wire::expect(std::pair<Nested, Strings_T>(Nested{{1, {std::pair(Strings_T("a"), true)}},
                                                     {2, {std::pair(Strings_T("a"), false)}}},
                                              "a"),
                 "02 00 00 00"
                 "01 00 00 00  01 00 00 00  54  FF FF FF FF  01 00 00 00 'a'  54"
                 "02 00 00 00  01 00 00 00  54  01 00 00 00  46"
                 "01 00 00 00");
}

TEST(StringReference, EveryObjectHasIdsOfItsOwn) {
    EXPECT_EQ(wire::write(Strings_T("a")), hex::bytes("FF FF FF FF  01 00 00 00 'a'"));
    EXPECT_EQ(wire::write(Strings_T("b")), hex::bytes("FF FF FF FF  01 00 00 00 'b'"));
}

TEST(StringReference, TextOfAnyBytesIsWrittenWhole) {
    wire::expect(Strings_T(std::string("a\0\xff\n", 4)), "FF FF FF FF  04 00 00 00  61 00 FF 0A");
}

TEST(StringReference, PlainTextsAreNoReferences) {
    wire::expect(std::tuple(Strings_T("a"), std::string("a"), Strings_T("a")),
                 "FF FF FF FF  01 00 00 00 'a'"
                 "01 00 00 00 'a'"
                 "01 00 00 00");
}

TEST(StringReference, ZeroIsADefinition) {
    EXPECT_EQ(texts(2,
                    "00 00 00 00  02 00 00 00 'ab'"
                    "00 00 00 00  01 00 00 00 'c'"),
              (std::list<std::string>{"ab", "c"}));
}

TEST(StringReference, ZeroDefinesTheIdZero) {
    std::string const   bytes = hex::bytes("00 00 00 00  01 00 00 00 'z'");
    sml::StringIArchive archive(bytes.data());
    Strings_T           handle;
    sml::core::Reader{archive}(handle);
    ASSERT_EQ(archive.strings_by_id.size(), 1u);
    Strings_T other;
    archive.strings_by_id.refer(other, 0);
    EXPECT_EQ(other.str(), "z");
}

TEST(StringReference, UndefinedIdReadsAsTheNullHandle) {
    EXPECT_EQ(texts(2,
                    "05 00 00 00"
                    "FF FF FF 7F"),
              (std::list<std::string>{"", ""}));
    Strings_T handle("references: overwritten");
    EXPECT_EQ(wire::read_over(handle, hex::bytes("01 00 00 00")), 4u);
    EXPECT_TRUE(handle == Strings_T());
}

TEST(StringReference, UndefinedIdStaysNullWhenDefinedLater) {
    EXPECT_EQ(texts(3,
                    "01 00 00 00"
                    "FF FF FF FF  01 00 00 00 'a'"
                    "01 00 00 00"),
              (std::list<std::string>{"", "a", ""}));
}

TEST(StringReference, IdDefinedTwiceKeepsItsFirstText) {
    EXPECT_EQ(texts(3,
                    "FF FF FF FF  01 00 00 00 'a'"
                    "FF FF FF FF  01 00 00 00 'b'"
                    "01 00 00 00"),
              (std::list<std::string>{"a", "b", "a"}));
}

TEST(StringReference, IdsNeedNotCountUp) {
    EXPECT_EQ(texts(3,
                    "F9 FF FF FF  01 00 00 00 'a'"
                    "07 00 00 00"
                    "01 00 00 00"),
              (std::list<std::string>{"a", "a", ""}));
}

TEST(StringReference, IdOfTheSmallestWordWrapsToItself) {
    std::string const   bytes = hex::bytes("00 00 00 80  01 00 00 00 'm'");
    sml::StringIArchive archive(bytes.data());
    Strings_T           handle;
    sml::core::Reader{archive}(handle);
    EXPECT_EQ(handle.str(), "m");
    Strings_T other;
    archive.strings_by_id.refer(other, INT32_MIN);
    EXPECT_EQ(other.str(), "m");
}

TEST(StringReference, DefinitionOfTheEmptyTextIsTheNullHandle) {
    Strings_T handle("references: emptied");
    wire::read_over(handle, hex::bytes("FF FF FF FF  00 00 00 00"));
    EXPECT_TRUE(handle == Strings_T());
    EXPECT_EQ(entry_of("references: emptied"), nullptr);
}

// A caller's stream buffer can look at the counts of handles during the read.
TEST(StringReference, ReaderOfAStreamIsExactAtEveryMoment) {
    Strings_T first;
    Strings_T second;
    {
        std::istringstream stream(
            hex::bytes("FF FF FF FF  04 00 00 00 'kept'  01 00 00 00  01 00 00 00"));
        sml::StreamIArchive archive(stream);
        sml::core::Reader   read{archive};
        read(first);
        EXPECT_EQ(count_of("kept"), 2u);
        read(first);
        EXPECT_EQ(count_of("kept"), 2u);
        read(second);
        EXPECT_EQ(count_of("kept"), 3u);
    }
    EXPECT_EQ(count_of("kept"), 2u);
}

TEST(StringReference, CountsAreExactWhenTheReaderOfBytesEnds) {
    std::string const bytes = hex::bytes(
        "04 00 00 00"
        "FF FF FF FF  04 00 00 00 'kept'"
        "01 00 00 00"
        "FE FF FF FF  04 00 00 00 'once'"
        "01 00 00 00");
    std::list<Strings_T> list{Strings_T("once")};
    wire::read_over(list, bytes);
    EXPECT_EQ(count_of("kept"), 3u);
    EXPECT_EQ(count_of("once"), 2u);
    wire::read_over(list, bytes);
    EXPECT_EQ(count_of("kept"), 6u);
    EXPECT_EQ(count_of("once"), 3u);
    list.clear();
    EXPECT_EQ(entry_of("kept"), nullptr);
    EXPECT_EQ(entry_of("once"), nullptr);
}

TEST(StringReference, BackReferenceToTheHeldTextLeavesItsCount) {
    std::string const bytes = hex::bytes("FF FF FF FF  04 00 00 00 'kept'  01 00 00 00");
    Strings_T         handle;
    {
        sml::StringIArchive archive(bytes.data());
        sml::core::Reader   read{archive};
        read(handle);
        read(handle);
    }
    EXPECT_EQ(count_of("kept"), 1u);
}

/// The handles of an entry with a repeated key, which is dropped.
TEST(StringReference, HandlesThatGoWhileBytesAreReadAreCounted) {
    std::map<int32, Strings_T> map;
    wire::read_over(map, hex::bytes("03 00 00 00"
                                    "01 00 00 00  FF FF FF FF  07 00 00 00 'dropped'"
                                    "02 00 00 00  FE FF FF FF  04 00 00 00 'kept'"
                                    "02 00 00 00  01 00 00 00"));
    EXPECT_EQ(count_of("dropped"), 1u);
    EXPECT_EQ(count_of("kept"), 1u);
    wire::read_over(map, hex::bytes("02 00 00 00"
                                    "01 00 00 00  FF FF FF FF  04 00 00 00 'gone'"
                                    "02 00 00 00  01 00 00 00"));
    EXPECT_EQ(entry_of("gone"), nullptr);
}

TEST(StringReference, CountsAreExactWhenReadingThrows) {
    std::list<std::pair<Strings_T, std::string>> list;
    EXPECT_THROW(wire::read_over(list, hex::bytes("03 00 00 00"
                                                  "FF FF FF FF  01 00 00 00 'a'  00 00 00 00"
                                                  "01 00 00 00  00 00 00 00"
                                                  "01 00 00 00  FF FF FF FF")),
                 std::length_error);
    EXPECT_EQ(count_of("a"), 2u);
}

TEST(StringReference, CountsAreExactForAllIds) {
    // Definitions: of one text twice, in sequence; of the empty text; out of sequence; and a
    // back-reference without one.
    auto const list =
        wire::read<std::list<Strings_T>>(hex::bytes("0A 00 00 00"
                                                    "FF FF FF FF  01 00 00 00 'a'  01 00 00 00"
                                                    "FE FF FF FF  01 00 00 00 'a'  02 00 00 00"
                                                    "FD FF FF FF  00 00 00 00  03 00 00 00"
                                                    "F8 FF FF FF  01 00 00 00 'b'  08 00 00 00"
                                                    "07 00 00 00  01 00 00 00"));
    EXPECT_EQ(list.size(), 10u);
    EXPECT_EQ(count_of("a"), 5u);
    EXPECT_EQ(count_of("b"), 2u);
}

TEST(StringReference, ReferenceReadOverAnother) {
    std::string const bytes = hex::bytes(
        "FF FF FF FF  03 00 00 00 'one'"
        "FE FF FF FF  03 00 00 00 'two'"
        "01 00 00 00  02 00 00 00  01 00 00 00");
    Strings_T handle;
    {
        sml::StringIArchive archive(bytes.data());
        sml::core::Reader   read{archive};
        for (int i = 0; i < 5; ++i) read(handle);
    }
    EXPECT_EQ(count_of("one"), 1u);
    EXPECT_EQ(entry_of("two"), nullptr);
}

/// Each id keeps a handle to the text. With so many, a narrow count would wrap around.
TEST(StringReference, OneTextUnderVeryManyIds) {
    constexpr int32 ids = 65'536;
    std::string     bytes = wire::write(ids + 1);
    for (int32 id = 1; id <= ids; ++id) bytes += wire::write(-id) + wire::write(std::string("a"));
    bytes += wire::write(int32{2});
    auto const set = wire::read<std::set<Strings_T>>(bytes);
    ASSERT_EQ(set.size(), 1u);
    EXPECT_EQ(count_of("a"), 1u);
    EXPECT_EQ(set.begin()->str(), "a");
}

TEST(StringReference, ArchivesInsideOneAnotherPinTheSameString) {
    std::string const bytes = hex::bytes("FF FF FF FF  04 00 00 00 'both'  01 00 00 00");
    Strings_T         handle;
    {
        sml::StringIArchive outer(bytes.data());
        Strings_T           read_first;
        sml::core::Reader{outer}(read_first);
        {
            sml::StringIArchive inner(bytes.data());
            sml::core::Reader   read{inner};
            read(handle);
            handle = Strings_T();
            read(handle);
        }
        read_first = Strings_T();
        sml::core::Reader{outer}(read_first);
        handle = read_first;
    }
    EXPECT_EQ(count_of("both"), 1u);
}

TEST(StringReference, DefinitionSharesTheEntryOfAnEqualText) {
    Strings_T const held("references: shared");
    auto const      read = wire::read<Strings_T>(wire::write(held));
    EXPECT_TRUE(read == held);
    EXPECT_EQ(count_of("references: shared"), 2u);
}

TEST(StringReference, ReaderPinsItsStringsUntilItEnds) {
    std::string const bytes = hex::bytes("FF FF FF FF  06 00 00 00 'pinned'");
    {
        sml::StringIArchive archive(bytes.data());
        Strings_T           handle;
        sml::core::Reader{archive}(handle);
        handle = Strings_T();
        EXPECT_NE(entry_of("pinned"), nullptr);
    }
    EXPECT_EQ(entry_of("pinned"), nullptr);
    {
        std::istringstream  stream(bytes);
        sml::StreamIArchive archive(stream);
        Strings_T           handle;
        sml::core::Reader{archive}(handle);
        handle = Strings_T();
        EXPECT_EQ(count_of("pinned"), 1u);
    }
    EXPECT_EQ(entry_of("pinned"), nullptr);
}

TEST(StringReference, WriterPinsItsStringsUntilItEnds) {
    {
        std::string         bytes;
        sml::StringOArchive archive(bytes);
        Strings_T           handle("references: written");
        sml::core::Writer{archive}(handle);
        EXPECT_EQ(count_of("references: written"), 2u);
        handle = Strings_T();
        EXPECT_EQ(count_of("references: written"), 1u);

        // Interned again, it is still the string with id 1.
        sml::core::Writer{archive}(Strings_T("references: written"));
        archive.finish();
        EXPECT_TRUE(bytes.ends_with(hex::bytes("01 00 00 00")));
    }
    EXPECT_EQ(entry_of("references: written"), nullptr);
}

}  // namespace
