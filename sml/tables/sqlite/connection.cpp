#include <sml/tables/sqlite/connection.hpp>

#include <chrono>
#include <limits>
#include <new>
#include <thread>

namespace sml::tables {

void throw_error(sqlite3* connection) {
    int const code = sqlite3_extended_errcode(connection);
    if ((code & 0xFF) == SQLITE_NOMEM) throw std::bad_alloc();
    throw SqlError(sqlite3_errmsg(connection), code, sqlite3_error_offset(connection));
}

Statement::Statement(sqlite3* connection, std::string const& sql) {
    std::string_view rest = sql;
    *this = Statement(connection, &rest);
}

Statement::Statement(sqlite3* connection, std::string_view* sql) {
    constexpr auto most = static_cast<std::size_t>(std::numeric_limits<int>::max());
    if (sql->size() >= most)
        throw SqlError("the statement is too long", SQLITE_TOOBIG, SqlError::nowhere);
    sqlite3_stmt* statement = nullptr;
    char const*   rest = nullptr;
    // With the NUL, or all of the rest would be copied for each statement.
    int const code = sqlite3_prepare_v2(connection, sql->data(), static_cast<int>(sql->size()) + 1,
                                        &statement, &rest);
    statement_.reset(statement);
    if (code != SQLITE_OK) throw_error(connection);
    sql->remove_prefix(static_cast<std::size_t>(rest - sql->data()));
}

bool Statement::step() {
    int const code = sqlite3_step(statement_.get());
    if (code != SQLITE_ROW && code != SQLITE_DONE) throw_error(sqlite3_db_handle(get()));
    return code == SQLITE_ROW;
}

void Statement::check(int code) const {
    if (code != SQLITE_OK) throw_error(sqlite3_db_handle(get()));
}

void Statement::bind(int parameter, std::int64_t value) {
    check(sqlite3_bind_int64(get(), parameter, value));
}
void Statement::bind(int parameter, double value) {
    check(sqlite3_bind_double(get(), parameter, value));
}
void Statement::bind(int parameter, std::string_view value) {
    char const* const text = value.data() == nullptr ? "" : value.data();
    check(sqlite3_bind_text64(get(), parameter, text, value.size(), SQLITE_STATIC, SQLITE_UTF8));
}
void Statement::bind_copy(int parameter, std::string_view value) {
    char const* const text = value.data() == nullptr ? "" : value.data();
    check(sqlite3_bind_text64(get(), parameter, text, value.size(), SQLITE_TRANSIENT, SQLITE_UTF8));
}
void Statement::bind_null(int parameter) { check(sqlite3_bind_null(get(), parameter)); }
void Statement::bind(int parameter, sqlite3_value* value) {
    check(sqlite3_bind_value(get(), parameter, value));
}

bool Statement::is_null(int column) const {
    return sqlite3_column_type(get(), column) == SQLITE_NULL;
}

std::int64_t Statement::integer(int column) const { return sqlite3_column_int64(get(), column); }

std::string_view Statement::text(int column) const {
    auto const* const text = sqlite3_column_text(get(), column);
    if (text == nullptr) return {};
    auto const size = static_cast<std::size_t>(sqlite3_column_bytes(get(), column));
    return {reinterpret_cast<char const*>(text), size};
}

Connection::Connection(std::string const& file, int flags) {
    sqlite3*  connection = nullptr;
    int const code = sqlite3_open_v2(file.c_str(), &connection, flags, nullptr);
    connection_.reset(connection);
    if (connection == nullptr) throw std::bad_alloc();
    if (code != SQLITE_OK) throw_error(connection);
    sqlite3_extended_result_codes(connection, 1);
}

namespace {

bool is_set(void* flag) { return static_cast<std::atomic<bool> const*>(flag)->load(); }

// Called when another connection holds the lock, for the `count`th time in turn.
int wait_for_lock(void* flag, int count) {
    constexpr auto step = std::chrono::milliseconds(10);
    constexpr auto longest = std::chrono::minutes(1);
    if (is_set(flag) || count * step >= longest) return 0;
    std::this_thread::sleep_for(step);
    return 1;
}

}  // namespace

void Connection::interrupt_by(std::atomic<bool> const& is_interrupted) {
    constexpr int steps = 1000;  // of a statement's program between two questions
    auto const    ask = [](void* flag) { return is_set(flag) ? 1 : 0; };
    auto* const   flag = const_cast<std::atomic<bool>*>(&is_interrupted);
    sqlite3_progress_handler(get(), steps, ask, flag);
    sqlite3_busy_handler(get(), wait_for_lock, flag);
}

void Connection::run(std::string const& sql) {
    if (sqlite3_exec(get(), sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
        throw_error(get());
}

}  // namespace sml::tables
