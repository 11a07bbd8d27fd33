#include <sml/results/diff.hpp>
#include "command.hpp"
#include "diff/baseline_runs.hpp"
#include "diff/diff_output.hpp"
#include "diff/side_files.hpp"
#include "diff/side_options.hpp"
#include "errors.hpp"
#include "export/sarif_export.hpp"
#include "output_file.hpp"
#include "query_files.hpp"
#include "sarif/set_runs.hpp"
#include "signals.hpp"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace bradep {

namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

struct Options : QueryOptions {
    Names                      sides;  // OLD NEW
    Names                      olds, news;
    std::optional<std::string> old_source, new_source;
    Names                      maps;
    std::optional<std::string> database;
    DiffFormat                 format = DiffFormat::text;
    DiffFilter                 filter;
    Names                      fails_on;
    Names                      explained;
};

std::map<std::string, DiffFormat> const& formats() {
    static std::map<std::string, DiffFormat> const all = {{"text", DiffFormat::text},
                                                          {"json", DiffFormat::json},
                                                          {"ndjson", DiffFormat::ndjson},
                                                          {"markdown", DiffFormat::markdown},
                                                          {"sarif", DiffFormat::sarif}};
    return all;
}

// The files of both sides: OLD and NEW, or those of --old and --new.
std::pair<Names, Names> sides_of(Options const& options) {
    bool const has_lists = !options.olds.empty() || !options.news.empty();
    if (!has_lists && options.sides.size() == 2)
        return {{options.sides.front()}, {options.sides.back()}};
    if (!options.sides.empty() || options.olds.empty() || options.news.empty())
        throw CLI::ValidationError("Give OLD and NEW, or --old FILE... and --new FILE...");
    return {options.olds, options.news};
}

// The states that end with code 3.
Names failing(Names const& given) {
    if (std::ranges::count(given, "any") > 0) return {"new", "updated", "absent"};
    return given;
}

// The runs of a side with the states of their findings.
void add_runs(sarif::JoinedRuns& runs, SideFiles const& files, DiffOutput& output,
              sml::results::Side side, Options const& options) {
    auto        states = output.states(side);
    auto const& sets = files.sets();
    for (std::int64_t set = 1; set <= sets.count(); ++set)
        runs.add(std::make_unique<StatedRuns>(
            sarif::runs_of_set(sets, set, options.verify.walk(), SarifOptions().max_result),
            states[sets.set(set).name]));
}

void print_sarif(DiffOutput& output, Options const& options, SideFiles const& olds,
                 SideFiles const& news, Streams& streams) {
    sarif::JoinedRuns old_runs;
    sarif::JoinedRuns new_runs;
    add_runs(old_runs, olds, output, sml::results::Side::old_side, options);
    add_runs(new_runs, news, output, sml::results::Side::new_side, options);
    write_sarif(BaselineRuns(old_runs, new_runs), streams);
}

ExitCode compare(Options const& options, SideFiles const& olds, SideFiles const& news,
                 std::string const& file, Streams& streams) {
    auto old_side = olds.input();
    auto new_side = news.input();
    old_side.sources = options.old_source;
    new_side.sources = options.new_source;
    sml::results::DiffStore store(file);
    {
        Interruption const interruption;
        diff(old_side, new_side, {roots_of(options.maps)}, store, Interruption::has_come());
    }
    DiffOutput output(store, options.filter, streams);
    if (!options.explained.empty())
        output.explain(options.explained);
    else if (options.format == DiffFormat::sarif)
        print_sarif(output, options, olds, news, streams);
    else
        output.print(options.format);
    return output.count(failing(options.fails_on)) > 0 ? exit_found : exit_done;
}

