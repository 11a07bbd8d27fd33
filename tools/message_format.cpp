#include "message_format.hpp"

#include <charconv>
#include <system_error>

namespace bradep::sarif {
namespace {

// The argument that a placeholder at the start of `rest` names, and in `length` how long it is.
std::string const* placeholder(std::string_view rest, std::vector<std::string> const& arguments,
                               std::size_t& length) {
    auto const end = rest.find_first_not_of("0123456789", 1);
    if (end == std::string_view::npos || end == 1 || rest[end] != '}') return nullptr;
    std::size_t number = 0;
    auto const  parsed = std::from_chars(rest.data() + 1, rest.data() + end, number);
    if (parsed.ec != std::errc{} || number >= arguments.size()) return nullptr;
    length = end + 1;
    return &arguments[number];
}

}  // namespace

std::string formatted_message(std::string_view pattern, std::vector<std::string> const& arguments) {
    std::string message;
    while (!pattern.empty()) {
        std::size_t length = 1;
        if (pattern.starts_with("{{") || pattern.starts_with("}}")) {
            message += pattern.front();
            length = 2;
        } else if (auto const* argument =
                       pattern.front() == '{' ? placeholder(pattern, arguments, length) : nullptr) {
            message += *argument;
        } else {
            message += pattern.front();
        }
        pattern.remove_prefix(length);
    }
    return message;
}

}  // namespace bradep::sarif
