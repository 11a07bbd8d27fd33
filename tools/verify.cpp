#include <memory>

#include "errors.hpp"
#include "printable.hpp"
#include "walk_options.hpp"

namespace bradep {
namespace {

using namespace sml::inspect;

struct Options : Walk_Options {
    bool strict = false;
};

char const* name_of(Answer answer) {
    switch (answer) {
        case Answer::good: return "good";
        case Answer::odd: return "odd";
        default: return "unsafe";
    }
}

Exit_Code verify_file(Options const& options, Streams& streams) {
    Walked_Input const input(options, streams);
    Verdict const      verdict = input.verify();
    auto const         form = told_form(input.bytes());
    if (options.stem && verdict.answer == Answer::unsafe && !form.empty())
        streams.err << "bradep: " << printable(input.name()) << ": " << form << "not "
                    << input.root().stem << '\n';
    report_findings(streams.err, input.name(), verdict.findings, verdict.odd_count);
    streams.out << printable(input.name()) << ": " << name_of(verdict.answer) << '\n'
                << "  root      " << input.root().stem << '\n'
                << "  bytes     " << verdict.walked << " of " << input.bytes().size() << '\n'
                << "  odd       " << verdict.odd_count << '\n'
                << "  strings   " << verdict.strings << '\n'
                << "  elements  " << verdict.elements << '\n'
                << "  heap      at most about " << verdict.heap << " bytes while it is read\n"
                << "  work      about " << verdict.work << " comparisons of keys to read it\n";
    bool const is_refused =
        verdict.answer == Answer::unsafe || (options.strict && verdict.answer == Answer::odd);
    return is_refused ? exit_no : exit_done;
}

}  // namespace

Action declare_verify(CLI::App& app) {
    auto options = std::make_shared<Options>();
    declare_walk_options(app, *options);
    declare_findings_option(app, *options);
    app.add_flag("--strict", options->strict, "Odd bytes are an error, too");
    app.footer(
        "good: exactly what a writer could have made for the value that a reader gets.\n"
        "odd: safe to read, but not what a writer makes.\n"
        "unsafe: a reader could read beyond the bytes, throw, abort, overflow or stop early.\n"
        "Findings go to standard error, one a line.\n");
    return [options](Streams& streams) { return verify_file(*options, streams); };
}

}  // namespace bradep
