#include <memory>

#include <sml/inspect/canonical.hpp>
#include <sml/inspect/text/quote.hpp>
#include "errors.hpp"
#include "output_file.hpp"
#include "terminal.hpp"
#include "walk_options.hpp"

namespace bradep {
namespace {

using namespace sml::inspect;

struct Options : Walk_Options {
    Output output;
};

// Throws Damaged_Input for bytes that have no canonical form.
void refuse_without_canonical_form(Walked_Input const& input) {
    Verdict const verdict = input.verify();
    if (verdict.reason_against_encoding)
        throw Damaged_Input(input.name() +
                            ": no canonical form: " + described(*verdict.reason_against_encoding));
}

Exit_Code write_canon(Options const& options, Streams& streams) {
    refuse_terminal(options.output, streams);
    Walked_Input const input(options, streams);
    refuse_without_canonical_form(input);
    write_seekable(options.output.target, streams.out, [&](std::ostream& out) {
        input.watch("sorting", [&](VerifyOptions const& watched) {
            write_canonical(input.root(), input.bytes(), out, watched.walk());
        });
    });
    return exit_done;
}

struct Digest_Options : Walk_Options {
    std::vector<std::string> files;
};

// As other programs print sums, with the name that was given.
Exit_Code print_digest(Walk_Options const& options, Streams& streams) {
    Walked_Input const input(options, streams);
    refuse_without_canonical_form(input);
    streams.out << input.watch("sorting",
                               [&](VerifyOptions const& watched) {
                                   return digest(input.root(), input.bytes(), watched.walk());
                               })
                << "  " << printable(options.file) << '\n';
    return exit_done;
}

constexpr char const* what_is_canonical =
    "Canonical bytes have the entries of sets and tables in the order of their bytes, with "
    "strings\n"
    "compared by text and numbered anew: equal bytes for equal content.\n";

}  // namespace

Action declare_canon(CLI::App& app) {
    auto options = std::make_shared<Options>();
    declare_walk_options(app, *options);
    declare_output(app, options->output, "The bytes to write");
    app.footer(what_is_canonical);
    return [options](Streams& streams) { return write_canon(*options, streams); };
}

Action declare_digest(CLI::App& app) {
    auto options = std::make_shared<Digest_Options>();
    declare_walk_options(app, *options, options->files);
    app.footer("Prints the sum and the name of each file.\n" + std::string(what_is_canonical));
    return [options](Streams& streams) {
        return for_each_file(options->files, *options, streams,
                             [&](Walk_Options const& one) { return print_digest(one, streams); });
    };
}

}  // namespace bradep
