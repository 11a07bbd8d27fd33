#pragma once
// Reads rows on a thread of its own while the rows before them are written.

#include <sml/tables/source.hpp>

#include <memory>

namespace sml::tables {

/// The same rows with all columns, read some thousand cells ahead by another thread. Their texts
/// last until the next row. The memory that it takes does not depend on the number of rows.
std::unique_ptr<RowStream> rows_ahead(std::unique_ptr<RowStream> rows, std::size_t columns);

}  // namespace sml::tables
