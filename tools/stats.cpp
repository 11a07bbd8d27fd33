#include "command.hpp"
#include "errors.hpp"
#include "output_file.hpp"
#include "query.hpp"
#include "query_files.hpp"
#include "row_output.hpp"
#include "signals.hpp"
#include "terminal.hpp"
#include "track/series_file.hpp"
#include "track/series_plot.hpp"
#include "walk_options.hpp"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace bradep {

namespace {

using Names = std::vector<std::string>;

/// What findings can have in common.
struct Property {
    std::string name;
    Names       columns;  // of the view `findings`, or expressions of these
};

std::vector<Property> const& properties() {
    static std::vector<Property> const all = {
        {"rule", {"rule"}},
        {"level", {"level"}},
        {"category", {"category"}},
        {"tool", {"tool", "tool_version"}},
        {"file", {"uri"}},
        {"directory", {"rtrim(uri, replace(uri, '/', '')) AS directory"}},
        {"function", {"function"}},
        {"kind", {"kind"}},
        {"suppression", {"suppressed"}},
        {"state", {"baseline_state"}},
        {"class", {"class"}},
        {"set", {"result_set"}},
    };
    return all;
}

Names property_names() {
    Names names;
    for (Property const& property : properties()) names.push_back(property.name);
    return names;
}

struct Options : QueryOptions {
    Names                        by;
    std::optional<std::uint64_t> top;
    bool                         counts_all = false;
    bool                         has_sizes = false;
    bool                         prints_sql = false;
    std::optional<std::string>   plot;
    RowOptions                   rows;

    bool is_overview() const { return by.empty() && !has_sizes; }
    bool needs_checks() const { return !by.empty() || is_overview(); }
};

std::string joined(Names const& all, std::string const& between) {
    std::string text;
    for (std::string const& one : all) text += (text.empty() ? "" : between) + one;
    return text;
}

std::string limit(std::optional<std::uint64_t> top) {
    return top ? "\nLIMIT " + std::to_string(*top) : "";
}

// Suppressed and absent findings need not be looked at: they are left out where the question is not
// about them.
std::string condition(Names const& by, bool counts_all) {
    auto const is_by = [&](char const* name) { return std::ranges::count(by, name) > 0; };
    Names      conditions;
    if (!counts_all && !is_by("suppression")) conditions.push_back("NOT suppressed");
    if (!counts_all && !is_by("state")) conditions.push_back("baseline_state IS NOT 'absent'");
    return conditions.empty() ? "" : "\nWHERE " + joined(conditions, " AND ");
}

std::string counted(Names const& by, bool counts_all, std::optional<std::uint64_t> top) {
    Names columns;
    Names numbers;  // the columns by their places
    for (std::string const& name : by) {
        auto const property = std::ranges::find(properties(), name, &Property::name);
        for (std::string const& column : property->columns) {
            columns.push_back(column);
            numbers.push_back(std::to_string(columns.size()));
        }
    }
    return "SELECT " + joined(columns, ", ") + ", count(*) AS findings\nFROM findings" +
           condition(by, counts_all) + "\nGROUP BY " + joined(numbers, ", ") +
           "\nORDER BY findings DESC, " + joined(numbers, ", ") + limit(top);
}

constexpr char const* totals = R"(SELECT
  count(*) AS findings,
  count(CASE WHEN suppressed THEN 1 END) AS suppressed,
  count(CASE WHEN baseline_state = 'absent' AND NOT suppressed THEN 1 END) AS absent
FROM findings)";

Names overview(Options const& options) {
    constexpr std::uint64_t ten = 10;
    Names                   all = {totals};
    for (char const* const name : {"tool", "level", "rule", "directory", "file"})
        all.push_back(counted({name}, options.counts_all, options.top.value_or(ten)));
    return all;
}

std::string sizes(std::optional<std::uint64_t> top) {
    return "SELECT *\nFROM sizes\nWHERE rows > 0\nORDER BY result_set, bytes DESC, name" +
           limit(top);
}

Names statements_of(Options const& options) {
    if (options.is_overview()) return overview(options);
    Names all;
    if (!options.by.empty()) all.push_back(counted(options.by, options.counts_all, options.top));
    if (options.has_sizes) all.push_back(sizes(options.top));
    return all;
}

