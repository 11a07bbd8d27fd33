#pragma once
// Big integers and floats from text, straight into their limbs, where the text is one that a writer
// makes. What is not told here goes the plain way of `sml/core/text_blocks.hpp`.

#include <sml/core/big_integer.hpp>
#include <sml/core/ieee754_float.hpp>

#include <cstddef>

namespace sml::core {

/// Reads the bytes of a block; false, with nothing done, for a text of many digits or one that is
/// not as it is written.
bool take_integer(char const* block, std::size_t size, BigInteger& value);

/// Reads the bytes of a block by the format that `value.width` says and makes that format's the
/// exponent range; false, with nothing done, for a text that is not as it is written with a dot for
/// the point, one that would have to be rounded, and one with a point where `point` is no dot.
bool take_float(char const* block, std::size_t size, zelvanite::IEEE754Float& value, char point);

}  // namespace sml::core
