#pragma once
// A diff as an SQLite database. While it is made, it holds the texts that need not be in memory.

#include <sml/results/finding.hpp>
#include <sml/tables/sqlite/connection.hpp>

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sml::results {

enum class Side : std::uint8_t { old_side, new_side };

/// A value that differs in a pair.
struct Change {
    std::string                path;  ///< as in "flows[0][0][2].message"
    std::optional<std::string> older;
    std::optional<std::string> newer;
};

/// Tables `findings`, `steps`, `pairs`, `changes` and the view `diff`; docs/diff.md describes them.
class DiffStore {
public:
    /// `file` is an empty file, or "" for one that is gone with the process.
    explicit DiffStore(std::string const& file);

    tables::Connection& connection() { return connection_; }

    /// Columns of the view `findings` of a result set, in the order of the tables here.
    static std::vector<std::string> const& finding_columns();

    /// Adds a finding with the columns of a statement from `first` on. `set` is the name of its
    /// result set.
    void add_finding(std::uint64_t id, Side side, std::string_view set, sqlite3_stmt* columns,
                     int first);
    void set_payload(std::uint64_t id, std::string_view payload);
    void set_function(std::uint64_t id, std::string_view function);

    struct Step {
        std::uint64_t finding;
        std::int64_t  flow, thread, position;
        std::uint64_t path;  ///< a number for the file; not the same on both sides
    };
    /// The URI, line, column and message are taken from the statement, from `first` on.
    void add_step(Step const& step, sqlite3_stmt* columns, int first);

    /// One of the findings may be missing.
    void add_pair(char const* state, Stage stage, std::optional<std::uint64_t> older,
                  std::optional<std::uint64_t> newer, std::vector<Change> const& changes);

    /// How many records of a table one side has, and how many the other side has, too.
    void add_records(std::string_view table, std::uint64_t olds, std::uint64_t news,
                     std::uint64_t both);

    /// Must be called after the last addition, and makes the database complete.
    void finish();

private:
    tables::Connection connection_;
    tables::Statement  finding_;
    tables::Statement  payload_;
    tables::Statement  function_;
    tables::Statement  step_;
    tables::Statement  pair_;
    tables::Statement  change_;
    tables::Statement  records_;
    std::int64_t       pairs_ = 0;
};

}  // namespace sml::results
