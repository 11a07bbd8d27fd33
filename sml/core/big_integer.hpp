#pragma once
// Integers of any size.

#include <boost/multiprecision/gmp.hpp>

namespace sml {

/// Owns one `mpz_t`, reachable as `x.backend().data()`. A moved-from value may only be destroyed
/// or assigned.
using BigInteger =
    boost::multiprecision::number<boost::multiprecision::gmp_int, boost::multiprecision::et_off>;

}  // namespace sml
