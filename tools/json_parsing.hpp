#pragma once
// How all JSON text is parsed, and what is said of text that is not JSON.

#include <boost/json.hpp>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace bradep::json_input {

namespace json = boost::json;

json::parse_options parse_options();
std::string_view    without_byte_order_mark(std::string_view text);

/// Throw DamagedInput with `name:line:column`. The parser stopped at `used`.
[[noreturn]] void not_json(std::string const& name, std::string_view text, std::size_t used,
                           json::error_code const& error);
[[noreturn]] void more_than_json(std::string const& name, std::string_view text, std::size_t used);
[[noreturn]] void cut_off(std::string const& name, std::string_view text, std::size_t used);

/// Passes the text to the parser in pieces. The number of bytes parsed so far is stored into `done`
/// now and then. Throws DamagedInput if the text is not JSON.
template <class Parser>
void parse_all(Parser& parser, std::string_view text, std::string const& name,
               std::atomic<std::uint64_t>* done) {
    constexpr std::size_t at_once = std::size_t{1} << 20;  // a few milliseconds of work
    json::error_code      error;
    std::size_t           used = 0;
    for (std::size_t end = 0; used == end && end < text.size() && !error;) {
        auto const piece = text.substr(end, at_once);
        used += parser.write_some(piece.data(), piece.size(), error);
        end += piece.size();
        if (done) done->store(used, std::memory_order_relaxed);
    }
    if (error) not_json(name, text, used, error);
    if (used != text.size()) more_than_json(name, text, used);
    parser.finish(error);
    if (error) cut_off(name, text, used);
}

}  // namespace bradep::json_input
