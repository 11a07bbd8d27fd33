#include "export/export.hpp"
#include "command.hpp"
#include "errors.hpp"
#include "export/database_export.hpp"
#include "export/directory_export.hpp"
#include "export/sarif_export.hpp"
#include "messages.hpp"
#include "output_file.hpp"
#include "query_files.hpp"
#include "walk_options.hpp"

#include <csignal>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace bradep {

namespace {

namespace fs = std::filesystem;

struct Options : QueryOptions {
    std::optional<std::string> database;
    std::optional<std::string> csv_directory;
    std::optional<std::string> ndjson_directory;
    SarifOptions               sarif;
};

// One file after another is open.
void add_files(Export& target, std::string const& name, QueryOptions options, Streams& streams) {
    for (auto const& file : std::exchange(options.files, {})) {
        if (!options.stem && target.root() != nullptr) options.stem = target.root()->stem;
        options.files = {file};
        auto const files = std::make_shared<QueryFiles const>(options, streams);
        if (!target.add({files, &files->sets()}))
            print_message(streams.err, file + ": is in " + name + " already");
    }
    target.finish();
}

void export_to_database(std::string const& name, Options const& options, Streams& streams) {
    auto const add_to = [&](fs::path const& path, DatabaseExport::File file) {
        DatabaseExport target(path, file, name, streams.err);
        add_files(target, name, options, streams);
    };
    auto const status = fs::status(name);
    if (fs::exists(status) && !fs::is_regular_file(status))
        throw IoFailure("cannot write " + name + ": it is no regular file");
    if (fs::exists(status)) return add_to(fs::absolute(name), DatabaseExport::File::exported);
    create_file(name, [&](fs::path const& path) { add_to(path, DatabaseExport::File::empty); });
}

void export_to_directory(std::string const& name, FileFormat format, Options const& options,
                         Streams& streams) {
    DirectoryExport target(name, format, streams.err);
    add_files(target, name, options, streams);
}

ExitCode export_files(Options const& options, Streams& streams) {
    IgnoredSignal const file_too_large(SIGXFSZ);
    Interruption        interruption;
    try {
        if (!options.sarif.target.empty()) export_to_sarif(options.sarif, options, streams);
        if (options.database) export_to_database(*options.database, options, streams);
        if (auto const& name = options.csv_directory)
            export_to_directory(*name, FileFormat::csv, options, streams);
        if (auto const& name = options.ndjson_directory)
            export_to_directory(*name, FileFormat::ndjson, options, streams);
    } catch (Interrupted const&) {
        interruption.end_process();
    }
    return exit_done;
}

}  // namespace

Action declare_export(CLI::App& app) {
    auto options = std::make_shared<Options>();
    app.add_option("FILE", options->files, "Result sets, all of one root")
        ->required()
        ->type_name("");
    auto* const target = app.add_option_group("Target", "Where to; one of these:");
    target->add_option("--sqlite", options->database, "An SQLite database, new or from an export")
        ->type_name("OUT.db");
    target
        ->add_option("--csv", options->csv_directory,
                     "A directory of CSV files, new or from an export")
        ->type_name("DIR");
    target->add_option("--ndjson", options->ndjson_directory, "The same of JSON, an object a line")
        ->type_name("DIR");
    auto* const sarif = target->add_option(
        "--sarif", options->sarif.target,
        "A SARIF 2.1.0 log of all runs; compressed if it ends with .gz; - is standard output");
    sarif->type_name("OUT.sarif");
    target->require_option(1);
    declare_query_options(app, *options);
    app.add_option_function<std::string>(
           "--limits", [options](std::string const&) { options->sarif.has_upload_limits = true; },
           "Leave out of the log of --sarif what a service does not take: github, 25,000 results "
           "a run and 10 MB compressed among others. The most severe results stay")
        ->type_name("github")
        ->needs(sarif)
        ->check(CLI::IsMember({"github"}));
    declare_size(app, "--max-output", options->sarif.max_output,
                 "Bytes of the log that --sarif writes");
    declare_size(app, "--max-result", options->sarif.max_result,
                 "Bytes of the texts of one result in that log");
    app.footer(
        "A result set that is there already is not added again. docs/tables.md describes the "
        "tables.\n");
    return [options](Streams& streams) { return export_files(*options, streams); };
}

}  // namespace bradep
