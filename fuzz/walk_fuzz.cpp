// Any bytes as any root: verify, dump in its three forms and identify return without a fault, and
// agree.

#include <sml/inspect/dump.hpp>
#include <sml/inspect/verify.hpp>
#include "fuzz/input.hpp"
#include "fuzz/mutate.hpp"

#include <ostream>
#include <streambuf>

namespace {

using namespace sml::inspect;

/// Accepts all bytes and keeps none.
class Nowhere : public std::streambuf {
    int_type        overflow(int_type c) override { return traits_type::not_eof(c); }
    std::streamsize xsputn(char const*, std::streamsize size) override { return size; }
};

void dump_all_forms(fuzz::Input const& input, Verdict const& verdict) {
    using Form = DumpOptions::Form;
    Nowhere      nowhere;
    std::ostream out(&nowhere);
    for (Form const form : {Form::compact, Form::pretty, Form::lines}) {
        Dumped const dumped = dump(*input.root, input.bytes, out, {.form = form});
        fuzz::require(dumped.answer == verdict.answer, input, "dump and verify answer differently");
        if (verdict.answer == Answer::unsafe)
            fuzz::require(dumped.findings.back().offset == verdict.findings.back().offset &&
                              dumped.findings.back().path == verdict.findings.back().path,
                          input, "dump and verify stop at different places");
    }
    if (verdict.findings.empty()) return;
    dump(*input.root, input.bytes, out, {.path = verdict.findings.back().path});
}

/// The verdicts in the list of candidates never get better.
void identify_all(fuzz::Input const& input, Verdict const& verdict) {
    Answer before = Answer::good;
    bool   is_there = false;
    for (Candidate const& candidate : identify(input.bytes)) {
        fuzz::require(candidate.answer >= before, input, "candidates are out of order");
        before = candidate.answer;
        if (candidate.root != input.root) continue;
        is_there = true;
        fuzz::require(candidate.answer == verdict.answer && candidate.walked == verdict.walked,
                      input, "identify and verify answer differently");
    }
    fuzz::require(is_there, input, "identify leaves the root out");
}

void check_findings(fuzz::Input const& input, Verdict const& verdict) {
    for (Finding const& finding : verdict.findings)
        fuzz::require(finding.offset <= input.bytes.size(), input, "a finding beyond the bytes");
    fuzz::require((verdict.answer == Answer::good) == verdict.findings.empty(), input,
                  "the answer does not follow from the findings");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    if (size == 0) return 0;
    fuzz::Input const input = fuzz::input_of(data, size);
    Verdict const     verdict = verify(*input.root, input.bytes);
    check_findings(input, verdict);
    dump_all_forms(input, verdict);
    identify_all(input, verdict);
    return 0;
}
