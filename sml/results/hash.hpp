#pragma once
// Hashes that stand for texts and for several values together.

#include <compare>
#include <cstdint>
#include <initializer_list>
#include <string_view>

namespace sml::results {

/// 128 bits, so that two texts with one hash are not to be expected. The same in every process.
struct Hash {
    std::uint64_t high = 0;
    std::uint64_t low = 0;

    /// Whether it stands for nothing: a text that is not known.
    bool is_none() const { return high == 0 && low == 0; }

    auto operator<=>(Hash const&) const = default;

    /// The sum of hashes does not depend on their order.
    Hash& operator+=(Hash const& other) {
        high += other.high;
        low += other.low;
        return *this;
    }
};

/// Never none, also for an empty text.
Hash hash_of(std::string_view text);
Hash hash_of(std::uint64_t number);

/// The hash of a sequence.
Hash hash_of(std::initializer_list<Hash> parts);

}  // namespace sml::results
