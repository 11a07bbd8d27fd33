// Intervals, divisibility, and the ranges that consist of both.

#include <sml/schema/Infos.hpp>
#include "tests/order.hpp"
#include "tests/schema/tables.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <list>
#include <optional>
#include <sstream>
#include <string>
#include <utility>

using sml::BigInteger;
using sml::Infos::T_Range;
using sml::Infos::T_Value_Range;
using zelvanite::IEEE754Float;
using Multiplicity = sml::Infos::Multiplicity::T;
using Format = sml::IEEE754::T;
using Bounds = std::optional<std::pair<IEEE754Float, IEEE754Float>>;

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

IEEE754Float number(double value, std::uint64_t width = 64) {
    IEEE754Float result;
    result.width = width;
    auto const format = IEEE754Float::Format::of(width);
    IEEE754Float::set_range(format);
    mpfr_set_prec(result.number(), format.mantissa_bits);
    mpfr_set_d(result.number(), value, MPFR_RNDN);
    return result;
}

double value_of(IEEE754Float const& number) { return mpfr_get_d(number.number(), MPFR_RNDN); }

T_Range whole(std::optional<BigInteger> const& lower, std::optional<BigInteger> const& upper) {
    T_Range result;
    result.choose<"Int_Interval">() = {lower, upper};
    return result;
}

T_Range real(IEEE754Float const& lower, IEEE754Float const& upper) {
    T_Range result;
    result.choose<"Real_Interval">() = {lower, upper};
    return result;
}

T_Range real(double lower, double upper) { return real(number(lower), number(upper)); }

T_Range no_number() {
    T_Range result;
    result.choose<"Nan">();
    return result;
}

Multiplicity multiple(BigInteger const& factor) {
    Multiplicity result;
    result.choose<"Multiple">() = factor;
    return result;
}

T_Value_Range range(std::list<T_Range> const& intervals,
                    Multiplicity const&       multiplicity = multiple(1)) {
    T_Value_Range result;
    result.choose<"Value_Range">() = {intervals, multiplicity};
    return result;
}

T_Value_Range reals(Format const& format, Bounds const& bounds, bool flag) {
    T_Value_Range result;
    result.choose<"Real_Full_Range">() = {format, bounds, flag};
    return result;
}

Bounds bounds(double lower, double upper) { return {{number(lower), number(upper)}}; }

T_Value_Range integers(std::optional<BigInteger> const& lower,
                       std::optional<BigInteger> const& upper) {
    T_Value_Range result;
    result.choose<"Int_Full_Range">() = {lower, upper};
    return result;
}

/// The value with another tag in front of the same payload.
template <class Variant>
Variant with_other_tag(Variant const& value, std::int32_t tag) {
    std::string bytes = wire::write(value);
    bytes.replace(0, 4, tables::tag_bytes(tag));
    return wire::read<Variant>(bytes);
}

// ---- intervals ----

TEST(Range, HasThreeArms) {
    tables::expect_arms_with_catch_all<T_Range>(
        {{"Int_Interval", "46  46"},
         {"Nan"},
         {"Real_Interval", "06000000 '0X0P+0' 40000000  06000000 '0X0P+0' 40000000"}});
}

TEST(Range, IntervalOfIntegersWritesTwoOptionals) {
    wire::expect(whole(-0x1F, {}), "00000000  54 04000000 '-1f' 00  46");
    wire::expect(whole({}, 0x1F), "00000000  46  54 04000000 '1f' 00 00");
}

TEST(Range, IntervalOfFloatsWritesBothWithoutFlags) {
    wire::expect(real(number(-2, 32), number(1.5, 64)),
                 "02000000  07000000 '-0X2P+0' 20000000  08000000 '0X1.8P+0' 40000000");
}

TEST(Range, NanIsItsTag) { wire::expect(no_number(), "01000000"); }

// Required: every tag other than 0 and 1, also that of an unset value, is followed by two floats.
TEST(Range, EveryOtherTagHasTwoFloats) {
    for (std::int32_t const tag : {3, 1000, -1, std::numeric_limits<std::int32_t>::min()}) {
        T_Range const stray = with_other_tag(real(1.5, 2), tag);
        EXPECT_EQ(stray.tag, tag);
        EXPECT_EQ(value_of(stray.arm<"Real_Interval">().lower), 1.5);
        wire::expect(stray, hex::shown(tables::tag_bytes(tag)) +
                                "08000000 '0X1.8P+0' 40000000  06000000 '0X2P+0' 40000000");
    }
}

