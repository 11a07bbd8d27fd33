#include "bench/draws.hpp"

#include "bench/mix.hpp"

#include <array>
#include <limits>

namespace bench {

namespace {

constexpr std::size_t word_bits = 64;

// The least significant word is first.
void set_words(sml::BigInteger& value, std::uint64_t const* words, std::size_t count) {
    mpz_import(value.backend().data(), count, -1, sizeof *words, 0, 0, words);
}

}  // namespace

std::size_t Draws::among(std::initializer_list<std::uint32_t> percents) {
    std::uint32_t left = below(100);
    std::size_t   index = 0;
    for (std::uint32_t const percent : percents) {
        if (left < percent) return index;
        left -= percent;
        ++index;
    }
    return index - 1;
}

void Draws::integer(sml::BigInteger& value) {
    switch (among({45, 30, 13, 8, 4})) {
        case 0: value = below(300); return;
        case 1: value = static_cast<std::int32_t>(bits() >> 32); return;
        case 2: value = std::numeric_limits<std::int32_t>::min(); return;
        case 3: value = static_cast<std::int64_t>(bits()); return;
        default: large_integer(value);
    }
}

void Draws::large_integer(sml::BigInteger& value) {
    std::size_t const            count = chance(50) ? 2 : 3;
    std::array<std::uint64_t, 3> words{};
    for (std::size_t i = 0; i < count; ++i) words[i] = bits();
    set_words(value, words.data(), count);
    mpz_setbit(value.backend().data(), count * word_bits - 1);
    if (chance(50)) value = -value;
}

std::uint64_t Draws::width() {
    constexpr std::array<std::uint64_t, 4> widths{64, 32, 80, 128};
    return widths[among({60, 34, 4, 2})];
}

void Draws::real(zelvanite::IEEE754Float& value, std::uint64_t width) {
    auto const format = zelvanite::IEEE754Float::Format::of(width);
    value.width = width;
    zelvanite::IEEE754Float::set_range(format);
    mpfr_set_prec(value.number(), format.mantissa_bits);
    std::size_t const kind =
        among({percent_short, percent_full_mantissa, percent_largest, percent_infinite});
    bool const negative = chance(40);
    if (kind == 0)
        mpfr_set_ui_2exp(value.number(), below(400), -2, MPFR_RNDN);
    else if (kind == 1)
        full_mantissa(value, format.mantissa_bits);
    else
        mpfr_set_inf(value.number(), 1);
    if (kind == 2) mpfr_nextbelow(value.number());
    mpfr_setsign(value.number(), value.number(), negative && !mpfr_zero_p(value.number()),
                 MPFR_RNDN);
}

// The first and the last bit of the mantissa are set, so the text is as long as the format allows.
void Draws::full_mantissa(zelvanite::IEEE754Float& value, mpfr_prec_t bits_wanted) {
    std::array<std::uint64_t, 2> const words{bits(), bits()};
    mpz_ptr const                      mantissa = mantissa_.backend().data();
    auto const                         size = static_cast<mp_bitcnt_t>(bits_wanted);
    set_words(mantissa_, words.data(), words.size());
    mpz_tdiv_r_2exp(mantissa, mantissa, size);
    mpz_setbit(mantissa, 0);
    mpz_setbit(mantissa, size - 1);
    mpfr_exp_t const exponent = static_cast<mpfr_exp_t>(below(80)) - 40 - bits_wanted;
    mpfr_set_z_2exp(value.number(), mantissa, exponent, MPFR_RNDN);
}

}  // namespace bench
