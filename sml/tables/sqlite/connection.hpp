#pragma once
// A connection to an SQLite database and its statements.

#include <sqlite3.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace sml::tables {

/// A failure that SQLite reports.
struct SqlError : std::runtime_error {
    SqlError(std::string const& what, int error_code, int place)
        : std::runtime_error(what), code(error_code), offset(place) {}

    static constexpr int nowhere = -1;

    int code;    ///< SQLite's extended result code
    int offset;  ///< in bytes from the start of the statement, or `nowhere`
};

/// Throws SqlError with the last error of the connection.
[[noreturn]] void throw_error(sqlite3* connection);

class Statement {
public:
    /// Takes the first statement of `sql`. Throws SqlError.
    Statement(sqlite3* connection, std::string const& sql);
    /// The same, and removes it from `sql`, with the blanks and comments before it. If there was
    /// none, the new statement is empty. There must be no NUL in `sql`, but one behind it.
    Statement(sqlite3* connection, std::string_view* sql);
    Statement(Statement&&) noexcept = default;
    Statement& operator=(Statement&&) noexcept = default;

    bool          is_empty() const { return statement_ == nullptr; }
    sqlite3_stmt* get() const { return statement_.get(); }

    /// Moves to the next row. Returns false after the last one. Throws SqlError.
    bool step();
    void reset() { sqlite3_reset(statement_.get()); }

    // Parameters are counted from 1. A text must live until the statement is reset or bound again.
    void bind(int parameter, std::int64_t value);
    void bind(int parameter, double value);
    void bind(int parameter, std::string_view value);
    void bind_copy(int parameter, std::string_view value);
    void bind_null(int parameter);
    void bind(int parameter, sqlite3_value* value);

    // Columns are counted from 0. A null is the number 0 and the empty text.
    bool             is_null(int column) const;
    std::int64_t     integer(int column) const;
    std::string_view text(int column) const;

private:
    struct Finalize {
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };

    void check(int code) const;

    std::unique_ptr<sqlite3_stmt, Finalize> statement_;
};

class Connection {
public:
    /// Opens a database: a file, or one in memory (":memory:"), or one on disk that is deleted when
    /// it is closed (""). Throws SqlError.
    explicit Connection(std::string const& file,
                        int                flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);

    sqlite3* get() const { return connection_.get(); }

    /// Makes statements wait for other connections for a minute at most, and then fail with
    /// SQLITE_BUSY. While `is_interrupted` is true, they fail with SQLITE_INTERRUPT, or SQLITE_BUSY
    /// if they have to wait. It must outlive this object.
    void interrupt_by(std::atomic<bool> const& is_interrupted);

    /// Runs statements without results. Throws SqlError.
    void run(std::string const& sql);

private:
    struct Close {
        void operator()(sqlite3* connection) const { sqlite3_close_v2(connection); }
    };

    std::unique_ptr<sqlite3, Close> connection_;
};

}  // namespace sml::tables
