#include "command.hpp"
#include "errors.hpp"
#include "input_bytes.hpp"
#include "prompt.hpp"
#include "query.hpp"
#include "query_files.hpp"
#include "row_output.hpp"
#include "signals.hpp"

#include <memory>
#include <optional>
#include <utility>

namespace bradep {

namespace {

struct Options : QueryOptions {
    std::vector<std::string>   arguments;  // the files and the statement
    std::optional<std::string> statement_file;
    bool                       has_prompt = false;
    RowOptions                 rows;
};

struct Sql {
    std::string name;
    std::string text;
};

std::string text_of(std::string const& path, Streams& streams) {
    constexpr std::uint64_t largest = std::uint64_t{64} << 20;
    return std::string(InputBytes(path, largest, streams.in).view());
}

// Takes the statement away from the arguments, so that these are the files.
std::optional<Sql> take_statement(Options& options, Streams& streams) {
    if (options.has_prompt) return std::nullopt;
    if (options.statement_file) {
        auto const& path = *options.statement_file;
        return Sql{input_name(path), text_of(path, streams)};
    }
    std::string last = std::move(options.arguments.back());
    options.arguments.pop_back();
    if (last == "-") return Sql{input_name(last), text_of(last, streams)};
    return Sql{"statement", std::move(last)};
}

ExitCode ask(Options options, Streams& streams) {
    auto const sql = take_statement(options, streams);
    options.files = options.arguments;
    if (options.files.empty())
        throw CLI::RequiredError(sql ? "FILE, before the statement," : "FILE");
    QueryFiles const      files(options, streams);
    sml::tables::Database database(files.sets(), Interruption::has_come());
    if (!sql) return run_prompt(database, options.rows, streams);
    Interruption const interruption;
    run_statements(database, sql->name, sql->text, options.rows, streams);
    return exit_done;
}

}  // namespace

Action declare_sql(CLI::App& app) {
    auto options = std::make_shared<Options>();
    app.add_option("FILE... STATEMENT", options->arguments,
                   "Result sets, and what is asked: SELECT, WITH, VALUES or EXPLAIN. - reads the "
                   "statement from standard input")
        ->required()
        ->type_name("");
    auto* const file = app.add_option("-f,--file", options->statement_file,
                                      "A file with the statements. - is standard input")
                           ->type_name("FILE.sql");
    app.add_flag("-i,--interactive", options->has_prompt, "Ask again and again, at a prompt")
        ->excludes(file);
    declare_row_options(app, options->rows);
    declare_query_options(app, *options);
    app.footer(
        "The files are verified before they are read. Each has a number, the column result_set.\n"
        "`bradep tables` prints the tables and views, docs/tables.md describes them.\n");
    return [options](Streams& streams) { return ask(*options, streams); };
}

}  // namespace bradep
