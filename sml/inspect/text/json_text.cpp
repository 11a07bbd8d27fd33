#include <sml/inspect/text/json_text.hpp>

#include <sml/core/big_integer.hpp>
#include <sml/inspect/text/utf8.hpp>

#include <gmp.h>

#include <array>
#include <charconv>
#include <cmath>
#include <memory>

namespace sml::inspect {

namespace {

constexpr std::array<bool, 256> stands_for_itself = [] {
    std::array<bool, 256> table{};
    for (std::size_t c = 0x20; c < 0x7F; ++c) table[c] = c != '"' && c != '\\';
    return table;
}();

std::size_t plain_length(std::string_view text) {
    std::size_t length = 0;
    while (length < text.size() && stands_for_itself[static_cast<unsigned char>(text[length])])
        ++length;
    return length;
}

void append_escape(std::string& json, std::uint32_t code) {
    constexpr char digits[] = "0123456789abcdef";
    switch (code) {
        case '\n': json += "\\n"; return;
        case '\t': json += "\\t"; return;
        case '\r': json += "\\r"; return;
        default: break;
    }
    json += "\\u";
    for (int shift = 12; shift >= 0; shift -= 4) json += digits[(code >> shift) & 15];
}

// Appends the first character of a text, which does not stand for itself. Returns its length in the
// text.
std::size_t append_special(std::string& json, std::string_view text, StrayByte stray) {
    auto const [code, length, valid] = first_character(text);
    if (!valid)
        append_escape(json, stray == StrayByte::kept ? 0xDC80 + (code - 0x80) : 0xFFFD);
    else if (code == '"' || code == '\\')
        (json += '\\') += static_cast<char>(code);
    else if (is_obeyed_by_terminals(code))
        append_escape(json, code);
    else
        json += text.substr(0, length);
    return length;
}

template <class Number>
void append_number(std::string& text, Number value) {
    std::array<char, 32> digits;
    auto const           end = std::to_chars(digits.data(), digits.data() + digits.size(), value);
    text.append(digits.data(), end.ptr);
}

// For integers that are too long for a word.
void append_long_decimal(std::string& text, std::string_view hexadecimal) {
    BigInteger value;
    mpz_set_str(value.backend().data(), std::string(hexadecimal).c_str(), 16);
    std::string decimal(mpz_sizeinbase(value.backend().data(), 10) + 2, '\0');
    mpz_get_str(decimal.data(), 10, value.backend().data());
    text += decimal.c_str();
}

}  // namespace

void append_json_characters(std::string& json, std::string_view text, StrayByte stray) {
    for (;;) {
        std::size_t const plain = plain_length(text);
        json.append(text.data(), plain);
        text.remove_prefix(plain);
        if (text.empty()) return;
        text.remove_prefix(append_special(json, text, stray));
    }
}

void append_json_string(std::string& json, std::string_view text, StrayByte stray) {
    json += '"';
    append_json_characters(json, text, stray);
    json += '"';
}

void append_json_double(std::string& json, double value) {
    if (std::isfinite(value)) {
        append_number(json, value);
        if (value == 0 && std::signbit(value)) json += ".0";
        return;
    }
    json += std::signbit(value) ? "\"-" : "\"";
    json += std::isnan(value) ? "nan\"" : "inf\"";
}

void append_json_integer(std::string& json, std::int64_t value) { append_number(json, value); }
void append_json_integer(std::string& json, std::uint64_t value) { append_number(json, value); }

void append_decimal(std::string& text, std::string_view hexadecimal) {
    std::int64_t word = 0;
    auto const   end = hexadecimal.data() + hexadecimal.size();
    if (std::from_chars(hexadecimal.data(), end, word, 16).ec == std::errc())
        append_number(text, word);
    else
        append_long_decimal(text, hexadecimal);
}

std::string hexadecimal_of(std::string_view decimal) {
    BigInteger value;
    mpz_set_str(value.backend().data(), std::string(decimal).c_str(), 10);
    std::string hexadecimal(mpz_sizeinbase(value.backend().data(), 16) + 2, '\0');
    mpz_get_str(hexadecimal.data(), 16, value.backend().data());
    hexadecimal.erase(hexadecimal.find('\0'));
    return hexadecimal;
}

}  // namespace sml::inspect
