#pragma once
// Bytes that tests compose, as a writer writes them.

#include <sml/inspect/wire/writer.hpp>

#include <cstdint>
#include <string>
#include <string_view>

namespace wire_bytes {

/// The bytes that `write` writes to a writer.
template <class Write>
std::string written(Write const& write) {
    std::string          bytes;
    sml::inspect::Writer writer(bytes);
    write(writer);
    return bytes;
}

inline std::string word(std::int32_t value) {
    return written([&](auto& writer) { writer.word(value); });
}
inline std::string word(std::uint32_t value) {
    return written([&](auto& writer) { writer.word(value); });
}

/// A length and a text.
inline std::string block(std::string_view text) {
    return written([&](auto& writer) { writer.block(text); });
}

/// A definition of a string with this id.
inline std::string in_full(std::int32_t id, std::string_view text) {
    return written([&](auto& writer) { writer.string_in_full(text, id); });
}

}  // namespace wire_bytes
