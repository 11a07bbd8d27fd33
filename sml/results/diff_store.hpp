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

    /// Columns of the view `findings` of a result set: those that cost little, in the order of the
    /// table here; all but the result set.
    static std::vector<std::string> const& plain_columns();

    /// The columns that are not taken from a statement.
    struct Joined {
        std::string_view set;  ///< the name of the result set
        std::string_view function, class_;
        bool             is_suppressed = false;
    };
    /// Adds a finding with the columns of a statement from `first` on.
    void add_finding(std::uint64_t id, Side side, Joined const& joined, sqlite3_stmt* columns,
                     int first);
    void set_payload(std::uint64_t id, std::string_view payload);

    struct Step {
        std::uint64_t                   finding = 0;
        std::int64_t                    flow = 0, thread = 0, position = 0;
        std::string_view                file;  ///< its name, the same on both sides
        std::optional<std::string_view> uri, message;
    };
    void add_step(Step const& step);

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
    tables::Statement  step_;
    tables::Statement  pair_;
    tables::Statement  change_;
    tables::Statement  records_;
    std::int64_t       pairs_ = 0;
};

}  // namespace sml::results
