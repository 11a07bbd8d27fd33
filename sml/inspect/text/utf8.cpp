#include <sml/inspect/text/utf8.hpp>

namespace sml::inspect {

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

void append_character(std::string& text, std::uint32_t code) {
    auto const add = [&](std::uint32_t byte) { text += static_cast<char>(byte); };
    auto const add_rest = [&](int shift) { add(0x80 | ((code >> shift) & 0x3F)); };
    if (code < 0x80) return add(code);
    if (code < 0x800) {
        add(0xC0 | (code >> 6));
    } else if (code < 0x10000) {
        add(0xE0 | (code >> 12));
        add_rest(6);
    } else {
        add(0xF0 | (code >> 18));
        add_rest(12);
        add_rest(6);
    }
    add_rest(0);
}

bool is_obeyed_by_terminals(std::uint32_t code) {
    bool const control = code < 0x20 || (code >= 0x7F && code <= 0x9F);
    bool const direction = code == 0x061C || code == 0x200E || code == 0x200F ||
                           (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
    bool const line_break = code == 0x2028 || code == 0x2029;
    return control || direction || line_break;
}

}  // namespace sml::inspect
