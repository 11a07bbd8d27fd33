#include "errors.hpp"
#include "messages.hpp"
#include "walk_options.hpp"

#include <memory>

namespace bradep {

namespace {

using namespace sml::inspect;

struct Options : WalkOptions {
    std::vector<std::string> files;
    bool                     strict = false;
};

char const* name_of(Answer answer) {
    switch (answer) {
        case Answer::good: return "good";
        case Answer::odd: return "odd";
        default: return "unsafe";
    }
}

ExitCode verify_file(WalkOptions const& options, bool strict, Streams& streams) {
    WalkedInput const input(options, streams);
    FindingGroups     groups(options.verify.listed);
    Verdict const     verdict = input.verify(groups);
    auto const        form = form_notice(input.bytes());
    if (options.stem && verdict.answer == Answer::unsafe && !form.empty())
        print_message(streams.err, input.name() + ": " + form + "not " + *options.stem);
    groups.report(streams.err, input.name(), verdict);
    streams.out << printable(input.name()) << ": " << name_of(verdict.answer) << '\n'
                << "  root      " << input.root().stem << '\n'
                << "  bytes     " << verdict.walked << " of " << input.bytes().size() << '\n'
                << "  odd       " << verdict.odd_count << '\n'
                << "  strings   " << verdict.strings << '\n'
                << "  elements  " << verdict.elements << '\n'
                << "  heap      estimated at " << verdict.heap
                << " bytes, at its peak in a reader\n"
                << "  work      estimated at " << verdict.work
                << " comparisons of keys in a reader\n";
    bool const is_refused =
        verdict.answer == Answer::unsafe || (strict && verdict.answer == Answer::odd);
    return is_refused ? exit_no : exit_done;
}

}  // namespace

Action declare_verify(CLI::App& app) {
    auto options = std::make_shared<Options>();
    declare_walk_options(app, *options, options->files);
    declare_findings_option(app, *options,
                            "How many groups of odd findings to list; all are counted");
    app.add_flag("--strict", options->strict, "Odd bytes are an error, too");
    app.footer(
        "good: exactly what a writer could have made for the value that a reader gets.\n"
        "odd: safe to read, but not what a writer makes.\n"
        "unsafe: a reader could read beyond the bytes, throw, abort, overflow or stop early.\n"
        "Findings go to standard error, one a line. Odd ones whose paths differ only "
        "in keys and\n"
        "indices are one group: the first few of each are listed, and the number of the others.\n");
    return [options](Streams& streams) {
        return for_each_file(options->files, *options, streams, [&](WalkOptions const& one) {
            return verify_file(one, options->strict, streams);
        });
    };
}

}  // namespace bradep
