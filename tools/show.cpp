#include <sml/inspect/text/double_text.hpp>
#include "command.hpp"
#include "errors.hpp"
#include "json_line.hpp"
#include "limited_output.hpp"
#include "read_set.hpp"
#include "set_checks.hpp"
#include "summary.hpp"
#include "terminal.hpp"
#include "walk_options.hpp"

#include <chrono>
#include <memory>
#include <sstream>
#include <string>

namespace bradep {

namespace {

constexpr std::size_t default_rows = 10;

struct Options : WalkOptions {
    bool          json = false;
    std::uint64_t max_output = default_max_output;
    std::size_t   rows = default_rows;
};

void write_json_lines(std::ostream& out, ResultSet const& set) {
    for (auto const& check : checks_of(set)) {
        if (auto const result = imported_result(check, set))
            write_json_line(out, *check.key, *result);
        else
            write_json_line(out, check.key, check.category());
    }
}

void show_json(ResultSet const& set, std::string const& name, std::uint64_t max_output,
               std::ostream& out) {
    LimitedOutput limited(out, max_output);
    limited.stream().exceptions(std::ios::badbit);  // ends the work at the limit
    try {
        write_json_lines(limited.stream(), set);
    } catch (std::ios_base::failure const&) {
        limited.refuse_if_cut(name);  // otherwise `out` failed and keeps the reason
    }
}

ExitCode show(Options const& options, Streams& streams) {
    auto const        start = std::chrono::steady_clock::now();
    WalkedInput const input(options, streams);
    ResultSet         set;
    read_set(input, streams.err, set);
    auto const time = std::chrono::steady_clock::now() - start;
    if (options.json) {
        show_json(set, input.name(), options.max_output, streams.out);
        return exit_done;
    }
    auto const         microseconds = std::chrono::duration_cast<std::chrono::microseconds>(time);
    std::ostringstream summary;
    write_summary(summary, set, {input.name(), input.bytes().size(), microseconds, options.rows});
    print_lines(streams, summary.view());
    return exit_done;
}

}  // namespace

Action declare_show(CLI::App& app) {
    auto options = std::make_shared<Options>();
    options->stem = result_set_stem;
    declare_max_size(app, options->max_size);
    declare_decimal_point(app, options->verify);
    declare_limits(app, options->verify.limits);
    app.footer("The file is verified before it is read.\n");
    app.add_option("FILE", options->file, "The result set. - is standard input")
        ->required()
        ->type_name("");
    app.add_flag("--json", options->json,
                 "One line of JSON a check: those of an import in its order, then by file");
    declare_size(app, "--max-output", options->max_output,
                 "Bytes that --json prints; where there are more, printing ends and the code is 1");
    declare_amount(*app.add_option("-n,--rows", options->rows,
                                   "How many rules, files and checks to list at most")
                        ->capture_default_str()
                        ->type_name("NUMBER"));
    return [options](Streams& streams) { return show(*options, streams); };
}

}  // namespace bradep
