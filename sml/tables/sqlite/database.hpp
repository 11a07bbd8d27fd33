#pragma once
// Result sets as a database that can be read by SQL.

#include <sml/tables/result_sets.hpp>
#include <sml/tables/sqlite/connection.hpp>
#include <sml/tables/sqlite/virtual_table.hpp>

#include <atomic>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace sml::tables {

/// A database with the tables of some result sets, the tables `result_sets` and `sizes` and, where
/// the root holds checks, the views. It can only be read: other statements than SELECT, WITH,
/// VALUES and EXPLAIN are refused.
class Database {
public:
    /// Statements fail while `is_interrupted` is true. The arguments must outlive this object.
    explicit Database(ResultSets const&        sets,
                      std::atomic<bool> const& is_interrupted = is_never_interrupted);

    /// Takes the first statement of `sql`, as the constructor of `Statement` does.
    Statement prepare(std::string_view* sql);

    /// Moves a statement to its next row. Throws SqlError, and what reading the tables throws.
    bool step(Statement& statement);

    sqlite3* get() const { return connection_.get(); }

    /// The names of all tables and views.
    std::vector<std::string> const& tables() const { return tables_; }
    std::vector<std::string> const& views() const { return views_; }

    /// The names of all columns of the tables, each once.
    std::set<std::string> const& columns() const { return columns_; }

    /// The statements that would create a table or view, or all of them if the name is empty; empty
    /// if there is none of this name.
    std::string schema_of(std::string_view name);

private:
    static inline std::atomic<bool> const is_never_interrupted = false;

    void add(std::unique_ptr<Source const> source);
    void add_views();

    VirtualTables            shared_;
    Connection               connection_;
    std::vector<std::string> tables_;
    std::vector<std::string> views_;
    std::set<std::string>    columns_;
    std::vector<std::string> statements_;  // that would create the tables, then the views
};

/// `result_sets` and the tables of result sets; where their root has views, also the tables that
/// only the views need, which are empty. `sets` must outlive them.
std::vector<std::unique_ptr<Source const>> sources_of(ResultSets const& sets);

/// The statements that create the views. They need the tables of the root that holds the checks
/// with their forms, `root_of_views`.
std::string_view     views_sql();
inspect::Root const& root_of_views();

/// Whether this root's tables have the views: whether it holds checks.
bool has_views(Schema const& schema);

}  // namespace sml::tables
