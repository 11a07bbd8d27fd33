#include "inspect/hashing.hpp"

#include <cstring>
#include <random>

namespace sml::inspect {

std::uint64_t const hash_seed = [] {
    std::random_device device;
    return (std::uint64_t{device()} << 32) ^ device();
}();

namespace {

std::uint64_t word_at(char const* bytes, std::size_t size) {
    std::uint64_t word = 0;
    if (size > 0) std::memcpy(&word, bytes, size);
    return word;
}

}  // namespace

std::uint64_t seeded_hash(std::string_view text) {
    std::uint64_t state = text.size();
    for (; text.size() > 8; text.remove_prefix(8))
        state = seeded_hash(word_at(text.data(), 8), state);
    return seeded_hash(word_at(text.data(), text.size()), state);
}

}  // namespace sml::inspect
