#include <sml/inspect/verify_c.h>

#include <sml/inspect/verify.hpp>

#include <new>

namespace {

using namespace sml::inspect;

template <class Number>
void set_unless_zero(Number& limit, Number given) {
    if (given != 0) limit = given;
}

Limits limits_of(sml_inspect_limits const* given) {
    Limits limits;
    if (given == nullptr) return limits;
    set_unless_zero(limits.depth, given->depth);
    set_unless_zero(limits.elements, given->elements);
    set_unless_zero(limits.text_bytes, given->text_bytes);
    set_unless_zero(limits.memory, given->memory);
    set_unless_zero(limits.work, given->work);
    set_unless_zero(limits.own_memory, given->own_memory);
    return limits;
}

sml_inspect_answer answer_of(Answer answer) {
    switch (answer) {
        case Answer::good: return SML_INSPECT_GOOD;
        case Answer::odd: return SML_INSPECT_ODD;
        default: return SML_INSPECT_UNSAFE;
    }
}

void report(Verdict const& verdict, sml_inspect_listener listener, void* context) {
    for (Finding const& finding : verdict.findings) {
        sml_inspect_finding const reported{finding.severity == Severity::unsafe, finding.offset,
                                           finding.path.c_str(), finding.expected.c_str(),
                                           finding.found.c_str()};
        listener(context, &reported);
    }
}

}  // namespace

sml_inspect_answer sml_inspect_verify(char const* stem, void const* bytes, std::uint64_t size,
                                      sml_inspect_limits const* limits, sml_inspect_verdict* out,
                                      std::uint64_t listed, sml_inspect_listener listener,
                                      void* context) try {
    Root const* const root = stem == nullptr ? nullptr : find_root(stem);
    if (root == nullptr) return SML_INSPECT_NO_SUCH_ROOT;
    if (bytes == nullptr && size != 0) return SML_INSPECT_NO_BYTES;
    VerifyOptions options{.limits = limits_of(limits), .listed = static_cast<std::size_t>(listed)};
    if (limits != nullptr && limits->decimal_point != nullptr)
        options.decimal_point = limits->decimal_point;
    Verdict const verdict = verify(*root, {static_cast<char const*>(bytes), size}, options);
    if (out != nullptr)
        *out = {verdict.odd_count, verdict.walked,   verdict.heap,
                verdict.work,      verdict.elements, verdict.strings};
    if (listener != nullptr) report(verdict, listener, context);
    return answer_of(verdict.answer);
} catch (std::bad_alloc const&) {
    return SML_INSPECT_NO_MEMORY;
}
