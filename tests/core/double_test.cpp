#include "tests/core/comma_locale.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double not_a_number = std::numeric_limits<double>::quiet_NaN();

/// The bytes of a block with this text.
std::string block(std::string_view text) { return wire::write(std::string(text)); }

/// The value that both readers read from a text.
double read(std::string_view text) {
    double const value = wire::read<double>(block(text));
    double const from_stream = wire::read_from_stream<double>(block(text));
    EXPECT_TRUE(value == from_stream || (std::isnan(value) && std::isnan(from_stream)));
    return value;
}

template <class Error>
void expect_error(std::string_view text, std::string_view message) {
    SCOPED_TRACE(text);
    try {
        wire::read<double>(block(text));
        ADD_FAILURE() << "nothing was thrown";
    } catch (Error const& error) {
        EXPECT_EQ(error.what(), message);
    }
}

TEST(Double, IsTextWithSixDecimals) {
    wire::expect(1.5, "08 00 00 00 '1.500000'");
    wire::expect(-1.5, "09 00 00 00 '-1.500000'");
    wire::expect(0.0, "08 00 00 00 '0.000000'");
    wire::expect(0.015625, "08 00 00 00 '0.015625'");
    wire::expect(123456789.0, "10 00 00 00 '123456789.000000'");
}

TEST(Double, LosesWhatLiesBehindSixDecimals) {
    EXPECT_EQ(wire::write(0.1234567), block("0.123457"));
    EXPECT_EQ(read("0.123457"), 0.123457);
    EXPECT_EQ(wire::write(1e-7), block("0.000000"));
    EXPECT_EQ(wire::write(1.0 / 3), block("0.333333"));
}

TEST(Double, KeepsTheSignOfZero) {
    wire::expect(-0.0, "09 00 00 00 '-0.000000'");
    EXPECT_EQ(wire::write(-1e-7), block("-0.000000"));
    EXPECT_TRUE(std::signbit(read("-0.000000")));
    EXPECT_FALSE(std::signbit(read("0.000000")));
}

TEST(Double, LargestValueKeepsAllItsDigits) {
    double const      largest = -std::numeric_limits<double>::max();
    std::string const bytes = wire::write(largest);
    EXPECT_EQ(bytes.size(), 4u + 1 + 309 + 7);
    EXPECT_EQ(wire::read<double>(bytes), largest);
}

TEST(Double, InfinityAndNanAreWords) {
    wire::expect(infinity, "03 00 00 00 'inf'");
    wire::expect(-infinity, "04 00 00 00 '-inf'");
    EXPECT_EQ(wire::write(not_a_number), block("nan"));
    EXPECT_EQ(wire::write(-not_a_number), block("-nan"));
    EXPECT_TRUE(std::isnan(read("nan")));
    EXPECT_TRUE(std::isnan(read("-nan")));
}

TEST(Double, TakesTheNumberThatATextBeginsWith) {
    EXPECT_EQ(read("1.5abc"), 1.5);
    EXPECT_EQ(read(" \t2"), 2);
    EXPECT_EQ(read("1e3"), 1000);
    EXPECT_EQ(read("0x1p-1"), 0.5);
    EXPECT_EQ(read("1.25,5"), 1.25);
}

TEST(Double, IsCutAtAZeroByteAndTakesTheWholeBlock) {
    EXPECT_EQ(read(hex::bytes("'1.5' 00 '25'")), 1.5);
    EXPECT_EQ(read(hex::bytes("'7' 00 00 00")), 7);
}

TEST(Double, BlockThatEndsEarlyIsCutThere) {
    std::istringstream stream(hex::bytes("08 00 00 00 '1.5'"));
    double             value = 0;
    sml::core::read_from_stream(value, stream);
    EXPECT_EQ(value, 1.5);
}

TEST(Double, TextWithoutANumberThrows) {
    expect_error<std::invalid_argument>("", "stod");
    expect_error<std::invalid_argument>("abc", "stod");
    expect_error<std::invalid_argument>(",5", "stod");
    expect_error<std::invalid_argument>(hex::bytes("00 '1.5'"), "stod");
}

TEST(Double, NumberOutOfRangeThrows) {
    expect_error<std::out_of_range>("1e400", "stod");
    expect_error<std::out_of_range>("-1e400", "stod");
    expect_error<std::out_of_range>("1e-400", "stod");
    expect_error<std::out_of_range>("1e-310", "stod");
}

TEST(Double, BlockOfLengthMinusOneOnAStreamThrows) {
    std::istringstream stream(hex::bytes("FF FF FF FF"));
    double             value = 2.5;
    try {
        sml::core::read_from_stream(value, stream);
        ADD_FAILURE() << "nothing was thrown";
    } catch (std::logic_error const& error) {
        EXPECT_STREQ(error.what(), "basic_string::_M_construct null not valid");
    }
    EXPECT_EQ(value, 2.5);
}

TEST(Double, BlockOfLengthMinusOneInBytesThrows) {
    double value = 2.5;
    try {
        wire::read_over(value, hex::bytes("FF FF FF FF"));
        ADD_FAILURE() << "nothing was thrown";
    } catch (std::logic_error const& error) {
        EXPECT_STREQ(error.what(), "basic_string::_M_construct null not valid");
    }
    EXPECT_EQ(value, 2.5);
}

TEST(Double, FailureLeavesTheValueAndWhatCameBefore) {
    std::pair<double, double> value(7, 8);
    EXPECT_THROW(wire::read_over(value, block("1.5") + block("x")), std::invalid_argument);
    EXPECT_EQ(value, std::pair(1.5, 8.0));
}

TEST(Double, TextFollowsTheNumericLocaleAtBothEnds) {
    CommaLocale const locale;
    ASSERT_COMMA_LOCALE(locale);
    wire::expect(1.5, "08 00 00 00 '1,500000'");
    wire::expect(-0.0, "09 00 00 00 '-0,000000'");
    wire::expect(infinity, "03 00 00 00 'inf'");
    EXPECT_EQ(read("1,25"), 1.25);
    EXPECT_EQ(read("1.25"), 1);
}

TEST(Double, TextOfACommaLocaleIsCutAtItsCommaElsewhere) {
    std::string bytes;
    {
        CommaLocale const locale;
        ASSERT_COMMA_LOCALE(locale);
        bytes = wire::write(1.5);
    }
    EXPECT_EQ(bytes, block("1,500000"));
    EXPECT_EQ(wire::read<double>(bytes), 1);
}

}  // namespace
