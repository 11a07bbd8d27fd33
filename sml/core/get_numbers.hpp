#pragma once
// Parsing big integers and floats straight into their limbs, for texts as a writer spells them. All
// other texts are left to the slower functions of `sml/core/text_blocks.hpp`.

#include <sml/core/big_integer.hpp>
#include <sml/core/ieee754_float.hpp>

#include <cstddef>

namespace sml::core {

/// Parses the `size` bytes of a block, with their length before them, into `value`. Returns false,
/// and changes nothing, if the text has more than 64 digits or is not spelled as a writer spells
/// it. Throws nothing; the number library ends the process if it gets no memory.
bool take_integer(char const* block, std::size_t size, BigInteger& value);

/// Parses the `size` bytes of a block, with their length before them, into `value`, by the format
/// of `value.width`, and sets MPFR's exponent range to that of the format. `point` is the decimal
/// point of the process. Returns false, and changes nothing, if the text is not spelled as a writer
/// in the "C" locale spells it, if the number would have to be rounded, or if the text has a dot
/// that is not the process's decimal point.
bool take_float(char const* block, std::size_t size, zelvanite::IEEE754Float& value, char point);

}  // namespace sml::core
