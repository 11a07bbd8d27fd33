#include <sml/inspect/text/double_text.hpp>

#include <sml/inspect/text/characters.hpp>

#include <locale.h>
#include <stdlib.h>
#include <algorithm>
#include <array>
#include <cerrno>
#include <cfenv>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>

namespace sml::inspect {

namespace {

/// Sets the rounding mode to the nearest, until it is destroyed.
class NearestRounding {
public:
    NearestRounding() : before_(std::fegetround()) {
        if (before_ != FE_TONEAREST) std::fesetround(FE_TONEAREST);
    }
    NearestRounding(NearestRounding const&) = delete;
    NearestRounding& operator=(NearestRounding const&) = delete;
    ~NearestRounding() {
        if (std::fegetround() != before_) std::fesetround(before_);
    }

private:
    int before_;
};

/// The number that a text starts with, in the spelling of the "C" locale. Of long numbers the first
/// `most_digits` digits are kept, and whether any digit after them is not zero.
class Numeral {
public:
    /// `text` starts with a digit.
    Numeral(std::string_view text, std::string_view point) {
        is_hexadecimal_ = starts_hexadecimal(text, point);
        at_ = text.substr(is_hexadecimal_ ? 2 : 0);
        take_digits(1, 0);
        if (!point.empty() && at_.starts_with(point)) {
            at_.remove_prefix(point.size());
            take_digits(0, -1);
        }
        take_exponent();
    }

    std::string spelling() const {
        std::string  digits = digits_.empty() ? "0" : digits_;
        std::int64_t scale = scale_;
        if (is_cut_) {
            digits += '1';
            --scale;
        }
        std::int64_t const exponent = exponent_ + (is_hexadecimal_ ? 4 : 1) * scale;
        return (is_hexadecimal_ ? "0x" : "") + digits + (is_hexadecimal_ ? 'p' : 'e') +
               std::to_string(exponent);
    }

private:
    // More than any double, or any number half-way between two doubles, has.
    static constexpr std::size_t most_digits = 800;

    // Out of the range of doubles, however many digits there are.
    static constexpr std::int64_t most_exponent = std::int64_t{1} << 50;

    static bool starts_hexadecimal(std::string_view text, std::string_view point) {
        if (!text.starts_with("0x") && !text.starts_with("0X")) return false;
        text.remove_prefix(2);
        if (!point.empty() && text.starts_with(point)) text.remove_prefix(point.size());
        return !text.empty() && is_hexadecimal(text.front());
    }

    /// Takes digits. `left_out` is what a digit adds to the scale if it is left out, `kept` if it
    /// is kept.
    void take_digits(int left_out, int kept) {
        auto const is_one = [this](char c) {
            return is_hexadecimal_ ? is_hexadecimal(c) : is_digit(c);
        };
        for (; !at_.empty() && is_one(at_.front()); at_.remove_prefix(1)) {
            char const digit = at_.front();
            if (digits_.size() == most_digits) {
                is_cut_ = is_cut_ || digit != '0';
                scale_ += left_out;
                continue;
            }
            if (!digits_.empty() || digit != '0') digits_ += digit;
            scale_ += kept;
        }
    }

    void take_exponent() {
        char const letter = is_hexadecimal_ ? 'p' : 'e';
        if (at_.empty() || (at_.front() | 0x20) != letter) return;
        at_.remove_prefix(1);
        bool const is_negative = at_.starts_with('-');
        if (is_negative || at_.starts_with('+')) at_.remove_prefix(1);
        for (; !at_.empty() && is_digit(at_.front()); at_.remove_prefix(1))
            exponent_ = std::min(10 * exponent_ + (at_.front() - '0'), most_exponent);
        if (is_negative) exponent_ = -exponent_;
    }

