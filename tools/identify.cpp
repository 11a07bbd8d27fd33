#include <sml/inspect/text/quote.hpp>
#include "errors.hpp"
#include "walk_options.hpp"

#include <memory>

namespace bradep {

namespace {

using namespace sml::inspect;

ExitCode identify_file(WalkOptions const& options, Streams& streams) {
    auto const       name = input_name(options.file);
    InputBytes const input(options.file, options.max_size, streams.in);
    auto const       candidates =
        watch(streams.err, name + ", looking for its root", input.view().size(), options.verify,
              [&](VerifyOptions const& watched) { return identify(input.view(), watched); });
    for (Candidate const& candidate : candidates)
        if (candidate.answer != Answer::unsafe) streams.out << candidate.root->stem << '\n';
    Candidate const& best = candidates.front();
    if (best.answer != Answer::unsafe) return exit_done;
    streams.err << "bradep: " << printable(name) << ": " << form_notice(input.view())
                << "fits no root; " << best.root->stem << " came furthest, to byte " << best.walked
                << " of " << input.view().size() << '\n';
    return exit_no;
}

}  // namespace

Action declare_identify(CLI::App& app) {
    auto options = std::make_shared<WalkOptions>();
    app.add_option("FILE", options->file, "The bytes. - is standard input")
        ->required()
        ->type_name("");
    declare_max_size(app, options->max_size);
    declare_limits(app, options->verify.limits);
    app.footer(
        "Prints one stem a line: the roots for which the bytes are good, then those for\n"
        "which they are odd.\n");
    return [options](Streams& streams) { return identify_file(*options, streams); };
}

}  // namespace bradep