TEST(Range, FreshFloatsAreZeroInTheFormatOf64Bits) {
    auto const fresh = tables::with_tag<T_Range>(2);
    EXPECT_EQ(value_of(fresh.arm<"Real_Interval">().lower), 0);
    EXPECT_EQ(fresh.arm<"Real_Interval">().upper.width, 64u);
}

// 0.1 needs more digits than a format of 32 bits has.
TEST(Range, TextIsParsedByTheWordBehindIt) {
    auto const read =
        wire::read<T_Range>(hex::bytes("02000000  14000000 '0X1.999999999999AP-4' 20000000"
                                       "          14000000 '0X1.999999999999AP-4' 40000000"));
    EXPECT_EQ(value_of(read.arm<"Real_Interval">().lower), double{0.1f});
    EXPECT_EQ(value_of(read.arm<"Real_Interval">().upper), 0.1);
    EXPECT_EQ(mpfr_get_prec(read.arm<"Real_Interval">().lower.number()), 24);
    EXPECT_EQ(read.arm<"Real_Interval">().lower.width, 32u);
}

// Required: the process-wide exponent range stays as the last float set it.
TEST(Range, LastFloatSetsTheExponentRange) {
    T_Range const     narrow_last = real(number(1, 64), number(1, 16));
    std::string const bytes = wire::write(real(number(1, 16), number(1, 32)));
    IEEE754Float::set_range(IEEE754Float::Format::of(128));
    wire::write(narrow_last);
    EXPECT_EQ(mpfr_get_emin(), -23);
    EXPECT_EQ(mpfr_get_emax(), 16);
    T_Range read;
    wire::read_over(read, bytes);
    EXPECT_EQ(mpfr_get_emin(), -148);
    EXPECT_EQ(mpfr_get_emax(), 128);
}

TEST(Range, TagDecidesFirst) {
    tables::expect_order_by_tag<T_Range>();
    order::expect_less(whole(9, 9), no_number());
    order::expect_less(no_number(), real(-9, -9));
}

TEST(Range, IntervalsOfIntegersOrderByLowerThenUpper) {
    order::expect_less(whole({}, 9), whole(-9, {}));
    order::expect_less(whole(-1, 9), whole(1, -9));
    order::expect_less(whole(1, {}), whole(1, -9));
    order::expect_less(whole(1, 9), whole(1, 10));
    order::expect_less(whole(1, 9), whole(1, BigInteger("0x10000000000000000")));
    order::expect_equal(whole({}, {}), whole({}, {}));
    order::expect_equal(whole(1, 9), whole(1, 9));
}

TEST(Range, IntervalsOfFloatsOrderByLowerThenUpper) {
    order::expect_less(real(-1, 9), real(1, -9));
    order::expect_less(real(1, -9), real(1, 9));
    order::expect_equal(real(1, 9), real(1, 9));
    order::expect_equal(with_other_tag(real(1, 9), 3), with_other_tag(real(1, 9), 3));
    order::expect_less(with_other_tag(real(1, -9), 3), with_other_tag(real(1, 9), 3));
}

TEST(Range, EqualFloatsOfTwoFormatsOrderByFormat) {
    order::expect_less(real(number(1, 32), number(9, 64)), real(number(1, 64), number(1, 64)));
    order::expect_less(real(number(1, 64), number(9, 32)), real(number(1, 64), number(9, 64)));
}

// Required: the upper floats are not compared, unlike in full ranges.
TEST(Range, LowerThatIsNoNumberLeavesIntervalsUnordered) {
    order::expect_unordered(real(nan, 1), real(nan, 2));
    order::expect_unordered(real(nan, 1), real(5, 2));
    order::expect_unordered(real(nan, 1), real(nan, 1));
    order::expect_unordered(real(1, nan), real(1, 2));
}

