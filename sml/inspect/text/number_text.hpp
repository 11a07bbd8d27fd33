#pragma once
// Integers and floats as they stand on the wire, judged without the process's locale and without
// leaving a trace in MPFR's exponent range.

#include <sml/inspect/text/characters.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace sml::inspect {

/// Whether all of a text is hexadecimal digits in lower case.
bool are_digits(std::string_view text);

/// Whether a block is exactly what the writer prints for the integer that is read from it. Faster
/// where so many bytes from its start on can be read, as there may be more behind it.
inline bool is_written_integer(std::string_view block, std::size_t readable) {
    if (block.size() < 3) return false;
    // The sign, which no one foresees, decides nothing by a branch. It takes the place of one of
    // the two zero bytes.
    std::size_t const sign = block.front() == '-' ? 1 : 0;
    char const* const text = block.data() + sign;
    std::size_t const digits = block.size() - 2;
    unsigned const    end = static_cast<unsigned char>(block.back());
    unsigned const    before_end = static_cast<unsigned char>(block[digits]);
    bool const        ends = (end | (before_end & (static_cast<unsigned>(sign) - 1))) == 0;
    bool const        leads = (*text != '0') | (digits + sign == 1);
    if (!(ends & leads)) return false;
    if (digits <= at_once && readable > at_once) [[likely]]
        return are_lower_digits(text, digits);
    return are_digits({text, digits});
}
inline bool is_written_integer(std::string_view block) {
    return is_written_integer(block, block.size());
}

/// How many zero bytes stand behind an integer's digits.
inline std::size_t zeros_behind(std::string_view hexadecimal) {
    return hexadecimal.starts_with('-') ? 1 : 2;
}

/// Such a block without its zero bytes.
inline std::string_view written_digits(std::string_view block) {
    return block.substr(0, block.size() - zeros_behind(block));
}

/// Whether a reader takes a number from this block; else what it reads over stays as it was. That
/// is digits up to the first zero byte, with white space anywhere but behind the sign.
bool is_integer(std::string_view block);

/// The integer that a reader has after this block, as the writer prints it but without the zero
/// bytes; 0 where the block is no number. Takes memory for its digits.
std::string integer_of(std::string_view block);

/// Whether a float format has this width.
bool is_float_width(std::int32_t width);

/// The decimal point of floats in a process with this one: only a single character is used.
inline char float_point(std::string_view point) { return point.size() == 1 ? point.front() : '.'; }

/// Whether a block is exactly what the writer prints, with this decimal point, for the float that
/// is read from it. The width is one of the seven. Faster where so many bytes from its start on can
/// be read.
bool        is_written_float(std::string_view block, std::int32_t width, std::size_t readable,
                             char point = '.');
inline bool is_written_float(std::string_view block, std::int32_t width) {
    return is_written_float(block, width, block.size());
}

/// A float's block with a dot for the decimal point.
std::string with_dot(std::string_view block, char point);

/// The float that a process with this decimal point reads from a block, as the writer prints it
/// with a dot. The number library takes twice the memory of the block.
std::string float_of(std::string_view block, std::int32_t width, char point = '.');

}  // namespace sml::inspect
