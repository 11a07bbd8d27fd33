#include <sml/core/ieee754_float.hpp>

namespace zelvanite {

IEEE754Float::IEEE754Float() : width(64) {
    Format const format = Format::of(width);
    set_range(format);
    mpfr_set_prec(number(), format.mantissa_bits);
    mpfr_set_zero(number(), 1);  // a new precision leaves NaN
}

IEEE754Float::IEEE754Float(IEEE754Float const& other) : width(other.width) {
    Format const format = Format::of(width);
    set_range(format);
    mpfr_set_prec(number(), format.mantissa_bits);
    mpfr_set4(number(), other.number(), MPFR_RNDN, MPFR_SIGN(other.number()));
}

bool IEEE754Float::operator<(IEEE754Float const& other) const {
    if (mpfr_nan_p(number()) != 0 || mpfr_nan_p(other.number()) != 0) return false;
    int const order = mpfr_cmp(number(), other.number());
    return order != 0 ? order < 0 : width < other.width;
}

}  // namespace zelvanite
