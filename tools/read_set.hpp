#pragma once
// Objects of the bytes of a result set.

#include <sml/tables/result_sets.hpp>
#include "result_set.hpp"
#include "walk_options.hpp"

#include <ostream>

namespace bradep {

/// Verifies the input and makes the objects. Odd findings are listed on `err`. Throws DamagedInput
/// for bytes that are not safe to read.
void read_set(WalkedInput const& input, std::ostream& err, ResultSet& set);

/// Makes the objects of a set that has been verified. Throws DamagedInput if it has another root.
void read_set(sml::tables::ResultSet const& verified, sml::inspect::WalkOptions const& options,
              ResultSet& set);

}  // namespace bradep
