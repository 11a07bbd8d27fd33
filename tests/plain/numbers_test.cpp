// Compares the reading and writing of floats and integers with the reference implementation.

#include "tests/core/comma_locale.hpp"
#include "tests/plain/outcome.hpp"
#include "tests/reference/plain.hpp"
#include "tests/runs.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace std::string_view_literals;
using Engine = std::mt19937_64;
using plain_test::Range;
using sml::BigInteger;
using zelvanite::IEEE754Float;

constexpr std::uint64_t widths[] = {16, 32, 40, 48, 64, 80, 128};

/// A number from 0 to `bound` - 1.
int below(Engine& engine, int bound) {
    return std::uniform_int_distribution<int>(0, bound - 1)(engine);
}

template <class T>
std::string plainly_written(T const& value) {
    std::ostringstream stream;
    plain::Writer{stream}(value);
    return stream.str();
}

/// The parts of a float: its width, precision, sign, exponent and limbs.
std::vector<std::uint64_t> parts(IEEE754Float const& value) {
    mpfr_srcptr const          number = value.number();
    std::vector<std::uint64_t> all{value.width, static_cast<std::uint64_t>(mpfr_get_prec(number)),
                                   static_cast<std::uint64_t>(MPFR_SIGN(number)),
                                   static_cast<std::uint64_t>(number->_mpfr_exp)};
    if (mpfr_regular_p(number) != 0)
        for (mpfr_prec_t bits = 0; bits < mpfr_get_prec(number); bits += 64)
            all.push_back(number->_mpfr_d[bits / 64]);
    if (mpfr_nan_p(number) != 0) all[2] = 0;  // the sign of a NaN does not matter
    return all;
}

std::vector<std::uint64_t> parts(BigInteger const& value) {
    mpz_srcptr const           number = value.backend().data();
    std::vector<std::uint64_t> all{static_cast<std::uint64_t>(mpz_sgn(number))};
    for (std::size_t i = 0; i < mpz_size(number); ++i)
        all.push_back(mpz_getlimbn(number, static_cast<mp_size_t>(i)));
    return all;
}

std::string expect_written_alike(auto const& value) {
    std::string const bytes = wire::write(value);
    Range const       range;
    EXPECT_EQ(hex::shown(bytes), hex::shown(plainly_written(value)));
    EXPECT_EQ(range, Range());
    return bytes;
}

/// Reads the bytes over copies of `before`. The bytes are in a block of their exact size, so that a
/// sanitizer reports a read beyond them.
template <class T>
void expect_read_alike(std::string const& bytes, T const& before) {
    std::vector<char> const alone(bytes.begin(), bytes.end());
    T                       ours(before);
    sml::StringIArchive     archive(alone.data());
    sml::core::Reader{archive}(ours);
    Range const   range;
    T             expected(before);
    plain::Buffer buffer(alone.data());
    plain::Reader<plain::Buffer>{buffer}(expected);
    EXPECT_EQ(parts(ours), parts(expected)) << hex::shown(bytes);
    EXPECT_EQ(range, Range()) << hex::shown(bytes);
    EXPECT_EQ(archive.cursor(), buffer.at()) << hex::shown(bytes);
}

/// A random float of any precision, mostly that of its format.
IEEE754Float random_float(Engine& engine) {
    IEEE754Float value;
    value.width = widths[below(engine, 7)];
    auto const format = IEEE754Float::Format::of(value.width);
    mpfr_set_emin(-20000);
    mpfr_set_emax(20000);
    mpfr_set_prec(value.number(),
                  below(engine, 8) != 0 ? format.mantissa_bits : 2 + below(engine, 200));
    auto const bits = engine();
    switch (below(engine, 16)) {
        case 0: mpfr_set_zero(value.number(), below(engine, 2) == 0 ? 1 : -1); return value;
        case 1: mpfr_set_inf(value.number(), below(engine, 2) == 0 ? 1 : -1); return value;
        case 2: mpfr_set_nan(value.number()); return value;
        case 3: mpfr_set_ui(value.number(), bits >> below(engine, 64), MPFR_RNDN); break;
        case 4:
            mpfr_set_si(value.number(), static_cast<long>(bits % 2000) - 1000, MPFR_RNDN);
            break;
        default: {
            mpfr_set_ui(value.number(), 1, MPFR_RNDN);
            for (mp_limb_t* limb = value.number()->_mpfr_d;
                 limb < value.number()->_mpfr_d + (mpfr_get_prec(value.number()) + 63) / 64; ++limb)
                *limb = engine() & ~std::uint64_t{0} << below(engine, 64);
            auto const last = (64 - mpfr_get_prec(value.number()) % 64) % 64;
            *value.number()->_mpfr_d &= ~std::uint64_t{0} << last;
            value.number()->_mpfr_d[(mpfr_get_prec(value.number()) - 1) / 64] |= std::uint64_t{1}
                                                                                 << 63;
        }
    }
    if (mpfr_regular_p(value.number()) == 0) return value;
    mpfr_exp_t exponent = 0;
    switch (below(engine, 4)) {
        case 0: exponent = format.emin + below(engine, 6) - 3; break;
        case 1: exponent = format.emax + below(engine, 6) - 3; break;
        case 2: exponent = below(engine, 40) - 20; break;
        default:
            exponent = format.emin + below(engine, static_cast<int>(format.emax - format.emin) + 1);
    }
    mpfr_set_exp(value.number(), exponent);
    if (below(engine, 2) == 0) mpfr_neg(value.number(), value.number(), MPFR_RNDN);
    return value;
}