TEST(Range, NegativeTagsAreNeitherEqualNorLess) {
    order::expect_unordered(with_other_tag(real(1, 2), -1), with_other_tag(real(3, 4), -1));
    order::expect_unordered(with_other_tag(real(1, 2), -1), with_other_tag(real(1, 2), -1));
}

TEST(Range, ReadingAnotherTagRebuildsTheArm) {
    T_Range read = whole(1, 2);
    wire::read_over(read, hex::bytes("01000000"));
    EXPECT_TRUE(read.holds<"Nan">());
    wire::read_over(read, wire::write(real(1, 2)));
    EXPECT_EQ(read, real(1, 2));
    wire::read_over(read, hex::bytes("00000000  46  46"));
    EXPECT_EQ(read, whole({}, {}));
}

TEST(Range, ReadingAnAbsentLimitDestroysTheHeldOne) {
    T_Range read = whole(1, 2);
    wire::read_over(read, hex::bytes("00000000  46  54 03000000 '5' 00 00"));
    EXPECT_EQ(read, whole({}, 5));
}

// ---- divisibility ----

TEST(Multiplicity, HasFiveArms) {
    tables::expect_arms<Multiplicity>({{"Bottom"},
                                       {"FloatMultipleOfTwoPow", "46"},
                                       {"Multiple", "03000000 '0' 00 00"},
                                       {"Odd"},
                                       {"Top"}});
}

TEST(Multiplicity, MultipleOfZeroHoldsATextAndAbsentPowerAFlag) {
    wire::expect(multiple(0), "02000000  03000000 '0' 00 00");
    Multiplicity power;
    power.choose<"FloatMultipleOfTwoPow">();
    wire::expect(power, "01000000  46");
    power.arm<"FloatMultipleOfTwoPow">() = -3;
    wire::expect(power, "01000000  54 FDFFFFFF");
}

TEST(Multiplicity, OrdersByTagThenPayload) {
    tables::expect_order_by_tag<Multiplicity>();
    order::expect_less(multiple(9), multiple(10));
    order::expect_less(multiple(9), multiple(16));
    order::expect_less(multiple(-1), multiple(1));
    order::expect_equal(multiple(9), multiple(9));

    Multiplicity absent;
    absent.choose<"FloatMultipleOfTwoPow">();
    Multiplicity negative = absent;
    negative.arm<"FloatMultipleOfTwoPow">() = -1;
    Multiplicity positive = absent;
    positive.arm<"FloatMultipleOfTwoPow">() = 1;
    order::expect_less(absent, negative);
    order::expect_less(negative, positive);
    order::expect_equal(absent, absent);
    order::expect_equal(positive, positive);
}

// ---- full ranges and lists of intervals ----

TEST(ValueRange, HasThreeArms) {
    tables::expect_arms_with_catch_all<T_Value_Range>(
        {{"Int_Full_Range", "46  46"},
         {"Real_Full_Range", "00000000 00000000 00000000  46  46"},
         {"Value_Range", "00000000  FFFFFFFF"}});
}

TEST(ValueRange, IntegersWriteTwoOptionals) {
    wire::expect(integers(1, {}), "00000000  54 03000000 '1' 00 00  46");
    wire::expect(T_Value_Range::Int_Full_Range_args{{}, -1}, "46  54 03000000 '-1' 00");
}

TEST(ValueRange, RealsWithoutBoundsHaveNoLengthAndNoWidth) {
    wire::expect(reals({1, 2, 3}, {}, true), "01000000  01000000 02000000 03000000  46  54");
}

TEST(ValueRange, RealsWithBoundsWriteTextAndWidthTwiceAheadOfTheFlag) {
    wire::expect(reals({1, 2, 3}, {{number(-2, 32), number(1.5, 80)}}, true),
                 "01000000  01000000 02000000 03000000"
                 "54 07000000 '-0X2P+0' 20000000  08000000 '0X1.8P+0' 50000000"
                 "54");
}

TEST(ValueRange, EmptyListOfIntervalsStillHasItsMultiplicity) {
    Multiplicity top;
    top.choose<"Top">();
    wire::expect(range({}, top), "02000000  00000000  04000000");
    wire::expect(range({}, Multiplicity()), "02000000  00000000  FFFFFFFF");
}

