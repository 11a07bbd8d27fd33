#pragma once

#include <sml/tables/sqlite/database.hpp>
#include "command.hpp"
#include "row_output.hpp"

namespace bradep {

/// Reads statements and commands from standard input, at a prompt if that is a terminal, until it
/// ends. An error is printed, and the next statement follows. Returns the exit code of the last
/// statement where there is no terminal.
ExitCode run_prompt(sml::tables::Database& database, RowOptions rows, Streams& streams);

}  // namespace bradep
