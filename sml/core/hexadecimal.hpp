#pragma once
// Hexadecimal digits, eight at a time.

#include <cstdint>
#include <cstring>

namespace sml::core {

/// `Ten` is the digit of value ten: 'a' or 'A'.
template <char Ten>
struct Hexadecimal {
    static constexpr std::uint64_t ones = 0x0101010101010101;

    /// The characters of eight digits, one digit in each byte.
    static constexpr std::uint64_t characters(std::uint64_t digits) noexcept {
        constexpr std::uint64_t gap = Ten - '0' - 10;
        return digits + '0' * ones + (((digits + 6 * ones) >> 4) & ones) * gap;
    }

    /// Writes 16 characters, all digits of a word, at `at`.
    static void put(char* at, std::uint64_t word) noexcept {
        std::uint64_t const text[2] = {__builtin_bswap64(characters(spread(word >> 32))),
                                       __builtin_bswap64(characters(spread(word & 0xFFFFFFFF)))};
        std::memcpy(at, text, sizeof text);
    }

    /// Parses `count` digits, 1 to 16, and reads nothing beyond them. False if one is no digit.
    static bool take(char const* at, int count, std::uint64_t& word) noexcept {
        // Two loads, of the first and of the last characters, which may overlap in the middle.
        if (count >= 8) {
            std::uint64_t first = load<std::uint64_t>(at);
            std::uint64_t last = load<std::uint64_t>(at + count - 8);
            if (!are_digits(first) || !are_digits(last)) return false;
            word = gathered(first) << 4 * (count - 8) | gathered(last);
            return true;
        }
        if (count >= 4) {
            std::uint64_t both = load<std::uint32_t>(at + count - 4);
            both = both << 32 | load<std::uint32_t>(at);
            if (!are_digits(both)) return false;
            std::uint64_t const digits = gathered(both);
            word = (digits >> 16) << 4 * (count - 4) | (digits & 0xFFFF);
            return true;
        }
        int const     middle = count / 2;
        std::uint64_t three = static_cast<unsigned char>(at[0]);
        three |= std::uint64_t{static_cast<unsigned char>(at[middle])} << 8;
        three |= std::uint64_t{static_cast<unsigned char>(at[count - 1])} << 16;
        three |= std::uint64_t{0x3030303030} << 24;
        if (!are_digits(three)) return false;
        word = (three & 0xFF) << 4 * (count - 1) | (three >> 8 & 0xFF) << 4 * (count - 1 - middle) |
               (three >> 16 & 0xFF);
        return true;
    }

private:
    template <class Word>
    static Word load(char const* at) noexcept {
        Word word;
        std::memcpy(&word, at, sizeof word);
        return word;
    }

    /// The eight digits of a half word, one in each byte of the result.
    static constexpr std::uint64_t spread(std::uint64_t half) noexcept {
        half = (half | half << 16) & 0x0000FFFF0000FFFF;
        half = (half | half << 8) & 0x00FF00FF00FF00FF;
        return (half | half << 4) & 0x0F0F0F0F0F0F0F0F;
    }

    /// Turns eight characters into the digits that they stand for; false if one is no digit.
    static constexpr bool are_digits(std::uint64_t& text) noexcept {
        std::uint64_t const digits = (text & 15 * ones) + (text >> 6 & ones) * 9;
        bool const          fit = (digits & 0xF0 * ones) == 0 && characters(digits) == text;
        text = digits;
        return fit;
    }

    /// The half word made of eight digits; the one at the lowest address is the highest.
    static constexpr std::uint64_t gathered(std::uint64_t digits) noexcept {
        digits = __builtin_bswap64(digits);
        digits = (digits | digits >> 4) & 0x00FF00FF00FF00FF;
        digits = (digits | digits >> 8) & 0x0000FFFF0000FFFF;
        return (digits | digits >> 16) & 0xFFFFFFFF;
    }
};

}  // namespace sml::core
