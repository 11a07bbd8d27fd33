#pragma once
// Cells as parameters of statements.

#include <sml/tables/rows.hpp>
#include <sml/tables/sqlite/connection.hpp>

namespace sml::tables {

/// Binds a cell to a parameter of a statement. A text that lasts must live until the statement is
/// reset; another one is copied.
void bind_cell(Statement& statement, int parameter, Cell const& cell);

}  // namespace sml::tables
