#pragma once
// The functions that statements can call beside SQLite's own.

#include <sml/tables/sqlite/connection.hpp>

namespace sml::tables {

/// Adds to a connection:
///
/// - `regexp(pattern, text)`, which is `text REGEXP pattern`: whether the pattern, in the syntax of
///   RE2, matches anywhere in the text;
/// - `fnmatch(pattern, text)`: whether the shell pattern matches the whole text; `*` and `?` match
///   slashes, too.
///
/// With a null they return null.
void add_functions(Connection& connection);

}  // namespace sml::tables
