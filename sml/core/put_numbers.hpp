#pragma once
// Big integers and floats as text, straight from their limbs. What is not told here goes the plain
// way of `sml/core/text_blocks.hpp`, which gives the same bytes.

#include <sml/core/big_integer.hpp>
#include <sml/core/ieee754_float.hpp>

namespace sml::core {

/// The most bytes that either function writes, or overwrites behind what it writes.
constexpr std::size_t longest_number = 128;

/// Writes the block of an integer of few limbs; gives where the next byte goes, null for a larger
/// one.
char* put_integer(char* at, BigInteger const& value) noexcept;

/// Writes the block of a float, with this decimal point; gives where the next byte goes. Null for a
/// number beyond what the widest format has and for the point 0, except where zeros, infinities and
/// NaN, which need neither, are concerned.
char* put_float(char* at, zelvanite::IEEE754Float const& value, char point) noexcept;

}  // namespace sml::core
