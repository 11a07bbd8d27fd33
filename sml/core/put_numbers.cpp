#include <sml/core/put_numbers.hpp>

#include <sml/core/hexadecimal.hpp>

#include <bit>
#include <cstdint>
#include <cstring>

namespace sml::core {

namespace {

constexpr int limb_bits = 64;
constexpr int limb_digits = 16;
static_assert(GMP_NUMB_BITS == limb_bits);

void put_word(char* at, std::int32_t word) noexcept { std::memcpy(at, &word, sizeof word); }

/// Writes a zero, an infinity or a NaN.
char* put_special(char* at, zelvanite::IEEE754Float const& value) noexcept {
    mpfr_srcptr const number = value.number();
    char* const       block = at;
    at += sizeof(std::int32_t);
    char* const text = at;
    bool const  is_nan = mpfr_nan_p(number) != 0;
    *at = '-';
    at += !is_nan && mpfr_signbit(number) != 0 ? 1 : 0;
    char const* const name = is_nan ? "NAN" : mpfr_inf_p(number) != 0 ? "INF" : "0X0P+0";
    std::size_t const size = std::strlen(name);
    std::memcpy(at, name, size);
    at += size;
    put_word(block, static_cast<std::int32_t>(at - text));
    put_word(at, static_cast<std::int32_t>(value.width));
    return at + sizeof(std::int32_t);
}

}  // namespace

char* put_integer(char* at, BigInteger const& value) noexcept {
    constexpr std::size_t most_limbs = 4;
    mpz_srcptr const      number = value.backend().data();
    std::size_t const     limbs = mpz_size(number);
    if (limbs > most_limbs) return nullptr;
    std::uint64_t const high = limbs == 0 ? 0 : number->_mp_d[limbs - 1];
    int const           high_digits = (limb_bits - std::countl_zero(high | 1) + 3) / 4;
    int const digits = high_digits + (limbs > 1 ? limb_digits * static_cast<int>(limbs - 1) : 0);

    // The length word counts two zeros, or the sign and one.
    put_word(at, digits + 2);
    at += sizeof(std::int32_t);
    *at = '-';
    at += number->_mp_size < 0 ? 1 : 0;
    Hexadecimal<'a'>::put(at, high << (limb_bits - 4 * high_digits));
    at += high_digits;
    for (std::size_t i = limbs; i-- > 1;) {
        Hexadecimal<'a'>::put(at, number->_mp_d[i - 1]);
        at += limb_digits;
    }
    at[0] = at[1] = '\0';
    return at + (number->_mp_size < 0 ? 1 : 2);
}

char* put_float(char* at, zelvanite::IEEE754Float const& value, char point) noexcept {
    mpfr_srcptr const number = value.number();
    auto const        format = zelvanite::IEEE754Float::Format::of(value.width);
    if (mpfr_regular_p(number) == 0) return put_special(at, value);
    if (mpfr_get_prec(number) > 2 * limb_bits || point == '\0') return nullptr;
    mpfr_exp_t const exponent = mpfr_get_exp(number);
    if (exponent < format.emin || exponent > format.emax) return nullptr;

    bool const          has_two = mpfr_get_prec(number) > limb_bits;
    std::uint64_t const high = number->_mpfr_d[has_two ? 1 : 0];
    std::uint64_t const low = has_two ? number->_mpfr_d[0] : 0;

    // The exponent is written as a multiple of 4; the first digit has one to four bits for that.
    auto const          first_bits = static_cast<int>((exponent - 1) & 3) + 1;
    std::uint64_t const rest_high = high << first_bits | low >> (limb_bits - first_bits);
    std::uint64_t const rest_low = low << first_bits;
    mpfr_exp_t const    written_exponent = exponent - first_bits;

    char* const block = at;
    at += sizeof(std::int32_t);
    char* const text = at;
    *at = '-';
    at += MPFR_SIGN(number) < 0 ? 1 : 0;
    *at++ = '0';
    *at++ = 'X';
    *at++ = "0123456789ABCDEF"[high >> (limb_bits - first_bits)];
    if ((rest_high | rest_low) != 0) {
        *at++ = point;
        Hexadecimal<'A'>::put(at, rest_high);
        if (rest_low == 0) {
            at += limb_digits - std::countr_zero(rest_high) / 4;
        } else {
            Hexadecimal<'A'>::put(at + limb_digits, rest_low);
            at += 2 * limb_digits - std::countr_zero(rest_low) / 4;
        }
    }
    *at++ = 'P';
    *at++ = written_exponent < 0 ? '-' : '+';
    auto const amount =
        static_cast<unsigned>(written_exponent < 0 ? -written_exponent : written_exponent);
    if (amount >= 10000) *at++ = static_cast<char>('0' + amount / 10000);
    if (amount >= 1000) *at++ = static_cast<char>('0' + amount / 1000 % 10);
    if (amount >= 100) *at++ = static_cast<char>('0' + amount / 100 % 10);
    if (amount >= 10) *at++ = static_cast<char>('0' + amount / 10 % 10);
    *at++ = static_cast<char>('0' + amount % 10);
    put_word(block, static_cast<std::int32_t>(at - text));
    put_word(at, static_cast<std::int32_t>(value.width));
    return at + sizeof(std::int32_t);
}

}  // namespace sml::core
