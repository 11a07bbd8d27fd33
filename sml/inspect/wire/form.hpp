#pragma once
// The sizes of the kinds in bytes, flags, and words.

#include <sml/inspect/type.hpp>

#include <cstdint>
#include <cstring>

namespace sml::inspect {

/// The fewest bytes that a value of a kind takes, without the values inside it. Words,
/// enumerations, references and flags take exactly as many.
constexpr std::uint32_t least_size_of(Kind kind) {
    constexpr std::uint32_t word = 4;  // a number, tag, enumerator, id, length, count or width
    constexpr std::uint32_t long_word = 8;
    constexpr std::uint32_t flag = 1;
    switch (kind) {
        case Kind::int32:
        case Kind::uint32:
        case Kind::enumeration: return word;
        case Kind::int64:
        case Kind::uint64: return long_word;
        case Kind::flag:
        case Kind::optional: return flag;
        case Kind::string:
        case Kind::text:
        case Kind::number:
        case Kind::big_integer: return word;
        case Kind::ieee_float: return word + word;  // a length and the width
        case Kind::list:
        case Kind::set:
        case Kind::map:
        case Kind::variant: return word;
        case Kind::reference: return word + long_word;
        case Kind::tuple:
        case Kind::flags:
        case Kind::record:
        case Kind::group:
        case Kind::boxed: return 0;
    }
    return 0;
}

constexpr char flag_byte(bool is_true) { return is_true ? 'T' : 'F'; }

/// Any other byte is false, too.
constexpr bool is_true_flag(char byte) { return byte == flag_byte(true); }

/// Whether a byte is T or F, without a branch that depends on which of them it is.
constexpr bool is_flag(char byte) {
    constexpr unsigned least = 'F';
    constexpr unsigned most = 'T';
    constexpr unsigned both = 1u << (most - least) | 1u;
    unsigned const     index = static_cast<unsigned char>(byte) - least;
    return index <= most - least && (both >> index & 1) != 0;
}

/// The word at an address, which need not be aligned.
template <class Word>
Word word_at(char const* at) noexcept {
    Word word;
    std::memcpy(&word, at, sizeof word);
    return word;
}

}  // namespace sml::inspect
