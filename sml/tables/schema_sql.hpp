#pragma once
// The tables of a root as statements that create them.

#include <sml/tables/table.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace sml::tables {

enum class Dialect { sqlite, duckdb, clickhouse, postgresql };

/// A name in double quotes.
std::string quoted_name(std::string_view name);

/// The type of a column.
std::string_view type_name(Storage storage, Dialect dialect = Dialect::sqlite);

/// "CREATE TABLE name (...)", without what follows the parentheses, without semicolon. No column is
/// null that tells which row it is. `constraint` stands behind the columns.
std::string create_table(std::string_view name, std::vector<Column> const& columns,
                         Dialect dialect = Dialect::sqlite, std::string_view constraint = {});

/// The columns that tell which row of a table it is: the result set and, if there is one, the
/// number of the row.
std::vector<std::string> primary_key(std::vector<Column> const& columns);

/// Names in double quotes, with commas between them.
std::string quoted_names(std::vector<std::string> const& names);

}  // namespace sml::tables