    std::string_view at_;
    bool             is_hexadecimal_;
    std::string      digits_;          // from the first that is not zero on
    bool             is_cut_ = false;  // digits other than zero were left out
    std::int64_t     scale_ = 0;       // power of the base
    std::int64_t     exponent_ = 0;    // power of 10, or of 2 in base 16
};

/// Parses a text as in the "C" locale, in the rounding mode of the process; none if it is out of
/// range.
std::optional<double> parse(std::string const& text) {
    static locale_t const plain = newlocale(LC_ALL_MASK, "C", nullptr);
    int const             before = std::exchange(errno, 0);
    double const          value = strtod_l(text.c_str(), nullptr, plain);
    bool const            is_out_of_range = errno == ERANGE;
    errno = before;
    if (is_out_of_range) return std::nullopt;
    return value;
}

/// The number, rounded to the nearest; none if it is out of range in any rounding mode.
std::optional<double> value_of(Numeral const& numeral) {
    NearestRounding const nearest;
    std::string const     text = numeral.spelling();
    auto const            value = parse(text);
    if (!value || *value == 0) return value;
    constexpr double least = 2 * std::numeric_limits<double>::min();
    constexpr double most = std::numeric_limits<double>::max();
    if (*value > least && *value < most) return value;
    for (int const mode : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
        std::fesetround(mode);
        if (!parse(text)) return std::nullopt;
    }
    return value;
}

/// What could be the decimal point of some process: all characters after the leading digits, up to
/// a letter or digit. No locale's decimal point contains a letter or digit.
std::string_view possible_point(std::string_view text) {
    bool const        is_hex = text.starts_with("0x") || text.starts_with("0X");
    std::size_t const start =
        is_hex ? std::min(text.find_first_not_of("0123456789abcdefABCDEF", 2), text.size())
               : std::min(text.find_first_not_of("0123456789"), text.size());
    std::size_t end = start;
    while (end < text.size() && !is_digit(text[end]) && !is_letter(text[end])) ++end;
    return text.substr(start, end - start);
}

/// Infinity or NaN, if a text starts with its name.
std::optional<double> named_value(std::string_view text) {
    auto const starts_with = [text](std::string_view name) {
        auto const lower = [](char c) { return is_letter(c) ? static_cast<char>(c | 0x20) : c; };
        return text.size() >= name.size() &&
               std::ranges::equal(text.substr(0, name.size()), name, {}, lower);
    };
    if (starts_with("inf")) return std::numeric_limits<double>::infinity();
    if (starts_with("nan")) return std::numeric_limits<double>::quiet_NaN();
    return std::nullopt;
}

/// The text that the parser reads: without leading blanks, up to the first zero byte.
std::string_view without_blanks(std::string_view block) {
    block = block.substr(0, block.find('\0'));
    return {std::ranges::find_if_not(block, is_blank), block.end()};
}

constexpr std::size_t digits_behind_point = 6;
constexpr std::size_t most_plain_digits = 9;

/// How many digits there are before the point, if the text is a number as a writer prints it with
/// at most nine of them; else 0.
std::size_t plain_digits(std::string_view text, std::string_view point) {
    if (text.size() <= digits_behind_point + point.size()) return 0;
    std::size_t const count = text.size() - digits_behind_point - point.size();
    bool const is_plain = count <= most_plain_digits && text.substr(count).starts_with(point) &&
                          (text.front() != '0' || count == 1);
    if (!is_plain) return 0;
    bool const are_digits = std::ranges::all_of(text.substr(0, count), is_digit) &&
                            std::ranges::all_of(text.substr(count + point.size()), is_digit);
    return are_digits ? count : 0;
}

/// There are at most fifteen digits, so the quotient is the nearest double, and is printed as these
/// digits.
double plain_value(std::string_view text, std::size_t count, std::size_t point_size) {
    std::int64_t digits = 0;
    for (char const c : text.substr(0, count)) digits = 10 * digits + (c - '0');
    for (char const c : text.substr(count + point_size)) digits = 10 * digits + (c - '0');
    NearestRounding const nearest;
    // Volatile, so that the compiler does not move the division out of the scope of the rounding
    // mode.
    double volatile const numerator = static_cast<double>(digits);
    double volatile const quotient = numerator / 1e6;
    return quotient;
}

}  // namespace

bool is_plainly_written_double(std::string_view block, std::string_view point) {
    return plain_digits(block.substr(block.starts_with('-') ? 1 : 0), point) > 0;
}

std::optional<double> double_of(std::string_view block, std::string_view point) {
    std::string_view text = without_blanks(block);
    bool const       is_negative = text.starts_with('-');
    if (is_negative || text.starts_with('+')) text.remove_prefix(1);
    auto const with_sign = [is_negative](double value) { return is_negative ? -value : value; };
    if (std::size_t const count = plain_digits(text, point); count > 0)
        return with_sign(plain_value(text, count, point.size()));
    if (auto const value = named_value(text)) return with_sign(*value);
    // A text that starts with a decimal point is no number in a process with another one.
    if (text.empty() || !is_digit(text.front())) return std::nullopt;

    std::string_view const possible = possible_point(text);
    auto const             without_point = value_of({text, {}});
    if (!without_point) return std::nullopt;
    if (possible.empty()) return with_sign(*without_point);
    auto const with_point = value_of({text, possible});
    if (!with_point) return std::nullopt;
    return with_sign(possible == point ? *with_point : *without_point);
}

std::optional<double> nearest_double(std::string_view number) {
    NearestRounding const nearest;
    double                value = 0;
    auto const parsed = std::from_chars(number.data(), number.data() + number.size(), value);
    if (parsed.ec != std::errc()) return std::nullopt;
    return value;
}

double nearest_to_float(std::string_view text) {
    if (text == "NAN") return std::numeric_limits<double>::quiet_NaN();
    bool const is_negative = text.starts_with('-');
    if (is_negative) text.remove_prefix(1);
    double number = std::numeric_limits<double>::infinity();
    if (text != "INF") {
        text.remove_prefix(std::string_view("0X").size());
        // The C library rounds some of the smallest numbers wrongly, this parser does not.
        auto const [end, error] =
            std::from_chars(text.data(), text.data() + text.size(), number, std::chars_format::hex);
        bool const is_small = text.find("P-") != std::string_view::npos;
        if (error == std::errc::result_out_of_range)
            number = is_small ? 0 : std::numeric_limits<double>::infinity();
    }
    return is_negative ? -number : number;
}

std::string written_double(double value, std::string_view point) {
    if (std::isnan(value)) return std::signbit(value) ? "-nan" : "nan";
    std::array<char, 328> digits;
    auto const            end = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                              std::chars_format::fixed, digits_behind_point);
    std::string           text(digits.data(), end.ptr);
    if (point != plain_point && std::isfinite(value))
        text.replace(text.size() - digits_behind_point - 1, 1, point);
    return text;
}

std::optional<std::string_view> other_point_of(std::string_view block, std::string_view point) {
    std::string_view const possible = possible_point(block.substr(block.starts_with('-') ? 1 : 0));
    if (possible.empty() || possible == point) return std::nullopt;
    auto const value = double_of(block, possible);
    if (!value || written_double(*value, possible) != block) return std::nullopt;
    return possible;
}

}  // namespace sml::inspect
