#include <sml/inspect/text/double_text.hpp>

#include "tests/core/comma_locale.hpp"
#include "tests/runs.hpp"

#include <gtest/gtest.h>

#include <mpfr.h>

#include <bit>
#include <cctype>
#include <cfenv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>

namespace {

using sml::inspect::double_of;
using sml::inspect::is_plainly_written_double;
using sml::inspect::nearest_to_float;
using sml::inspect::other_point_of;
using sml::inspect::written_double;
using namespace std::string_literals;

constexpr int rounding_modes[] = {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO};

/// While it lives, it is the process's rounding mode.
class Rounding {
public:
    explicit Rounding(int mode) : before_(std::fegetround()) { std::fesetround(mode); }
    ~Rounding() { std::fesetround(before_); }
    Rounding(Rounding const&) = delete;
    Rounding& operator=(Rounding const&) = delete;

private:
    int before_;
};

/// The value that the real reader reads from a text in this process; none if it throws.
std::optional<double> read(std::string const& text) try {
    return std::stod(std::string(text.c_str()));
} catch (std::logic_error const&) {
    return std::nullopt;
}

bool reads_cleanly_in_every_rounding(std::string const& text) {
    for (int const mode : rounding_modes) {
        Rounding const rounding(mode);
        if (!read(text)) return false;
    }
    return true;
}

/// Whether the values are identical. All NaNs are the same, whatever their sign.
bool are_alike(double a, double b) {
    return (std::isnan(a) && std::isnan(b)) ||
           std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

TEST(DoubleText, WhatThrowsInAnyProcessHasNoValue) {
    for (char const* block :
         {"", "x", ".", "-", "1e999", "-1e999", "1e-310", "0x1p1024", "0x1p-1075",
          // Unsafe with a decimal comma:
          ".5", "-.5", ",5", "1,5e999", "1,e999", "-2,0e-400", "0x1,8p5000",
          // The leading digits alone are out of range:
          "1e400.5",
          // Unsafe if rounded upwards or towards zero:
          "1.7976931348623158e308", "-1.7976931348623158e308", "2.2250738585072011e-308"})
        EXPECT_FALSE(double_of(block)) << block;
}

TEST(DoubleText, ValuesAreThoseOfTheAskedForPoint) {
    EXPECT_EQ(double_of("1.5tail"), 1.5);
    EXPECT_EQ(double_of(" 0x10"), 16.0);
    EXPECT_EQ(double_of("1.5\0garbage"s), 1.5);
    EXPECT_EQ(double_of("1,5"), 1.0);
    EXPECT_EQ(double_of("1,5", ","), 1.5);
    EXPECT_EQ(double_of("1.5", ","), 1.0);
    EXPECT_EQ(double_of("1,500000", ","), 1.5);
    EXPECT_EQ(double_of("1\xD9\xAB"
                        "5",
                        "\xD9\xAB"),
              1.5);
    EXPECT_EQ(double_of("-0x1,8p1", ","), -3.0);
    EXPECT_EQ(double_of("1.7976931348623157e308"), std::numeric_limits<double>::max());
}

TEST(DoubleText, AsTheyAreWritten) {
    for (char const* block : {"1.500000", "0.000000", "-0.000000", "inf", "-inf", "nan", "-nan"})
        EXPECT_EQ(block, written_double(*double_of(block))) << block;
    for (char const* block :
         {"1.5", "1.5000000", "+1.500000", "0.1234567", "INF", "infinity", "1e3", "1,500000"})
        EXPECT_NE(block, written_double(*double_of(block)));
    for (char const* block : {"1,500000", "-12345678901234567168,000000", "inf", "-nan"})
        EXPECT_EQ(block, written_double(*double_of(block, ","), ",")) << block;
}

// Doubles do not have enough bits for every text of more than fifteen digits.
TEST(DoubleText, APlainlyWrittenTextIsWhatItsNearestDoubleIsWrittenAs) {
    std::uint64_t const seed = runs::seed();
    std::mt19937_64     engine(seed);
    int                 plain = 0;
    for (int i = 0; i < 10'000; ++i) {
        std::string text;
        for (auto left = 1 + engine() % 15; left > 0; --left)
            text += static_cast<char>('1' + engine() % 9);
        text += '.' + std::to_string(1'000'000 + engine() % 1'000'000).substr(1);
        double const value = std::stod(text);
        ASSERT_EQ(double_of(text), value) << text << " seed " << seed;
        if (!is_plainly_written_double(text, ".")) continue;
        ++plain;
        ASSERT_EQ(written_double(value), text) << "seed " << seed;
    }
    EXPECT_GT(plain, 1000);
    EXPECT_TRUE(is_plainly_written_double("999999999.999999", "."));
    EXPECT_FALSE(is_plainly_written_double("1000000000.000000", "."));
}

TEST(DoubleText, TheOtherPointIsNamedOnlyWhereItMakesTheTextAWrittenOne) {
    EXPECT_EQ(other_point_of("1,500000", "."), ",");
    EXPECT_EQ(other_point_of("-1,500000", "."), ",");
    EXPECT_EQ(other_point_of("1.500000", ","), ".");
    for (char const* block : {"1.500000", "1,5", "1", "", "x", "1,5e999"})
        EXPECT_FALSE(other_point_of(block, ".")) << block;
}

TEST(DoubleText, DigitsBeyondEveryRoundingCountOnlyAsNotZero) {
    std::string const half_way = "9007199254740993";  // between two doubles
    EXPECT_EQ(double_of(half_way), 9007199254740992.0);
    EXPECT_EQ(double_of(half_way + "." + std::string(5000, '0')), 9007199254740992.0);
    EXPECT_EQ(double_of(half_way + "." + std::string(5000, '0') + "1"), 9007199254740994.0);
    EXPECT_EQ(double_of(std::string(100'000, '0') + "7"), 7.0);
    EXPECT_EQ(double_of("0." + std::string(5000, '0') + "7e5001"), 7.0);
    EXPECT_EQ(double_of("1" + std::string(5000, '0') + "e-5000"), 1.0);
    // With another decimal point, no exponent follows the leading digits.
    EXPECT_EQ(double_of("1" + std::string(5000, '0') + ".0e-5000"), std::nullopt);
}

TEST(DoubleText, VerdictAndValueDependOnNothingInTheProcess) {
    CommaLocale const locale;
    ASSERT_COMMA_LOCALE(locale);
    for (int const mode : rounding_modes) {
        Rounding const rounding(mode);
        EXPECT_EQ(double_of("1.5"), 1.5);
        EXPECT_EQ(double_of("0.100000"), 0.1);
        EXPECT_EQ(double_of("0.1"), 0.1);
        EXPECT_FALSE(double_of("1.7976931348623158e308"));
        EXPECT_EQ(written_double(0.1234565), "0.123456");
        EXPECT_EQ(std::fegetround(), mode);
    }
}

/// A random text that is similar to the text of a double.
std::string random_text(std::mt19937_64& engine) {
    constexpr std::string_view pieces[] = {
        "0",    "1",     "9",  "5",    ".",    ",",   "e",     "E",  "-",  "+",    "308",
        "e3",   "e-307", "0x", "p",    "p-10", "inf", "nan",   " ",  "\t", "e999", "000",
        "1023", "a",     "F",  "1.79", "2.2",  "\0",  "e-324", "p+", "..", "x"};
    std::string text;
    switch (engine() % 4) {
        case 0: text = written_double(std::bit_cast<double>(engine())); break;
        case 1: text = "1.797693134862315" + std::to_string(engine() % 20) + "e308"; break;
        case 2: text = "2.225073858507201" + std::to_string(engine() % 60) + "e-308"; break;
        default: break;
    }
    for (auto edits = engine() % 6; edits > 0; --edits) {
        std::string_view const piece = pieces[engine() % std::size(pieces)];
        std::size_t const      at = engine() % (text.size() + 1);
        if (engine() % 3 == 0)
            text.erase(at, engine() % 3);
        else
            text.insert(at, piece.empty() ? "\0"s : std::string(piece));
    }
    return text;
}

/// Whether every character that could be a decimal point is one of the two that processes have in
/// this test.
bool has_no_point_of_another_kind(std::string_view text) {
    bool is_behind_point = false;
    for (char const c : text) {
        bool const is_point = c == '.' || c == ',';
        if (is_point && is_behind_point) return false;
        if (!is_point && std::isalnum(static_cast<unsigned char>(c)) == 0) return false;
        is_behind_point = is_point;
    }
    return true;
}

// For the two decimal points that processes have in this test, the judgement is exact. Other points
// make it stricter.
TEST(DoubleText, JudgementAgreesWithTheReaderInEveryLocaleAndRoundingMode) {
    std::uint64_t const seed = runs::seed();
    std::mt19937_64     engine(seed);
    int                 values = 0;
    int                 point_dependent = 0;
    for (int i = 0; i < 30'000; ++i) {
        std::string const text = random_text(engine);
        SCOPED_TRACE("seed " + std::to_string(seed) + ", text \"" + text + '"');
        bool                  reads = reads_cleanly_in_every_rounding(text);
        auto const            with_dot = read(text);
        std::optional<double> with_comma;
        {
            CommaLocale const locale;
            ASSERT_COMMA_LOCALE(locale);
            reads = reads && reads_cleanly_in_every_rounding(text);
            with_comma = read(text);
        }
        auto const value = double_of(text);
        auto const comma_value = double_of(text, ",");
        ASSERT_EQ(value.has_value(), comma_value.has_value());
        if (value) {
            ++values;
            ASSERT_TRUE(reads);
            ASSERT_TRUE(are_alike(*value, *with_dot));
            ASSERT_TRUE(are_alike(*comma_value, *with_comma));
            point_dependent += !are_alike(*value, *comma_value);
        } else if (has_no_point_of_another_kind(text)) {
            ASSERT_FALSE(reads);
        }
        if (is_plainly_written_double(text, ".")) {
            ASSERT_EQ(text, written_double(*value));
        }
    }
    EXPECT_GT(values, 3000);
    EXPECT_GT(point_dependent, 300);
}

TEST(NearestToFloat, IsWhatTheTextSays) {
    EXPECT_EQ(nearest_to_float("0X0P+0"), 0);
    EXPECT_TRUE(std::signbit(nearest_to_float("-0X0P+0")));
    EXPECT_EQ(nearest_to_float("0X1.8P+1"), 3);
    EXPECT_EQ(nearest_to_float("-INF"), -std::numeric_limits<double>::infinity());
    EXPECT_TRUE(std::isnan(nearest_to_float("NAN")));
    EXPECT_EQ(nearest_to_float("0X1P-1074"), std::numeric_limits<double>::denorm_min());
    EXPECT_EQ(nearest_to_float("0X1P+16000"), std::numeric_limits<double>::infinity());
    EXPECT_EQ(nearest_to_float("0X1P-16000"), 0);
}

TEST(NearestToFloat, RoundsHalvesToEven) {
    EXPECT_EQ(nearest_to_float("0X1.00000000000008P+0"), 1);
    EXPECT_EQ(nearest_to_float("0X1.00000000000018P+0"), 1 + 0x1p-51);
    EXPECT_EQ(nearest_to_float("0X1.000000000000080000001P+0"), 1 + 0x1p-52);
    EXPECT_EQ(nearest_to_float("0X1P-1075"), 0);
    EXPECT_EQ(nearest_to_float("0X1.8P-1075"), std::numeric_limits<double>::denorm_min());
    EXPECT_EQ(nearest_to_float("0X1.706801105D1118P-1023"), 0x0.b83400882e889p-1022);
    EXPECT_EQ(nearest_to_float("0X1.FFFFFFFFFFFFF8P-1023"), std::numeric_limits<double>::min());
}

TEST(NearestToFloat, DoesNotDependOnTheRoundingMode) {
    for (int const mode : rounding_modes) {
        Rounding const rounding(mode);
        EXPECT_EQ(nearest_to_float("0X1.00000000000008P+0"), 1);
        EXPECT_EQ(nearest_to_float("0X1.8P-1075"), std::numeric_limits<double>::denorm_min());
    }
}

// In the widest range of exponents: reading a value leaves another one.
double nearest_by_mpfr(char const* text) {
    mpfr_set_emin(mpfr_get_emin_min());
    mpfr_set_emax(mpfr_get_emax_max());
    constexpr mpfr_prec_t bits_of_all_digits = 4 * 32;
    mpfr_t                exact;
    mpfr_init2(exact, bits_of_all_digits);
    mpfr_set_str(exact, text, 0, MPFR_RNDN);
    double const nearest = mpfr_get_d(exact, MPFR_RNDN);
    mpfr_clear(exact);
    return nearest;
}

TEST(NearestToFloat, AgreesWithMpfr) {
    std::mt19937_64 random(runs::seed());
    for (int i = 0; i < runs::count(20'000, 2'000'000); ++i) {
        char        text[64];
        auto const  digits = static_cast<unsigned long long>(random());
        auto const  more = static_cast<unsigned long long>(random() >> 16);
        int const   exponent = static_cast<int>(random() % 2300) - 1150;
        int const   shown = static_cast<int>(random() % 28) + 1;
        std::string all(64, '\0');
        std::snprintf(all.data(), all.size(), "%016llX%012llX", digits, more);
        std::snprintf(text, sizeof text, "0X1.%.*sP%+d", shown, all.c_str(), exponent);
        ASSERT_EQ(nearest_to_float(text), nearest_by_mpfr(text)) << text;
    }
}

}  // namespace
