#pragma once
// Importing logs for other commands.

#include <sml/inspect/verify.hpp>
#include "command.hpp"

#include <cstdint>
#include <string>

namespace bradep {

/// Makes a result set of a SARIF log, as the command `import` does with its default limits on
/// messages. Throws what it throws.
void import_log(std::string const& log, std::string const& target, std::uint64_t max_size,
                sml::inspect::VerifyOptions const& verify, Streams& streams);

}  // namespace bradep
