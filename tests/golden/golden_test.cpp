#include "tests/golden/goldens.hpp"

#include <sml/inspect/verify.hpp>

#include <gtest/gtest.h>

namespace {

using golden::File;
using golden::Reached;
using sml::inspect::Answer;
using sml::inspect::Root;

std::vector<File> const& all_files() {
    static std::vector<File> const files = golden::files_in(GOLDEN_FILES);
    return files;
}

TEST(Golden, EachFileIsSmallAndGood) {
    ASSERT_FALSE(all_files().empty());
    for (File const& file : all_files()) {
        SCOPED_TRACE(file.name);
        EXPECT_LE(file.bytes.size(), golden::most_bytes);
        auto const verdict = verify(*file.root, file.bytes);
        EXPECT_EQ(verdict.answer, Answer::good);
        for (auto const& finding : verdict.findings)
            ADD_FAILURE() << finding.offset << ' ' << finding.path << ' ' << finding.found;
    }
}

TEST(Golden, EachRootHasAFile) {
    std::set<Root const*> roots;
    for (File const& file : all_files()) roots.insert(file.root);
    for (Root const& root : sml::inspect::roots()) EXPECT_TRUE(roots.contains(&root)) << root.stem;
}

TEST(Golden, TheFilesReachEveryTypeArmAndEnumerator) {
    Reached reached;
    for (File const& file : all_files()) reached.merge(golden::reached_by(*file.root, file.bytes));
    Reached to_reach;
    for (Root const& root : sml::inspect::roots()) to_reach.merge(golden::reachable_from(root));
    for (auto const& goal : to_reach) EXPECT_TRUE(reached.contains(goal)) << golden::name_of(goal);
}

/// Golden files of a root whose wire form has not changed are never rewritten. Their dumps must
/// stay the same.
TEST(Golden, EachFileHoldsWhatItsDumpSays) {
    for (File const& file : all_files())
        EXPECT_EQ(golden::bytes_of(std::filesystem::path(GOLDEN_FILES) / dump_name(file)),
                  dump_of(file))
            << file.name << " is dumped otherwise than when it was written";
}

TEST(Golden, TheFilesAreOfTheWireFormsThatRootsHave) {
    EXPECT_EQ(golden::digests_in(GOLDEN_FILES), golden::digests_of_roots())
        << "the wire form of a root has changed; where this is meant, make its files anew: "
           "cmake --build build/dev --target goldens";
}

}  // namespace
