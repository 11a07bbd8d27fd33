#include "export/database_export.hpp"

#include <sml/tables/rows_ahead.hpp>
#include <sml/tables/schema_sql.hpp>
#include <sml/tables/sqlite/bind_cell.hpp>
#include <sml/tables/sqlite/database.hpp>
#include "errors.hpp"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <utility>
#include <vector>

namespace bradep {

using namespace sml::tables;

namespace {

// Tells the databases of this command from others. It changes when what they hold does.
constexpr int application_id = 0x62645831;

using Names = std::vector<std::string>;

struct Index {
    std::string table;
    Names       columns;  // behind the result set
    std::string name;
    std::string condition{};
};

std::string sql_of(Index const& index) {
    Names columns = {"result_set"};
    columns.insert(columns.end(), index.columns.begin(), index.columns.end());
    return "CREATE INDEX " + quoted_name(index.table + "_by_" + index.name) + " ON " +
           quoted_name(index.table) + " (" + quoted_names(columns) + ')' + index.condition;
}

// What the views look for, beside the primary key.
std::vector<Index> const& indexes_for_views() {
    static std::vector<Index> const all = {
        {"checks", {"key0", "key1"}, "key"},
        {"events", {"key0", "key1"}, "key"},
        {"infos", {"second_string", "second_int"}, "check"},
        {"infos",
         {"second_string", "second_int", "category", "category_args", "flag"},
         "suppressed_check",
         " WHERE first_string = 'suppression'"},
        {"check_data", {"p1__first_numbered_name__p0", "p1__first_numbered_name__p1"}, "check"},
    };
    return all;
}

bool has_column(Source const& table, Form form) {
    return std::ranges::count(table.columns(), form, &Column::form) > 0;
}

/// The statements that create an export.
struct Statements {
    explicit Statements(ResultSets const& sets) {
        for (auto const& table : sources_of(sets)) {
            std::string constraint =
                "PRIMARY KEY (" + quoted_names(primary_key(table->columns())) + ')';
            if (table->name() == name_of_list) constraint += ", UNIQUE (\"digest\")";
            tables.push_back(
                create_table(table->name(), table->columns(), Dialect::sqlite, constraint));
            if (has_column(*table, Form::parent))
                indexes.push_back(sql_of({table->name(), {"parent", "position"}, "parent"}));
        }
        if (!has_views(sets.schema())) return;
        for (Index const& index : indexes_for_views()) indexes.push_back(sql_of(index));
        views = views_sql();
    }

