#include <sml/inspect/canonical.hpp>
#include <sml/inspect/text/quote.hpp>
#include "errors.hpp"
#include "output_file.hpp"
#include "terminal.hpp"
#include "walk_options.hpp"

#include <memory>

namespace bradep {

namespace {

using namespace sml::inspect;

struct Options : WalkOptions {
    Output output;
};

// Throws DamagedInput for bytes that have no canonical form.
void refuse_without_canonical_form(WalkedInput const& input) {
    Verdict const verdict = input.verify();
    if (verdict.reason_against_encoding)
        throw DamagedInput(input.name() +
                           ": no canonical form: " + described(*verdict.reason_against_encoding));
}

ExitCode write_canon(Options const& options, Streams& streams) {
    refuse_terminal(options.output, streams);
    WalkedInput const input(options, streams);
    refuse_without_canonical_form(input);
    write_seekable(options.output.target, streams.out, [&](std::ostream& out) {
        input.watch("sorting", [&](VerifyOptions const& watched) {
            write_canonical(input.root(), input.bytes(), out, watched.walk());
        });
    });
    return exit_done;
}

struct DigestOptions : WalkOptions {
    std::vector<std::string> files;
};

// Prints the digest and the name as it was given, in the layout of sha256sum.
ExitCode print_digest(WalkOptions const& options, Streams& streams) {
    WalkedInput const input(options, streams);
    refuse_without_canonical_form(input);
    streams.out << input.watch("sorting",
                               [&](VerifyOptions const& watched) {
                                   return digest(input.root(), input.bytes(), watched.walk());
                               })
                << "  " << printable(options.file) << '\n';
    return exit_done;
}

constexpr char const* what_is_canonical =
    "In canonical bytes the elements of sets and the entries of maps are sorted by their bytes, "
    "with\n"
    "strings compared by text; string ids are assigned anew. Equal content gives equal bytes.\n";

}  // namespace

Action declare_canon(CLI::App& app) {
    auto options = std::make_shared<Options>();
    declare_walk_options(app, *options);
    declare_output(app, options->output, "The bytes to write");
    app.footer(what_is_canonical);
    return [options](Streams& streams) { return write_canon(*options, streams); };
}

Action declare_digest(CLI::App& app) {
    auto options = std::make_shared<DigestOptions>();
    declare_walk_options(app, *options, options->files);
    app.footer("Prints the digest and the name of each file.\n" + std::string(what_is_canonical));
    return [options](Streams& streams) {
        return for_each_file(options->files, *options, streams,
                             [&](WalkOptions const& one) { return print_digest(one, streams); });
    };
}

}  // namespace bradep
