#pragma once
// Statements over the tables of result sets.

#include <sml/tables/sqlite/database.hpp>

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace sml::results {

/// Goes through the rows of a statement. Columns count from 0.
class Query {
public:
    Query(tables::Database& database, std::string sql)
        : database_(database), sql_(std::move(sql)), statement_(prepared()) {}
    Query(Query const&) = delete;
    Query& operator=(Query const&) = delete;

    /// Moves to the next row. Returns false after the last one. Throws what reading tables throws.
    bool next() { return database_.step(statement_); }

    sqlite3_stmt*    get() const { return statement_.get(); }
    bool             is_null(int column) const { return statement_.is_null(column); }
    std::int64_t     integer(int column) const { return statement_.integer(column); }
    std::string_view text(int column) const { return statement_.text(column); }

private:
    tables::Statement prepared() {
        std::string_view rest = sql_;
        return database_.prepare(&rest);
    }

    tables::Database& database_;
    std::string       sql_;
    tables::Statement statement_;
};

}  // namespace sml::results
