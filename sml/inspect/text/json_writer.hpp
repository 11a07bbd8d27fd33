#pragma once
// Writes JSON with its commas, and with line breaks if it is to be pretty.

#include <sml/inspect/text/json_text.hpp>

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>

namespace sml::inspect {

/// Thrown if writing to the stream fails.
struct OutputEnded {};

/// Writes to a stream, which must outlive this object. The last bytes are written when `flush` is
/// called.
class JsonWriter {
public:
    JsonWriter(std::ostream& out, bool pretty, StrayByte stray = StrayByte::kept)
        : out_(out), pretty_(pretty), stray_(stray) {}
    JsonWriter(JsonWriter const&) = delete;
    JsonWriter& operator=(JsonWriter const&) = delete;

    std::string text;  ///< not yet written; callers append values to it

    void open(char bracket) {
        text += bracket;
        is_empty_ = true;
        ++level_;
    }

    void close(char bracket) {
        --level_;
        if (!is_empty_) break_line();
        text += bracket;
        is_empty_ = false;
    }

    /// Must be called before each element.
    void next() {
        if (!is_empty_) text += ',';
        is_empty_ = false;
        break_line();
        if (text.size() >= flushed_at) flush();
    }

    /// Must be called before the value of each member.
    void member(std::string_view name) {
        next();
        append_json_string(text, name, stray_);
        text += pretty_ ? ": " : ":";
    }

    void string_member(std::string_view name, std::string_view value) {
        member(name);
        append_json_string(text, value, stray_);
    }

    /// Writes a string of any length, in pieces that end between characters.
    void string(std::string_view value) {
        text += '"';
        while (value.size() > flushed_at) {
            std::size_t end = flushed_at;
            while (end > flushed_at - longest_character && is_inside_character(value[end])) --end;
            append_json_characters(text, value.substr(0, end), stray_);
            value.remove_prefix(end);
            flush();
        }
        append_json_characters(text, value, stray_);
        text += '"';
    }

    void end_line() {
        text += '\n';
        if (text.size() >= flushed_at) flush();
    }

    void flush() {
        out_.write(text.data(), static_cast<std::streamsize>(text.size()));
        text.clear();
        if (!out_) throw OutputEnded();
    }

private:
    static constexpr std::size_t flushed_at = std::size_t{1} << 16;

    static constexpr std::size_t longest_character = 4;

    static bool is_inside_character(char byte) { return (byte & 0xC0) == 0x80; }

    void break_line() {
        if (!pretty_) return;
        text += '\n';
        text.append(2 * level_, ' ');
    }

    std::ostream& out_;
    bool          pretty_;
    StrayByte     stray_;
    bool          is_empty_ = true;  // the container opened last is
    std::size_t   level_ = 0;
};

}  // namespace sml::inspect
