#pragma once
// What a SARIF log says about the code that its results flag. A result set does not hold that.

#include <sml/results/read_side.hpp>

#include <string>
#include <string_view>

namespace bradep {

/// For each result, in the order of the log, the text of its first location: from the artifact's
/// contents in the log, else from the snippet of the context region, else from that of the region
/// itself. `name` is the log's name in messages. Throws DamagedInput if the text is not JSON.
sml::results::FlaggedByForm flagged_in_log(std::string_view text, std::string const& name);

}  // namespace bradep
