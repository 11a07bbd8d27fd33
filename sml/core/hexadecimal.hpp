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

    /// Parses `count` digits, 1 to 16. False if one is no digit. May read up to three bytes before
    /// them, and nothing beyond them.
    static bool take(char const* at, int count, std::uint64_t& word) noexcept {
        char const* const end = at + count;
        if (count <= 8) {
            // The last digit is in the highest byte. What is before the first one becomes zeros.
            std::uint64_t text = std::uint64_t{load<std::uint32_t>(end - 4)} << 32;
            text |= load<std::uint32_t>(count > 4 ? end - 8 : end - 4);
            int const           others = 8 * (8 - count);
            std::uint64_t const kept = ~std::uint64_t{0} << others;
            text = (text & kept) | ('0' * ones & ~kept);
            if (!are_digits(text)) return false;
            word = gathered(text);
            return true;
        }
        // Two loads, which may overlap in the middle.
        std::uint64_t first = load<std::uint64_t>(at);
        std::uint64_t last = load<std::uint64_t>(end - 8);
        if (!are_digits(first) || !are_digits(last)) return false;
        word = gathered(first) << 4 * (count - 8) | gathered(last);
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
