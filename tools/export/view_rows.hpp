#pragma once
// The views of a database as tables.

#include <sml/tables/sqlite/database.hpp>

#include <memory>
#include <string>
#include <vector>

namespace bradep {

struct View {
    std::string                      name;
    std::vector<sml::tables::Column> columns;
};

/// The views with their columns, in the order in which they are created.
std::vector<View> views_of(sml::tables::Database& database);

/// The rows of a view. The database must outlive them. Reading them throws what Database::step
/// throws.
std::unique_ptr<sml::tables::RowStream> rows_of(sml::tables::Database& database, View const& view);

}  // namespace bradep
