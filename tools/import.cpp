#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "bindings/bindings.hpp"
#include "command.hpp"
#include "errors.hpp"
#include "input_file.hpp"
#include "output_file.hpp"
#include "result_mapping.hpp"
#include "sarif_reader.hpp"

namespace bradep {
namespace {

struct Options {
    std::vector<std::string> inputs;
    std::string              output;
};

void refuse_overwriting_an_input(Options const& options) {
    std::error_code error;  // names that cannot be looked at are told of when they are opened
    for (auto const& input : options.inputs)
        if (std::filesystem::is_regular_file(options.output, error) &&
            std::filesystem::equivalent(input, options.output, error))
            throw Io_Failure("the output " + options.output + " is also an input");
}

void import_logs(Options const& options, Streams& streams) {
    refuse_overwriting_an_input(options);
    Result_Set set;
    auto&      run_count = set.application_results.first_int;
    for (auto const& input : options.inputs) {
        auto const text = read_input(input, streams.in);
        run_count += sarif::read_log(text, input_name(input), run_count,
                                     [&](sarif::Result&& result) { add_result(result, set); });
    }
    auto const write = [&](std::ostream& out) {
        sml::Base_Gui_Internal_Form_Datas_Aggregated_Results_T_toStream(set, out);
    };
    if (options.output == "-")
        write(streams.out);
    else
        write_file(options.output, write);
}

}  // namespace

Action declare_import(CLI::App& app) {
    auto options = std::make_shared<Options>();
    app.add_option("RESULTS.sarif", options->inputs,
                   "SARIF 2.1.0 logs; the runs of several are counted on. - is standard input")
        ->required()
        ->type_name("");
    app.add_option("-o,--output", options->output,
                   "The result set to write; it appears whole or not at all. - is standard output")
        ->required()
        ->type_name("FILE");
    return [options](Streams& streams) {
        import_logs(*options, streams);
        return exit_done;
    };
}

}  // namespace bradep
