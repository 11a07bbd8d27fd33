#include <sml/inspect/verify.hpp>

#include <sml/inspect/keys/key_table.hpp>
#include <sml/inspect/verified_walk.hpp>
#include <sml/inspect/walk/walker.hpp>

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

namespace sml::inspect {

namespace {

class Verifier : public BaseVisitor {
public:
    Verifier(Walk& walk, VerifyOptions const& options, LongContainers* long_containers)
        : walk_(walk),
          options_(options),
          keys_(&walk.budget),
          model_(&walk.budget),
          long_containers_(long_containers) {
        if (long_containers != nullptr) least_long_ = LongContainers::least_size;
        walk.strings.model_reader(model_);
    }

    static constexpr bool compares_keys = true;
    static constexpr bool wants_values = false;

    void open_keys(Type const& type, std::uint64_t count) {
        keys_.open(count);
        model_.open_table(type, count);
    }
    void close_keys() {
        keys_.close();
        model_.close_table();
    }
    /// The reader's own hash if the model counts it: then the key is found by it here, too.
    std::uint64_t key_hash(Walk const&, Type const& key, std::uint64_t offset) const {
        if (!model_.counts_keys()) return walk_.keys.hash(key, offset);
        auto const readers = walk_.keys.readers_hash(key, offset);
        return readers.equals_none ? Keys::no_hash : masked(readers.hash);
    }

    [[gnu::always_inline]] void expect_key(std::uint64_t hash) { keys_.expect(seeded(hash)); }

    bool add_key(Type const& key, std::uint64_t offset, std::uint64_t hash) {
        bool const is_new =
            hash == Keys::no_hash || keys_.add(walk_.keys, key, offset, seeded(hash));
        if (model_.counts_keys()) model_.use_key(readers_hash(key, offset, hash), is_new);
        return is_new;
    }

    void end_container(std::uint64_t start) {
        if (walk_.offset() - start >= least_long_) [[unlikely]]
            long_containers_->add(start, walk_.offset());
    }

    void end_root() { texts_compared_ = walk_.strings.readers_comparisons(); }

    std::uint64_t work() const {
        return model_.comparisons + keys_.comparisons() + walk_.strings.comparisons() +
               texts_compared_;
    }

    template <class Make>
    void odd(Oddity oddity, Make const& make) {
        if (verdict.odd_count < options_.listed) list(make());
        ++verdict.odd_count;
        if (oddity != Oddity::unknown && !verdict.reason_against_encoding)
            verdict.reason_against_encoding = make();
    }

    void unsafe(Finding const& finding) {
        verdict.answer = Answer::unsafe;
        if (!verdict.reason_against_encoding) verdict.reason_against_encoding = finding;
        unsafe_ = finding;
    }

    /// Sorts the findings by offset: a key is compared after its value was walked, even an unsafe
    /// one.
    void finish() {
        std::ranges::stable_sort(verdict.findings, {}, &Finding::offset);
        if (unsafe_) verdict.findings.push_back(*unsafe_);
    }

    Verdict verdict;

private:
    void list(Finding const& finding) {
        if (options_.listener)
            options_.listener(finding);
        else
            verdict.findings.push_back(finding);
    }

    /// Masks a hash, or removes the mask. So no bytes can be made whose hash is `Keys::no_hash`.
    static std::uint64_t masked(std::uint64_t hash) { return hash ^ hash_seed; }

    std::uint64_t readers_hash(Type const& key, std::uint64_t offset, std::uint64_t hash) const {
        return hash != Keys::no_hash ? masked(hash) : walk_.keys.readers_hash(key, offset).hash;
    }

    std::uint64_t seeded(std::uint64_t hash) const {
        return model_.counts_keys() ? seeded_hash(hash, 0) : hash;
    }

    Walk const&          walk_;
    VerifyOptions const& options_;
    KeyTable             keys_;
    ReaderModel          model_;

    std::uint64_t texts_compared_ = 0;

    LongContainers* long_containers_;
    std::uint64_t   least_long_ = std::numeric_limits<std::uint64_t>::max();

    std::optional<Finding> unsafe_;
};

// Good comes before odd, odd before unsafe. Of two unsafe ones, the one whose walk came further is
// first.
bool fits_better(Candidate const& a, Candidate const& b) {
    if (a.answer != b.answer) return a.answer < b.answer;
    return a.answer == Answer::unsafe && a.walked > b.walked;
}

}  // namespace

Verdict verify(Root const& root, std::string_view bytes, VerifyOptions const& options) {
    Budget budget(options.limits.own_memory);
    Walk   walk(bytes, options.walk(), budget);
    return verified_walk(root, walk, options, nullptr);
}

Verdict verified_walk(Root const& root, Walk& walk, VerifyOptions const& options,
                      LongContainers* long_containers) {
    Verifier verifier(walk, options, long_containers);
    Walker(walk, verifier).run(*root.type);

    Verdict& verdict = verifier.verdict;
    verifier.finish();
    if (verdict.answer != Answer::unsafe && verdict.odd_count > 0) verdict.answer = Answer::odd;
    verdict.walked = walk.offset();
    verdict.heap = walk.heap.peak();
    verdict.work = verifier.work();
    verdict.elements = walk.elements;
    verdict.strings = walk.strings.count();
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
