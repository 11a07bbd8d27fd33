#pragma once
// Parses JSON with an independent parser.

#include <boost/json.hpp>

#include <stdexcept>
#include <string>
#include <string_view>

namespace json_support {

/// Replaces the escapes that stand for bytes by \ue0HH, because that parser refuses them.
inline std::string without_byte_escapes(std::string_view json) {
    std::string result;
    for (std::size_t at = 0; at < json.size(); ++at) {
        result += json[at];
        if (json[at] != '\\') continue;
        if (json.substr(at).starts_with("\\udc")) {
            result += "ue0";
            at += 3;
            continue;
        }
        result += json.at(++at);
    }
    return result;
}

/// Parses a text. Throws if it is not JSON.
inline boost::json::value parsed(std::string_view json) {
    boost::json::parse_options options;
    options.max_depth = 5000;
    return boost::json::parse(without_byte_escapes(json), {}, options);
}

/// Whether a text is JSON.
inline bool is_json(std::string_view json) {
    try {
        parsed(json);
        return true;
    } catch (std::exception const&) {
        return false;
    }
}

}  // namespace json_support
