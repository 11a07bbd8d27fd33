#include "inspect/number_text.hpp"

#include "core/text_blocks.hpp"

#include <locale.h>
#include <stdlib.h>
#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace sml::inspect {

namespace {

using zelvanite::IEEE754Float;

/// The "C" locale for this thread, and MPFR's exponent range as it was, both until it goes.
class PlainNumbers {
public:
    PlainNumbers() : locale_(uselocale(plain())), emin_(mpfr_get_emin()), emax_(mpfr_get_emax()) {}
    PlainNumbers(PlainNumbers const&) = delete;
    PlainNumbers& operator=(PlainNumbers const&) = delete;
    ~PlainNumbers() {
        uselocale(locale_);
        mpfr_set_emin(emin_);
        mpfr_set_emax(emax_);
    }

    static locale_t plain() {
        static locale_t const locale = newlocale(LC_ALL_MASK, "C", nullptr);
        return locale;
    }

private:
    locale_t   locale_;
    mpfr_exp_t emin_;
    mpfr_exp_t emax_;
};

/// A block as the library's own parsers take it: with a zero byte behind it.
core::TextBlock terminated(std::string_view block) {
    core::TextBlock text = core::make_block(static_cast<std::int32_t>(block.size()));
    std::ranges::copy(block, text.get());
    return text;
}

/// Of each character the hexadecimal digit of one case, -1 for any other.
using Digits = std::array<signed char, 256>;

consteval Digits digits_with(char ten) {
    Digits digits;
    digits.fill(-1);
    for (int i = 0; i < 10; ++i)
        digits[static_cast<std::size_t>('0' + i)] = static_cast<signed char>(i);
    for (int i = 0; i < 6; ++i)
        digits[static_cast<std::size_t>(ten + i)] = static_cast<signed char>(10 + i);
    return digits;
}

constexpr Digits lower_digits = digits_with('a');
constexpr Digits upper_digits = digits_with('A');

int digit_of(char c, Digits const& digits) { return digits[static_cast<unsigned char>(c)]; }

/// Whether eight characters are hexadecimal digits in lower case.
bool are_lower_digits(char const* text) {
    constexpr std::uint64_t ones = 0x0101010101010101;
    std::uint64_t           bytes;
    std::memcpy(&bytes, text, sizeof bytes);
    // The high bit of a byte says that the byte is at least, or more than, a character.
    auto const at_least = [&](char c) { return bytes + ones * static_cast<unsigned>(0x80 - c); };
    auto const more_than = [&](char c) { return at_least(static_cast<char>(c + 1)); };
    std::uint64_t const digit = at_least('0') & ~more_than('9');
    std::uint64_t const letter = at_least('a') & ~more_than('f');
    return ((digit | letter) & ~bytes & ones * 0x80) == ones * 0x80 && (bytes & ones * 0x80) == 0;
}

/// Takes a prefix off `text`, if it is there.
bool take(std::string_view& text, std::string_view prefix) {
    if (!text.starts_with(prefix)) return false;
    text.remove_prefix(prefix.size());
    return true;
}

/// The exponent as the writer prints it: a sign always, no leading zero, a multiple of four.
std::optional<int> written_exponent(std::string_view text) {
    if (text.size() < 2 || text.size() > 6) return std::nullopt;
    bool const negative = text.front() == '-';
    if (!negative && text.front() != '+') return std::nullopt;
    text.remove_prefix(1);
    if (text.front() == '0' && (negative || text.size() > 1)) return std::nullopt;
    int exponent = 0;
    for (char const c : text) {
        if (c < '0' || c > '9') return std::nullopt;
        exponent = exponent * 10 + (c - '0');
    }
    if (exponent % 4 != 0) return std::nullopt;
    return negative ? -exponent : exponent;
}

/// Judges a finite non-zero float behind its "0X": one digit, a fraction without trailing zeros,
/// the exponent.
bool is_written_finite(std::string_view text, IEEE754Float::Format const& format) {
    std::size_t const mark = text.find('P');
    if (mark == std::string_view::npos || mark == 0) return false;
    auto const exponent = written_exponent(text.substr(mark + 1));
    int const  leading = digit_of(text.front(), upper_digits);
    if (!exponent || leading <= 0) return false;

    std::string_view fraction = text.substr(1, mark - 1);
    if (!fraction.empty() && (!take(fraction, ".") || fraction.empty())) return false;
    int last = leading;
    for (char const c : fraction)
        if ((last = digit_of(c, upper_digits)) < 0) return false;
    if (last == 0) return false;

    auto const leading_bits = static_cast<int>(std::bit_width(static_cast<unsigned>(leading)));
    auto const bits = leading_bits + 4 * static_cast<std::ptrdiff_t>(fraction.size()) -
                      std::countr_zero(static_cast<unsigned>(last));
    auto const mpfr_exponent = *exponent + leading_bits;  // of a mantissa in [1/2, 1)
    return bits <= format.mantissa_bits && mpfr_exponent >= format.emin &&
           mpfr_exponent <= format.emax;
}

}  // namespace

bool is_written_integer(std::string_view block) {
    char const* at = block.data();
    char const* end = at + block.size();
    bool const  negative = at != end && *at == '-';
    if (negative) ++at;
    if (end - at < (negative ? 2 : 3) || *--end != '\0') return false;
    if (!negative && *--end != '\0') return false;
    if (*at == '0' && (negative || end - at > 1)) return false;
    for (; end - at >= 8; at += 8)
        if (!are_lower_digits(at)) return false;
    int all = 0;  // negative where one is no digit
    for (; at != end; ++at) all |= digit_of(*at, lower_digits);
    return all >= 0;
}

std::string integer_of(std::string_view block) {
    BigInteger value;
    core::parse(terminated(block), value);
    std::string text = core::text_of(value);
    text.erase(text.find('\0'));
    return text;
}

std::string written_integer(std::string_view hexadecimal) {
    std::string block(hexadecimal);
    block.append(hexadecimal.starts_with('-') ? 1 : 2, '\0');
    return block;
}

bool is_float_width(std::int32_t width) {
    return width > 0 &&
           IEEE754Float::Format::of(static_cast<std::uint64_t>(width)).mantissa_bits != 0;
}

bool is_written_float(std::string_view block, std::int32_t width) {
    if (block == "NAN") return true;
    take(block, "-");
    if (block == "INF" || block == "0X0P+0") return true;
    return take(block, "0X") &&
           is_written_finite(block, IEEE754Float::Format::of(static_cast<std::uint64_t>(width)));
}

std::string float_of(std::string_view block, std::int32_t width) {
    PlainNumbers const plain;
    IEEE754Float       value;
    value.width = static_cast<std::uint64_t>(width);
    core::parse(terminated(block), value);
    core::FloatText const text(value);
    return std::string(text.data(), text.size());
}

std::optional<double> double_of(std::string_view block) {
    core::TextBlock const text = terminated(block);
    char*                 end = nullptr;
    int const             before = std::exchange(errno, 0);
    double const          value = strtod_l(text.get(), &end, PlainNumbers::plain());
    bool const            throws = end == text.get() || errno == ERANGE;
    errno = before;
    if (throws) return std::nullopt;
    return value;
}

std::string written_double(double value) {
    if (std::isnan(value)) return std::signbit(value) ? "-nan" : "nan";
    std::array<char, 328> text;
    auto const            end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, 6);
    return {text.data(), end.ptr};
}

}  // namespace sml::inspect
