#include "printable.hpp"

#include <cstdint>
#include <cstdio>

namespace bradep {
namespace {

struct Character {
    std::uint32_t code;
    std::size_t   length;  // in bytes
    bool          valid;
};

// The character that `text`, which is not empty, starts with.
Character first_character(std::string_view text) {
    auto const byte = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    auto const lead = byte(0);
    if (lead < 0x80) return {lead, 1, true};
    std::size_t const length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < length) return {lead, 1, false};
    std::uint32_t code = lead & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80) return {lead, 1, false};
        code = code << 6 | (byte(i) & 0x3FU);
    }
    constexpr std::uint32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
    bool const              surrogate = code >= 0xD800 && code <= 0xDFFF;
    if (code < least[length] || surrogate || code > 0x10FFFF) return {lead, 1, false};
    return {code, length, true};
}

bool is_obeyed_by_terminals(std::uint32_t code) {
    bool const control = code < 0x20 || (code >= 0x7F && code <= 0x9F);
    bool const direction = code == 0x061C || code == 0x200E || code == 0x200F ||
                           (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
    bool const line_break = code == 0x2028 || code == 0x2029;
    return control || direction || line_break;
}

std::string hexadecimal(char const* format, std::uint32_t number) {
    char text[16];
    std::snprintf(text, sizeof text, format, static_cast<unsigned>(number));
    return text;
}

std::string json_escape(std::uint32_t code) {
    switch (code) {
        case '\n': return "\\n";
        case '\t': return "\\t";
        case '\r': return "\\r";
        default: return hexadecimal("\\u%04x", code);  // none of them lies beyond U+FFFF
    }
}

}  // namespace

std::string printable(std::string_view text) {
    std::string line;
    while (!text.empty()) {
        auto const [code, length, valid] = first_character(text);
        if (!valid)
            line += hexadecimal("\\x%02x", code);
        else if (code == '\n' || code == '\r' || code == '\t')
            line += ' ';
        else if (is_obeyed_by_terminals(code))
            line += hexadecimal("\\u{%x}", code);
        else
            line += text.substr(0, length);
        text.remove_prefix(length);
    }
    return line;
}

std::string json_string(std::string_view text) {
    std::string quoted = "\"";
    while (!text.empty()) {
        auto const [code, length, valid] = first_character(text);
        if (!valid)
            quoted += "\\ufffd";
        else if (code == '"' || code == '\\')
            (quoted += '\\') += static_cast<char>(code);
        else if (is_obeyed_by_terminals(code))
            quoted += json_escape(code);
        else
            quoted += text.substr(0, length);
        text.remove_prefix(length);
    }
    return quoted + '"';
}

}  // namespace bradep
