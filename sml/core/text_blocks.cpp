#include <sml/core/text_blocks.hpp>

#include <gmp.h>
// <cstdio> ahead of <mpfr.h> is what declares the printing functions.
#include <mpfr.h>

#include <cstdio>
#include <new>
#include <stdexcept>

namespace sml::core {

namespace {

constexpr int number_base = 16;

}  // namespace

TextBlock make_block(std::int32_t length) {
    if (length == -1) return nullptr;
    if (length < -1) throw std::bad_array_new_length();
    auto const size = static_cast<std::size_t>(static_cast<std::int64_t>(length) + 1);
    return std::make_unique<char[]>(size);
}

std::string text_of(BigInteger const& value) {
    mpz_srcptr const number = value.backend().data();
    auto const       digits = static_cast<std::int32_t>(mpz_sizeinbase(number, number_base));
    // Room for a sign and the terminator; the last byte is not part of the block.
    std::string text(static_cast<std::size_t>(digits) + 3, '\0');
    mpz_get_str(text.data(), number_base, number);
    text.pop_back();
    return text;
}

std::string text_of(double value) { return std::to_string(value); }

void parse(TextBlock const& text, BigInteger& value) {
    mpz_set_str(value.backend().data(), text.get(), number_base);
}

void parse(TextBlock const& text, zelvanite::IEEE754Float& value) {
    auto const format = zelvanite::IEEE754Float::Format::of(value.width);
    zelvanite::IEEE754Float::set_range(format);
    mpfr_set_prec(value.number(), format.mantissa_bits);
    mpfr_set_str(value.number(), text.get(), number_base, MPFR_RNDN);
}

// Required: the error of a null block has this text whatever the standard library's own says.
double double_of(TextBlock const& text) {
    if (text == nullptr) throw std::logic_error("basic_string::_M_construct null not valid");
    return std::stod(std::string(text.get()));
}

FloatText::FloatText(zelvanite::IEEE754Float const& value) {
    zelvanite::IEEE754Float::set_range(zelvanite::IEEE754Float::Format::of(value.width));
    int const length = mpfr_snprintf(text_, capacity, "%R*A", MPFR_RNDN, value.number());
    size_ = static_cast<std::size_t>(length) & 0xff;
}

}  // namespace sml::core
