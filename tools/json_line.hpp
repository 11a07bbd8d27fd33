#pragma once

#include "result_set.hpp"
#include "sarif/result.hpp"

#include <ostream>

namespace bradep {

/// Writes the result and its key (URI, ordinal) as one line of JSON, in pieces. Absent members and
/// empty lists are left out.
void write_json_line(std::ostream& out, NumberedKey const& key, sarif::Result const& result);

/// The same for a check of which only the category is known. `key` may be null.
void write_json_line(std::ostream& out, NumberedKey const* key,
                     sml::Checks::T_Check_Category const& category);

}  // namespace bradep
