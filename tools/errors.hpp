#pragma once
// The errors of a command. Each kind has its own exit code.

#include <stdexcept>

namespace bradep {

enum ExitCode : int {
    exit_done = 0,
    exit_no = 1,  ///< the input is damaged or refused
    exit_usage_or_io = 2,
    exit_found = 3  ///< done, and there is what was looked for; only where it was asked for
};

/// The input was read but is not valid for the command. The message starts with the place in the
/// input.
struct DamagedInput : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// A file could not be opened, read or written.
struct IoFailure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

}  // namespace bradep
