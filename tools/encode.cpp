#include <sml/inspect/encode.hpp>

#include "errors.hpp"
#include "input_bytes.hpp"
#include "output_file.hpp"
#include "terminal.hpp"
#include "walk_options.hpp"

#include <memory>

namespace bradep {

namespace {

using namespace sml::inspect;

struct Options {
    std::string   file;
    Output        output;
    std::uint64_t max_size = default_max_size;
    Limits        limits;
};

std::string placed(EncodeError const& error) {
    std::string const place = error.path.empty() ? "" : " at " + error.path;
    return std::to_string(error.position.line) + ":" + std::to_string(error.position.column) +
           place + ": expected " + error.expected + ", found " + error.found;
}

// Throws DamagedInput if the bytes as a whole exceed a limit.
void refuse_unless_encodable(Root const& root, std::string_view bytes, std::string const& name,
                             Limits const& limits) {
    Verdict const verdict = verify(root, bytes, {.limits = limits, .listed = 0});
    if (verdict.reason_against_encoding)
        throw DamagedInput(name + ": not encoded, as a reader could not take the bytes: " +
                           described(*verdict.reason_against_encoding));
}

ExitCode encode_file(Options const& options, Streams& streams) {
    refuse_terminal(options.output, streams);
    auto const       name = input_name(options.file);
    InputBytes const json(options.file, options.max_size, streams.in);
    Progress         progress(streams.err, name + ", encoding", json.view().size());
    Root const*      root = nullptr;
    auto const       write = [&](std::ostream& out) {
        Encoded const encoded =
            encode(json.view(), out, {.limits = options.limits, .progress = progress.done()});
        if (encoded.error) throw DamagedInput(name + ":" + placed(*encoded.error));
        root = encoded.root;
    };
    write_seekable(options.output.target, streams.out, write, [&](std::string_view bytes) {
        refuse_unless_encodable(*root, bytes, name, options.limits);
    });
    return exit_done;
}

}  // namespace

Action declare_encode(CLI::App& app) {
    auto options = std::make_shared<Options>();
    app.add_option("FILE.json", options->file, "JSON as dump prints it. - is standard input")
        ->required()
        ->type_name("");
    declare_output(app, options->output, "The bytes to write");
    declare_max_size(app, options->max_size);
    declare_limits(app, options->limits);
    app.footer(
        "The bytes are verified before the file appears. They are good, or odd in those unset or\n"
        "unknown tags and enumerators that are in the JSON.\n");
    return [options](Streams& streams) { return encode_file(*options, streams); };
}

}  // namespace bradep
