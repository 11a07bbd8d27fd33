#include <sml/inspect/text/number_text.hpp>

#include <sml/bindings/bindings.hpp>
#include "tests/inspect/wire_bytes.hpp"
#include "tests/random_values.hpp"
#include "tests/runs.hpp"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <string_view>

namespace {

using sml::inspect::float_of;
using sml::inspect::integer_of;
using sml::inspect::is_float_width;
using sml::inspect::is_written_float;
using sml::inspect::is_written_integer;
using namespace std::string_literals;

constexpr std::int32_t widths[] = {16, 32, 40, 48, 64, 80, 128};

/// The block of the only number in these bytes, after a tag word and a length word.
std::string block_of(std::string const& bytes, std::size_t at) {
    std::int32_t length;
    std::memcpy(&length, bytes.data() + at, sizeof length);
    return bytes.substr(at + sizeof length, static_cast<std::size_t>(length));
}

/// The text of a float as the library writes it.
std::string written(zelvanite::IEEE754Float const& value) {
    sml::Answers::T_AnswerInspectionPoint answer;
    auto& interval = answer.range.choose<"Value_Range">().intervals.emplace_back();
    interval.choose<"Real_Interval">().lower = value;
    std::string const bytes = sml::Answers_AnswerInspectionPoint_fromCxx(answer);
    return block_of(bytes, 1 + 4 + 4 + 4 + 4);
}

zelvanite::IEEE754Float random_float(std::mt19937_64& engine, std::int32_t width) {
    zelvanite::IEEE754Float value;
    value.width = static_cast<std::uint64_t>(width);
    auto const format = zelvanite::IEEE754Float::Format::of(value.width);
    zelvanite::IEEE754Float::set_range(format);
    mpfr_set_prec(value.number(), format.mantissa_bits);
    auto const bits = static_cast<long>(engine() >> (engine() % 60));
    mpfr_set_si(value.number(), engine() % 2 == 0 ? bits : -bits, MPFR_RNDN);
    if (mpfr_zero_p(value.number()) == 0) {
        auto const span = static_cast<std::uint64_t>(format.emax - format.emin + 1);
        mpfr_set_exp(value.number(), format.emin + static_cast<mpfr_exp_t>(engine() % span));
    }
    return value;
}

/// The judgement of a text that is followed by more digits.
bool is_written_amid(std::string const& text, std::int32_t width) {
    std::string const all = text + "FFFFFFFFFFFFFFFFP+0F";
    return is_written_float(std::string_view(all).substr(0, text.size()), width, all.size());
}

TEST(NumberText, WrittenFloatsAreKnownAsSuch) {
    for (std::uint64_t seed = 1; seed <= 20000; ++seed) {
        std::mt19937_64    engine(seed);
        std::int32_t const width = widths[engine() % 7];
        std::string const  text = written(random_float(engine, width));
        ASSERT_TRUE(is_written_float(text, width)) << text << " seed " << seed;
        ASSERT_EQ(float_of(text, width), text) << " seed " << seed;
    }
}

// For any text, it is judged to be a writer's text exactly if the value read from it is written as
// the same text.
TEST(NumberText, JudgementOfFloatsAgreesWithReadingAndWriting) {
    constexpr std::string_view alphabet = "0123456789ABCDEFabcXPp+-. INF";
    int                        known = 0;
    for (std::uint64_t seed = 1; seed <= 20000; ++seed) {
        std::mt19937_64    engine(seed);
        std::int32_t const width = widths[engine() % 7];
        std::string        text = written(random_float(engine, widths[engine() % 7]));
        for (auto edits = engine() % 3; edits > 0; --edits) {
            std::size_t const at = engine() % (text.size() + 1);
            char const        c = alphabet[engine() % alphabet.size()];
            switch (engine() % 3) {
                case 0: text.insert(at, 1, c); break;
                case 1: text.erase(at, 1); break;
                default: text[at % text.size()] = c;
            }
            if (text.empty()) text = "0";
        }
        bool const is_written = is_written_float(text, width);
        known += is_written;
        ASSERT_EQ(is_written, float_of(text, width) == text)
            << '"' << text << "\" width " << width << " seed " << seed;
        ASSERT_EQ(is_written_amid(text, width), is_written)
            << '"' << text << "\" width " << width << " seed " << seed;
    }
    EXPECT_GT(known, 1000);
}

TEST(NumberText, FloatWords) {
    for (std::int32_t const width : widths) {
        EXPECT_TRUE(is_float_width(width));
        for (char const* text : {"NAN", "INF", "-INF", "0X0P+0", "-0X0P+0", "0X1.8P+0"})
            EXPECT_TRUE(is_written_float(text, width)) << text;
        for (char const* text : {"", "-NAN", "nan", "inf", "+INF", "0x1.8P+0", "0X1.80P+0",
                                 "0X1.8P+1", "0X1.8P0", "0X01.8P+0", "0XP+0", "1", "0X1.8P+0 "})
            EXPECT_FALSE(is_written_float(text, width)) << text;
    }
    for (std::int32_t const width : {0, -1, 17, 63, 256}) EXPECT_FALSE(is_float_width(width));
}

TEST(NumberText, ExponentRangeOfTheProcessStays) {
    zelvanite::IEEE754Float const narrow = [] {
        zelvanite::IEEE754Float value;
        value.width = 16;
        return zelvanite::IEEE754Float(value);
    }();
    static_cast<void>(float_of("1.25e3", 128));
    EXPECT_EQ(mpfr_get_emin(), -23);
    EXPECT_EQ(mpfr_get_emax(), 16);
}

TEST(NumberText, Integers) {
    for (std::string const& block : {"0\0\0"s, "1f\0\0"s, "-1f\0"s, "-ffffffffffffffffff\0"s})
        EXPECT_TRUE(is_written_integer(block)) << block;
    for (std::string const& block :
         {""s, "\0\0"s, "0"s, "0\0"s, "0\0\0\0"s, "-0\0"s, "1F\0\0"s, "01f\0\0"s, "-1f\0\0"s,
          "1f\0"s, "+1f\0\0"s, " 1f\0\0"s, "1g\0\0"s, "-\0"s, "1\0f\0\0"s})
        EXPECT_FALSE(is_written_integer(block)) << block;
    EXPECT_EQ(integer_of("00FF"), "ff");
    EXPECT_EQ(integer_of("-0\0"s), "0");
    EXPECT_EQ(integer_of("x"), "0");
    EXPECT_EQ(integer_of("1\0f\0\0"s), "1");
}

/// The text of an integer as the writer writes it, without the length.
std::string written_integer(std::string_view hexadecimal) {
    auto const write = [&](auto& writer) { writer.big_integer(hexadecimal); };
    return wire_bytes::written(write).substr(sizeof(std::int32_t));
}

// Integers of any length, with any single byte changed, and any bytes after them.
TEST(NumberText, JudgementOfIntegersAgreesWithReadingAndWriting) {
    std::mt19937_64 engine(3);
    for (std::size_t digits = 1; digits <= 50; ++digits) {
        for (bool const negative : {false, true}) {
            std::string text = negative ? "-" : "";
            text += "123456789abcdef"[engine() % 15];
            while (text.size() < digits + negative) text += "0123456789abcdef"[engine() % 16];
            std::string const block = written_integer(text);
            ASSERT_TRUE(is_written_integer(block));
            for (std::size_t at = 0; at < block.size(); ++at) {
                for (int byte = 0; byte < 256; ++byte) {
                    std::string changed = block;
                    changed[at] = static_cast<char>(byte);
                    bool const is_written = written_integer(integer_of(changed)) == changed;
                    ASSERT_EQ(is_written_integer(changed), is_written) << digits << ' ' << at;
                    std::string const all = changed + "0123456789abcdef0";
                    ASSERT_EQ(is_written_integer(std::string_view(all).substr(0, changed.size()),
                                                 all.size()),
                              is_written)
                        << digits << ' ' << at;
                }
            }
        }
    }
}

// Compares integers of any text with the number library that readers use.
TEST(NumberText, IntegersAreThoseOfTheNumberLibrary) {
    constexpr std::string_view alphabet("0019afAFg-+ \t\0", 14);
    std::uint64_t const        seed = runs::seed();
    std::mt19937_64            engine(seed);
    for (int i = 0; i < 50'000; ++i) {
        std::string block;
        for (auto size = engine() % 12; size > 0; --size) block += alphabet[engine() % 14];
        sml::BigInteger value;
        mpz_set_str(value.backend().data(), block.c_str(), 16);
        std::string digits(mpz_sizeinbase(value.backend().data(), 16) + 2, '\0');
        mpz_get_str(digits.data(), 16, value.backend().data());
        ASSERT_EQ(integer_of(block), digits.c_str()) << '"' << block << "\" seed " << seed;
    }
}

TEST(NumberText, FloatsOfACommaProcessAreJudgedByTheirPoint) {
    EXPECT_TRUE(is_written_float("0X1,8P+0", 64, 8, ','));
    EXPECT_FALSE(is_written_float("0X1,8P+0", 64));
    EXPECT_FALSE(is_written_float("0X1.8P+0", 64, 8, ','));
    EXPECT_EQ(float_of("0X1,8P+0", 64, ','), "0X1.8P+0");
    EXPECT_EQ(float_of("0X1.8P+0", 64, ','), "0X1.8P+0");
    EXPECT_EQ(float_of("0X1,8.5P+1", 64, ','), "0X1.8P+0");
    EXPECT_EQ(float_of("0X1,8P+0", 64), "0X1P+0");
}

}  // namespace
