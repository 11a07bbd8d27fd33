// Compares all roots with the reference implementation, for random values and for bytes with
// defined damage.

#include "tests/plain/roots.hpp"
#include <sml/inspect/verify.hpp>
#include "tests/plain/outcome.hpp"
#include "tests/runs.hpp"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using namespace plain_test;

constexpr int few = 4;

/// Expects that both read the same. The reference implementation writes both values: its bytes show
/// the values and the order of hash tables.
void expect_read_alike(Root const& root, std::string const& bytes) {
    std::vector<char> const alone(bytes.begin(), bytes.end());
    Object const            ours = root.make();
    auto const              our_outcome = outcome([&] { root.read(ours.get(), alone.data()); });
    Range const             range;
    Object const            expected = root.make();
    auto const expected_outcome = outcome([&] { root.plain_read(expected.get(), alone.data()); });
    EXPECT_EQ(range, Range()) << root.stem;
    EXPECT_EQ(our_outcome, expected_outcome) << root.stem;
    EXPECT_TRUE(root.plain_write(ours.get()) == root.plain_write(expected.get())) << root.stem;
}

TEST(PlainRoots, WriteAndReadRandomValuesAlike) {
    std::mt19937_64 engine(runs::seed());
    for (Root const& root : roots()) {
        for (int i = runs::count(20, 2000); i > 0 && !HasFailure(); --i) {
            Object const      value = root.random(engine(), few);
            std::string const bytes = root.write(value.get());
            Range const       range;
            EXPECT_TRUE(bytes == root.plain_write(value.get())) << root.stem;
            EXPECT_EQ(range, Range()) << root.stem;
            expect_read_alike(root, bytes);
        }
    }
}

/// All roots share one result string. Longer and shorter results alternate.
TEST(PlainRoots, ResultsOfAllSizesFollowOneAnother) {
    std::mt19937_64     engine(runs::seed() + 1);
    auto const&         all = roots();
    std::vector<Object> values;
    for (Root const& root : all) values.push_back(root.random(engine(), few));
    for (int i = runs::count(2000, 20'000); i > 0 && !HasFailure(); --i) {
        std::size_t const one = engine() % all.size();
        EXPECT_TRUE(all[one].write(values[one].get()) == all[one].plain_write(values[one].get()))
            << all[one].stem;
    }
}

std::string damaged(std::string bytes, std::mt19937_64& engine) {
    for (auto i = engine() % 3; i < 3; ++i) {
        std::size_t const at = engine() % bytes.size();
        switch (engine() % 4) {
            case 0: bytes[at] = static_cast<char>(engine()); break;
            case 1: bytes[at] = static_cast<char>(bytes[at] + 1); break;
            case 2: bytes[at] = "TF0123456789abcdef"[engine() % 18]; break;
            default: {  // a word of other bytes: another tag or string id
                std::size_t const from = engine() % bytes.size();
                bytes.replace(at, 4, bytes, from, 4);
            }
        }
    }
    return bytes;
}

/// Values larger than the previous result and larger than several chunks.
TEST(PlainRoots, WriteAndReadLargeValuesAlike) {
    std::mt19937_64 engine(runs::seed() + 4);
    for (Root const& root : roots()) {
        if (root.stem != "Application_Results_Application_Results" &&
            root.stem != "Base_Gui_Internal_Form_Datas_Check_Id_Data_Pairs_T" &&
            root.stem != "String_To_StringSet_T")
            continue;
        for (int i = runs::count(3, 50); i > 0 && !HasFailure(); --i) {
            // A table of sets that grows often; tables of tables in the others.
            int const         most = root.stem == "String_To_StringSet_T" ? 1000 : 30;
            Object const      value = root.random(engine(), most);
            std::string const bytes = root.write(value.get());
            EXPECT_TRUE(bytes == root.plain_write(value.get())) << root.stem;
            expect_read_alike(root, bytes);
            std::stringstream ours;
            std::stringstream expected;
            root.write_to(value.get(), ours);
            root.plain_write_to(value.get(), expected);
            EXPECT_TRUE(ours.view() == expected.view()) << root.stem;
            Object const read = root.make();
            Object const plainly_read = root.make();
            root.read_from(read.get(), ours);
            root.plain_read(plainly_read.get(), bytes.data());
            EXPECT_TRUE(root.plain_write(read.get()) == root.plain_write(plainly_read.get()))
                << root.stem;
            EXPECT_EQ(static_cast<std::size_t>(ours.tellg()), bytes.size()) << root.stem;
        }
    }
}

TEST(PlainRoots, ReadOddBytesAlike) {
    std::mt19937_64 engine(runs::seed() + 2);
    std::size_t     odd_count = 0;
    for (Root const& root : roots()) {
        auto const& described = *sml::inspect::find_root(root.stem);
        for (int i = runs::count(5, 200); i > 0 && !HasFailure(); --i) {
            std::string const bytes = root.write(root.random(engine(), few).get());
            for (int j = 0; j < 60; ++j) {
                std::string const other = damaged(bytes, engine);
                auto const answer = sml::inspect::verify(described, other, {.listed = 0}).answer;
                if (answer == sml::inspect::Answer::unsafe) continue;
                odd_count += answer == sml::inspect::Answer::odd ? 1 : 0;
                expect_read_alike(root, other);
            }
        }
    }
    EXPECT_GT(odd_count, 100u);
}

TEST(PlainRoots, ReadIntoValuesThatHoldContentAlike) {
    std::mt19937_64 engine(runs::seed() + 3);
    for (Root const& root : roots()) {
        for (int i = runs::count(10, 500); i > 0 && !HasFailure(); --i) {
            std::uint64_t const held = engine();
            std::string const   bytes = root.write(root.random(engine(), few).get());
            Object const        ours = root.random(held, few);
            Object const        expected = root.random(held, few);
            root.read(ours.get(), bytes.data());
            Range const range;
            root.plain_read(expected.get(), bytes.data());
            EXPECT_EQ(range, Range()) << root.stem;
            EXPECT_TRUE(root.plain_write(ours.get()) == root.plain_write(expected.get()))
                << root.stem;
        }
    }
}

}  // namespace
