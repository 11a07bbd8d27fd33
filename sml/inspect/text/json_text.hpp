#pragma once
// Texts and numbers as JSON spells them.

#include <cstdint>
#include <string>
#include <string_view>

namespace sml::inspect {

/// What becomes of a byte that is not UTF-8.
enum class StrayByte {
    kept,     ///< the lone surrogate U+DC80 + (byte - 0x80), so that nothing is lost
    replaced  ///< U+FFFD, which every reader of JSON takes
};

/// Adds a text in quotes. What a terminal would obey is escaped.
void append_json_string(std::string& json, std::string_view text,
                        StrayByte stray = StrayByte::kept);

/// The same without the quotes.
void append_json_characters(std::string& json, std::string_view text,
                            StrayByte stray = StrayByte::kept);

/// Adds a finite double so that it reads back as the same, or "inf", "-inf", "nan", "-nan".
void append_json_double(std::string& json, double value);

/// Adds an integer.
void append_json_integer(std::string& json, std::int64_t value);
void append_json_integer(std::string& json, std::uint64_t value);

/// What the conversions below take for so many digits, beside the digits given.
constexpr std::uint64_t memory_for_conversion(std::uint64_t digits) { return 8 * digits; }

/// Hexadecimal digits in lower case with an optional sign, in decimal, and back. The number library
/// ends the process where memory does not do: what it takes is to be held before.
void        append_decimal(std::string& text, std::string_view hexadecimal);
std::string hexadecimal_of(std::string_view decimal);

}  // namespace sml::inspect
