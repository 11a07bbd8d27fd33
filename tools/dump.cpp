#include <sml/inspect/dump.hpp>

#include "errors.hpp"
#include "limited_output.hpp"
#include "messages.hpp"
#include "path_check.hpp"
#include "terminal.hpp"
#include "walk_options.hpp"

#include <algorithm>
#include <memory>

namespace bradep {

namespace {

using namespace sml::inspect;

struct Options : WalkOptions {
    bool          pretty = false;
    std::uint64_t max_output = default_max_output;
    std::string   part;
    std::string   container;
};

std::uint64_t odd_ones(std::vector<Finding> const& findings) {
    return static_cast<std::uint64_t>(
        std::ranges::count(findings, Severity::odd, &Finding::severity));
}

std::string missing_part(std::string const& path, Dumped const& dumped) {
    auto const owner = part_name(std::string_view(path).substr(0, dumped.reached));
    return "there is no " + std::string(step_at(path, dumped.reached)) + " in " + owner;
}

ExitCode dump_file(Options const& options, CLI::App const& app, Streams& streams) {
    WalkedInput const input(options, streams);
    DumpOptions       dump_options;
    bool const        in_lines = app.count("--ndjson") > 0;
    dump_options.path = in_lines ? options.container : options.part;
    if (in_lines)
        dump_options.form = DumpOptions::Form::lines;
    else if (options.pretty)
        dump_options.form = DumpOptions::Form::pretty;

    if (auto const complaint = path_complaint(*input.root().type, dump_options.path, in_lines))
        throw DamagedInput(input.name() + ": " + *complaint);
    LimitedOutput limited(streams.out, options.max_output);
    Dumped const  dumped = input.watch("printing", [&](VerifyOptions const& watched) {
        dump_options.walk = watched;
        // On a terminal, the line of progress would appear in the middle of the JSON.
        if (prints_on_terminal(streams)) dump_options.walk.progress = nullptr;
        return dump(input.root(), input.bytes(), limited.stream(), dump_options);
    });
    limited.refuse_if_cut(input.name());
    streams.out.flush();  // so that the findings appear after the JSON
    report_findings(streams.err, input.name(), dumped.findings);
    if (auto const more = dumped.odd_count - odd_ones(dumped.findings))
        print_message(streams.err,
                      input.name() + ": " + std::to_string(more) + " more odd findings");
    if (!dumped.found && dumped.answer != Answer::unsafe)
        print_message(streams.err, input.name() + ": " + missing_part(dump_options.path, dumped));
    return dumped.found && dumped.answer != Answer::unsafe ? exit_done : exit_no;
}

}  // namespace

Action declare_dump(CLI::App& app) {
    auto options = std::make_shared<Options>();
    declare_walk_options(app, *options);
    declare_findings_option(app, *options, "How many odd findings to list; all are counted");
    declare_size(app, "--max-output", options->max_output,
                 "Bytes to print; where there are more, printing ends and the code is 1");
    auto* const pretty = app.add_flag("--pretty", options->pretty, "With line breaks");
    auto* const select =
        app.add_option("--select", options->part,
                       "Only this part, as in checks[(\"src/a.c\",3)].category.OVFL; [#3] is "
                       "the value of the fourth entry of a map")
            ->type_name("PATH");
    app.add_option("--ndjson", options->container,
                   "One line for each element or [key, value] of this list, set or map")
        ->type_name("PATH")
        ->excludes(pretty)
        ->excludes(select);
    app.footer(
        "Prints the value that a reader would make of the bytes, as JSON. Where bytes are unsafe, "
        "the\n"
        "output ends: {\"unsafe\": ...} stands in place of the value that could not be read, and "
        "the\n"
        "finding goes to standard error.\n");
    return [options, &app](Streams& streams) { return dump_file(*options, app, streams); };
}

}  // namespace bradep
