#include "inspect/verify.hpp"

#include "inspect/key_table.hpp"
#include "inspect/walker.hpp"

#include <algorithm>
#include <optional>
#include <utility>

namespace sml::inspect {

namespace {

class Verifier : public SilentVisitor {
public:
    Verifier(Walk const& walk, std::size_t listed) : walk_(walk), listed_(listed) {}

    static constexpr bool compares_keys = true;
    static constexpr bool hears_values = false;

    void open_keys(Type const&, std::uint64_t count) { keys_.open(count); }
    void close_keys() { keys_.close(); }
    void expect_key(std::uint64_t hash) { keys_.expect(hash); }
    bool add_key(Type const& key, std::uint64_t offset, std::uint64_t hash) {
        return keys_.add(walk_, key, offset, hash);
    }

    template <class Make>
    void odd(Oddity oddity, Make const& make) {
        if (verdict.odd_count < listed_) verdict.findings.push_back(make());
        ++verdict.odd_count;
        if (oddity != Oddity::unknown && !verdict.reason_against_encoding)
            verdict.reason_against_encoding = make();
    }

    void unsafe(Finding const& finding) {
        verdict.answer = Answer::unsafe;
        if (!verdict.reason_against_encoding) verdict.reason_against_encoding = finding;
        unsafe_ = finding;
    }

    /// Puts the findings in order: a key is judged behind its value, even one that is unsafe.
    void finish() {
        std::ranges::stable_sort(verdict.findings, {}, &Finding::offset);
        if (unsafe_) verdict.findings.push_back(*unsafe_);
    }

    Verdict verdict;

private:
    Walk const& walk_;
    std::size_t listed_;
    KeyTable    keys_;

    std::optional<Finding> unsafe_;
};

// Good before odd before unsafe, and of unsafe ones the one whose walk came further.
bool fits_better(Candidate const& a, Candidate const& b) {
    if (a.answer != b.answer) return a.answer < b.answer;
    return a.answer == Answer::unsafe && a.walked > b.walked;
}

}  // namespace

Verdict verify(Root const& root, std::string_view bytes, VerifyOptions const& options) {
    Walk walk(bytes, options.limits);
    walk.progress = options.progress;
    Verifier verifier(walk, options.listed);
    Walker(walk, verifier).run(*root.type);

    Verdict& verdict = verifier.verdict;
    verifier.finish();
    if (verdict.answer != Answer::unsafe && verdict.odd_count > 0) verdict.answer = Answer::odd;
    verdict.walked = walk.offset();
    verdict.heap = walk.heap;
    verdict.elements = walk.elements;
    verdict.strings = walk.strings.told();
    return std::move(verdict);
}

std::vector<Candidate> identify(std::string_view bytes, VerifyOptions const& options) {
    VerifyOptions unlisted = options;
    unlisted.listed = 0;
    std::vector<Candidate> all;
    for (Root const& root : roots()) {
        Verdict const verdict = verify(root, bytes, unlisted);
        all.push_back({&root, verdict.answer, verdict.walked});
    }
    std::ranges::stable_sort(all, fits_better);
    return all;
}

}  // namespace sml::inspect
