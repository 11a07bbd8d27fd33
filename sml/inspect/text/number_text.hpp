#pragma once
// The texts of integers and floats in the wire form, read independently of the process's locale,
// and without a lasting change of MPFR's exponent range.

#include <sml/inspect/text/characters.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace sml::inspect {

/// Whether a text consists of hexadecimal digits in lower case.
bool are_digits(std::string_view text);

/// Whether a block is exactly what the writer prints for the integer that is read from it.
/// `readable` is the number of bytes that can be read from the start of the block on, which is at
/// least its size; from 17 on, this is faster.
inline bool is_written_integer(std::string_view block, std::size_t readable) {
    if (block.size() < 3) return false;
    // No branch depends on the sign, which can't be predicted. A sign replaces one of the two zero
    // bytes at the end.
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

/// The number of zero bytes after an integer's digits.
inline std::size_t zeros_behind(std::string_view hexadecimal) {
    return hexadecimal.starts_with('-') ? 1 : 2;
}

/// The block of an integer, spelled as a writer spells it, without its zero bytes.
inline std::string_view written_digits(std::string_view block) {
    return block.substr(0, block.size() - zeros_behind(block));
}

/// Whether a reader reads a number from a block; if not, it leaves the object as it was. A number
/// is hexadecimal digits up to the first zero byte, with blanks anywhere except directly after the
/// sign.
bool is_integer(std::string_view block);

/// The integer that a reader reads from a block into a new object, as the writer prints it but
/// without the zero bytes; 0 if the block is no number. Allocates memory for its digits.
std::string integer_of(std::string_view block);

/// Whether there is a float format of this width in bits.
bool is_float_width(std::int32_t width);

/// The decimal point of floats in a process whose locale has this one. MPFR uses a single character
/// only; instead of others it uses a dot.
inline char float_point(std::string_view point) { return point.size() == 1 ? point.front() : '.'; }

/// Whether a block is exactly what the writer prints, with this decimal point, for the float that
/// is read from it. The width must be one of the seven. `readable` is the number of bytes that can
/// be read from the start of the block on, which is at least its size; with 16 more, this is
/// faster.
bool        is_written_float(std::string_view block, std::int32_t width, std::size_t readable,
                             char point = '.');
inline bool is_written_float(std::string_view block, std::int32_t width) {
    return is_written_float(block, width, block.size());
}

/// The block of a float with a dot instead of this decimal point.
std::string with_dot(std::string_view block, char point);

/// The float that a process with this decimal point reads from a block, as the writer prints it
/// with a dot. The number library allocates twice the size of the block.
std::string float_of(std::string_view block, std::int32_t width, char point = '.');

}  // namespace sml::inspect
