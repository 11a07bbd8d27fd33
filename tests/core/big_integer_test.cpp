#include <sml/core/big_integer.hpp>
#include <sml/core/compare.hpp>
#include <sml/core/hash.hpp>
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <new>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>

#if defined(__has_feature)
#define HAS_FEATURE(feature) __has_feature(feature)
#else
#define HAS_FEATURE(feature) 0
#endif

using sml::BigInteger;

namespace {

BigInteger power_of_two(unsigned exponent) { return BigInteger(1) << exponent; }

/// The value after a block with this text was read over 5.
BigInteger read_over_five(std::string_view text) {
    BigInteger value = 5;
    EXPECT_EQ(wire::read_over(value, wire::write(std::string(text))), 4 + text.size());
    BigInteger         from_stream = 5;
    std::istringstream stream(wire::write(std::string(text)));
    sml::core::read_from_stream(from_stream, stream);
    EXPECT_TRUE(from_stream == value);
    return value;
}

TEST(BigInteger, ZeroHasALengthOfThree) { wire::expect(BigInteger(), "03 00 00 00 '0' 00 00"); }

// The estimate of a reader's heap counts nothing for a zero.
TEST(BigInteger, ReadingZeroTakesNoMemory) {
    BigInteger const zero = wire::read<BigInteger>(hex::bytes("03 00 00 00 '0' 00 00"));
    EXPECT_EQ(zero.backend().data()->_mp_alloc, 0);
}

TEST(BigInteger, TextIsLowerCaseHexWithTwoZeroBytesBehindIt) {
    wire::expect(BigInteger(0x1f), "04 00 00 00 '1f' 00 00");
    wire::expect(BigInteger(0xabcdef), "08 00 00 00 'abcdef' 00 00");
    wire::expect(BigInteger(15), "03 00 00 00 'f' 00 00");
    wire::expect(BigInteger(16), "04 00 00 00 '10' 00 00");
}

TEST(BigInteger, NegativeHasABlockOfTheSameLength) {
    wire::expect(BigInteger(-0x1f), "04 00 00 00 '-1f' 00");
    wire::expect(BigInteger(-1), "03 00 00 00 '-1' 00");
    for (BigInteger const& value : {BigInteger(1), BigInteger(0xffff), power_of_two(500)})
        EXPECT_EQ(wire::write(value).size(), wire::write(BigInteger(-value)).size());
}

TEST(BigInteger, SurvivesAtAnySize) {
    wire::expect(power_of_two(64), "13 00 00 00 '10000000000000000' 00 00");
    for (unsigned const bits : {31u, 32u, 63u, 64u, 65u, 127u, 128u, 1000u, 20000u}) {
        for (int const near : {-1, 0, 1}) {
            BigInteger const value = power_of_two(bits) + near;
            EXPECT_TRUE(wire::read<BigInteger>(wire::write(value)) == value) << bits;
            EXPECT_TRUE(wire::read<BigInteger>(wire::write(BigInteger(-value))) == -value) << bits;
            EXPECT_TRUE(wire::read_from_stream<BigInteger>(wire::write(value)) == value) << bits;
        }
    }
}

TEST(BigInteger, LengthCountsTheDigitsAndTwoMore) {
    BigInteger const value = power_of_two(4 * 300);  // 301 digits
    EXPECT_EQ(hex::shown(wire::write(value).substr(0, 4)), "2F 01 00 00 ");
}

TEST(BigInteger, TextThatIsNoNumberLeavesTheValue) {
    for (char const* const text : {"xyz", "", "0x1f", "1g", "-", "--1", "1.5", "+1"})
        EXPECT_TRUE(read_over_five(text) == 5) << text;
}

TEST(BigInteger, TextIsCutAtItsFirstZeroByte) {
    EXPECT_TRUE(read_over_five(hex::bytes("'1f' 00 'ff'")) == 0x1f);
    EXPECT_TRUE(read_over_five(hex::bytes("'1f' 00 'zz'")) == 0x1f);
    EXPECT_TRUE(read_over_five(hex::bytes("00 '1f'")) == 5);
}

TEST(BigInteger, TextNeedsNoZeroByteBehindIt) {
    EXPECT_TRUE(read_over_five("1f") == 0x1f);
    EXPECT_TRUE(read_over_five("-1F") == -0x1f);
}

TEST(BigInteger, BlockThatEndsEarlyIsCutThere) {
    std::istringstream stream(hex::bytes("06 00 00 00 '1f'"));
    BigInteger         value;
    sml::core::read_from_stream(value, stream);
    EXPECT_TRUE(value == 0x1f);
}

// The allocator of AddressSanitizer ends the process if a size is impossible; the standard one
// throws.
#if !defined(__SANITIZE_ADDRESS__) && !HAS_FEATURE(address_sanitizer)
TEST(BigInteger, LengthBelowMinusOneIsRefusedByTheAllocator) {
    BigInteger value = 5;
    EXPECT_THROW(wire::read_over(value, hex::bytes("FE FF FF FF")), std::bad_alloc);
    EXPECT_THROW(wire::read_over(value, hex::bytes("00 00 00 80")), std::bad_alloc);
    EXPECT_TRUE(value == 5);
}
#endif

TEST(BigInteger, AbsentOneIsAFlagAlone) {
    wire::expect(std::optional<BigInteger>(), "46");
    wire::expect(std::optional<BigInteger>(0), "54  03 00 00 00 '0' 00 00");
}

TEST(BigInteger, ComparesByValue) {
    using sml::core::Comparison;
    EXPECT_TRUE(Comparison::less(BigInteger(-2), BigInteger(-1)));
    EXPECT_TRUE(Comparison::less(BigInteger(power_of_two(64) - 1), power_of_two(64)));
    EXPECT_FALSE(Comparison::less(power_of_two(64), power_of_two(64)));
    EXPECT_TRUE(Comparison::equal(power_of_two(64), power_of_two(64)));
    EXPECT_FALSE(Comparison::equal(BigInteger(1), BigInteger(-1)));
}

TEST(BigInteger, EqualOnesHaveOneHashInAHashedSet) {
    sml::core::HashedSet<BigInteger> set;
    for (int i = -50; i < 50; ++i) set.insert(power_of_two(100) * i);
    EXPECT_EQ(set.size(), 100u);
    EXPECT_TRUE(set.contains(power_of_two(101)));
    EXPECT_TRUE(set.contains(BigInteger(-power_of_two(101))));
    EXPECT_FALSE(set.contains(power_of_two(99)));
}

TEST(BigInteger, MovedFromOneMayBeAssigned) {
    BigInteger       source = power_of_two(200);
    BigInteger const target(std::move(source));
    source = 3;
    EXPECT_TRUE(target == power_of_two(200));
    EXPECT_TRUE(source == 3);
}

}  // namespace
