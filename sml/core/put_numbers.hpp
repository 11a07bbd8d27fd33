#pragma once
// Writing big integers and floats as text straight from their limbs. Numbers that are not supported
// here are left to the slower functions of `sml/core/text_blocks.hpp`, which give the same bytes.

#include <sml/core/big_integer.hpp>
#include <sml/core/ieee754_float.hpp>

namespace sml::core {

/// How many bytes must be free at `at`: the most that either function writes or overwrites.
constexpr std::size_t longest_number = 128;

/// Writes the block of an integer at `at` and returns where the next byte goes. Returns null if the
/// integer has more than four limbs.
char* put_integer(char* at, BigInteger const& value) noexcept;

/// Writes the block and the width of a float at `at`, with `point` for the decimal point, and
/// returns where the next byte goes. Zeros, infinities and NaN are always written. For other
/// numbers it returns null if `point` is 0, if the mantissa has more than two limbs, or if the
/// exponent is not in the format's range.
char* put_float(char* at, zelvanite::IEEE754Float const& value, char point) noexcept;

}  // namespace sml::core
