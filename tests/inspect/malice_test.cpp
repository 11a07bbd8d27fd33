// Damages the golden files in every simple way. All bytes that verify does not call unsafe are
// given to the real readers.
//
// As a rule a part of the damages is tried, chosen at random by a seed that is printed;
// BRADEP_SEED sets it. BRADEP_SLOW_TESTS asks for all of them.

#include <sml/inspect/dump.hpp>
#include <sml/inspect/verify.hpp>
#include "tests/golden/goldens.hpp"
#include "tests/hex.hpp"
#include "tests/inspect/real_roots.hpp"
#include "tests/runs.hpp"

#include <gtest/gtest.h>

#include <cstring>
#include <iostream>
#include <limits>
#include <random>
#include <sstream>

namespace {

using golden::File;
using sml::inspect::Answer;

constexpr std::uint64_t most_heap = std::uint64_t{1} << 26;

/// Judges damaged bytes and counts them.
class Trial {
public:
    /// Tries one damage in `one_in`; all of them when the slow tests are asked for.
    explicit Trial(int one_in)
        : one_in_(static_cast<std::uint64_t>(runs::count(one_in, 1))), random_(runs::seed()) {}

    bool chooses() { return random_() % one_in_ == 0; }

    void take(File const& file, std::string_view damaged) {
        ++tried_;
        auto const verdict = verify(*file.root, damaged, {.limits = {.memory = most_heap}});
        if (random_() % 8 == 0) expect_same_of_dump(file, damaged, verdict);
        if (verdict.answer == Answer::unsafe) return;
        ++read_;
        std::string const fault =
            real_root(*file.root).fault_of_reading(damaged, verdict.answer == Answer::good);
        if (!fault.empty())
            ADD_FAILURE() << file.name << ": " << fault << "\n" << hex::shown(damaged);
    }

    /// A dump gets an event for every value, and a verification skips most of them. Expects that
    /// both have the same findings.
    static void expect_same_of_dump(File const& file, std::string_view damaged,
                                    sml::inspect::Verdict const& verdict) {
        std::ostringstream json;
        auto const         dumped =
            dump(*file.root, damaged, json, {.walk = {.limits = {.memory = most_heap}}});
        EXPECT_EQ(dumped.answer, verdict.answer) << file.name << "\n" << hex::shown(damaged);
        EXPECT_EQ(text_of(dumped.findings), text_of(verdict.findings)) << file.name << "\n"
                                                                       << hex::shown(damaged);
    }

    static std::string text_of(std::vector<sml::inspect::Finding> const& findings) {
        std::string text;
        for (auto const& finding : findings)
            text += std::to_string(finding.offset) + ' ' + finding.path + ": " + finding.expected +
                    ", " + finding.found + '\n';
        return text;
    }

    /// Prints the counts. Expects that some bytes were read and some were not.
    void finish() const {
        std::cout << "one in " << one_in_ << ": " << tried_ << " tried, " << read_ << " read\n";
        EXPECT_GT(tried_, read_);
    }

    std::uint64_t read() const { return read_; }

private:
    std::uint64_t   one_in_;
    std::mt19937_64 random_;
    std::uint64_t   tried_ = 0;
    std::uint64_t   read_ = 0;
};

/// Writes each of the values to each offset where it fits and changes something, and tries the
/// result.
template <class Value, std::size_t Count>
void try_values(Value const (&values)[Count], int one_in) {
    Trial trial(one_in);
    for (File const& file : golden::files_in(GOLDEN_FILES)) {
        std::string damaged = file.bytes;
        for (std::size_t at = 0; at + sizeof(Value) <= damaged.size(); ++at) {
            for (Value const value : values) {
                if (!trial.chooses()) continue;
                std::memcpy(damaged.data() + at, &value, sizeof value);
                if (damaged != file.bytes) trial.take(file, damaged);
            }
            std::memcpy(damaged.data() + at, file.bytes.data() + at, sizeof(Value));
        }
        if (testing::Test::HasFailure()) return;
    }
    trial.finish();
    EXPECT_GT(trial.read(), 0u);
}

TEST(Malice, EveryCutIsUnsafe) {
    Trial trial(1);
    for (File const& file : golden::files_in(GOLDEN_FILES))
        for (std::size_t size = 0; size < file.bytes.size(); ++size)
            trial.take(file, std::string_view(file.bytes).substr(0, size));
    trial.finish();
    EXPECT_EQ(trial.read(), 0u);
}

TEST(Malice, EveryByteWithEightValues) {
    try_values<char>({'\0', '\1', 'F', 'T', '0', ' ', '\x7F', '\xFF'}, 30);
}

TEST(Malice, EveryWordWithFourValues) {
    using Word = std::numeric_limits<std::int32_t>;
    try_values<std::int32_t>({0, -1, Word::max(), Word::min()}, 20);
}

}  // namespace