void run_all(sml::tables::Database& database, Options const& options, Streams& streams) {
    auto const format = options.rows.format;
    bool const is_read_by_people =
        format == RowFormat::text || format == RowFormat::box || format == RowFormat::markdown;
    Interruption const interruption;
    bool               is_first = true;
    for (std::string const& statement : statements_of(options)) {
        if (!is_first && is_read_by_people) streams.out << '\n';
        is_first = false;
        run_statements(database, "statement", statement, options.rows, streams);
    }
}

/// Takes the rows of `runs_sql()`.
class PlottedRuns : public RowOutput {
public:
    void begin(Names const&) override {}

    void row(sqlite3_stmt* statement) override {
        auto const count = [&](Column column) {
            return static_cast<std::uint64_t>(sqlite3_column_int64(statement, column));
        };
        auto const* const run_name =
            reinterpret_cast<char const*>(sqlite3_column_text(statement, Column::name));
        runs.push_back({sqlite3_column_int64(statement, run), run_name, count(open), count(added),
                        count(returned), count(fixed)});
    }

    std::vector<PlottedRun> runs;

private:
    enum Column : int { run, open, added, returned, fixed, suppressed, name };
};

void plot(SeriesFile& series, std::string const& directory, std::string const& target,
          Streams& streams) {
    PlottedRuns rows;
    series.print(runs_sql(), rows, streams);
    if (rows.runs.empty()) throw DamagedInput(series.name() + ": there are no runs");
    auto const write = [&](std::ostream& out) {
        write_plot(out, "Findings of " + directory, rows.runs);
    };
    if (target == "-")
        write(streams.out);
    else
        write_file(target, write);
}

// Of a series of runs.
ExitCode stats_of_series(Options const& options, Streams& streams) {
    if (!options.is_overview() || options.top || options.counts_all || options.prints_sql)
        throw CLI::ValidationError(
            "--by, --top, --all, --sizes and --sql are not for a series of runs");
    std::string const& directory = options.files.front();
    SeriesFile         series(directory, sml::results::SeriesStore::For::reading);
    if (options.plot) plot(series, directory, *options.plot, streams);
    if (options.plot == "-") return exit_done;
    auto const rows = row_output(options.rows, streams.out, terminal_columns(streams));
    series.print(runs_sql(), *rows, streams);
    return exit_done;
}

ExitCode stats(Options const& options, Streams& streams) {
    if (options.files.size() == 1 && has_series(options.files.front()))
        return stats_of_series(options, streams);
    if (options.plot) throw CLI::ValidationError("--svg goes with the directory of a series");
    if (options.prints_sql) {
        streams.out << joined(statements_of(options), ";\n") << ";\n";
        return exit_done;
    }
    if (options.files.empty()) throw CLI::RequiredError("FILE");
    QueryFiles const files(options, streams);
    if (options.needs_checks()) files.require_checks();
    sml::tables::Database database(files.sets(), Interruption::has_come());
    run_all(database, options, streams);
    return exit_done;
}

}  // namespace

Action declare_stats(CLI::App& app) {
    auto options = std::make_shared<Options>();
    app.add_option("--by", options->by, "Count findings by these, most first")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->type_name("NAME,...")
        ->check(CLI::IsMember(property_names()));
    declare_amount(*app.add_option("--top", options->top, "Print this many rows at most")
                        ->type_name("NUMBER"));
    app.add_flag("--all", options->counts_all, "Count suppressed and absent findings, too");
    app.add_flag(
        "--sizes", options->has_sizes,
        "Print how many rows and bytes each table has, its largest entry and how deep it is");
    app.add_flag("--sql", options->prints_sql, "Print the statements instead; no FILE is needed");
    app.add_option("--svg", options->plot, "Of a series of runs: write a plot, too")
        ->type_name("OUT.svg");
    declare_row_options(app, options->rows);
    declare_query_files(app, *options)->required(false);
    app.footer(
        "Without --by and --sizes: an overview, with the first ten of each. Suppressed and absent\n"
        "findings are left out where they are not counted by suppression or state.\n"
        "In place of FILE..., the directory of a series that `bradep track` keeps can be given: "
        "its\n"
        "runs are printed, with open, new, returned and fixed findings.\n");
    return [options](Streams& streams) { return stats(*options, streams); };
}

}  // namespace bradep