TEST(ValueRange, CountCoversTheIntervalsOnly) {
    Multiplicity odd;
    odd.choose<"Odd">();
    wire::expect(range({whole(1, {}), no_number()}, odd),
                 "02000000  02000000  00000000 54 03000000 '1' 00 00 46  01000000  03000000");
}

TEST(ValueRange, NanAmongTheIntervalsIsItsTag) {
    wire::expect(range({no_number()}, multiple(0)),
                 "02000000  01000000  01000000  02000000 03000000 '0' 00 00");
}

// Required: every tag other than 0 and 1 is followed by intervals and a multiplicity.
TEST(ValueRange, EveryOtherTagHasIntervals) {
    for (std::int32_t const tag : {3, 1000, -1}) {
        auto const stray = with_other_tag(range({no_number()}, multiple(0)), tag);
        EXPECT_EQ(stray.arm<"Value_Range">().intervals.size(), 1u);
        wire::expect(stray, hex::shown(tables::tag_bytes(tag)) +
                                "01000000  01000000  02000000 03000000 '0' 00 00");
    }
    EXPECT_EQ(tables::with_tag<T_Value_Range>(3).toString(), nullptr);
}

TEST(ValueRange, ReadingTheHeldArmAddsIntervalsAndAnotherTagStartsAfresh) {
    T_Value_Range     read = range({whole(1, 2)}, multiple(3));
    std::string const bytes = wire::write(range({whole(4, 5)}, multiple(6)));
    wire::read_over(read, bytes);
    EXPECT_EQ(read, range({whole(1, 2), whole(4, 5)}, multiple(6)));
    wire::read_over(read, wire::write(integers(1, 2)));
    EXPECT_EQ(read, integers(1, 2));
    wire::read_over(read, bytes);
    EXPECT_EQ(read, range({whole(4, 5)}, multiple(6)));
}

TEST(ValueRange, ReadingAbsentBoundsDestroysTheHeldOnes) {
    T_Value_Range read = reals({1, 2, 3}, bounds(1, 2), true);
    wire::read_over(read, hex::bytes("01000000  00000000 00000000 00000000  00  46"));
    EXPECT_EQ(read, reals({}, {}, false));
}

// Required: the bounds exist, with default values, before their first text is read.
TEST(ValueRange, ReadingThatFailsInTheFirstTextLeavesFreshBounds) {
    std::istringstream stream(
        hex::bytes("01000000  01000000 02000000 03000000  54  06000000 '0X'"));
    stream.exceptions(std::ios_base::failbit);
    T_Value_Range read = reals({}, bounds(1, 2), true);
    EXPECT_THROW(sml::core::read_from_stream(read, stream), std::ios_base::failure);
    auto const& parts = read.arm<"Real_Full_Range">();
    EXPECT_EQ(parts.format, (Format{1, 2, 3}));
    ASSERT_TRUE(parts.bounds);
    EXPECT_EQ(*parts.bounds, *bounds(0, 0));
    EXPECT_TRUE(parts.flag);
}

TEST(ValueRange, TagDecidesFirst) {
    tables::expect_order_by_tag<T_Value_Range>();
    order::expect_less(integers(9, 9), reals({}, {}, false));
    order::expect_less(reals({9, 9, 9}, bounds(9, 9), true), range({}));
    order::expect_less(range({whole(1, 1), whole(1, 1)}), with_other_tag(range({}), 3));
    order::expect_unordered(with_other_tag(range({}), -1),
                            with_other_tag(range({no_number()}), -1));
}

TEST(ValueRange, IntegersOrderByLowerThenUpper) {
    order::expect_less(integers({}, 9), integers(-9, {}));
    order::expect_less(integers(1, {}), integers(1, -9));
    order::expect_less(integers(1, 9), integers(2, -9));
    order::expect_less(integers(1, 9), integers(1, 16));
    order::expect_equal(integers({}, {}), integers({}, {}));
}

