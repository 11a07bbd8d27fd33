#pragma once
// Runs statements over result sets.

#include <sml/tables/sqlite/database.hpp>
#include "command.hpp"
#include "row_output.hpp"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace bradep {

/// Hands the rows of a statement, to the next of which `step` moves, to `rows`. Returns how many
/// there were.
std::uint64_t hand_rows(sml::tables::Statement& statement, std::function<bool()> const& step,
                        RowOutput& rows, Streams& streams);

/// Runs all statements of `sql` and prints their rows. `name` stands before the place of an error.
/// Throws DamagedInput for a wrong statement, IoFailure for an interrupted one or for trouble with
/// temporary files.
void run_statements(sml::tables::Database& database, std::string const& name,
                    std::string const& sql, RowOptions const& options, Streams& streams);

/// A statement whose parameters are texts that a user gave.
struct Query {
    std::string              sql;
    std::vector<std::string> values;  ///< of the parameters, in their order
};

/// Runs a statement, hands its rows to `rows` and returns how many there were. Throws DamagedInput
/// for a value that the statement can't use, such as a wrong pattern, and IoFailure as
/// `run_statements` does.
std::uint64_t run_query(sml::tables::Database& database, Query const& query, RowOutput& rows,
                        Streams& streams);

}  // namespace bradep
