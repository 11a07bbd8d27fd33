#pragma once
// Reads a JSON text in passes: the first finds out whether it is JSON and keeps nothing, a further
// one steps through its containers and parses only the values that are needed, one at a time.

#include <boost/json.hpp>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace bradep::json_input {

namespace json = boost::json;

/// A text that is JSON, without its byte order mark. The bytes must outlive this object.
class JsonText {
public:
    /// Throws DamagedInput as `Document` does, and takes no memory. The number of bytes read so far
    /// is stored into `done` now and then.
    JsonText(std::string_view text, std::string const& name,
             std::atomic<std::uint64_t>* done = nullptr);

    std::string_view view() const { return text_; }

private:
    friend class Cursor;

    std::string_view text_;
    /// Where long values end that a cursor has stepped over, by their offsets. There are few.
    mutable std::map<std::size_t, std::size_t> ends_;
};

/// A place in a text that is JSON: before a value, a member or an element, or behind the last one.
/// The text must outlive it.
class Cursor {
public:
    explicit Cursor(JsonText const& text) : text_(text.view()), ends_(&text.ends_) {}

    /// The offset of the next token.
    std::size_t offset();
    /// The first byte of the next token, 0 at the end.
    char peek();
    /// Steps into the array or object that follows.
    void enter();
    /// Returns whether an element or member follows. Steps over the comma before it, or over the
    /// closing bracket if none follows.
    bool next();
    /// Steps over the name of a member and its colon; returns the name.
    std::string name();
    /// Steps over a value.
    void skip();

private:
    friend class ValueParser;

    void skip_string();
    void skip_container();

    std::string_view                    text_;
    std::map<std::size_t, std::size_t>* ends_;
    std::size_t                         at_ = 0;
};

/// Parses the values that cursors stand before, and steps over them. A number that is no integer is
/// read as the nearest double.
class ValueParser {
public:
    ValueParser();
    ~ValueParser();

    /// The value lives until the next call, which uses its memory again.
    json::value const& parse(Cursor& cursor);
    /// The value takes its memory from `storage`.
    json::value parse(Cursor& cursor, json::storage_ptr storage);
    /// The value that a whole text spells; none if the text is no JSON.
    std::optional<json::value> parse(std::string_view text);
    /// A value of the same kind: a container comes without its contents, which are only skipped.
    json::value kind_of(Cursor& cursor);

private:
    class Parser;

    std::unique_ptr<unsigned char[]>        buffer_;
    std::optional<json::monotonic_resource> arena_;
    std::unique_ptr<Parser>                 parser_;
    std::optional<json::value>              value_;  // destroyed before its memory
};

}  // namespace bradep::json_input
