#pragma once
// Texts and numbers in JSON.

#include <cstdint>
#include <string>
#include <string_view>

namespace sml::inspect {

/// How a byte that is not UTF-8 is written.
enum class StrayByte {
    kept,     ///< the lone surrogate U+DC80 + (byte - 0x80), so that nothing is lost
    replaced  ///< U+FFFD, which every reader of JSON accepts
};

/// Appends a text in quotes. Characters that a terminal would obey are escaped.
void append_json_string(std::string& json, std::string_view text,
                        StrayByte stray = StrayByte::kept);

/// The same without the quotes.
void append_json_characters(std::string& json, std::string_view text,
                            StrayByte stray = StrayByte::kept);

/// Appends a finite double so that it is read back as the same, or "inf", "-inf", "nan", "-nan" in
/// quotes.
void append_json_double(std::string& json, double value);

/// Appends an integer.
void append_json_integer(std::string& json, std::int64_t value);
void append_json_integer(std::string& json, std::uint64_t value);

/// The memory in bytes that a conversion below takes for so many digits, beside its argument.
constexpr std::uint64_t memory_for_conversion(std::uint64_t digits) { return 8 * digits; }

/// Convert hexadecimal digits in lower case, with an optional sign, to decimal, and back. If the
/// number library gets no memory, it ends the process: so the caller must hold the memory by
/// `Budget::Hold` before.
void        append_decimal(std::string& text, std::string_view hexadecimal);
std::string hexadecimal_of(std::string_view decimal);

}  // namespace sml::inspect
