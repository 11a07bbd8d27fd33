#pragma once
// How hashes are combined, and `sml::Hash`, the functor of all hashed keys but plain handles.

#include <sml/core/Strings.hpp>

#include <cstddef>
#include <cstdint>
#include <utility>

namespace sml {

namespace core {

/// Combines `value` with `seed`, modulo 2^64, and returns the new seed.
constexpr std::uint64_t combine(std::uint64_t seed, std::uint64_t value) noexcept {
    constexpr std::uint64_t factor = 0xc6a4a7935bd1e995;
    value *= factor;
    value ^= value >> 47;
    value *= factor;
    return (seed ^ value) * factor + 0xe6546b64;
}

/// An `int32` as an argument of `combine`: sign-extended.
constexpr std::uint64_t hash_word(std::int32_t value) noexcept {
    return static_cast<std::uint64_t>(static_cast<std::int64_t>(value));
}

/// A variant whose arms are declared with `core::Arms`.
template <class T>
concept HashedVariant = requires(T const& value) {
    value.visit_payload([](auto const&) {});
};

}  // namespace core

/// The hash functor of a key type. Calls its `hash()`; for a variant, combines the tag and the hash
/// of the payload, or 0 if there is none.
template <class T>
struct Hash {
    std::size_t operator()(T const& key) const {
        if constexpr (core::HashedVariant<T>) {
            std::uint64_t payload_hash = 0;
            key.visit_payload([&]<class Payload>(Payload const& payload) {
                payload_hash = Hash<Payload>{}(payload);
            });
            return core::combine(core::hash_word(key.tag), payload_hash);
        } else {
            return key.hash();
        }
    }
};

/// The hash functor of numbered keys: a string and a number.
template <>
struct Hash<std::pair<Strings_T, std::int32_t>> {
    std::size_t operator()(std::pair<Strings_T, std::int32_t> const& key) const {
        return core::combine(key.first.hash(), core::hash_word(key.second));
    }
};

}  // namespace sml
