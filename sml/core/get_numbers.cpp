#include <sml/core/get_numbers.hpp>

#include <sml/core/hexadecimal.hpp>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <string_view>

namespace sml::core {

namespace {

constexpr int limb_bits = 64;
constexpr int limb_digits = 16;

/// The bits after a float's first digit, the first one in the highest bit of `high`.
struct Fraction {
    std::uint64_t high = 0;
    std::uint64_t low = 0;
};

bool take_fraction(char const* at, int digits, Fraction& fraction) noexcept {
    using Upper = Hexadecimal<'A'>;
    if (digits > 2 * limb_digits) return false;
    int const in_high = std::min(digits, limb_digits);
    if (!Upper::take(at, in_high, fraction.high)) return false;
    fraction.high <<= limb_bits - 4 * in_high;
    int const in_low = digits - in_high;
    if (in_low == 0) return true;
    if (!Upper::take(at + in_high, in_low, fraction.low)) return false;
    fraction.low <<= limb_bits - 4 * in_low;
    return true;
}

/// Parses a sign and one to six decimal digits up to `end`; false for anything else.
bool take_exponent(char const* at, char const* end, mpfr_exp_t& exponent) noexcept {
    constexpr int most_digits = 6;
    bool const    is_negative = *at == '-';
    if (!is_negative && *at != '+') return false;
    ++at;
    if (at == end || end - at > most_digits) return false;
    exponent = 0;
    for (; at != end; ++at) {
        unsigned const digit = static_cast<unsigned char>(*at) - unsigned{'0'};
        if (digit > 9) return false;
        exponent = 10 * exponent + static_cast<mpfr_exp_t>(digit);
    }
    if (is_negative) exponent = -exponent;
    return true;
}

/// Sets the format's exponent range and the number's mantissa size; returns the number.
mpfr_ptr in_format(zelvanite::IEEE754Float& value, zelvanite::IEEE754Float::Format const& format) {
    zelvanite::IEEE754Float::set_range(format);
    mpfr_ptr const number = value.number();
    if (mpfr_get_prec(number) != format.mantissa_bits) mpfr_set_prec(number, format.mantissa_bits);
    return number;
}

/// Parses a zero or an infinity; false for anything else.
bool take_special(std::string_view text, zelvanite::IEEE754Float& value) {
    int const sign = text.starts_with('-') ? -1 : 1;
    if (sign < 0) text.remove_prefix(1);
    bool const is_infinite = text == "INF";
    if (!is_infinite && text != "0X0P+0") return false;
    auto const format = zelvanite::IEEE754Float::Format::of(value.width);
    if (format.emin > format.emax) return false;
    mpfr_ptr const number = in_format(value, format);
    is_infinite ? mpfr_set_inf(number, sign) : mpfr_set_zero(number, sign);
    return true;
}

}  // namespace

bool take_integer(char const* block, std::size_t size, BigInteger& value) {
    using Lower = Hexadecimal<'a'>;
    constexpr std::size_t most_limbs = 4;
    if (size < 3 || size > most_limbs * limb_digits + 2) return false;
    bool const is_negative = *block == '-';
    auto       digits = static_cast<int>(size) - 2;
    if (block[size - 1] != '\0' || (!is_negative && block[size - 2] != '\0')) return false;
    char const* at = block + (is_negative ? 1 : 0);

    mpz_ptr const number = value.backend().data();
    if (digits <= limb_digits) {
        std::uint64_t limb = 0;
        if (!Lower::take(at, digits, limb)) return false;
        if (limb == 0) {
            number->_mp_size = 0;  // mpz_set_ui would allocate a limb
        } else {
            mpz_set_ui(number, limb);
            if (is_negative) mpz_neg(number, number);
        }
        return true;
    }

    std::uint64_t limbs[most_limbs];
    int const     limb_count = (digits + limb_digits - 1) / limb_digits;
    for (int i = limb_count; i-- > 0;) {
        int const here = digits - i * limb_digits;
        if (!Lower::take(at, here, limbs[i])) return false;
        at += here;
        digits -= here;
    }
    int size_used = limb_count;
    while (size_used > 0 && limbs[size_used - 1] == 0) --size_used;

    if (size_used > 0) {
        mp_limb_t* const target = mpz_limbs_write(number, size_used);
        for (int i = 0; i < size_used; ++i) target[i] = limbs[i];
    }
    number->_mp_size = is_negative ? -size_used : size_used;
    return true;
}

bool take_float(char const* block, std::size_t size, zelvanite::IEEE754Float& value, char point) {
    constexpr std::size_t shortest = 6;  // 0X1P+0
    constexpr std::size_t longest = 64;
    if (size < shortest) return take_special({block, size}, value);
    if (size > longest) return false;
    char const* const end = block + size;
    char const*       at = block;
    bool const        is_negative = *at == '-';
    at += is_negative ? 1 : 0;
    if (at[0] != '0' || at[1] != 'X') return false;
    std::uint64_t first = 0;
    if (!Hexadecimal<'A'>::take(at + 2, 1, first)) return false;
    if (first == 0) return take_special({block, size}, value);
    at += 3;

    Fraction fraction;
    if (*at == '.') {
        ++at;
        auto const* const behind =
            static_cast<char const*>(std::memchr(at, 'P', static_cast<std::size_t>(end - at)));
        if (behind == nullptr || behind == at || point != '.') return false;
        if (!take_fraction(at, static_cast<int>(behind - at), fraction)) return false;
        at = behind;
    }
    mpfr_exp_t exponent = 0;
    if (*at != 'P' || end - at < 3 || !take_exponent(at + 1, end, exponent)) return false;

    auto const          format = zelvanite::IEEE754Float::Format::of(value.width);
    int const           first_bits = limb_bits - std::countl_zero(first);
    std::uint64_t const high = first << (limb_bits - first_bits) | fraction.high >> first_bits;
    std::uint64_t const low =
        fraction.high << (limb_bits - first_bits) | fraction.low >> first_bits;
    if ((fraction.low << (limb_bits - first_bits)) != 0) return false;
    exponent += first_bits;
    if (exponent < format.emin || exponent > format.emax) return false;
    bool const has_two = format.mantissa_bits > limb_bits;
    auto const unused = static_cast<int>((has_two ? 2 : 1) * limb_bits - format.mantissa_bits);
    std::uint64_t const lowest = has_two ? low : high;
    if ((lowest & ((std::uint64_t{1} << unused) - 1)) != 0 || (!has_two && low != 0)) return false;

    mpfr_ptr const number = in_format(value, format);
    if (has_two) number->_mpfr_d[0] = low;
    number->_mpfr_d[has_two ? 1 : 0] = high;
    number->_mpfr_exp = exponent;
    number->_mpfr_sign = is_negative ? -1 : 1;
    return true;
}

}  // namespace sml::core
