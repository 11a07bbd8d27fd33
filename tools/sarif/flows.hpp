#pragma once
// The code flows of a result and the failure of a check.

#include "sarif/records.hpp"
#include "sarif/result.hpp"

#include <vector>

namespace bradep::sarif {

/// If there are flows, gives the check a failure with one step for each location of each thread
/// flow. Each step refers to an event that is added to the set. The run must be in the check
/// already.
void hold_flows(std::vector<CodeFlow> const& flows, FilledCheck const& record);

/// Appends the flows of the check. Throws DamagedInput if the set lacks an event, or the failure a
/// step.
void restore_flows(std::vector<CodeFlow>& flows, ReadCheck const& record);

}  // namespace bradep::sarif
