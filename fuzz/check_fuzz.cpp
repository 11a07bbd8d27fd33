// Verify and the plain checker agree on all bytes: on the verdict and on the offsets of the
// findings.

#include <sml/inspect/verify.hpp>
#include "fuzz/input.hpp"
#include "fuzz/mutate.hpp"
#include "fuzz/plain_checker.hpp"

#include <limits>

namespace {

using namespace sml::inspect;

plain::Answer plain_answer(Answer answer) {
    switch (answer) {
        case Answer::good: return plain::Answer::good;
        case Answer::odd: return plain::Answer::odd;
        default: return plain::Answer::unsafe;
    }
}

/// The offsets of the odd findings of verify.
std::set<std::uint64_t> odd_offsets(Verdict const& verdict) {
    std::set<std::uint64_t> offsets;
    for (Finding const& finding : verdict.findings)
        if (finding.severity == Severity::odd) offsets.insert(finding.offset);
    return offsets;
}

bool bytes_are_missing(Finding const& finding) { return finding.expected.starts_with("at least "); }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    if (size == 0) return 0;
    fuzz::Input const input = fuzz::input_of(data, size);
    Verdict const     verdict =
        verify(*input.root, input.bytes, {.listed = std::numeric_limits<std::size_t>::max()});
    auto const judged = plain::judge(input.root_index(), input.bytes, Limits::default_depth);
    fuzz::require(plain_answer(verdict.answer) == judged.answer, input, "the answers differ");
    // If bytes are missing, verify may report that at a lower offset than the one where the checker
    // stops.
    if (verdict.answer == Answer::unsafe) {
        if (!judged.unsafe_offset || bytes_are_missing(verdict.findings.back())) return 0;
        fuzz::require(verdict.findings.back().offset == judged.unsafe_offset, input,
                      "the unsafe places differ");
    }
    fuzz::require(odd_offsets(verdict) == judged.odd_offsets, input, "the odd places differ");
    return 0;
}
