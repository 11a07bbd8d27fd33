#pragma once
// Classes of characters as in the "C" locale, for one character and for sixteen at once.

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace sml::inspect {

constexpr bool is_blank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
constexpr bool is_digit(char c) { return c >= '0' && c <= '9'; }
constexpr bool is_letter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
constexpr bool is_hexadecimal(char c) {
    return is_digit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

using Characters = unsigned char __attribute__((vector_size(16)));
constexpr std::size_t at_once = sizeof(Characters);

/// For each of sixteen characters 0xFF if it is a hexadecimal digit, else 0. `ten` is `a` or `A`:
/// the case that the digits from ten on must have.
inline Characters digits_among(char const* text, unsigned char ten) {
    Characters characters;
    std::memcpy(&characters, text, at_once);
    return reinterpret_cast<Characters>((characters - '0' <= 9) | (characters - ten <= 5));
}

inline std::array<std::uint64_t, 2> words_of(Characters characters) {
    std::array<std::uint64_t, 2> words;
    std::memcpy(words.data(), &characters, at_once);
    return words;
}

/// Whether the first `count` characters are hexadecimal digits in lower case. Sixteen characters
/// must be readable at `text`.
inline bool are_lower_digits(char const* text, std::size_t count) {
    static constexpr auto first = [] {
        std::array<unsigned char, 2 * at_once> bytes{};
        for (std::size_t i = 0; i < at_once; ++i) bytes[i] = 0xFF;
        return bytes;
    }();
    Characters asked;
    std::memcpy(&asked, first.data() + at_once - count, at_once);
    auto const others = words_of(asked & ~digits_among(text, 'a'));
    return (others[0] | others[1]) == 0;
}

}  // namespace sml::inspect
