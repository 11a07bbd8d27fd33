#include "inspect/encode.hpp"

#include <memory>

#include "errors.hpp"
#include "input_bytes.hpp"
#include "output_file.hpp"
#include "walk_options.hpp"

namespace bradep {
namespace {

using namespace sml::inspect;

struct Options {
    std::string   file;
    std::string   output;
    std::uint64_t max_size = default_max_size;
    Limits        limits;
};

std::string described(EncodeError const& error) {
    std::string const place = error.path.empty() ? "" : " at " + error.path;
    return std::to_string(error.position.line) + ":" + std::to_string(error.position.column) +
           place + ": expected " + error.expected + ", found " + error.found;
}

Exit_Code encode_file(Options const& options, Streams& streams) {
    auto const        name = input_name(options.file);
    Input_Bytes const json(options.file, options.max_size, streams.in);
    Progress          progress(streams.err, name + ", encoding", json.view().size());
    write_seekable(options.output, streams.out, [&](std::ostream& out) {
        Encoded const encoded =
            encode(json.view(), out, {.limits = options.limits, .progress = progress.done()});
        if (encoded.error) throw Damaged_Input(name + ":" + described(*encoded.error));
    });
    return exit_done;
}

}  // namespace

Action declare_encode(CLI::App& app) {
    auto options = std::make_shared<Options>();
    app.add_option("FILE.json", options->file, "What dump has printed. - is standard input")
        ->required()
        ->type_name("");
    app.add_option("-o,--output", options->output,
                   "The bytes to write; they appear whole or not at all. - is standard output")
        ->required()
        ->type_name("FILE");
    declare_max_size(app, options->max_size);
    app.add_option("--max-depth", options->limits.depth,
                   "Variants and containers inside one another, at most 1000")
        ->capture_default_str()
        ->check(CLI::Range(1U, Limits::depth_cap))
        ->type_name("NUMBER");
    return [options](Streams& streams) { return encode_file(*options, streams); };
}

}  // namespace bradep