TEST(ValueRange, RealsOrderByFormatBoundsAndFlag) {
    order::expect_less(reals({1, 2, 3}, bounds(9, 9), true), reals({1, 2, 4}, {}, false));
    order::expect_less(reals({}, {}, true), reals({}, bounds(-9, -9), false));
    order::expect_less(reals({}, bounds(-1, 9), true), reals({}, bounds(1, -9), false));
    order::expect_less(reals({}, bounds(1, -9), true), reals({}, bounds(1, 9), false));
    order::expect_less(reals({}, bounds(1, 9), false), reals({}, bounds(1, 9), true));
    order::expect_less(reals({}, {}, false), reals({}, {}, true));
    order::expect_equal(reals({1, 2, 3}, bounds(1, 9), true), reals({1, 2, 3}, bounds(1, 9), true));
}

// Required: bounds are compared by `<` alone, so a NaN does not end the comparison: the second of a
// pair and the flag are still compared.
TEST(ValueRange, BoundThatIsNoNumberIsPassedOver) {
    order::expect_less(reals({}, bounds(nan, 1), true), reals({}, bounds(nan, 2), false));
    order::expect_less(reals({}, bounds(nan, 1), true), reals({}, bounds(5, 2), false));
    order::expect_less(reals({}, bounds(5, 1), true), reals({}, bounds(nan, 2), false));
    order::expect_less(reals({}, bounds(nan, 1), false), reals({}, bounds(nan, 1), true));
    order::expect_less(reals({}, bounds(1, nan), false), reals({}, bounds(1, 2), true));
    order::expect_unordered(reals({}, bounds(nan, 1), true), reals({}, bounds(nan, 1), true));
}

// Required: one interval is less than two, whatever the intervals.
TEST(ValueRange, FewerIntervalsAreLess) {
    order::expect_less(range({whole(9, 9)}, multiple(9)),
                       range({whole(1, 1), whole(1, 1)}, multiple(1)));
    order::expect_less(range({}, multiple(9)), range({whole({}, {})}, multiple(1)));
}

TEST(ValueRange, FirstDifferentIntervalDecides) {
    order::expect_less(range({whole(1, 1), whole(9, 9)}, multiple(9)),
                       range({whole(2, 1), whole(1, 1)}, multiple(1)));
    order::expect_less(range({whole(1, 1), whole(1, 1)}, multiple(9)),
                       range({whole(1, 1), whole(1, 2)}, multiple(1)));
    order::expect_less(range({whole(1, 1)}, multiple(1)), range({whole(1, 1)}, multiple(2)));
    order::expect_equal(range({whole(1, 1)}, multiple(2)), range({whole(1, 1)}, multiple(2)));
    order::expect_less(with_other_tag(range({whole(1, 1)}), 3),
                       with_other_tag(range({whole(1, 2)}), 3));
}

TEST(ValueRange, NansAtOnePositionMakeRangesEachLess) {
    order::expect_unequal_and_each_less(range({whole(1, 1), no_number(), whole(1, 1)}),
                                        range({whole(1, 1), no_number(), whole(2, 2)}));
    order::expect_equal_and_each_less(range({no_number()}), range({no_number()}));
    order::expect_less(range({whole(1, 1), no_number()}), range({whole(2, 2), no_number()}));
}

// Required: such intervals do not end the comparison, which goes straight on to the multiplicity.
// The lists are not compared for equality.
TEST(ValueRange, UnorderedIntervalsArePassedOver) {
    order::expect_less(range({real(nan, 2), whole(1, 1)}), range({real(nan, 1), whole(1, 2)}));
    order::expect_less(range({real(nan, 2)}, multiple(1)), range({real(nan, 1)}, multiple(2)));
    order::expect_less(range({T_Range()}, multiple(1)), range({T_Range()}, multiple(2)));
    order::expect_unordered(range({T_Range()}, multiple(1)), range({T_Range()}, multiple(1)));
}

TEST(ValueRange, MultiplicityDecidesLast) {
    Multiplicity top;
    top.choose<"Top">();
    Multiplicity bottom;
    bottom.choose<"Bottom">();
    order::expect_less(range({}, bottom), range({}, top));
    order::expect_equal_and_each_less(range({}, top), range({}, top));
    order::expect_unordered(range({}, Multiplicity()), range({}, Multiplicity()));
    order::expect_less(range({}, Multiplicity()), range({}, bottom));
    order::expect_equal_and_each_less(range({}, tables::with_tag<Multiplicity>(5)),
                                      range({}, tables::with_tag<Multiplicity>(5)));
}

}  // namespace
