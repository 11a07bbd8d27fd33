// Tests the writer of bytes and the description of the wire form that all walks share.

#include <sml/inspect/type.hpp>
#include <sml/inspect/wire/form.hpp>
#include <sml/inspect/wire/piece_output.hpp>
#include <sml/inspect/wire/string_word.hpp>
#include <sml/inspect/wire/walked_bytes.hpp>
#include "tests/hex.hpp"
#include "tests/inspect/real_roots.hpp"
#include "tests/inspect/wire_bytes.hpp"
#include "tests/runs.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace sml::inspect;
using wire_bytes::written;

constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();

TEST(StringWord, ThatIsPositiveRefersToAnId) {
    for (std::int32_t const id : {1, 2, most}) {
        StringWord const word(id);
        EXPECT_TRUE(word.refers());
        EXPECT_EQ(word.id(), id);
        EXPECT_EQ(StringWord::reference(id).word(), id);
    }
}

TEST(StringWord, ThatIsNegativeHasItsIdWithTheSignChanged) {
    for (std::int32_t const id : {1, 2, most}) {
        StringWord const word(-id);
        EXPECT_FALSE(word.refers());
        EXPECT_EQ(word.id(), id);
        EXPECT_EQ(StringWord::in_full(id).word(), -id);
    }
}

TEST(StringWord, ZeroAndTheLeastNumberAreIdsThatNoWordRefersTo) {
    for (std::int32_t const number : {0, least}) {
        EXPECT_FALSE(StringWord(number).refers());
        EXPECT_EQ(StringWord(number).id(), number);
        EXPECT_FALSE(StringWord::is_referable(number));
    }
}

TEST(StringWord, RefersUpToItsOwnId) {
    EXPECT_TRUE(StringWord(2).refers_up_to(2));
    EXPECT_FALSE(StringWord(3).refers_up_to(2));
    for (std::int32_t const in_full : {0, -1, least}) {
        EXPECT_FALSE(StringWord(in_full).refers_up_to(0));
        EXPECT_FALSE(StringWord(in_full).refers_up_to(most));
    }
}

template <class Write>
void expect_written(Write const& write, std::string_view hexadecimal) {
    EXPECT_EQ(hex::shown(written(write)), hex::shown(hex::bytes(hexadecimal)));
}

TEST(Writer, WordsAreLittleEndian) {
    expect_written([](auto& writer) { writer.word(std::int32_t{-2}); }, "FE FF FF FF");
    expect_written([](auto& writer) { writer.word(std::uint32_t{0x01020304}); }, "04 03 02 01");
    expect_written([](auto& writer) { writer.word(std::uint64_t{0x0102030405060708}); },
                   "08 07 06 05 04 03 02 01");
}

TEST(Writer, FlagsAreLetters) {
    auto const both = [](auto& writer) {
        writer.flag(true);
        writer.flag(false);
    };
    expect_written(both, "'TF'");
    for (int byte = 0; byte < 256; ++byte) {
        EXPECT_EQ(is_flag(static_cast<char>(byte)), byte == 'T' || byte == 'F') << byte;
        EXPECT_EQ(is_true_flag(static_cast<char>(byte)), byte == 'T') << byte;
    }
}

TEST(Writer, BlocksHaveTheirLengthBeforeThem) {
    expect_written([](auto& writer) { writer.block("abc"); }, "03 00 00 00  'abc'");
    expect_written([](auto& writer) { writer.block(""); }, "00 00 00 00");
}

TEST(Writer, IntegersEndWithTwoZeroBytesOrOneBehindANegativeOne) {
    expect_written([](auto& writer) { writer.big_integer("0"); }, "03 00 00 00  '0' 00 00");
    expect_written([](auto& writer) { writer.big_integer("-1f"); }, "04 00 00 00  '-1f' 00");
}

TEST(Writer, FloatsHaveTheirWidthBehindTheirText) {
    expect_written([](auto& writer) { writer.ieee_float("0X0P+0", 64); },
                   "06 00 00 00  '0X0P+0'  40 00 00 00");
}

TEST(Writer, ReferencesAreATagAndALongWord) {
    expect_written([](auto& writer) { writer.reference(3, 5); },
                   "03 00 00 00  05 00 00 00 00 00 00 00");
}

TEST(Writer, StringsAreWrittenInFullOnceAndNumberedFromOneOn) {
    auto const strings = [](auto& writer) {
        std::int32_t a = 0;
        std::int32_t b = 0;
        writer.string("a", a);
        writer.string("bb", b);
        writer.string("a", a);
        writer.string("bb", b);
    };
    expect_written(strings,
                   "FF FF FF FF 01 00 00 00 'a'  FE FF FF FF 02 00 00 00 'bb'"
                   "01 00 00 00  02 00 00 00");
}

TEST(PieceOutput, HandsOnAllBytesInLargePieces) {
    constexpr std::size_t    least_piece = std::size_t{1} << 16;
    std::vector<std::string> pieces;
    std::string              all;
    PieceOutput              out([&](std::string_view piece) { pieces.emplace_back(piece); });
    for (std::size_t const size : {1u, 3u, 65535u, 40000u, 40000u, 200000u, 65536u, 7u}) {
        std::string const bytes(size, static_cast<char>('a' + all.size() % 26));
        out.append(bytes);
        all += bytes;
    }
    out.flush();
    std::string joined;
    for (std::string const& piece : pieces) joined += piece;
    EXPECT_TRUE(joined == all);
    EXPECT_LT(pieces.size(), 8u);
    EXPECT_EQ(pieces.front().size(), least_piece + 3);
}

/// Walks a value, and counts its strings and definitions.
struct Counter : Skipper {
    std::size_t strings = 0;
    std::size_t in_full = 0;

    void string() {
        ++strings;
        if (!StringWord(at.peek_word<std::int32_t>()).refers()) ++in_full;
        Skipper::string();
    }
};

TEST(TakeValue, EndsWhereTheBytesOfAWriterEnd) {
    std::uint64_t const seed = runs::seed();
    std::size_t         strings = 0;
    std::size_t         in_full = 0;
    for (RealRoot const& one : real_roots()) {
        SCOPED_TRACE(one.stem + std::string(", seed ") + std::to_string(seed));
        RandomValues random(seed);
        for (int i = 0; i < 5; ++i) {
            std::string const whole = one.random_bytes(random);
            Type const&       type = *find_root(one.stem)->type;
            WalkedBytes       at(whole);
            Counter           counter{{at}};
            take_value(type, counter);
            EXPECT_EQ(at.offset(), whole.size());
            EXPECT_LE(type.least_size, whole.size());
            strings += counter.strings;
            in_full += counter.in_full;
        }
    }
    EXPECT_GT(in_full, 0u);
    EXPECT_GT(strings, in_full);
}

}  // namespace
