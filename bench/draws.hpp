#pragma once
// Random draws that are the same on every machine. The standard fixes the output of the engines but
// not how its distributions use them, so these draws use no standard distribution.

#include <sml/core/big_integer.hpp>
#include <sml/core/ieee754_float.hpp>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <random>

namespace bench {

/// A seeded random source. Each draw advances it.
class Draws {
public:
    explicit Draws(std::uint64_t seed) : engine_(seed) {}

    std::uint64_t bits() { return engine_(); }

    /// A number from 0 to `bound` - 1.
    std::uint32_t below(std::uint32_t bound) {
        return static_cast<std::uint32_t>(((bits() >> 32) * bound) >> 32);
    }

    bool chance(std::uint32_t percent) { return below(100) < percent; }

    /// An index into `percents`, drawn with these weights, which must add up to 100.
    std::size_t among(std::initializer_list<std::uint32_t> percents);

    /// 45 % from 0 to 299, 30 % of 32 bits, 13 % exactly -2^31, 8 % of 64 bits, 4 % of 128 or 192
    /// bits.
    void integer(sml::BigInteger& value);

    /// A width in bits: 64, 32, 80 or 128, with 60, 34, 4 and 2 %.
    std::uint64_t width();

    /// Sets `value` to a number in the format of this width: short, with a full mantissa, the
    /// largest, or infinite.
    void real(zelvanite::IEEE754Float& value, std::uint64_t width);

private:
    void large_integer(sml::BigInteger& value);
    void full_mantissa(zelvanite::IEEE754Float& value, mpfr_prec_t size);

    std::mt19937_64 engine_;
    sml::BigInteger mantissa_;
};

}  // namespace bench
