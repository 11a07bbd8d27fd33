#pragma once

#include "result_set.hpp"
#include "sarif/result.hpp"

#include <ostream>

namespace bradep {

/// Writes the result, under its key (URI, ordinal), as one line of JSON, piece by piece. A member
/// that is absent is left out, and so is a list without elements.
void write_json_line(std::ostream& out, NumberedKey const& key, sarif::Result const& result);

/// The same for a check of which the category is known; the key may be null.
void write_json_line(std::ostream& out, NumberedKey const* key,
                     sml::Checks::T_Check_Category const& category);

}  // namespace bradep
