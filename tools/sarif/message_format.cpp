#include "sarif/message_format.hpp"

#include <algorithm>
#include <charconv>
#include <system_error>

namespace bradep::sarif {

namespace {

using Arguments = std::vector<std::string_view>;

// Returns the argument that a placeholder at the start of `rest` refers to, and sets `length` to
// the length of the placeholder. Returns null, without setting `length`, if there is no such
// placeholder or argument.
std::string_view const* placeholder(std::string_view rest, Arguments const& arguments,
                                    std::size_t& length) {
    auto const end = rest.find_first_not_of("0123456789", 1);
    if (end == std::string_view::npos || end == 1 || rest[end] != '}') return nullptr;
    std::size_t number = 0;
    auto const  parsed = std::from_chars(rest.data() + 1, rest.data() + end, number);
    if (parsed.ec != std::errc{} || number >= arguments.size()) return nullptr;
    length = end + 1;
    return &arguments[number];
}

// Returns the replacement for the start of `rest`, and sets `length` to the number of bytes that it
// replaces.
std::string_view next_piece(std::string_view rest, Arguments const& arguments,
                            std::size_t& length) {
    auto const plain = std::min(rest.find_first_of("{}"), rest.size());
    length = plain;
    if (plain > 0) return rest.substr(0, plain);
    if (rest.starts_with("{{") || rest.starts_with("}}")) {
        length = 2;
        return rest.substr(0, 1);
    }
    length = 1;
    auto const* const argument =
        rest.front() == '{' ? placeholder(rest, arguments, length) : nullptr;
    return argument != nullptr ? *argument : rest.substr(0, 1);
}

}  // namespace

std::optional<std::string> formatted_message(std::string_view pattern, Arguments const& arguments,
                                             std::uint64_t most) {
    std::string message;
    while (!pattern.empty()) {
        std::size_t length = 0;
        auto const  piece = next_piece(pattern, arguments, length);
        if (piece.size() > most - message.size()) return std::nullopt;
        message += piece;
        pattern.remove_prefix(length);
    }
    return message;
}

}  // namespace bradep::sarif
