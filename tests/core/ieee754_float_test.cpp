#include <sml/core/compare.hpp>
#include <sml/core/ieee754_float.hpp>
#include <sml/schema/IEEE754.hpp>
#include "tests/core/comma_locale.hpp"
#include "tests/order.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdint>
#include <ios>
#include <list>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>

using sml::BigInteger;
using zelvanite::IEEE754Float;

namespace {

/// The format of a width.
struct Format {
    std::uint64_t width;
    long          emin;
    long          emax;
    long          bits;
};
constexpr Format formats[] = {
    {16, -23, 16, 11},     {32, -148, 128, 24},     {40, -156, 128, 32},      {48, -164, 128, 40},
    {64, -1073, 1024, 53}, {80, -16444, 16384, 64}, {128, -16493, 16384, 113}};

using Range = std::pair<long, long>;

/// MPFR's process-wide exponent range.
Range range() { return {mpfr_get_emin(), mpfr_get_emax()}; }

/// Sets a range that no format has.
void disturb_range() {
    mpfr_set_emin(-12345);
    mpfr_set_emax(12345);
}

/// Sets a range in which every value of the tests can be represented.
void widen_range() {
    mpfr_set_emin(-20000);
    mpfr_set_emax(20000);
}

/// A value with the format of this width. MPFR must be able to parse the text.
IEEE754Float make(std::uint64_t width, std::string const& text) {
    IEEE754Float result;
    for (Format const& format : formats)
        if (format.width == width) mpfr_set_prec(result.number(), format.bits);
    widen_range();
    mpfr_set_str(result.number(), text.c_str(), 16, MPFR_RNDN);
    result.width = width;
    return result;
}

/// 1.5 with a width that has no format.
IEEE754Float unlisted(std::uint64_t width) {
    IEEE754Float result = make(64, "1.8");
    result.width = width;
    return result;
}

std::string block(std::string_view text) { return wire::write(std::string(text)); }

std::string bytes_of(std::uint64_t width, std::string_view text) {
    return block(text) + wire::write(static_cast<std::int32_t>(width));
}

IEEE754Float read(std::uint64_t width, std::string_view text) {
    return wire::read<IEEE754Float>(bytes_of(width, text));
}

/// The text that is written for a value.
std::string text_of(IEEE754Float const& value) {
    std::string const bytes = wire::write(value);
    return bytes.substr(4, bytes.size() - 8);
}

/// `numerator` / 2^`shift` as a text.
std::string fraction(BigInteger const& numerator, long shift) {
    return "0X" + numerator.str(0, std::ios::hex) + "P-" + std::to_string(shift);
}

BigInteger power_of_two(long exponent) { return BigInteger(1) << static_cast<unsigned>(exponent); }

TEST(Float, DefaultIsZeroIn64BitsWith53) {
    IEEE754Float const value;
    EXPECT_EQ(value.width, 64u);
    EXPECT_EQ(mpfr_get_prec(value.number()), 53);
    EXPECT_NE(mpfr_zero_p(value.number()), 0);
    EXPECT_EQ(mpfr_signbit(value.number()), 0);
    wire::expect(value, "06 00 00 00 '0X0P+0'  40 00 00 00");
}

TEST(Float, IsHexTextAndItsWidth) {
    wire::expect(make(64, "1.8"), "08 00 00 00 '0X1.8P+0'  40 00 00 00");
    wire::expect(make(32, "-28"), "09 00 00 00 '-0X2.8P+4'  20 00 00 00");
    wire::expect(make(16, "0.0AB"), "08 00 00 00 '0XA.BP-8'  10 00 00 00");
    wire::expect(make(128, "1.00000000000000000001"),
                 "1B 00 00 00 '0X1.00000000000000000001P+0'  80 00 00 00");
}

/// 1 with `digits` hexadecimal digits after the point.
IEEE754Float with_digits(std::size_t digits) {
    IEEE754Float result;
    mpfr_set_prec(result.number(), static_cast<mpfr_prec_t>(4 * digits + 4));
    mpfr_set_str(result.number(), ("1." + std::string(digits, '7')).c_str(), 16, MPFR_RNDN);
    return result;
}

TEST(Float, TextIsCutToTheLowByteOfItsLength) {
    constexpr std::size_t around = std::string_view("0X1.P+0").size();
    for (std::size_t const length : {200u, 254u, 255u, 256u, 257u, 300u, 507u, 511u, 512u, 600u}) {
        SCOPED_TRACE(length);
        std::string const whole = "0X1." + std::string(length - around, '7') + "P+0";
        std::string const expected = block(whole.substr(0, length & 0xff)) + hex::bytes("40000000");
        EXPECT_EQ(wire::write(with_digits(length - around)), expected);
        EXPECT_EQ(wire::write_to_stream(with_digits(length - around)), expected);
    }
}

TEST(Float, EveryWidthSurvives) {
    for (Format const& format : formats) {
        SCOPED_TRACE(format.width);
        IEEE754Float const value = make(format.width, "-ABC.DEF0123456789ABCDEF0123456789");
        IEEE754Float const back = wire::read<IEEE754Float>(wire::write(value));
        EXPECT_TRUE(back == value);
        EXPECT_EQ(mpfr_get_prec(back.number()), format.bits);
        EXPECT_TRUE(wire::read_from_stream<IEEE754Float>(wire::write_to_stream(value)) == value);
    }
}

TEST(Float, SpecialValuesAreWords) {
    wire::expect(make(64, "@Inf@"), "03 00 00 00 'INF'  40 00 00 00");
    wire::expect(make(32, "-@Inf@"), "04 00 00 00 '-INF'  20 00 00 00");
    wire::expect(make(128, "@NaN@"), "03 00 00 00 'NAN'  80 00 00 00");
    IEEE754Float negative = make(128, "@NaN@");
    mpfr_setsign(negative.number(), negative.number(), 1, MPFR_RNDN);
    wire::expect(negative, "03 00 00 00 'NAN'  80 00 00 00");
    wire::expect(make(64, "-0"), "07 00 00 00 '-0X0P+0'  40 00 00 00");
    EXPECT_NE(mpfr_signbit(read(64, "-0X0P+0").number()), 0);
    EXPECT_NE(mpfr_nan_p(read(16, "NAN").number()), 0);
    EXPECT_GT(mpfr_sgn(read(16, "INF").number()), 0);
}

TEST(Float, SmallestValuesSurvive) {
    wire::expect(make(64, "0X1P-1074"), "09 00 00 00 '0X4P-1076'  40 00 00 00");
    wire::expect(make(32, "0X1P-149"), "08 00 00 00 '0X8P-152'  20 00 00 00");
    wire::expect(make(16, "0X1P-24"), "07 00 00 00 '0X1P-24'  10 00 00 00");
}

TEST(Float, TextOfTheWidestFormatStaysBelow256Bytes) {
    IEEE754Float const value = make(128, "-0X1.FFFFFFFFFFFFFFFFFFFFFFFFFFFFP-16494");
    EXPECT_LT(text_of(value).size(), 64u);
    EXPECT_EQ(wire::write(value).substr(1, 3), std::string(3, '\0'));
}

TEST(Float, ReadingRoundsToTheMantissaOfItsWidth) {
    for (Format const& format : formats) {
        SCOPED_TRACE(format.width);
        long const       bits = format.bits;
        BigInteger const one = power_of_two(bits);

        IEEE754Float const tie = read(format.width, fraction(one + 1, bits));
        EXPECT_EQ(mpfr_get_prec(tie.number()), bits);
        EXPECT_EQ(mpfr_cmp_ui(tie.number(), 1), 0);

        IEEE754Float const exact = read(format.width, fraction(one + 2, bits));
        IEEE754Float const above = read(format.width, fraction(2 * (one + 1) + 1, bits + 1));
        EXPECT_GT(mpfr_cmp_ui(exact.number(), 1), 0);
        EXPECT_TRUE(above == exact);
    }
}

TEST(Float, ReadWithWidth32Has24Bits) {
    IEEE754Float const value = read(32, "0X1.000003P+0");
    EXPECT_EQ(mpfr_get_prec(value.number()), 24);
    EXPECT_EQ(text_of(value), "0X1.000004P+0");
    EXPECT_EQ(text_of(read(32, "0X1.000001P+0")), "0X1P+0");
    EXPECT_EQ(text_of(read(64, "0X1.000001P+0")), "0X1.000001P+0");
}

TEST(Float, ReadingBeyondTheRangeOfItsWidthGivesInfinityOrZero) {
    for (Format const& format : formats) {
        SCOPED_TRACE(format.width);
        auto power = [&](long exponent) {
            return read(format.width, "0X1P" + std::to_string(exponent));
        };
        EXPECT_NE(mpfr_number_p(power(format.emax - 1).number()), 0);
        EXPECT_NE(mpfr_inf_p(power(format.emax).number()), 0);
        EXPECT_NE(mpfr_regular_p(power(format.emin - 1).number()), 0);
        EXPECT_NE(mpfr_zero_p(power(format.emin - 2).number()), 0);
    }
}

TEST(Float, TextOfAnyKindIsReadInBase16) {
    EXPECT_EQ(text_of(read(64, "10")), "0X1P+4");
    EXPECT_EQ(text_of(read(64, "0x1.8p1")), "0X3P+0");
    EXPECT_EQ(text_of(read(64, "-.8")), "-0X8P-4");
    EXPECT_EQ(text_of(read(64, "inf")), "INF");
    EXPECT_EQ(text_of(read(64, "nan")), "NAN");
}

TEST(Float, TextIsCutAtItsFirstZeroByte) {
    EXPECT_EQ(text_of(read(64, hex::bytes("'0X3P+0' 00 'junk'"))), "0X3P+0");
}

TEST(Float, TextThatIsNoNumberIsNotNoticed) {
    for (char const* const text : {"xyz", "", "0X1.8P+0?"}) {
        IEEE754Float value = make(64, "1.8");
        EXPECT_NO_THROW(wire::read_over(value, bytes_of(32, text)));
        EXPECT_EQ(value.width, 32u);
        EXPECT_EQ(mpfr_get_prec(value.number()), 24);
    }
}

TEST(Float, WidthIsReadBehindItsText) {
    std::pair<IEEE754Float, std::int32_t> value;
    wire::read_over(value, bytes_of(16, "0X1.0018P+0") + hex::bytes("07 00 00 00"));
    EXPECT_EQ(value.first.width, 16u);
    EXPECT_EQ(text_of(value.first), "0X1P+0");
    EXPECT_EQ(value.second, 7);
}

TEST(Float, UnlistedWidthStillWritesItsTextAndItsWord) {
    EXPECT_EQ(hex::shown(wire::write(unlisted(7))),
              hex::shown(hex::bytes("08 00 00 00 '0X1.8P+0'  07 00 00 00")));
    EXPECT_EQ(hex::shown(wire::write(unlisted(0))),
              hex::shown(hex::bytes("08 00 00 00 '0X1.8P+0'  00 00 00 00")));
    EXPECT_EQ(hex::shown(wire::write_to_stream(unlisted(65))),
              hex::shown(hex::bytes("08 00 00 00 '0X1.8P+0'  41 00 00 00")));
}

// Only the low half of the word is 64.
TEST(Float, WidthIsWrittenAsItsLowHalf) {
    wire::write(unlisted(0x1'0000'0040));
    EXPECT_EQ(range(), Range(2, 1));
    EXPECT_EQ(hex::shown(wire::write(unlisted(0x1'0000'0040))),
              hex::shown(hex::bytes("08 00 00 00 '0X1.8P+0'  40 00 00 00")));
}

// A mantissa of 0 bits makes MPFR abort. No check may prevent that.
TEST(FloatDeathTest, CopyOfAnUnlistedWidthAborts) {
    IEEE754Float const value = unlisted(7);
    EXPECT_EXIT(IEEE754Float copy(value), testing::KilledBySignal(SIGABRT), "assertion failed");
    EXPECT_EXIT(std::list<IEEE754Float>{value}, testing::KilledBySignal(SIGABRT),
                "assertion failed");
}

TEST(FloatDeathTest, ReadingAnUnlistedWidthAborts) {
    EXPECT_EXIT(read(7, "0X1P+0"), testing::KilledBySignal(SIGABRT), "assertion failed");
    EXPECT_EXIT(read(0, "0X1P+0"), testing::KilledBySignal(SIGABRT), "assertion failed");
    EXPECT_EXIT(read(0xffffffff, "0X1P+0"), testing::KilledBySignal(SIGABRT), "assertion failed");
    EXPECT_EXIT(read(0x10040, "0X1P+0"), testing::KilledBySignal(SIGABRT), "assertion failed");
}

TEST(Float, ConstructionLeavesTheRangeOf64Bits) {
    disturb_range();
    IEEE754Float const value;
    EXPECT_EQ(range(), Range(-1073, 1024));
}

TEST(Float, EveryUseLeavesTheRangeOfItsWidth) {
    for (Format const& format : formats) {
        SCOPED_TRACE(format.width);
        Range const       expected(format.emin, format.emax);
        IEEE754Float      value = make(format.width, "1.8");
        IEEE754Float      target;
        std::string const bytes = bytes_of(format.width, "0X1.8P+0");
        IEEE754Float&     same = value;

        disturb_range();
        IEEE754Float copy(value);
        EXPECT_EQ(range(), expected);

        disturb_range();
        IEEE754Float const moved(std::move(copy));
        EXPECT_EQ(range(), expected);

        disturb_range();
        target = value;
        EXPECT_EQ(range(), expected);

        disturb_range();
        target = std::move(copy);
        EXPECT_EQ(range(), expected);

        disturb_range();
        value = same;
        EXPECT_EQ(range(), expected);

        disturb_range();
        wire::write(value);
        EXPECT_EQ(range(), expected);

        disturb_range();
        wire::read_over(value, bytes);
        EXPECT_EQ(range(), expected);

        disturb_range();
        std::istringstream stream(bytes);
        sml::core::read_from_stream(value, stream);
        EXPECT_EQ(range(), expected);
    }
}

/// The exponent range at each block that arrives.
class RangeWatcher : public std::stringbuf {
public:
    std::list<Range> seen;

private:
    std::streamsize xsputn(char const* bytes, std::streamsize size) override {
        seen.push_back(range());
        return std::stringbuf::xsputn(bytes, size);
    }
};

TEST(Float, IsSeenByAStreamThatIsFlushedAfterEachItemWithTheRangeOfItsWidth) {
    RangeWatcher buffer;
    std::ostream stream(&buffer);
    stream << std::unitbuf;
    std::pair<IEEE754Float, std::int32_t> const value(make(32, "1.8"), 7);
    disturb_range();
    sml::core::write_to_stream(value, stream);
    // The length, the text and the width of the float, and the number.
    EXPECT_EQ(buffer.seen, std::list<Range>(4, Range(-148, 128)));
}

TEST(Float, ComparisonLeavesTheRange) {
    IEEE754Float const a = make(16, "1");
    IEEE754Float const b = make(80, "2");
    disturb_range();
    EXPECT_TRUE(a < b);
    EXPECT_FALSE(a == b);
    EXPECT_EQ(range(), Range(-12345, 12345));
}

TEST(Float, WritingAnUnlistedWidthLeavesAnEmptyRange) {
    IEEE754Float const value = unlisted(7);
    disturb_range();
    wire::write(value);
    EXPECT_EQ(range(), Range(2, 1));
}

TEST(Float, CopyKeepsWidthMantissaAndValue) {
    for (Format const& format : formats) {
        SCOPED_TRACE(format.width);
        IEEE754Float const value = make(format.width, "-1.8");
        IEEE754Float const copy(value);
        IEEE754Float       assigned = make(format.width == 64 ? 16 : 64, "7");
        assigned = value;
        for (IEEE754Float const* const result : {&copy, &std::as_const(assigned)}) {
            EXPECT_TRUE(*result == value);
            EXPECT_EQ(result->width, format.width);
            EXPECT_EQ(mpfr_get_prec(result->number()), format.bits);
        }
    }
}

// A value made by hand: 53 bits with a width whose format has 24.
TEST(Float, CopyRoundsToTheMantissaOfItsWidth) {
    IEEE754Float value = make(64, "1.000003");
    value.width = 32;
    IEEE754Float const copy(value);
    EXPECT_EQ(text_of(copy), "0X1.000004P+0");
    EXPECT_EQ(mpfr_get_prec(copy.number()), 24);
    EXPECT_EQ(text_of(value), "0X1.000003P+0");
}

TEST(Float, AssignmentAndMoveKeepTheMantissaAsItIs) {
    IEEE754Float value = make(64, "1.000003");
    value.width = 32;
    IEEE754Float assigned = make(16, "7");
    assigned = value;
    IEEE754Float const moved(std::move(value));
    for (IEEE754Float const* const result : {&std::as_const(assigned), &moved}) {
        EXPECT_EQ(text_of(*result), "0X1.000003P+0");
        EXPECT_EQ(mpfr_get_prec(result->number()), 53);
        EXPECT_EQ(result->width, 32u);
    }
}

TEST(Float, AssignmentAndMoveKeepAnUnlistedWidth) {
    IEEE754Float value = unlisted(7);
    IEEE754Float assigned = make(16, "7");
    assigned = value;
    EXPECT_EQ(range(), Range(2, 1));
    IEEE754Float const moved(std::move(value));
    EXPECT_EQ(range(), Range(2, 1));
    for (IEEE754Float const* const result : {&std::as_const(assigned), &moved}) {
        EXPECT_EQ(text_of(*result), "0X1.8P+0");
        EXPECT_EQ(mpfr_get_prec(result->number()), 53);
        EXPECT_EQ(result->width, 7u);
    }
}

TEST(Float, CopyKeepsTheSignOfZeroAndNan) {
    IEEE754Float const zero = make(32, "-0");
    IEEE754Float       nan = make(32, "@NaN@");
    mpfr_setsign(nan.number(), nan.number(), 1, MPFR_RNDN);
    EXPECT_NE(mpfr_signbit(IEEE754Float(zero).number()), 0);
    EXPECT_NE(mpfr_signbit(IEEE754Float(nan).number()), 0);
    IEEE754Float assigned;
    assigned = nan;
    EXPECT_NE(mpfr_nan_p(assigned.number()), 0);
    EXPECT_NE(mpfr_signbit(assigned.number()), 0);
}

TEST(Float, MoveCopies) {
    IEEE754Float source = make(80, "1.8");
    IEEE754Float target(std::move(source));
    EXPECT_TRUE(target == make(80, "1.8"));
    EXPECT_TRUE(source == make(80, "1.8"));

    IEEE754Float assigned;
    assigned = std::move(target);
    EXPECT_TRUE(assigned == make(80, "1.8"));
    EXPECT_TRUE(target == make(80, "1.8"));
}

TEST(Float, SelfAssignmentChangesNothing) {
    IEEE754Float        value = make(32, "1.8");
    IEEE754Float const& same = value;
    value = same;
    EXPECT_TRUE(value == make(32, "1.8"));
}

TEST(Float, OrderIsThatOfTheValues) {
    order::expect_less(make(64, "1"), make(32, "2"));
    order::expect_less(make(64, "-@Inf@"), make(16, "-1"));
    order::expect_less(make(16, "1"), make(16, "@Inf@"));
    order::expect_equal(make(64, "1"), make(64, "1"));
}

TEST(Float, EqualValuesAreOrderedByWidth) {
    order::expect_less(make(32, "1"), make(64, "1"));
    order::expect_less(make(64, "@Inf@"), make(128, "@Inf@"));
    order::expect_equal(make(64, "@Inf@"), make(64, "@Inf@"));
}

TEST(Float, WidthsCompareAsUnsigned) {
    IEEE754Float const huge = unlisted(~std::uint64_t{0});
    IEEE754Float const small = make(16, "1.8");
    order::expect_less(small, huge);
}

TEST(Float, ZerosAreEqualWhateverTheirSign) {
    order::expect_equal(make(64, "-0"), make(64, "0"));
    order::expect_less(make(32, "0"), make(64, "-0"));
}

TEST(Float, NanIsNeitherLessNorGreaterNorEqual) {
    IEEE754Float const nan = make(64, "@NaN@");
    for (IEEE754Float const& other : {make(64, "@NaN@"), make(128, "@NaN@"), make(16, "@NaN@"),
                                      make(64, "0"), make(128, "-@Inf@"), make(16, "@Inf@")})
        order::expect_unordered(nan, other);
    order::expect_unordered(nan, nan);
}

TEST(Float, SurvivesInACommaLocale) {
    CommaLocale const locale;
    ASSERT_COMMA_LOCALE(locale);
    IEEE754Float const value = make(64, "-1.89");
    EXPECT_TRUE(wire::read<IEEE754Float>(wire::write(value)) == value);
}

TEST(FloatFormat, IsThreeWordsInOrder) {
    wire::expect(sml::IEEE754::T{1, -2, 3}, "01 00 00 00  FE FF FF FF  03 00 00 00");
}

TEST(FloatFormat, ComparesItsWordsInOrder) {
    using sml::IEEE754::T;
    order::expect_less(T{1, 9, 9}, T{2, 0, 0});
    order::expect_less(T{1, -1, 9}, T{1, 0, 0});
    order::expect_less(T{1, 2, 3}, T{1, 2, 4});
    order::expect_equal(T{1, 2, 3}, T{1, 2, 3});
}

}  // namespace
