#include <sml/inspect/text/quote.hpp>

#include <sml/inspect/text/utf8.hpp>

#include <array>
#include <charconv>
#include <cstdint>

namespace sml::inspect {

namespace {

std::string hex_byte(char byte) {
    constexpr char digits[] = "0123456789ABCDEF";
    auto const     value = static_cast<std::uint8_t>(byte);
    return {digits[value >> 4], digits[value & 15]};
}

// Appends a number in hexadecimal, between two texts.
void append_number(std::string& text, std::string_view before, std::uint32_t number,
                   std::string_view behind) {
    std::array<char, 8> digits;
    auto const end = std::to_chars(digits.data(), digits.data() + digits.size(), number, 16).ptr;
    text += before;
    text.append(digits.data(), end);
    text += behind;
}

bool is_printable(char byte) { return byte >= ' ' && byte <= '~'; }

}  // namespace

std::string quoted(std::string_view text, std::size_t longest) {
    std::string      result = "\"";
    std::string_view rest = text.substr(0, longest);
    while (!rest.empty()) {
        auto const [code, length, valid] = first_character(rest);
        if (!valid || is_obeyed_by_terminals(code)) {
            for (char const byte : rest.substr(0, length)) result += "\\x" + hex_byte(byte);
        } else {
            if (code == '"' || code == '\\') result += '\\';
            result += rest.substr(0, length);
        }
        rest.remove_prefix(length);
    }
    result += '"';
    if (text.size() > longest) result += "... (" + std::to_string(text.size()) + " bytes)";
    return result;
}

std::string printable(std::string_view text) {
    std::string line;
    while (!text.empty()) {
        auto const [code, length, valid] = first_character(text);
        if (!valid)
            append_number(line, "\\x", code, "");
        else if (code == '\n' || code == '\r' || code == '\t')
            line += ' ';
        else if (is_obeyed_by_terminals(code))
            append_number(line, "\\u{", code, "}");
        else
            line += text.substr(0, length);
        text.remove_prefix(length);
    }
    return line;
}

std::string byte_text(char byte) {
    return is_printable(byte) ? std::string("'") + byte + "'" : "0x" + hex_byte(byte);
}

}  // namespace sml::inspect
