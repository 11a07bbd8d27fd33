#pragma once
// The parts that every subcommand is made of.

#include <CLI/CLI.hpp>
#include <functional>
#include <istream>
#include <ostream>

namespace bradep {

struct Streams {
    std::istream& in;
    std::ostream& out;
    std::ostream& err;
};

using Action = std::function<void(Streams&)>;

struct Command {
    char const* name;
    char const* summary;
    Action (*declare)(CLI::App&);  // declares the options and returns what to do with them
};

Action declare_import(CLI::App& app);
Action declare_show(CLI::App& app);

}  // namespace bradep
