#pragma once
// Converts hex literals to bytes and back.

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace hex {

/// The bytes of a hex literal. Blanks between bytes are ignored. `'` quotes text: "'abc' 00".
inline std::string bytes(std::string_view hex) {
    std::string result;
    auto        digit = [](char c) -> int {
        if (c >= '0' && c <= '9') return c - '0';
        if (c >= 'A' && c <= 'F') return c - 'A' + 10;
        if (c >= 'a' && c <= 'f') return c - 'a' + 10;
        throw std::invalid_argument("no hex digit");
    };
    for (std::size_t i = 0; i < hex.size();) {
        if (hex[i] == ' ') {
            ++i;
        } else if (hex[i] == '\'') {
            std::size_t const end = hex.find('\'', i + 1);
            result += hex.substr(i + 1, end - i - 1);
            i = end + 1;
        } else {
            result += static_cast<char>(digit(hex.at(i)) * 16 + digit(hex.at(i + 1)));
            i += 2;
        }
    }
    return result;
}

/// The bytes in hex, for comparisons and messages.
inline std::string shown(std::string_view bytes) {
    constexpr char digits[] = "0123456789ABCDEF";
    std::string    result;
    for (char const c : bytes) {
        auto const byte = static_cast<unsigned char>(c);
        result += digits[byte >> 4];
        result += digits[byte & 15];
        result += ' ';
    }
    return result;
}

}  // namespace hex
