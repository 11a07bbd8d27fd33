#include <sml/tables/sqlite/database.hpp>

#include <sml/tables/schema_sql.hpp>
#include <sml/tables/sizes.hpp>
#include <sml/tables/sqlite/functions.hpp>

#include <exception>
#include <utility>

namespace sml::tables {

namespace {

// What a statement may do.
int authorize(void* shared, int action, char const*, char const* function, char const*,
              char const*) noexcept {
    if (static_cast<VirtualTables*>(shared)->is_declaring) return SQLITE_OK;
    switch (action) {
        case SQLITE_SELECT:
        case SQLITE_READ:
        case SQLITE_RECURSIVE: return SQLITE_OK;
        case SQLITE_FUNCTION:
            return sqlite3_stricmp(function, "load_extension") == 0 ? SQLITE_DENY : SQLITE_OK;
        default: return SQLITE_DENY;
    }
}

}  // namespace

Database::Database(ResultSets const& sets, std::atomic<bool> const& is_interrupted)
    : shared_(is_interrupted), connection_(":memory:") {
    connection_.run("PRAGMA temp_store = FILE; PRAGMA cache_size = -8192;");
    connection_.interrupt_by(is_interrupted);
    add_functions(connection_);
    for (auto& source : sources_of(sets)) add(std::move(source));
    add(sizes_of(sets));
    if (has_views(sets.schema())) add_views();
    // Once a statement has named them, they need not declare their columns again.
    for (char const* const own : {"json_each", "json_tree"})
        Statement(connection_.get(), "SELECT * FROM " + std::string(own) + "('[]')");
    sqlite3_db_config(connection_.get(), SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_set_authorizer(connection_.get(), authorize, &shared_);
}

void Database::add(std::unique_ptr<Source const> source) {
    tables_.push_back(source->name());
    statements_.push_back(create_table(source->name(), source->columns()));
    for (Column const& column : source->columns()) columns_.insert(column.name);
    add_virtual_table(connection_, shared_, std::move(source));
}

void Database::add_views() {
    connection_.run(std::string(views_sql()));
    Statement views(connection_.get(), "SELECT name, sql FROM sqlite_schema WHERE type = 'view'");
    while (views.step()) {
        views_.emplace_back(views.text(0));
        statements_.emplace_back(views.text(1));
    }
}

std::string Database::schema_of(std::string_view name) {
    std::vector<std::string> names = tables_;
    names.insert(names.end(), views_.begin(), views_.end());
    std::string sql;
    for (std::size_t i = 0; i < names.size(); ++i)
        if (name.empty() || are_equal_names(names[i], name)) sql += statements_[i] + ";\n";
    return sql;
}

Statement Database::prepare(std::string_view* sql) {
    Statement  statement(connection_.get(), sql);
    bool const gives_rows = sqlite3_column_count(statement.get()) > 0;
    if (!statement.is_empty() && !gives_rows)
        throw SqlError("not authorized", SQLITE_AUTH, SqlError::nowhere);
    return statement;
}

bool Database::step(Statement& statement) {
    if (sqlite3_stmt_busy(statement.get()) == 0) {
        shared_.failure = nullptr;
        shared_.store.start_statement();
    }
    try {
        return statement.step();
    } catch (SqlError const&) {
        if (auto const failure = std::exchange(shared_.failure, nullptr))
            std::rethrow_exception(failure);
        throw;
    }
}

std::vector<std::unique_ptr<Source const>> sources_of(ResultSets const& sets) {
    std::vector<std::unique_ptr<Source const>> sources;
    sources.push_back(list_of(sets));
    for (Table const& table : sets.schema().tables) sources.push_back(source_of(sets, table));
    if (!has_views(sets.schema())) return sources;
    // The views name tables that not every root with checks has.
    for (Table const& table : schema_of(root_of_views()).tables)
        if (sets.schema().find(table.name) == nullptr) sources.push_back(empty_source(sets, table));
    return sources;
}

std::string_view views_sql() {
    static constexpr std::string_view sql =
#include "views_sql.inc"
        ;
    return sql;
}

inspect::Root const& root_of_views() {
    return *inspect::find_root("Base_Gui_Internal_Form_Datas_Aggregated_Results_T");
}

bool has_views(Schema const& schema) {
    Table const* const checks = schema.find("checks");
    return checks != nullptr &&
           checks->container == schema_of(root_of_views()).find("checks")->container;
}

}  // namespace sml::tables
