#include "query.hpp"

#include "errors.hpp"
#include "terminal.hpp"

#include <algorithm>
#include <string_view>

namespace bradep {

using sml::tables::Database;
using sml::tables::SqlError;
using sml::tables::Statement;

namespace {

// "NAME:LINE:COLUMN" of a place, both from 1, the column in bytes.
std::string place_of(std::string const& name, std::string_view sql, std::size_t offset) {
    auto const before = sql.substr(0, offset);
    auto const line = std::ranges::count(before, '\n') + 1;
    auto const column = offset - (before.rfind('\n') + 1) + 1;
    return name + ':' + std::to_string(line) + ':' + std::to_string(column);
}

// Throws if the error is none of the statement.
void refuse_failure(SqlError const& error) {
    switch (error.code & 0xFF) {
        case SQLITE_INTERRUPT: throw IoFailure("interrupted");
        case SQLITE_IOERR:
        case SQLITE_FULL:
        case SQLITE_CANTOPEN:
            throw IoFailure(std::string("cannot write a temporary table: ") + error.what());
        default: return;
    }
}

// Throws what an error of SQLite means for the user. `at` is where its statement starts.
[[noreturn]] void refuse(SqlError const& error, std::string const& name, std::string_view sql,
                         std::size_t at) {
    refuse_failure(error);
    if ((error.code & 0xFF) == SQLITE_AUTH)
        throw DamagedInput(place_of(name, sql, at) +
                           ": only SELECT, WITH, VALUES and EXPLAIN are allowed");
    if (error.offset >= 0) at += static_cast<std::size_t>(error.offset);
    throw DamagedInput(place_of(name, sql, at) + ": " + error.what());
}

// The place where the next statement starts.
std::size_t after_blanks(std::string_view sql, std::size_t at) {
    return std::min(sql.find_first_not_of(" \t\r\n;", at), sql.size());
}

std::uint64_t hand_rows(Database& database, Statement& statement, RowOutput& rows,
                        Streams& streams) {
    return hand_rows(
        statement, [&] { return database.step(statement); }, rows, streams);
}

}  // namespace

std::uint64_t hand_rows(Statement& statement, std::function<bool()> const& step, RowOutput& rows,
                        Streams& streams) {
    std::vector<std::string> names;
    for (int i = 0; i < sqlite3_column_count(statement.get()); ++i)
        names.emplace_back(sqlite3_column_name(statement.get(), i));
    rows.begin(names);
    std::uint64_t count = 0;
    while (step()) {
        ++count;
        rows.row(statement.get());
        if (!streams.out) return count;  // the caller finds the failure
    }
    rows.end();
    return count;
}

void run_statements(Database& database, std::string const& name, std::string const& sql,
                    RowOptions const& options, Streams& streams) {
    if (auto const nul = sql.find('\0'); nul != std::string::npos)
        throw DamagedInput(place_of(name, sql, nul) + ": a statement can't hold a NUL");
    std::string_view rest = sql;
    while (!rest.empty()) {
        std::size_t const start = after_blanks(sql, sql.size() - rest.size());
        rest = std::string_view(sql).substr(start);
        try {
            Statement statement = database.prepare(&rest);
            if (statement.is_empty()) continue;
            auto const rows = row_output(options, streams.out, terminal_columns(streams));
            hand_rows(database, statement, *rows, streams);
        } catch (SqlError const& error) {
            refuse(error, name, sql, start);
        }
    }
}

std::uint64_t run_query(Database& database, Query const& query, RowOutput& rows, Streams& streams) {
    try {
        std::string_view sql = query.sql;
        Statement        statement = database.prepare(&sql);
        int              parameter = 0;
        for (std::string const& value : query.values) statement.bind(++parameter, value);
        return hand_rows(database, statement, rows, streams);
    } catch (SqlError const& error) {
        refuse_failure(error);
        throw DamagedInput(error.what());
    }
}

}  // namespace bradep
