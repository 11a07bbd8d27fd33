#include "run.hpp"

#include <sml/inspect/finding.hpp>
#include <sml/inspect/text/nearest.hpp>
#include "command.hpp"
#include "errors.hpp"
#include "messages.hpp"
#include "noting_output.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iostream>
#include <new>

namespace bradep {

namespace {

constexpr Command commands[] = {
    {"import", "Make a result set from the SARIF output of an analyser", declare_import},
    {"show", "Print what a result set holds", declare_show},
    {"list", "List findings, one a line", declare_list},
    {"stats", "Count findings by what they have in common, or tell sizes", declare_stats},
    {"diff", "Tell what is new, updated and absent between result sets or logs", declare_diff},
#ifdef BRADEP_REPORT
    {"report", "Write a report that browsers open from disk", declare_report},
#endif
    {"track", "Keep the findings of a series of runs, each under one number", declare_track},
    {"sql", "Ask result sets in SQL", declare_sql},
    {"export", "Write the tables of result sets to a database or to files", declare_export},
    {"tables", "Print the tables that result sets have in SQL", declare_tables},
    {"verify", "Check whether bytes are safe to read, and list what is odd", declare_verify},
    {"dump", "Print bytes as JSON", declare_dump},
    {"encode", "Make bytes of the JSON that dump prints", declare_encode},
    {"identify", "List the roots that bytes can be a value of", declare_identify},
    {"canon", "Write the canonical bytes", declare_canon},
    {"digest", "Print the SHA-256 of the canonical bytes", declare_digest},
    {"schema", "Print the types of the wire form as JSON, or what changed in them", declare_schema},
    {"roots", "List the root types", declare_roots},
};

constexpr char const* exit_codes =
    "Exit codes: 0 done, 1 the input is damaged or refused, 2 wrong usage, a file that\n"
    "cannot be read or written, or no memory left. Errors go to standard error.";

int ended(std::ostream& err, ExitCode code, std::string const& what) {
    print_message(err, what);
    return code;
}

// The option parser's own message would name neither the command nor a similar one.
void refuse_unknown_command(std::vector<std::string> const& args) {
    auto const first =
        std::ranges::find_if(args, [](auto const& arg) { return !arg.starts_with('-'); });
    auto const name_of = [](Command const& command) { return std::string_view(command.name); };
    if (first == args.end() || std::ranges::count(commands, *first, name_of) > 0) return;
    auto const nearest = sml::inspect::nearest_name(*first, commands, name_of);
    bool const is_near = sml::inspect::edit_distance(*first, nearest) <= nearest.size() / 2;
    throw CLI::ParseError("no such command: " + *first +
                              (is_near ? " (" + std::string(nearest) + "?)" : std::string()),
                          exit_usage_or_io);
}

// Flushing standard output can fail, for example on a full disk.
void finish(NotingOutput& out) {
    if (out.stream().flush()) return;
    throw IoFailure(std::string("cannot write standard output: ") +
                    std::strerror(out.error() ? out.error() : EIO));
}

ExitCode parse_and_act(CLI::App& app, std::vector<std::string> args,
                       std::vector<Action> const& actions, NotingOutput& out, Streams streams) {
    ExitCode code = exit_done;
    refuse_unknown_command(args);
    try {
        std::reverse(args.begin(), args.end());  // the parser takes the last one first
        app.parse(std::move(args));
        if (app.get_subcommands().empty()) throw CLI::RequiredError("A command");
        for (std::size_t i = 0; i < actions.size(); ++i)
            if (app.got_subcommand(commands[i].name)) code = actions[i](streams);
    } catch (CLI::Success const& help_or_version) {
        app.exit(help_or_version, streams.out, streams.err);
    }
    finish(out);
    return code;
}

}  // namespace

int run(std::vector<std::string> const& args, std::istream& in, std::ostream& out,
        std::ostream& err) {
    CLI::App app("Imports, shows and inspects the results of static analysers.", "bradep");
    app.set_version_flag("--version", "bradep " BRADEP_VERSION);
    app.require_subcommand(0, 1);
    std::vector<Action> actions;
    for (auto const& command : commands) {
        auto* subcommand = app.add_subcommand(command.name, command.summary);
        actions.push_back(command.declare(*subcommand));
        subcommand->footer(subcommand->get_footer() + exit_codes);
    }
    // Commands without a footer would inherit it.
    app.footer(exit_codes);
    try {
        NotingOutput noting(out);
        return parse_and_act(app, args, actions, noting,
                             {in, noting.stream(), err, &out == &std::cout});
    } catch (CLI::ParseError const& error) {
        return ended(err, exit_usage_or_io, std::string(error.what()) + " (see bradep --help)");
    } catch (DamagedInput const& error) {
        return ended(err, exit_no, error.what());
    } catch (sml::inspect::BudgetExceeded const&) {
        return ended(err, exit_usage_or_io, out_of_own_memory);
    } catch (std::bad_alloc const&) {
        return ended(err, exit_usage_or_io, "out of memory");
    } catch (std::exception const& error) {
        return ended(err, exit_usage_or_io, error.what());
    }
}

}  // namespace bradep
