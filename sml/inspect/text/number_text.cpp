#include <sml/inspect/text/number_text.hpp>

#include <sml/core/text_blocks.hpp>
#include <sml/inspect/text/characters.hpp>

#include <locale.h>
#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <memory>
#include <optional>

namespace sml::inspect {

namespace {

using zelvanite::IEEE754Float;

/// Sets the "C" locale for this thread. On destruction it restores the locale and MPFR's exponent
/// range.
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

/// A copy of a block with a zero byte after it, for the parsers of `sml/core`.
core::TextBlock terminated(std::string_view block) {
    core::TextBlock text = core::make_block(static_cast<std::int32_t>(block.size()));
    std::ranges::copy(block, text.get());
    return text;
}

/// The number of hexadecimal digits in upper case that sixteen characters start with.
std::size_t upper_digits_before_other(char const* text) {
    static_assert(std::endian::native == std::endian::little);
    auto const        others = words_of(~digits_among(text, 'A'));
    std::size_t const word = others[0] == 0 ? 1 : 0;
    return 8 * word + static_cast<std::size_t>(std::countr_zero(others[word])) / 8;
}

/// The value of a hexadecimal digit in upper case; -1 for any other character.
int upper_digit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

/// Parses an exponent as the writer prints it: always with a sign, without leading zeros, a
/// multiple of four. None for other texts.
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

using Format = IEEE754Float::Format;

/// The float formats by width in bytes; other widths have no mantissa bits. A table, since the
/// branch of a switch can't be predicted.
constexpr std::array<Format, 17> formats = [] {
    std::array<Format, 17> result{};
    for (std::size_t bytes = 0; bytes < result.size(); ++bytes)
        result[bytes] = Format::of(8 * bytes);
    return result;
}();

/// Whether the text after "0X" is a float other than zero as the writer prints it: one digit, a
/// fraction without trailing zeros, and the exponent. Sixteen characters after the text must be
/// readable.
bool is_written_finite(std::string_view text, Format const& format, char point) {
    if (text.size() < 2) return false;
    char const*       at = text.data();
    char const* const end = at + text.size();
    int const         leading = upper_digit(*at++);
    std::ptrdiff_t    digits = 0;  // of the fraction
    if (*at == point) {
        char const* const fraction = ++at;
        std::size_t       more;
        do {
            more = upper_digits_before_other(at);
            at += more;
        } while (more == at_once && at < end);
        digits = at - fraction;
        if (digits == 0) return false;
    }
    if (leading <= 0 || at >= end || *at != 'P') return false;
    int const last = upper_digit(digits == 0 ? text.front() : at[-1]);
    if (last == 0) return false;
    auto const exponent = written_exponent({at + 1, static_cast<std::size_t>(end - at - 1)});
    if (!exponent) return false;

    auto const leading_bits = static_cast<int>(std::bit_width(static_cast<unsigned>(leading)));
    auto const bits = leading_bits + 4 * digits - std::countr_zero(static_cast<unsigned>(last));
    auto const mpfr_exponent = *exponent + leading_bits;  // of a mantissa in [1/2, 1)
    return bits <= format.mantissa_bits && mpfr_exponent >= format.emin &&
           mpfr_exponent <= format.emax;
}

}  // namespace

bool are_digits(std::string_view text) {
    if (text.size() <= at_once) {
        std::array<char, at_once> copy{};
        std::memcpy(copy.data(), text.data(), text.size());
        return are_lower_digits(copy.data(), text.size());
    }
    char const*       at = text.data();
    char const* const last = at + text.size() - at_once;
    for (; at < last; at += at_once)
        if (!are_lower_digits(at, at_once)) return false;
    return are_lower_digits(last, at_once);
}

namespace {

/// The text that the parser reads: without leading blanks, up to the first zero byte.
std::string_view parsed_text(std::string_view block) {
    block = block.substr(0, block.find('\0'));
    return {std::ranges::find_if_not(block, is_blank), block.end()};
}

}  // namespace

bool is_integer(std::string_view block) {
    std::string_view text = parsed_text(block);
    if (text.starts_with('-')) text.remove_prefix(1);
    auto const is_part = [](char c) { return is_hexadecimal(c) || is_blank(c); };
    return !text.empty() && !is_blank(text.front()) && std::ranges::all_of(text, is_part);
}

std::string integer_of(std::string_view block) {
    auto const        is_left_out = [](char c) { return c == '0' || is_blank(c); };
    std::string_view  text = parsed_text(block);
    std::string const sign = text.starts_with('-') ? "-" : "";
    text.remove_prefix(sign.size());
    text = {std::ranges::find_if_not(text, is_left_out), text.end()};
    if (text.empty() || !is_integer(block)) return "0";
    std::string digits = sign;
    digits.reserve(sign.size() + text.size());
    for (char const c : text)
        if (!is_blank(c)) digits += static_cast<char>(c >= 'A' && c <= 'F' ? c | 0x20 : c);
    return digits;
}

bool is_float_width(std::int32_t width) {
    auto const bytes = static_cast<std::uint32_t>(width) / 8;
    return width % 8 == 0 && bytes < formats.size() && formats[bytes].mantissa_bits != 0;
}

bool is_written_float(std::string_view block, std::int32_t width, std::size_t readable,
                      char point) {
    if (readable < block.size() + at_once) [[unlikely]] {
        std::string padded(block);
        padded.append(at_once, '\0');
        return is_written_float({padded.data(), block.size()}, width, padded.size(), point);
    }
    std::string_view const unsigned_text = block.substr(block.starts_with('-') ? 1 : 0);
    if (unsigned_text.size() < 2 || unsigned_text[0] != '0' || unsigned_text[1] != 'X')
        return unsigned_text == "INF" || block == "NAN";
    std::string_view const text = unsigned_text.substr(2);
    return is_written_finite(text, formats[static_cast<std::uint32_t>(width) / 8], point) ||
           text == "0P+0";
}

std::string with_dot(std::string_view block, char point) {
    std::string text(block);
    // MPFR accepts a dot, too. The first of the two characters is the decimal point.
    char const        points[] = {point, '.'};
    std::size_t const at = text.find_first_of(points, 0, sizeof points);
    if (at != text.npos) text[at] = '.';
    return text;
}

std::string float_of(std::string_view block, std::int32_t width, char point) {
    if (point != '.') return float_of(with_dot(block, point), width);
    PlainNumbers const plain;
    IEEE754Float       value;
    value.width = static_cast<std::uint64_t>(width);
    core::parse(terminated(block), value);
    core::FloatText const text(value);
    return std::string(text.data(), text.size());
}

}  // namespace sml::inspect
