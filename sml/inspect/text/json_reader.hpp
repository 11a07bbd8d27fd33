#pragma once
// Reads JSON token by token, as the schema requires them. A general parser would lose lone
// surrogates, the spelling of numbers, and the offsets of tokens.

#include <sml/inspect/position.hpp>

#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <optional>
#include <string>
#include <string_view>

namespace sml::inspect {

/// Thrown if a token is not the expected one.
struct JsonMisfit {
    std::size_t offset;  ///< in bytes
    std::string expected;
    std::string found;
};

class JsonReader {
public:
    /// The text and the memory must outlive this object. Strings are allocated from `memory`.
    JsonReader(std::string_view text, std::pmr::memory_resource* memory)
        : text_(text), memory_(memory) {}

    /// The offset of the next token.
    std::size_t offset();
    /// The first byte of the next token, 0 at the end.
    char peek();
    /// The next token, for a message.
    std::string description();

    void open(char bracket, std::string_view expected);
    /// Returns whether an element or member follows. Takes the comma before it, or the closing
    /// bracket if none follows.
    bool next(char closing);
    void close(char closing, std::string_view expected);
    /// Takes the name of a member and its colon; returns the name.
    std::pmr::string name();

    bool             take_null();
    bool             boolean();
    std::pmr::string string(std::string_view expected);
    /// Takes a number; returns its spelling.
    std::string_view number(std::string_view expected);
    void             end();

    [[noreturn]] void fail(std::size_t offset, std::string_view expected, std::string found) const;

private:
    bool          take_word(std::string_view word);
    void          string_piece(std::pmr::string& bytes);
    void          escape(std::pmr::string& bytes);
    std::uint32_t four_digits();

    std::string_view           text_;
    std::pmr::memory_resource* memory_;
    std::size_t                at_ = 0;
    char                       before_ = '\0';  // the first byte of the token taken last
};

/// The integer that a JSON number is, in any spelling, such as 1e2; none for other numbers, and for
/// those beyond 64 bits.
std::optional<std::int64_t> integer_of_json(std::string_view number);

/// The line and column of an offset in bytes.
Position position_of(std::string_view text, std::size_t offset);

}  // namespace sml::inspect
