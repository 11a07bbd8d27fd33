#pragma once
// Integers of any size.

#include <sml/core/hash.hpp>

#include <boost/multiprecision/gmp.hpp>

#include <cstddef>
#include <cstdint>

namespace sml {

/// Owns one `mpz_t`, reachable as `x.backend().data()`. A moved-from value may only be destroyed
/// or assigned.
using BigInteger =
    boost::multiprecision::number<boost::multiprecision::gmp_int, boost::multiprecision::et_off>;

/// Combines the limbs, the least significant one first, and then the sign.
template <>
struct Hash<BigInteger> {
    std::size_t operator()(BigInteger const& key) const {
        mpz_srcptr const number = key.backend().data();
        std::uint64_t    seed = 0;
        for (std::size_t i = 0; i < mpz_size(number); ++i)
            seed = core::combine(seed, mpz_getlimbn(number, static_cast<mp_size_t>(i)));
        return core::combine(seed, core::hash_word(mpz_sgn(number)));
    }
};

}  // namespace sml