    Names       tables;
    Names       indexes;
    std::string views;
};

void create_indexes_and_views(Connection& connection, Statements const& statements) {
    for (std::string const& index : statements.indexes) connection.run(index);
    connection.run(statements.views);
}

/// The tables, indexes and views of a database with their statements.
std::vector<std::pair<std::string, std::string>> schema_of(Connection& connection) {
    std::vector<std::pair<std::string, std::string>> all;
    Statement parts(connection.get(), "SELECT name, sql FROM sqlite_schema WHERE sql IS NOT NULL");
    while (parts.step()) all.emplace_back(parts.text(0), parts.text(1));
    return all;
}

// The name of the first part that a database with these result sets lacks or has otherwise; empty
// if there is none. It may have more parts.
std::string other_part(Connection& connection, ResultSets const& sets) {
    Connection       wanted(":memory:");
    Statements const statements(sets);
    for (std::string const& table : statements.tables) wanted.run(table);
    create_indexes_and_views(wanted, statements);
    auto const there = schema_of(connection);
    for (auto const& part : schema_of(wanted))
        if (std::ranges::count(there, part) == 0) return part.first;
    return {};
}

// The only integer or text of a statement.
std::string value_of(Connection& connection, std::string_view sql) {
    Statement statement(connection.get(), std::string(sql));
    return statement.step() ? std::string(statement.text(0)) : std::string();
}

std::string placeholders(std::size_t count) {
    std::string text = "?";
    for (std::size_t i = 1; i < count; ++i) text += ",?";
    return text;
}

// Does work with a database of this name. Throws what the failure of a statement means for the
// user.
template <class Work>
auto guarded(std::string const& name, Work const& work) {
    try {
        return work();
    } catch (SqlError const& error) {
        int const  code = error.code & 0xFF;
        bool const is_waiting = code == SQLITE_BUSY && Interruption::has_come();
        if (code == SQLITE_INTERRUPT || is_waiting) throw Interrupted();
        if (code == SQLITE_NOTADB || code == SQLITE_CORRUPT)
            throw DamagedInput(name + ": is no database that export has written (" + error.what() +
                               ')');
        throw IoFailure("cannot write " + name + ": " + error.what());
    }
}

constexpr int open_flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX;

}  // namespace

DatabaseExport::DatabaseExport(std::string const& path, File file, std::string name,
                               std::ostream& err)
    : name_(std::move(name)),
      err_(err),
      file_(file),
      connection_(guarded(name_, [&] { return Connection(path, open_flags); })) {
    guarded(name_, [&] {
        connection_.interrupt_by(Interruption::has_come());
        connection_.run(
            "PRAGMA cache_size = -65536; PRAGMA temp_store = FILE;"
            "PRAGMA threads = 2");
        if (file == File::exported) return open_exported();
        // An incomplete one is removed, so nothing needs to be undone.
        connection_.run(
            "PRAGMA page_size = 16384; PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF;"
            "PRAGMA locking_mode = EXCLUSIVE; BEGIN");
    });
}

void DatabaseExport::open_exported() {
    connection_.run("BEGIN IMMEDIATE");
    if (value_of(connection_, "PRAGMA application_id") != std::to_string(application_id))
        throw DamagedInput(name_ + ": is no database that export has written");
    root_ = sml::inspect::find_root(value_of(connection_, "SELECT root FROM result_sets"));
    std::string other = "result_sets";
    if (root_ != nullptr) other = other_part(connection_, ResultSets(*root_, {}));
    if (!other.empty())
        throw DamagedInput(name_ + ": was written by another version of export: its " + other +
                           " is another one");
}

bool DatabaseExport::add(std::shared_ptr<ResultSets const> added) {
    return guarded(name_, [&] {
        list_first();
        ResultSets const& sets = *added;
        bool const        is_first = root_ == nullptr;
        if (is_first) create_tables(sets);
        if (root_ != sets.schema().root) refuse_other_root(name_, *root_, sets);
        if (!is_first && has(sets.identity(1))) return false;
        auto const  number = next_number();
        auto const  tables = sources_of(sets);
        SetProgress progress(err_, sets.set(1), tables.size());
        for (auto const& table : tables) {
            if (!is_first || table->name() != name_of_list) insert(*table, number, progress);
            progress.next_table();
        }
        if (is_first)
            first_ = {added, number,
                      std::async(std::launch::async, [added] { added->identity(1); })};
        return true;
    });
}

// It is not there already, so its rows need not wait for its digest. That is computed beside the
// indexes, which take one thread; rows take two.
void DatabaseExport::list_first() {
    if (!first_) return;
    first_->identity.get();
    SetProgress progress(err_, first_->sets->set(1), 1);
    insert(*list_of(*first_->sets), first_->number, progress);
    first_.reset();
}

void DatabaseExport::create_tables(ResultSets const& sets) {
    root_ = sets.schema().root;
    for (std::string const& table : Statements(sets).tables) connection_.run(table);
    connection_.run("PRAGMA application_id = " + std::to_string(application_id));
}

bool DatabaseExport::has(std::string const& identity) {
    Statement statement(connection_.get(), "SELECT 1 FROM result_sets WHERE digest = ?");
    statement.bind(1, identity);
    return statement.step();
}

std::int64_t DatabaseExport::next_number() {
    Statement statement(connection_.get(),
                        "SELECT coalesce(max(result_set), 0) + 1 FROM result_sets");
    statement.step();
    return statement.integer(0);
}

void DatabaseExport::insert(Source const& table, std::int64_t number, SetProgress& progress) {
    std::size_t const columns = table.columns().size();
    Statement statement(connection_.get(), "INSERT INTO " + quoted_name(table.name()) + " VALUES(" +
                                               placeholders(columns) + ')');
    statement.bind(1, number);
    auto const rows = rows_ahead(table.rows(1, std::vector<bool>(columns, true)), columns);
    while (rows->next()) {
        progress.at(rows->offset());
        for (std::size_t i = 1; i < columns; ++i)
            bind_cell(statement, static_cast<int>(i) + 1, rows->cell(i));
        statement.step();
        statement.reset();
    }
}

void DatabaseExport::finish() {
    guarded(name_, [&] {
        if (file_ == File::empty)
            create_indexes_and_views(connection_, Statements(ResultSets(*root_, {})));
        list_first();
        connection_.run("COMMIT");
    });
}

}  // namespace bradep
