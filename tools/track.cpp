#include <sml/inspect/text/quote.hpp>
#include <sml/results/series.hpp>
#include "command.hpp"
#include "diff/side_files.hpp"
#include "diff/side_options.hpp"
#include "errors.hpp"
#include "messages.hpp"
#include "query_files.hpp"
#include "row_output.hpp"
#include "signals.hpp"
#include "terminal.hpp"
#include "track/series_file.hpp"

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace bradep {

namespace {

using Names = std::vector<std::string>;
using sml::results::SeriesStore;

struct Options : QueryOptions {
    std::string                directory;
    Names                      runs;
    std::optional<std::string> source;
    Names                      maps;
    bool                       adds_again = false;
    std::optional<std::string> listed;
    RowOptions                 rows;
};

/// Which findings --list prints, by columns of the view `findings`.
std::map<std::string, char const*> const& states() {
    static std::map<std::string, char const*> const all = {
        {"all", "1"},
        {"open", "state = 'open' AND NOT suppressed"},
        {"gone", "state = 'gone'"},
        {"new", "first_run = last AND state = 'open' AND NOT suppressed"},
        {"returned", "back_run = last AND state = 'open' AND NOT suppressed"},
        {"fixed", "gone_run = last AND NOT suppressed"},
        {"suppressed", "state = 'open' AND suppressed"}};
    return all;
}

Names names_of_states() {
    Names names;
    for (auto const& [name, condition] : states()) names.push_back(name);
    return names;
}

std::string findings_sql(std::string const& state, bool is_text) {
    std::string const columns = is_text ? "id, state, first_run, last_run, level, rule, uri, line,"
                                          " message"
                                        : "findings.*";
    return "SELECT " + columns + " FROM findings, (SELECT max(run) AS last FROM runs) WHERE " +
           states().at(state) + " ORDER BY id";
}

struct AddedRun {
    std::int64_t            number;
    sml::results::RunCounts counts;
};

void print(AddedRun const& run, std::string const& name, std::ostream& out) {
    auto const& counts = run.counts;
    out << "run " << run.number << ": " << counts.open << " open, " << counts.added << " new, "
        << counts.returned << " returned, " << counts.fixed << " fixed, " << counts.suppressed
        << " suppressed (" << sml::inspect::printable(name) << ")\n";
}

// Returns none if the run is there already. A transaction that has begun ends with the file.
std::optional<AddedRun> add(std::string const& name, Options const& options, Streams& streams) {
    SideFiles const side({name}, options, streams);
    auto            input = side.input();
    input.sources = options.source;
    sml::results::Run const run{input, name, digest_of(*input.sets)};
    Interruption const      interruption;
    SeriesFile              file(options.directory, SeriesStore::For::adding);
    return file.use([&](SeriesStore& store) -> std::optional<AddedRun> {
        store.begin();
        if (auto const there = store.run_with(run.digest); there && !options.adds_again) {
            print_message(streams.err, name + ": is in " + options.directory + " already, as run " +
                                           std::to_string(*there) +
                                           "; not added (--again adds it)");
            return std::nullopt;
        }
        auto const counts =
            sml::results::add_run(run, {roots_of(options.maps)}, store, Interruption::has_come());
        store.commit();
        return AddedRun{store.last_run(), counts};
    });
}

void check(Options const& options) {
    roots_of(options.maps);
    refuse_missing_directory(options.source);
    bool const is_for_one = options.source || !options.maps.empty();
    if (is_for_one && options.runs.size() != 1)
        throw CLI::ValidationError("--source and --map go with one SET");
}

// Returns the number of the first run that was added; none if all were there already.
std::optional<std::int64_t> add_all(Options const& options, bool prints_lines, Streams& streams) {
    IgnoredSignal const         file_too_large(SIGXFSZ);
    std::optional<std::int64_t> first;
    for (std::string const& name : options.runs) {
        auto const added = add(name, options, streams);
        if (!added) continue;
        if (!first) first = added->number;
        if (prints_lines) print(*added, name, streams.out);
    }
    return first;
}

ExitCode track(Options const& options, Streams& streams) {
    check(options);
    bool const is_text = options.rows.format == RowFormat::text;
    bool const prints_lines = is_text && !options.listed && !options.runs.empty();
    auto const first = add_all(options, prints_lines, streams);
    if (prints_lines) return exit_done;
    SeriesFile file(options.directory, SeriesStore::For::reading);
    auto const rows = row_output(options.rows, streams.out, terminal_columns(streams));
    if (options.listed)
        file.print(findings_sql(*options.listed, is_text), *rows, streams);
    else
        file.print(options.runs.empty() ? runs_sql() : runs_sql_from(first), *rows, streams);
    return exit_done;
}

}  // namespace

Action declare_track(CLI::App& app) {
    auto options = std::make_shared<Options>();
    app.add_option("DIR", options->directory, "The directory of the series")
        ->required()
        ->type_name("");
    app.add_option("SET", options->runs,
                   "Runs, in their order: each a result set, a SARIF log or a directory of these")
        ->type_name("");
    app.add_option("--list", options->listed,
                   "Print findings with their identities: all, gone, or those that the table of "
                   "the runs counts for the last run: open, new, returned, fixed, suppressed")
        ->type_name("STATE")
        ->check(CLI::IsMember(names_of_states()));
    app.add_option("--source", options->source, "The sources of SET")->type_name("DIR");
    declare_map(app, options->maps);
    app.add_flag("--again", options->adds_again,
                 "Add a run although its digest is that of an earlier one");
    declare_row_options(app, options->rows);
    declare_query_options(app, *options);
    app.footer(
        "Keeps the findings of a series of runs in DIR/track.db, which is made if it is missing.\n"
        "Each has a number that stays. Without SET, prints the table of the runs.\n"
        "docs/track.md describes the database; `bradep stats DIR --svg OUT.svg` plots the runs.\n");
    return [options](Streams& streams) { return track(*options, streams); };
}

}  // namespace bradep
