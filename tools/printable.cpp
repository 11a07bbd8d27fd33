#include "printable.hpp"

#include <cstdint>
#include <cstdio>

#include <sml/inspect/text/utf8.hpp>

namespace bradep {
namespace {

using sml::inspect::first_character;
using sml::inspect::is_obeyed_by_terminals;

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