std::string word(std::int32_t value) {
    return {reinterpret_cast<char const*>(&value), sizeof value};
}

std::string float_block(std::string const& text, std::uint64_t width) {
    return word(static_cast<std::int32_t>(text.size())) + text +
           word(static_cast<std::int32_t>(width));
}

/// Changes the text in one to three places.
std::string spoilt(std::string text, std::string_view characters, Engine& engine) {
    for (int i = below(engine, 3); i >= 0; --i) {
        auto const at = static_cast<std::size_t>(below(engine, static_cast<int>(text.size()) + 1));
        auto const any = characters[static_cast<std::size_t>(
            below(engine, static_cast<int>(characters.size())))];
        switch (below(engine, 3)) {
            case 0: text.insert(at, 1, any); break;
            case 1: text.replace(at, 1, 1, any); break;
            default: text.erase(at, 1); break;
        }
    }
    return text;
}

TEST(PlainFloats, AreWrittenAndReadAlike) {
    Engine engine(runs::seed());
    for (int i = runs::count(100'000, 10'000'000); i > 0 && !HasFailure(); --i) {
        auto const        value = random_float(engine);
        std::string const bytes = expect_written_alike(value);
        // The text is between two words.
        std::string const text = bytes.substr(4, bytes.size() - 8);
        auto const        before = random_float(engine);
        expect_read_alike(bytes, before);
        expect_read_alike(float_block(text, widths[below(engine, 7)]), before);
    }
}

TEST(PlainFloats, OfForeignTextsAreReadAlike) {
    Engine engine(runs::seed() + 1);
    for (int i = runs::count(100'000, 10'000'000); i > 0 && !HasFailure(); --i) {
        std::string const bytes = wire::write(random_float(engine));
        std::string const text = bytes.substr(4, bytes.size() - 8);
        expect_read_alike(float_block(spoilt(text, "0123456789ABCDEFPX.+-,xpaf \t\0Nn"sv, engine),
                                      widths[below(engine, 7)]),
                          IEEE754Float());
    }
}

TEST(PlainFloats, OfUnlistedWidthsAreWrittenAlike) {
    Engine engine(runs::seed() + 2);
    for (std::uint64_t const width : {0ull, 1ull, 33ull, 127ull, 1ull << 32, ~0ull}) {
        for (int i = 0; i < 100; ++i) {
            IEEE754Float value = random_float(engine);
            value.width = width;
            expect_written_alike(value);
        }
    }
    IEEE754Float::set_range(IEEE754Float::Format::of(64));
}

TEST(PlainFloats, FollowTheLocale) {
    CommaLocale const comma;
    ASSERT_COMMA_LOCALE(comma);
    Engine engine(runs::seed() + 3);
    for (int i = 0; i < 10'000 && !HasFailure(); ++i) {
        std::string const bytes = expect_written_alike(random_float(engine));
        std::string const text = bytes.substr(4, bytes.size() - 8);
        expect_read_alike(bytes, IEEE754Float());
        expect_read_alike(float_block(spoilt(text, "0123456789ABCDEF.,", engine), 64),
                          IEEE754Float());
    }
}

BigInteger random_integer(Engine& engine) {
    BigInteger value = 0;
    for (int i = below(engine, 8); i > 0; --i)
        value = (value << 64) + (engine() >> below(engine, 64));
    if (below(engine, 4) == 0) value <<= below(engine, 300);
    return below(engine, 2) == 0 ? value : -value;
}

TEST(PlainIntegers, AreWrittenAndReadAlike) {
    Engine engine(runs::seed() + 4);
    for (int i = runs::count(200'000, 10'000'000); i > 0 && !HasFailure(); --i)
        expect_read_alike(expect_written_alike(random_integer(engine)), random_integer(engine));
}

TEST(PlainIntegers, OfForeignTextsAreReadAlike) {
    Engine engine(runs::seed() + 5);
    for (int i = runs::count(200'000, 10'000'000); i > 0 && !HasFailure(); --i) {
        std::string const text = spoilt(wire::write(random_integer(engine)).substr(4),
                                        "0123456789abcdefAFgx-+ \0"sv, engine);
        expect_read_alike(word(static_cast<std::int32_t>(text.size())) + text,
                          random_integer(engine));
    }
}

}  // namespace
