// Maps and sets of all roots with repeated keys: the dump must show the value that the real reader
// reads.
//
// BRADEP_SEED sets the random seed. With BRADEP_SLOW_TESTS, more is tried.

#include <sml/bindings/bindings.hpp>
#include <sml/inspect/verify.hpp>
#include "tests/golden/goldens.hpp"
#include "tests/hex.hpp"
#include "tests/inspect/real_roots.hpp"
#include "tests/runs.hpp"

#include <gtest/gtest.h>

#include <cstring>
#include <iostream>
#include <random>

namespace {

using golden::Entry;
using golden::File;
using sml::inspect::Answer;
using sml::inspect::find_root;
using sml::inspect::Kind;
using sml::inspect::Limits;
using sml::inspect::Root;
using sml::inspect::verify;

Limits const limits{.memory = std::uint64_t{1} << 24};

/// Gives bytes that are not unsafe to dump and to the real reader, and counts them.
class Comparison {
public:
    void take(Root const& root, std::string_view bytes) {
        ++tried_;
        auto const verdict = verify(root, bytes, {.limits = limits, .listed = 1000});
        if (verdict.answer == Answer::unsafe) return;
        ++compared_;
        for (auto const& finding : verdict.findings) read_over_ += is_read_over(finding) ? 1 : 0;
        std::string const fault = fault_of_dumping(root, bytes);
        if (!fault.empty())
            ADD_FAILURE() << root.stem << ": " << fault << "\n" << hex::shown(bytes);
    }

    /// Expects at least `least_read_over` repeated keys in maps that are read over.
    void finish(int least_read_over) const {
        std::cout << tried_ << " tried, " << compared_ << " compared, " << read_over_
                  << " entries read over\n";
        EXPECT_GT(compared_, 0);
        EXPECT_GE(read_over_, least_read_over);
    }

private:
    // The only map in the roots that is read over and has values other than words.
    static bool is_read_over(sml::inspect::Finding const& finding) {
        return finding.path.find(".VORS.fields[#") != std::string::npos &&
               finding.path.ends_with(".key") && finding.found.ends_with(" again");
    }

    int tried_ = 0;
    int compared_ = 0;
    int read_over_ = 0;
};

using Random = std::mt19937_64;

std::size_t below(Random& random, std::size_t bound) {
    return std::uniform_int_distribution<std::size_t>(0, bound - 1)(random);
}

/// Changes a word to a small number or to a word from elsewhere, or a byte to a flag.
void edit(std::string& bytes, std::size_t from, std::size_t to, Random& random) {
    std::int32_t word = static_cast<std::int32_t>(below(random, 7)) - 2;
    if (to - from < sizeof word) return;
    std::size_t const at = from + below(random, to - from - sizeof word + 1);
    switch (below(random, 4)) {
        case 0: bytes[at] = "TF0-"[below(random, 4)]; return;
        case 1:
            std::memcpy(&word, &bytes[below(random, bytes.size() - sizeof word + 1)], sizeof word);
            break;
        default: break;
    }
    std::memcpy(&bytes[at], &word, sizeof word);
}

/// The bytes with a copy of a random entry beside another one of its container. The copy's value is
/// changed `edits` times.
std::string with_random_copy(std::string const& bytes, std::vector<Entry> const& entries, int edits,
                             Random& random) {
    Entry const&       copied = entries[below(random, entries.size())];
    std::vector<Entry> beside;
    for (Entry const& entry : entries)
        if (entry.count_at == copied.count_at) beside.push_back(entry);
    Entry const&      place = beside[below(random, beside.size())];
    bool const        is_behind = below(random, 2) == 0;
    std::string       result = golden::with_copy(bytes, copied, place, is_behind);
    std::size_t const start =
        (is_behind ? place.end : place.start) + (copied.key_end - copied.start);
    for (int i = 0; i < edits; ++i)
        edit(result, start, start + (copied.end - copied.key_end), random);
    return result;
}

/// Copies and changes entries repeatedly, as long as the bytes are not unsafe.
void compare_with_copies(Comparison& comparison, Root const& root, std::string bytes, int rounds,
                         Random& random) {
    for (int round = 0; round < rounds; ++round) {
        auto const entries = golden::entries_in(root, bytes);
        if (entries.empty()) return;
        std::string changed =
            with_random_copy(bytes, entries, static_cast<int>(below(random, 4)), random);
        comparison.take(root, changed);
        bool const goes_on = changed.size() < 2 * golden::most_bytes &&
                             verify(root, changed, {.limits = limits}).answer != Answer::unsafe;
        if (goes_on) bytes = std::move(changed);
    }
}

TEST(ReadOver, GoldenFilesWithEachEntryTwice) {
    Comparison comparison;
    for (File const& file : golden::files_in(GOLDEN_FILES))
        for (Entry const& entry : golden::entries_in(*file.root, file.bytes))
            comparison.take(*file.root, golden::with_copy(file.bytes, entry, entry, true));
    comparison.finish(1);
}

TEST(ReadOver, GoldenFilesWithEditedCopiesOfEntries) {
    Comparison comparison;
    Random     random(runs::seed());
    for (File const& file : golden::files_in(GOLDEN_FILES))
        compare_with_copies(comparison, *file.root, file.bytes, runs::count(30, 1000), random);
    comparison.finish(0);
}

/// The bytes of one information record with a random map of fields, which is read over.
std::string random_fields(Random& random) {
    RandomValues                                    values(random(), {.elements = 4, .depth = 4});
    sml::Application_Results::T_Application_Results results;
    auto& category = results.infos[{sml::Strings_T("k"), 1}].category;
    values.fill_arm(category, 16);
    return sml::Application_Results_Application_Results_fromCxx(results);
}

TEST(ReadOver, RandomMapsOfFields) {
    Comparison  comparison;
    Random      random(runs::seed());
    Root const& root = *find_root("Application_Results_Application_Results");
    for (int i = runs::count(150, 5000); i > 0; --i)
        compare_with_copies(comparison, root, random_fields(random), 20, random);
    comparison.finish(1000);
}

TEST(ReadOver, RandomValuesOfAllRoots) {
    Comparison comparison;
    Random     random(runs::seed());
    for (RealRoot const& real : real_roots()) {
        for (int i = runs::count(60, 2000); i > 0; --i) {
            RandomValues values(random(), {.elements = 2, .depth = 3});
            compare_with_copies(comparison, *find_root(real.stem), real.random_bytes(values), 6,
                                random);
        }
    }
    comparison.finish(0);
}

}  // namespace