ExitCode run_diff(Options const& options, Streams& streams) {
    auto const [old_names, new_names] = sides_of(options);
    roots_of(options.maps);  // refused before any work
    refuse_missing_directory(options.old_source);
    refuse_missing_directory(options.new_source);
    SideFiles const olds(old_names, options, streams);
    SideFiles const news(new_names, options, streams);
    try {
        if (!options.database) return compare(options, olds, news, "", streams);
        if (fs::exists(fs::symlink_status(*options.database)))
            throw IoFailure("cannot write " + *options.database + ": it exists already");
        ExitCode            code = exit_done;
        IgnoredSignal const file_too_large(SIGXFSZ);
        create_file(*options.database, [&](fs::path const& path) {
            code = compare(options, olds, news, path.string(), streams);
        });
        return code;
    } catch (sml::tables::SqlError const& error) {
        if ((error.code & 0xFF) == SQLITE_INTERRUPT) throw IoFailure("interrupted");
        throw IoFailure(std::string("cannot write the diff: ") + error.what());
    }
}

void declare_inputs(CLI::App& app, Options& options) {
    app.add_option("OLD NEW", options.sides,
                   "A result set or SARIF log each, or a directory of these")
        ->type_name("")
        ->expected(0, 2);
    app.add_option("--old", options.olds, "Instead of OLD: several files or directories")
        ->type_name("FILE...");
    app.add_option("--new", options.news, "Instead of NEW: the same")->type_name("FILE...");
    app.add_option("--old-source", options.old_source, "The sources of OLD")->type_name("DIR");
    app.add_option("--new-source", options.new_source, "The sources of NEW")->type_name("DIR");
    declare_map(app, options.maps);
}

void declare_conditions(CLI::App& app, Options& options) {
    app.add_option("--level", options.filter.levels, "Only findings with one of these levels")
        ->type_name("LEVEL,...")
        ->allow_extra_args(false)
        ->delimiter(',')
        ->check(CLI::IsMember({"none", "note", "warning", "error"}));
    app.add_option("--rule", options.filter.rules, "Only findings whose rule matches, as in java/*")
        ->type_name("GLOB")
        ->allow_extra_args(false);
    app.add_option("--state", options.filter.states,
                   "What is listed: new, updated, absent, unchanged. Without it, text and markdown "
                   "leave out unchanged findings")
        ->type_name("STATE,...")
        ->allow_extra_args(false)
        ->delimiter(',')
        ->check(CLI::IsMember(diff_states()));
    app.add_option("--fail-on", options.fails_on,
                   "End with 3 if a finding that is not suppressed is new, updated, absent, or any "
                   "of these")
        ->type_name("STATE,...")
        ->allow_extra_args(false)
        ->delimiter(',')
        ->check(CLI::IsMember({"new", "updated", "absent", "any"}));
}

void declare_outputs(CLI::App& app, Options& options) {
    app.add_option_function<std::string>(
           "--format", [&options](std::string const& name) { options.format = formats().at(name); },
           "text, json, ndjson, markdown, or sarif: a log with the state of each result, those of "
           "absent findings included")
        ->check(CLI::IsMember({"text", "json", "ndjson", "markdown", "sarif"}))
        ->default_str("text")
        ->type_name("FORMAT");
    app.add_option("--explain", options.explained,
                   "Print how the findings with this key were matched")
        ->type_name("URI:N")
        ->allow_extra_args(false);
    app.add_option("--sqlite", options.database, "Write the diff to a new SQLite database, too")
        ->type_name("OUT.db");
}

// Unchanged findings are listed where programs read.
void choose_states(Options& options) {
    bool const is_for_people =
        options.format == DiffFormat::text || options.format == DiffFormat::markdown;
    if (is_for_people && options.filter.states.empty())
        options.filter.states = {"new", "updated", "absent"};
}

}  // namespace

Action declare_diff(CLI::App& app) {
    auto options = std::make_shared<Options>();
    declare_inputs(app, *options);
    declare_conditions(app, *options);
    declare_outputs(app, *options);
    declare_query_options(app, *options);
    app.footer(
        "Tells of each finding whether it is new, absent, unchanged or updated. It is unchanged\n"
        "wherever it moved to; it is updated if its message, level, kind, suppression, class,\n"
        "payload or flow differs. docs/diff.md describes how findings are matched.\n");
    return [options](Streams& streams) {
        choose_states(*options);
        return run_diff(*options, streams);
    };
}

}  // namespace bradep
