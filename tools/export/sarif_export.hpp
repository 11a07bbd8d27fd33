#pragma once
// Result sets written as a SARIF log.

#include "command.hpp"
#include "limited_output.hpp"
#include "query_files.hpp"
#include "sarif/fitting.hpp"
#include "sarif/log_source.hpp"

#include <cstdint>
#include <string>

namespace bradep {

struct SarifOptions {
    std::string   target;  ///< "-" is standard output; compressed by gzip if it ends with ".gz"
    bool          has_upload_limits = false;  ///< leaves out what GitHub does not take
    std::uint64_t max_output = default_max_output;
    std::uint64_t max_result = std::uint64_t{1} << 27;
};

/// Writes the runs of all files, in their order, as one log. Throws DamagedInput for a file that
/// holds no checks, IoFailure, and Interrupted.
void export_to_sarif(SarifOptions const& sarif, QueryOptions const& options, Streams& streams);

/// Writes runs as a log to standard output, within the same limits. Throws DamagedInput.
void write_sarif(sarif::LogSource const& runs, Streams& streams);

/// Says how much was left out because SARIF does not allow it. `name` is what it was left out of.
void print_left_out(sarif::LeftOut const& left_out, std::string const& name, Streams& streams);

}  // namespace bradep
