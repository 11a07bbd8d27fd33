#pragma once
// The types that all subcommands use, and the functions that declare the subcommands.

#include "errors.hpp"

#include <CLI/CLI.hpp>

#include <functional>
#include <istream>
#include <ostream>
#include <set>
#include <string>

namespace bradep {

struct Streams {
    std::istream& in;
    std::ostream& out;
    std::ostream& err;
    bool          prints_on_standard_output;  ///< `out` is that of the process

    std::set<std::string> notices{};  ///< already printed; not printed twice
};

using Action = std::function<ExitCode(Streams&)>;

struct Command {
    char const* name;
    char const* summary;
    Action (*declare)(CLI::App&);  // declares the options, returns the action
};

Action declare_canon(CLI::App& app);
Action declare_diff(CLI::App& app);
Action declare_digest(CLI::App& app);
Action declare_dump(CLI::App& app);
Action declare_encode(CLI::App& app);
Action declare_export(CLI::App& app);
Action declare_identify(CLI::App& app);
Action declare_import(CLI::App& app);
Action declare_list(CLI::App& app);
Action declare_report(CLI::App& app);
Action declare_roots(CLI::App& app);
Action declare_schema(CLI::App& app);
Action declare_show(CLI::App& app);
Action declare_sql(CLI::App& app);
Action declare_stats(CLI::App& app);
Action declare_tables(CLI::App& app);
Action declare_track(CLI::App& app);
Action declare_verify(CLI::App& app);

}  // namespace bradep
