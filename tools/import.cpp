#include "import.hpp"

#include <sml/bindings/bindings.hpp>
#include "command.hpp"
#include "errors.hpp"
#include "input_bytes.hpp"
#include "output_file.hpp"
#include "result_set.hpp"
#include "sarif/fields.hpp"
#include "sarif/mapping.hpp"
#include "sarif/reader.hpp"
#include "terminal.hpp"
#include "walk_options.hpp"

#include <filesystem>
#include <list>
#include <memory>
#include <string>
#include <vector>

namespace bradep {

namespace {

using sml::inspect::Answer;
using sml::inspect::VerifyOptions;

struct Options {
    std::vector<std::string> inputs;
    Output                   output;
    std::uint64_t            max_size = default_max_size;
    sarif::Limits            limits;
    VerifyOptions            verify;  // for verifying the output
};

std::string output_name(Options const& options) {
    return options.output.target == "-" ? "standard output" : options.output.target;
}

// Throws DamagedInput unless the bytes of the set are good.
void refuse_unless_good(std::string_view bytes, Options const& options, std::ostream& err) {
    auto const name = output_name(options);
    auto const verdict = watch(err, name + ", verifying", bytes.size(), options.verify,
                               [&](VerifyOptions const& watched) {
                                   return verify(root_of(result_set_stem), bytes, watched);
                               });
    if (verdict.answer != Answer::good)
        throw DamagedInput(name + ": not written, as it would be no good result set: " +
                           described(verdict.findings.back()));
}

json_input::JsonText checked(std::string_view text, std::string const& name, std::ostream& err) {
    Progress progress(err, name + ", checking", text.size());
    return json_input::JsonText(text, name, progress.done());
}

std::int32_t& run_count_of(ResultSet& set) {
    return sarif::fields::runs.held(sarif::SetRecord{set});
}

// Returns the number of runs of the log.
std::int32_t import_log(std::string_view text, std::string const& name, Options const& options,
                        std::int32_t first_run, sarif::SetFiller& filler, Comparisons& comparisons,
                        std::ostream& err) {
    auto const json = checked(text, name, err);
    Progress   progress(err, name + ", importing", json.view().size());
    auto const add = [&](auto&& part) { filler.add(part); };
    return sarif::read_log(json, name, first_run, add, options.limits, comparisons, progress.done(),
                           add);
}

// A set that is never destroyed: that would take a tenth of the time of a large import, and the
// process is about to end.
ResultSet& lasting_set() {
    static auto& sets = *new std::list<ResultSet>;
    return sets.emplace_back();
}

void fill(ResultSet& set, Options const& options, Streams& streams) {
    Comparisons      comparisons(options.verify.limits.work);
    sarif::SetFiller filler(set, comparisons);
    for (auto const& input : options.inputs) {
        InputBytes text(input, options.max_size, streams.in);
        text.unpack();
        auto& runs = run_count_of(set);
        runs += import_log(text.view(), input_name(input), options, runs, filler, comparisons,
                           streams.err);
    }
    filler.finish();
}

void import_logs(Options const& options, ResultSet& set, Streams& streams) {
    refuse_terminal(options.output, streams);
    refuse_overwriting_an_input(options.output.target, options.inputs);
    fill(set, options, streams);
    auto const write = [&](std::ostream& out) {
        Progress const progress(streams.err, output_name(options) + ", writing");
        sml::Base_Gui_Internal_Form_Datas_Aggregated_Results_T_toStream(set, out);
    };
    write_seekable(options.output.target, streams.out, write, [&](std::string_view bytes) {
        refuse_unless_good(bytes, options, streams.err);
    });
}

}  // namespace

void import_log(std::string const& log, std::string const& target, std::uint64_t max_size,
                VerifyOptions const& verify, Streams& streams) {
    Options options;
    options.inputs = {log};
    options.output.target = target;
    options.max_size = max_size;
    options.verify = verify;
    ResultSet set;
    import_logs(options, set, streams);
}

Action declare_import(CLI::App& app) {
    auto options = std::make_shared<Options>();
    app.add_option(
           "RESULTS.sarif", options->inputs,
           "SARIF 2.1.0 logs, whose runs are numbered across all of them. - is standard input")
        ->required()
        ->type_name("");
    declare_output(app, options->output, "The bytes of the result set to write");
    declare_max_size(app, options->max_size);
    declare_size(app, "--max-message", options->limits.message,
                 "Bytes of a message that is expanded from a text and arguments");
    declare_size(app, "--max-expansion", options->limits.expansion,
                 "Bytes of a log's texts, each counted wherever a result refers to it");
    declare_limits(app, options->verify.limits);
    app.footer("What is written is verified first: it is good, or the command ends with code 1.\n");
    return [options](Streams& streams) {
        import_logs(*options, lasting_set(), streams);
        return exit_done;
    };
}

}  // namespace bradep
