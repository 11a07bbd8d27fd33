#include <sml/tables/result_sets.hpp>
#include <sml/tables/sqlite/database.hpp>
#include "command.hpp"
#include "result_set.hpp"
#include "walk_options.hpp"

#include <memory>
#include <optional>
#include <string>

namespace bradep {

namespace {

ExitCode print_tables(std::string const& stem, Streams& streams) {
    sml::tables::ResultSets const none(root_of(stem), {});
    streams.out << sml::tables::Database(none).schema_of({});
    return exit_done;
}

}  // namespace

Action declare_tables(CLI::App& app) {
    auto stem = std::make_shared<std::optional<std::string>>();
    declare_root_option(app, *stem);
    app.footer("Without --root: those of a result set, " + std::string(result_set_stem) + ".\n");
    return
        [stem](Streams& streams) { return print_tables(stem->value_or(result_set_stem), streams); };
}

}  // namespace bradep
