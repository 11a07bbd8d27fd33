#pragma once
// Numbers as text: what a block on the wire holds for a big integer, a float and a double.

#include <sml/core/big_integer.hpp>
#include <sml/core/ieee754_float.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace sml::core {

/// Bytes of a block with one zero behind them; null for the length -1.
using TextBlock = std::unique_ptr<char[]>;

/// Room for a block, zeroed. Throws `std::bad_alloc` where the length is below -1.
TextBlock make_block(std::int32_t length);

/// Base 16 in lower case, followed by zero bytes: two, or one behind a negative number.
std::string text_of(BigInteger const& value);

/// Six digits behind the point, in the process's numeric locale.
std::string text_of(double value);

/// A text that is no number leaves the value as it was.
void parse(TextBlock const& text, BigInteger& value);

/// Parses by the format that `value.width` says, which also becomes MPFR's exponent range.
void parse(TextBlock const& text, zelvanite::IEEE754Float& value);

/// The number that the text begins with. Throws what `std::stod` throws, and `std::logic_error`
/// for a null block.
double double_of(TextBlock const& text);

/// A float as upper-case hexadecimal text, held on the stack. Sets MPFR's exponent range to that
/// of the float's format.
class FloatText {
public:
    explicit FloatText(zelvanite::IEEE754Float const& value);

    char const* data() const noexcept { return text_; }
    std::size_t size() const noexcept { return size_; }

private:
    // Only the low byte of a length goes out.
    static constexpr std::size_t capacity = 256;

    char        text_[capacity];
    std::size_t size_;
};

}  // namespace sml::core
