#pragma once
// Floats of the analysed program's formats, at the exact range and mantissa size of each.

#include <sml/core/export.hpp>

#include <boost/multiprecision/mpfr.hpp>

#include <cstdint>

namespace zelvanite {

/// A float and the total width in bits of its format.
///
/// Every construction, copy and assignment sets MPFR's process-wide exponent range to that of the
/// format and does not restore it. A width other than 16, 32, 40, 48, 64, 80 and 128 has an empty
/// range and a mantissa of 0 bits. Nothing here checks for it; what MPFR makes of it is left as it
/// is.
struct IEEE754Float {
    /// The least and greatest exponent of a format, as MPFR has them, and its mantissa size.
    struct Format {
        mpfr_exp_t  emin;
        mpfr_exp_t  emax;
        mpfr_prec_t mantissa_bits;

        static constexpr Format of(std::uint64_t width) noexcept {
            switch (width) {
                case 16: return {-23, 16, 11};
                case 32: return {-148, 128, 24};
                case 40: return {-156, 128, 32};
                case 48: return {-164, 128, 40};
                case 64: return {-1073, 1024, 53};
                case 80: return {-16444, 16384, 64};
                case 128: return {-16493, 16384, 113};
                default: return {2, 1, 0};
            }
        }
    };

    using Number = boost::multiprecision::number<boost::multiprecision::mpfr_float_backend<0>,
                                                 boost::multiprecision::et_off>;

    Number        value;
    std::uint64_t width;

    /// The number 0 in the 64-bit format.
    SML_API IEEE754Float();

    /// Copies, and rounds to the mantissa size of the format, whatever that of `other` is.
    SML_API IEEE754Float(IEEE754Float const& other);

    // Copies, with the mantissa size that `other` has. A move of the wrapper would leave `other`
    // in a state in which it may only be destroyed or assigned to.
    IEEE754Float(IEEE754Float&& other) : width(other.width) { take(other); }

    /// Copies, with the mantissa size that `other` has.
    IEEE754Float& operator=(IEEE754Float const& other) {
        width = other.width;
        take(other);
        return *this;
    }

    ~IEEE754Float() = default;

    mpfr_ptr    number() noexcept { return value.backend().data(); }
    mpfr_srcptr number() const noexcept { return value.backend().data(); }

    /// Makes `format`'s exponent range the process-wide one.
    static void set_range(Format const& format) noexcept {
        mpfr_set_emin(format.emin);
        mpfr_set_emax(format.emax);
    }

    /// Compares the numbers; if they are equal, the widths. A NaN is neither less nor greater.
    SML_API bool operator<(IEEE754Float const& other) const;

    /// Whether number and width are equal; a NaN is unequal to everything, even to itself.
    bool operator==(IEEE754Float const& other) const noexcept {
        return mpfr_equal_p(number(), other.number()) != 0 && width == other.width;
    }

private:
    void take(IEEE754Float const& other) {
        set_range(Format::of(other.width));
        if (this == &other) return;
        mpfr_set_prec(number(), mpfr_get_prec(other.number()));
        mpfr_set4(number(), other.number(), MPFR_RNDN, MPFR_SIGN(other.number()));
    }
};

}  // namespace zelvanite
