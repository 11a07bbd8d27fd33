#pragma once
// Random draws that come out alike on every machine: the standard library fixes its engines, but
// leaves open how its distributions use them.

#include <sml/core/big_integer.hpp>
#include <sml/core/ieee754_float.hpp>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <random>

namespace bench {

/// A seeded source of numbers. Each draw moves it on.
class Draws {
public:
    explicit Draws(std::uint64_t seed) : engine_(seed) {}

    std::uint64_t bits() { return engine_(); }

    /// From 0 to `bound` - 1.
    std::uint32_t below(std::uint32_t bound) {
        return static_cast<std::uint32_t>(((bits() >> 32) * bound) >> 32);
    }

    bool chance(std::uint32_t percent) { return below(100) < percent; }

    /// An index into weights that add up to 100.
    std::size_t among(std::initializer_list<std::uint32_t> percents);

    /// 45 % from 0 to 299, 30 % of 32 bits, 13 % -2^31, 8 % of 64 bits, 4 % of 128 or 192 bits.
    void integer(sml::BigInteger& value);

    /// 64, 32, 80 and 128 at 60, 34, 4 and 2 %.
    std::uint64_t width();

    /// A number of the format of this width: short, of full mantissa, the largest or infinite.
    void real(zelvanite::IEEE754Float& value, std::uint64_t width);

private:
    void large_integer(sml::BigInteger& value);
    void full_mantissa(zelvanite::IEEE754Float& value, mpfr_prec_t size);

    std::mt19937_64 engine_;
    sml::BigInteger mantissa_;
};

}  // namespace bench
