#pragma once
// Hashes with a random seed, so that no bytes can be made whose hashes collide.

#include <cstdint>
#include <string_view>

namespace sml::inspect {

/// The seed: a random number, chosen anew in each process.
[[gnu::visibility("hidden")]] extern std::uint64_t const hash_seed;

inline std::uint64_t seeded_hash(std::uint64_t word, std::uint64_t state) {
    __extension__ using Product = unsigned __int128;
    constexpr std::uint64_t odd = 0x9e3779b97f4a7c15;
    // Both halves of the full product, folded.
    Product const product =
        static_cast<Product>(word ^ hash_seed) * (state ^ odd ^ (hash_seed << 1 | 1));
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}
std::uint64_t seeded_hash(std::string_view text);

/// A hash functor for the standard library's containers.
struct SeededHash {
    std::size_t operator()(std::uint64_t word) const { return seeded_hash(word, 0); }
    std::size_t operator()(std::string_view text) const { return seeded_hash(text); }
};

}  // namespace sml::inspect
