#pragma once
// The walk of `verify`, for functions that need more of it than the verdict.

#include <sml/inspect/long_containers.hpp>
#include <sml/inspect/verify.hpp>
#include <sml/inspect/walk/walk.hpp>

namespace sml::inspect {

/// Verifies the bytes of a new walk as a value of the root. Afterwards the walk holds the strings.
/// Unless it is null, `long_containers` gets the long containers.
Verdict verified_walk(Root const& root, Walk& walk, VerifyOptions const& options,
                      LongContainers* long_containers);

}  // namespace sml::inspect
