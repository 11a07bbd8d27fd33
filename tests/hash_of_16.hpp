#pragma once
// Texts that collide in hash tables.

#include <cstdint>

/// The hash of a text of 16 bytes, and its inverse: finds the second half of a text with a given
/// hash.
class HashOf16 {
public:
    static std::uint64_t behind(std::uint64_t first_half) {
        std::uint64_t const state = seed ^ (16 * factor);
        return (state ^ mixed(first_half)) * factor;
    }
    /// Returns the second 8 bytes that bring the state of the hash after `first_half` to `wanted`,
    /// before it is finished.
    static std::uint64_t second_half(std::uint64_t first_half, std::uint64_t wanted) {
        return folded((behind(first_half) ^ wanted) * inverse) * inverse;
    }
    /// The state from which the last steps make this hash.
    static std::uint64_t unfinished(std::uint64_t hash) {
        return folded(folded(hash) * inverse) * inverse;
    }

private:
    static constexpr std::uint64_t seed = 0xc70f6907;
    static constexpr std::uint64_t factor = 0xc6a4a7935bd1e995;
    static constexpr std::uint64_t inverse = 0x5f7a0ea7e59b19bd;  // modulo 2^64
    static_assert(factor * inverse == 1);

    static std::uint64_t folded(std::uint64_t word) { return word ^ (word >> 47); }
    static std::uint64_t mixed(std::uint64_t word) { return folded(word * factor) * factor; }
};
