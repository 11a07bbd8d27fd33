#pragma once
// Takes JSON apart token by token, as the schema asks for them. A general parser would lose what is
// needed here: lone surrogates, the spelling of numbers, and the place of every token.

#include <sml/inspect/position.hpp>

#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <optional>
#include <string>
#include <string_view>

namespace sml::inspect {

/// Thrown where the text is not what was asked for.
struct JsonMisfit {
    std::size_t offset;  ///< in bytes
    std::string expected;
    std::string found;
};

class JsonReader {
public:
    /// Strings are taken from this memory.
    JsonReader(std::string_view text, std::pmr::memory_resource* memory)
        : text_(text), memory_(memory) {}

    /// Where the next token starts.
    std::size_t offset();
    /// The first byte of the next token, 0 at the end.
    char peek();
    /// What the next token is, for people.
    std::string description();

    void open(char bracket, std::string_view expected);
    /// Whether an element or member follows; takes the comma before it, or the closing bracket.
    bool next(char closing);
    void close(char closing, std::string_view expected);
    /// The name of a member and its colon.
    std::pmr::string name();

    bool             take_null();
    bool             boolean();
    std::pmr::string string(std::string_view expected);
    /// A number as it is spelled.
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
    char                       before_ = '\0';  // the first byte of the token before
};

/// An integer in any spelling that JSON has for it; none for other numbers and beyond 64 bits.
std::optional<std::int64_t> integer_of_json(std::string_view number);

/// Where an offset in bytes is.
Position position_of(std::string_view text, std::size_t offset);

}  // namespace sml::inspect
