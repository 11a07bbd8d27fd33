#include "json_input.hpp"

#include <sml/inspect/text/json_reader.hpp>
#include <sml/inspect/text/quote.hpp>
#include <sml/inspect/text/utf8.hpp>
#include "errors.hpp"
#include "foreign_form.hpp"
#include "json_parsing.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <vector>

namespace bradep::json_input {

namespace {

// No known log is nested as deeply, and a small stack is enough for the parser's recursion at this
// depth.
constexpr std::size_t max_depth = 1000;

[[noreturn]] void fail_at(std::string const& name, std::string_view text, std::size_t offset,
                          std::string const& what) {
    auto const [line, column] = sml::inspect::position_of(text, offset);
    throw DamagedInput(name + ":" + std::to_string(line) + ":" + std::to_string(column) + ": " +
                       what);
}

std::size_t first_byte_outside_utf8(std::string_view text) {
    std::size_t at = 0;
    while (at < text.size()) {
        auto const character = sml::inspect::first_character(text.substr(at));
        if (!character.valid) return at;
        at += character.length;
    }
    return at;
}

json::value parse(std::string_view text, std::string const& name, json::storage_ptr storage,
                  std::atomic<std::uint64_t>* done) {
    json::stream_parser parser(storage, parse_options());
    parse_all(parser, text, name, done);
    return parser.release();
}

char const* kind_name(json::value const& value) {
    switch (value.kind()) {
        case json::kind::null: return "null";
        case json::kind::bool_: return "a boolean";
        case json::kind::int64:
        case json::kind::uint64:
        case json::kind::double_: return "a number";
        case json::kind::string: return "a string";
        case json::kind::array: return "an array";
        case json::kind::object: return "an object";
    }
    return "an unknown kind of value";
}

[[noreturn]] void misfit(json::value const& value, char const* expected) {
    throw Misfit{&value, std::string("expected ") + expected + ", found " + kind_name(value)};
}

// Appends the path from `here` to `wanted`. Returns false if `wanted` is not below `here`.
bool find_path(json::value const& here, json::value const* wanted, std::vector<std::string>& path) {
    if (&here == wanted) return true;
    auto const below = [&](std::string token, json::value const& child) {
        path.push_back(std::move(token));
        if (find_path(child, wanted, path)) return true;
        path.pop_back();
        return false;
    };
    if (auto const* object = here.if_object()) {
        for (auto const& entry : *object)
            if (below(escaped_token(entry.key()), entry.value())) return true;
    } else if (auto const* array = here.if_array()) {
        for (std::size_t i = 0; i < array->size(); ++i)
            if (below(std::to_string(i), (*array)[i])) return true;
    }
    return false;
}

}  // namespace

std::string_view without_byte_order_mark(std::string_view text) {
    return text.starts_with("\xEF\xBB\xBF") ? text.substr(3) : text;
}

json::parse_options parse_options() {
    json::parse_options options;
    options.max_depth = max_depth;
    return options;
}

// The parser accepted all bytes before `used`. It stops at text that is not UTF-8.
void not_json(std::string const& name, std::string_view text, std::size_t used,
              json::error_code const& error) {
    auto const form = foreign_form(text);
    if (!form.empty() && form != json_form)
        fail_at(name, text, 0, "not JSON: " + std::string(form) + ", only plain UTF-8 is read");
    constexpr std::size_t longest_character = 4;
    auto const outside = first_byte_outside_utf8(text.substr(0, used + longest_character));
    if (outside <= used && outside < text.size())
        fail_at(name, text, outside,
                "not JSON: the byte " + sml::inspect::printable(text.substr(outside, 1)) +
                    " is not UTF-8, as in Latin-1 text");
    fail_at(name, text, used, "not JSON: " + error.message());
}

void more_than_json(std::string const& name, std::string_view text, std::size_t used) {
    fail_at(name, text, used, "not JSON: more text after the end of the document");
}

void cut_off(std::string const& name, std::string_view text, std::size_t used) {
    fail_at(name, text, used, "the JSON text ends too early");
}

std::string escaped_token(std::string_view name) {
    std::string token;
    for (char const c : name) {
        if (c == '~')
            token += "~0";
        else if (c == '/')
            token += "~1";
        else
            token += c;
    }
    return token;
}

std::optional<std::int64_t> integer(json::value const& value) {
    if (auto const* exact = value.if_int64()) return *exact;
    auto const*      real = value.if_double();
    constexpr double limit = 9007199254740992.0;  // integers up to here are exact in a double
    if (real && std::nearbyint(*real) == *real && std::abs(*real) <= limit)
        return static_cast<std::int64_t>(*real);
    return std::nullopt;
}

void append_json_scalar(std::string& text, json::value const& value,
                        sml::inspect::StrayByte stray) {
    if (auto const* const string = value.if_string())
        return sml::inspect::append_json_string(text, *string, stray);
    if (auto const whole = integer(value)) return sml::inspect::append_json_integer(text, *whole);
    if (auto const* const whole = value.if_uint64())
        return sml::inspect::append_json_integer(text, std::uint64_t{*whole});
    auto const* const real = value.if_double();
    if (real == nullptr) {
        text += value.is_null() ? "null" : value.get_bool() ? "true" : "false";
    } else if (std::isinf(*real)) {  // JSON has no name for it: it was spelled in digits
        text += *real < 0 ? "-1e999" : "1e999";
    } else {
        char       digits[64];
        auto const written = std::to_chars(digits, digits + sizeof digits, *real);
        text.append(digits, written.ptr);
    }
}

Document::Document(std::string_view text, std::string const& name, std::atomic<std::uint64_t>* done)
    : root_(parse(without_byte_order_mark(text), name, &arena_, done)) {}

std::optional<std::string> pointer_below(json::value const& root, json::value const& wanted) {
    std::vector<std::string> path;
    if (!find_path(root, &wanted, path)) return std::nullopt;
    std::string pointer;
    for (auto const& token : path) pointer += "/" + token;
    return pointer;
}

json::value const* member(json::value const& object, std::string_view name) {
    auto const* members = object.if_object();
    if (!members) misfit(object, "an object");
    auto const* value = members->if_contains(name);
    return value && !value->is_null() ? value : nullptr;
}

json::array const* list(json::value const& object, std::string_view name) {
    auto const* value = member(object, name);
    if (!value) return nullptr;
    if (!value->is_array()) misfit(*value, "an array");
    return &value->get_array();
}

std::string_view view_of(json::value const& value) {
    auto const* string = value.if_string();
    if (!string) misfit(value, "a string");
    return *string;
}

std::optional<std::string_view> view(json::value const& object, std::string_view name) {
    auto const* value = member(object, name);
    if (!value) return std::nullopt;
    return view_of(*value);
}

std::string text_of(json::value const& value) { return std::string(view_of(value)); }

std::optional<std::string> text(json::value const& object, std::string_view name) {
    auto const found = view(object, name);
    if (!found) return std::nullopt;
    return std::string(*found);
}

std::optional<std::int32_t> number(json::value const& object, std::string_view name) {
    auto const* value = member(object, name);
    if (!value) return std::nullopt;
    if (!value->is_number()) misfit(*value, "an integer");
    using Limits = std::numeric_limits<std::int32_t>;
    auto const whole = integer(*value);
    if (!whole || *whole < Limits::min() || *whole > Limits::max())
        throw Misfit{value, "expected an integer from -2147483648 to 2147483647"};
    return static_cast<std::int32_t>(*whole);
}

std::optional<std::size_t> index(json::value const& object, std::string_view name) {
    auto const at = number(object, name);
    if (!at || *at == -1) return std::nullopt;
    if (*at < 0)
        throw Misfit{member(object, name), "index " + std::to_string(*at) + " is negative"};
    return static_cast<std::size_t>(*at);
}

json::value const* found(json::value const* object, std::string_view name) {
    auto const* const members = object ? object->if_object() : nullptr;
    auto const* const value = members ? members->if_contains(name) : nullptr;
    return value && !value->is_null() ? value : nullptr;
}

json::array const* found_list(json::value const* object, std::string_view name) {
    auto const* const value = found(object, name);
    return value ? value->if_array() : nullptr;
}

std::optional<std::string_view> found_text(json::value const* object, std::string_view name) {
    auto const* const value = found(object, name);
    auto const* const string = value ? value->if_string() : nullptr;
    if (!string) return std::nullopt;
    return std::string_view(*string);
}

json::value const* element(json::array const* list, std::size_t at) {
    return list && at < list->size() ? &(*list)[at] : nullptr;
}

json::value const* indexed(json::array const* list, json::value const* index) {
    auto const at = index ? integer(*index) : std::nullopt;
    return at && *at >= 0 ? element(list, static_cast<std::size_t>(*at)) : nullptr;
}

}  // namespace bradep::json_input
