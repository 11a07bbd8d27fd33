#include <sml/inspect/schema_json.hpp>
#include <sml/inspect/text/quote.hpp>
#include "errors.hpp"
#include "input_bytes.hpp"
#include "schema_diff.hpp"
#include "walk_options.hpp"

#include <algorithm>
#include <iomanip>
#include <memory>
#include <optional>
#include <sstream>

namespace bradep {

namespace {

using namespace sml::inspect;

struct Options {
    std::optional<std::string> stem;
    std::optional<std::string> old_file;
    std::uint64_t              max_size = default_max_size;
};

std::span<Root const> chosen_roots(Options const& options) {
    if (!options.stem) return roots();
    return {&root_of(*options.stem), 1};
}

ExitCode print_diff(Options const& options, Streams& streams) {
    auto const         name = input_name(*options.old_file);
    std::ostringstream current;
    write_schema(roots(), current);
    json_input::Document const now(current.view(), "schema");
    InputBytes const           old_text(*options.old_file, options.max_size, streams.in);
    json_input::Document const old(old_text.view(), name);
    try {
        auto const changes = breaking_changes(old.root(), now.root());
        for (auto const& change : changes) streams.out << printable(change) << '\n';
        std::string affected;
        for (auto const& stem : changed_roots(old.root(), now.root()))
            (affected += affected.empty() ? "" : ", ") += stem;
        if (!affected.empty())
            streams.out << "Roots of another form: " << printable(affected) << '\n';
        return changes.empty() ? exit_done : exit_no;
    } catch (json_input::Misfit const& misfit) {
        auto const pointer =
            json_input::pointer_below(old.root(), *misfit.where).value_or(std::string());
        throw DamagedInput(name + ": " + (pointer.empty() ? "" : pointer + ": ") + misfit.what);
    }
}

ExitCode print_roots(Streams& streams) {
    std::size_t width = 0;
    for (Root const& root : roots()) width = std::max(width, root.stem.size());
    for (Root const& root : roots())
        streams.out << std::left << std::setw(static_cast<int>(width)) << root.stem << "  "
                    << type_text(*root.type) << '\n';
    return exit_done;
}

}  // namespace

Action declare_schema(CLI::App& app) {
    auto options = std::make_shared<Options>();
    declare_root_option(app, options->stem);
    app.add_option(
           "--diff", options->old_file,
           "Print instead every change since this older schema that breaks bytes written then")
        ->type_name("OLD.json")
        ->excludes("--root");
    declare_max_size(app, options->max_size);
    app.footer(
        "A root's digest changes when its wire form does. With --diff the exit code is 1 when\n"
        "something breaks.\n");
    return [options](Streams& streams) {
        if (options->old_file) return print_diff(*options, streams);
        write_schema(chosen_roots(*options), streams.out);
        return exit_done;
    };
}

Action declare_roots(CLI::App&) {
    return [](Streams& streams) { return print_roots(streams); };
}

}  // namespace bradep
