#pragma once

#include <sml/inspect/text/quote.hpp>

#include <ostream>
#include <string_view>

namespace bradep {

constexpr char const* out_of_own_memory =
    "out of memory: more working memory than --max-own-memory allows";

/// Writes a message to standard error: "bradep: ", then the text on one line, whatever characters
/// it has.
inline void print_message(std::ostream& err, std::string_view what) {
    err << "bradep: " << sml::inspect::printable(what) << '\n';
}

}  // namespace bradep
