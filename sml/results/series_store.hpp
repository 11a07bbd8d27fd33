#pragma once
// The findings of a series of runs, in an SQLite database that stays.

#include <sml/results/read_side.hpp>
#include <sml/tables/sqlite/connection.hpp>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace sml::results {

/// A database is no series, or one of another version.
struct NoSeries : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct RunCounts {
    std::uint64_t open = 0;
    std::uint64_t added = 0;  ///< new
    std::uint64_t returned = 0;
    std::uint64_t fixed = 0;
    std::uint64_t suppressed = 0;
};

/// Findings of a series as a side: the old one of a comparison.
struct StoredSide : SideData {
    std::vector<std::int64_t> ids;            ///< by index
    std::vector<bool>         is_suppressed;  ///< by index
};

/// A finding as a run has it.
struct Sighting {
    Finding const&    finding;
    Flagged           code;  ///< that of the finding may be forgotten
    std::vector<Hash> fingerprints;
    Hash              trace;    ///< by which it can be found in whatever file
    std::string_view  path;     ///< of its file
    sqlite3_stmt*     columns;  ///< at a row of `SeriesStore::columns()`
};

/// Tables `runs`, `identities`, `gaps`, `files` and `tools`, and the view `findings`; docs/track.md
/// describes them. Members throw tables::SqlError.
class SeriesStore {
public:
    enum class For : std::uint8_t { reading, adding };

    /// Statements fail while `is_interrupted` is true. It must outlive this object. An empty
    /// file is a series without runs. Throws NoSeries for reading from another file.
    SeriesStore(std::string const& file, For purpose, std::atomic<bool> const& is_interrupted);
    ~SeriesStore();
    SeriesStore(SeriesStore const&) = delete;
    SeriesStore& operator=(SeriesStore const&) = delete;

    tables::Connection& connection() { return connection_; }

    /// Starts a transaction, and waits up to a minute for that of another process. All changes
    /// belong to one: without `commit` they are undone, also if the process ends. A missing or
    /// empty file becomes a series. Throws NoSeries.
    void begin();
    void commit();

    /// The last run with this digest; none if there is none.
    std::optional<std::int64_t> run_with(std::string_view digest);
    /// The number of the last run; 0 if there is none.
    std::int64_t last_run();

    /// The open findings.
    void load_open(StoredSide& side);
    /// The paths of all findings.
    std::vector<std::string> paths();
    /// The tools of all runs.
    std::vector<std::string> tools();

    /// Whether any finding is gone.
    bool has_gone();
    // The findings that are gone, of this rule of any tool, in a file or in a function.
    void add_gone_in_file(std::string_view path, std::string_view rule,
                          std::set<std::int64_t>& ids);
    void add_gone_in_function(std::string_view function, std::string_view rule,
                              std::set<std::int64_t>& ids);
    /// The files in which findings with this trace are gone; none if they are many.
    std::vector<std::string> gone_files(Hash const& trace);
    /// The findings with these ids, in their order.
    void load(std::set<std::int64_t> const& ids, StoredSide& side);

    /// The columns of a finding that are kept as they are, of DiffStore's table `findings`.
    static std::vector<std::string> const& columns();
    /// The same for a statement.
    static std::string columns_sql();

    void add_tools(std::vector<std::string> const& names);
    void add(std::int64_t run, Sighting const& sighting);
    void see(std::int64_t id, Sighting const& sighting);
    void note_gone(std::int64_t id, std::int64_t run);
    void note_back(std::int64_t id, std::int64_t run);
    void add_run(std::int64_t run, std::string_view name, std::string_view digest,
                 RunCounts const& counts);

    /// Gives each file that findings had the path that it has now.
    void rename_files(std::function<std::string(std::string const&)> const& path_now);

    /// The findings that are gone and were in the function and the file of this one are in another
    /// file now.
    void move_function(std::int64_t id, std::string_view path);

private:
    struct Statements;

    bool         is_empty();
    std::string  problem();
    std::int64_t file_of(std::string_view path);

    tables::Connection                            connection_;
    std::unique_ptr<Statements>                   statements_;  // of the transaction
    std::unordered_map<std::string, std::int64_t> files_;       // by path, as far as known
};

}  // namespace sml::results
