#include <chrono>
#include <memory>
#include <sstream>
#include <string>

#include "bindings/bindings.hpp"
#include "command.hpp"
#include "errors.hpp"
#include "input_file.hpp"
#include "json_line.hpp"
#include "result_mapping.hpp"
#include "summary.hpp"

namespace bradep {
namespace {

constexpr std::size_t default_rows = 10;

struct Options {
    std::string file;
    bool        json = false;
    std::size_t rows = default_rows;
};

// The bytes are not verified. What little can be told without that is: too few bytes or too many.
void decode(std::string bytes, std::string const& name, Result_Set& set) {
    if (bytes.empty()) throw Damaged_Input(name + ": not a result set: the file is empty");
    auto const         size = bytes.size();
    std::istringstream stream(std::move(bytes), std::ios::binary);
    // The reader does not look at the stream's state; without this it would go on at the end.
    stream.exceptions(std::ios::failbit | std::ios::badbit);
    try {
        sml::Base_Gui_Internal_Form_Datas_Aggregated_Results_T_fromStream(set, stream);
    } catch (std::ios_base::failure const&) {
        throw Damaged_Input(name + ": not a result set: it ends too early, at byte " +
                            std::to_string(size));
    } catch (std::exception const& error) {
        throw Damaged_Input(name + ": not a result set: " + error.what());
    }
    auto const used = static_cast<std::size_t>(stream.tellg());
    if (used != size)
        throw Damaged_Input(name + ": not a result set: it should end at byte " +
                            std::to_string(used));
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

void show(Options const& options, Streams& streams) {
    auto const name = input_name(options.file);
    auto const start = std::chrono::steady_clock::now();
    auto       bytes = read_input(options.file, streams.in);
    auto const size = bytes.size();
    Result_Set set;
    decode(std::move(bytes), name, set);
    auto const time = std::chrono::steady_clock::now() - start;
    if (options.json) return show_json(set, name, streams.out);
    auto const microseconds = std::chrono::duration_cast<std::chrono::microseconds>(time);
    write_summary(streams.out, set, {name, size, microseconds, options.rows});
}

}  // namespace

Action declare_show(CLI::App& app) {
    auto options = std::make_shared<Options>();
    app.footer(
        "The file is trusted to be a result set: nothing verifies it yet, and other bytes may "
        "crash the\n"
        "command or make it ask for much memory.\n");
    app.add_option("FILE", options->file, "The result set. - is standard input")
        ->required()
        ->type_name("");
    app.add_flag("--json", options->json, "One line of JSON a check, in the order of the import");
    app.add_option("-n,--rows", options->rows, "How many rules, files and checks to list at most")
        ->capture_default_str()
        ->type_name("NUMBER");
    return [options](Streams& streams) { show(*options, streams); };
}

}  // namespace bradep
