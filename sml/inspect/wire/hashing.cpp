#include <sml/inspect/wire/hashing.hpp>

#include <chrono>
#include <cstring>
#include <exception>
#include <random>

namespace sml::inspect {

// Without a source of random numbers, the seed is made of the time and an address.
std::uint64_t const hash_seed = []() -> std::uint64_t {
    try {
        std::random_device device;
        return (std::uint64_t{device()} << 32) ^ device();
    } catch (std::exception const&) {
        auto const time = std::chrono::steady_clock::now().time_since_epoch().count();
        return static_cast<std::uint64_t>(time) ^ reinterpret_cast<std::uintptr_t>(&time);
    }
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
