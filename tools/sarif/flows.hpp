#pragma once
// The code flows of a result and the failure of a check.

#include "sarif/records.hpp"
#include "sarif/result.hpp"

#include <vector>

namespace bradep::sarif {

/// Gives the check a failure with a step, which is an event of the set, for each location of each
/// thread flow; none where there is no flow. The run must be in the check already.
void hold_flows(std::vector<CodeFlow> const& flows, FilledCheck const& record);

/// Throws DamagedInput where the set lacks an event, or the failure a step.
void restore_flows(std::vector<CodeFlow>& flows, ReadCheck const& record);

}  // namespace bradep::sarif
