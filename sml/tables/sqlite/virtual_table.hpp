#pragma once
// Sources as tables in SQL.

#include <sml/tables/source.hpp>
#include <sml/tables/sqlite/connection.hpp>
#include <sml/tables/sqlite/stored_rows.hpp>

#include <atomic>
#include <exception>
#include <memory>

namespace sml::tables {

/// What the virtual tables of a connection share.
struct VirtualTables {
    explicit VirtualTables(std::atomic<bool> const& flag) : is_interrupted(flag), store(flag) {}

    std::atomic<bool> const& is_interrupted;  ///< if true, statements fail
    RowStore                 store;
    std::exception_ptr       failure;  ///< what a virtual table threw last, other than SqlError

    /// While a virtual table declares its columns, by a statement that creates a table.
    bool is_declaring = false;
};

/// Makes a source a table of the connection, with the source's name. No CREATE VIRTUAL TABLE is
/// needed.
///
/// The first scan in a statement reads the source. Where a statement scans the same columns of a
/// result set by the same key again, as in a join, the rows are stored.
void add_virtual_table(Connection& connection, VirtualTables& shared,
                       std::unique_ptr<Source const> source);

}  // namespace sml::tables
