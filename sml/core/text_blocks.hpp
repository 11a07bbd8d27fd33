#pragma once
// Numbers as text: the contents of the blocks of big integers, floats and doubles.

#include <sml/core/big_integer.hpp>
#include <sml/core/ieee754_float.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace sml::core {

/// The bytes of a block, followed by a zero byte; null for the length -1.
using TextBlock = std::unique_ptr<char[]>;

/// Allocates a block of zero bytes. Throws `std::bad_alloc`, also if the length is below -1.
TextBlock make_block(std::int32_t length);

/// The digits in base 16 and lower case, followed by two zero bytes, or one for a negative number.
std::string text_of(BigInteger const& value);

/// Decimal digits, six of them after the point, by the process's numeric locale.
std::string text_of(double value);

/// Parses base 16. If the text is no number, the value stays as it was.
void parse(TextBlock const& text, BigInteger& value);

/// Parses base 16 by the format of `value.width`, and sets MPFR's exponent range to that of the
/// format.
void parse(TextBlock const& text, zelvanite::IEEE754Float& value);

/// Returns the number that the text begins with. Throws `std::invalid_argument` if there is none,
/// `std::out_of_range`, and `std::logic_error` for a null block.
double double_of(TextBlock const& text);

/// A float as upper-case hexadecimal text, held on the stack. Sets MPFR's exponent range to that
/// of the float's format.
class FloatText {
public:
    explicit FloatText(zelvanite::IEEE754Float const& value);

    char const* data() const noexcept { return text_; }
    std::size_t size() const noexcept { return size_; }

private:
    // Only the low byte of the length is written.
    static constexpr std::size_t capacity = 256;

    char        text_[capacity];
    std::size_t size_;
};

}  // namespace sml::core
