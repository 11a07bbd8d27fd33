#pragma once

#include "result_set.hpp"
#include "walk_options.hpp"

#include <ostream>

namespace bradep {

/// Verifies the input and makes the objects. Odd findings are listed on `err`. Throws DamagedInput
/// for bytes that are not safe to read.
void read_set(WalkedInput const& input, std::ostream& err, ResultSet& set);

}  // namespace bradep
