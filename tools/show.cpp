#include <chrono>
#include <memory>
#include <string>

#include "bindings/bindings.hpp"
#include "command.hpp"
#include "errors.hpp"
#include "json_line.hpp"
#include "result_mapping.hpp"
#include "summary.hpp"
#include "walk_options.hpp"

namespace bradep {
namespace {

using sml::inspect::Answer;

constexpr std::size_t default_rows = 10;

struct Options : Walk_Options {
    bool        json = false;
    std::size_t rows = default_rows;
};

// Throws Damaged_Input for bytes that are not safe to read.
void decode(Walked_Input const& input, std::ostream& err, Result_Set& set) {
    if (input.bytes().empty())
        throw Damaged_Input(input.name() + ": not a result set: the file is empty");
    auto const verdict = input.verify();
    if (verdict.answer == Answer::unsafe)
        throw Damaged_Input(input.name() +
                            ": not a result set: " + described(verdict.findings.back()));
    report_findings(err, input.name(), verdict.findings, verdict.odd_count);
    sml::Base_Gui_Internal_Form_Datas_Aggregated_Results_T_toCxx(set, input.bytes().data());
}

void show_json(Result_Set const& set, std::string const& name, std::ostream& out) {
    try {
        for (auto const& [id, form] : set.check_data) {
            auto const result = restored_result(form, set);
            auto const& [uri, ordinal] = *form.first_numbered_name;
            write_json_line(out, uri.str(), ordinal, result);
        }
    } catch (Damaged_Input const& error) {
        throw Damaged_Input(name + ": " + error.what());
    }
}

Exit_Code show(Options const& options, Streams& streams) {
    auto const         start = std::chrono::steady_clock::now();
    Walked_Input const input(options, streams);
    Result_Set         set;
    decode(input, streams.err, set);
    auto const time = std::chrono::steady_clock::now() - start;
    if (options.json) {
        show_json(set, input.name(), streams.out);
        return exit_done;
    }
    auto const microseconds = std::chrono::duration_cast<std::chrono::microseconds>(time);
    write_summary(streams.out, set,
                  {input.name(), input.bytes().size(), microseconds, options.rows});
    return exit_done;
}

}  // namespace

Action declare_show(CLI::App& app) {
    auto options = std::make_shared<Options>();
    options->stem = "Base_Gui_Internal_Form_Datas_Aggregated_Results_T";
    declare_max_size(app, options->max_size);
    declare_limits(app, options->verify.limits);
    app.footer("The file is verified before it is read.\n");
    app.add_option("FILE", options->file, "The result set. - is standard input")
        ->required()
        ->type_name("");
    app.add_flag("--json", options->json, "One line of JSON a check, in the order of the import");
    app.add_option("-n,--rows", options->rows, "How many rules, files and checks to list at most")
        ->capture_default_str()
        ->type_name("NUMBER");
    return [options](Streams& streams) { return show(*options, streams); };
}

}  // namespace bradep
