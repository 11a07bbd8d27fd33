#pragma once
// The parts that every subcommand is made of.

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
    bool          prints_on_standard_output;  ///< of the process, and no stream in its place

    std::set<std::string> notices{};  ///< what need not be said again
};

using Action = std::function<ExitCode(Streams&)>;

struct Command {
    char const* name;
    char const* summary;
    Action (*declare)(CLI::App&);  // declares the options and returns what to do with them
};

Action declare_canon(CLI::App& app);
Action declare_digest(CLI::App& app);
Action declare_dump(CLI::App& app);
Action declare_encode(CLI::App& app);
Action declare_identify(CLI::App& app);
Action declare_import(CLI::App& app);
Action declare_roots(CLI::App& app);
Action declare_schema(CLI::App& app);
Action declare_show(CLI::App& app);
Action declare_verify(CLI::App& app);

}  // namespace bradep
