#pragma once

#include <ostream>
#include <string>

#include "sarif_result.hpp"

namespace bradep {

// Writes the result, under its key (URI, ordinal), as one line of JSON, piece by piece. A member
// that is absent is left out, and so is a list without elements.
void write_json_line(std::ostream& out, std::string const& uri, std::int32_t ordinal,
                     sarif::Result const& result);

}  // namespace bradep
