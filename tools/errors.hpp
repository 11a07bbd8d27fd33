#pragma once
// What can go wrong in a command. Each kind has an exit code of its own.

#include <stdexcept>

namespace bradep {

enum ExitCode : int {
    exit_done = 0,
    exit_no = 1,  ///< the input is damaged or refused
    exit_usage_or_io = 2
};

/// The input was read but is not what it has to be. The text starts with the place.
struct DamagedInput : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// A file could not be opened, read or written.
struct IoFailure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

}  // namespace bradep
