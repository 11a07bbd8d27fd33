#include <sml/results/alignment.hpp>
#include <sml/results/matching.hpp>
#include "tests/runs.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <random>
#include <string>
#include <tuple>
#include <vector>

namespace {

using namespace sml::results;

using Random = std::mt19937_64;

std::uint32_t below(Random& random, std::uint32_t limit) {
    return static_cast<std::uint32_t>(random() % limit);
}

std::vector<std::string> const files = {"a/x.c", "b/x.c", "b/y.c", "c/z.c"};

// Few values, so that much is equal. `ordinal` is different for each.
Finding random_finding(Random& random, std::uint32_t ordinal) {
    Finding    one;
    auto const some = [&](std::uint32_t values) {
        return hash_of(std::uint64_t{below(random, values)});
    };
    auto const perhaps = [&](std::uint32_t values) {
        return below(random, 4) == 0 ? Hash{} : some(values);
    };
    one.rule = below(random, 3);
    one.file = below(random, static_cast<std::uint32_t>(files.size()));
    one.message = some(4);
    one.loose = hash_of(one.message.low % 2);
    one.function = perhaps(3);
    one.text = perhaps(5);
    one.surroundings = one.text.is_none() ? Hash{} : some(3);
    one.flow = some(2);
    one.content = some(3);
    one.line = static_cast<std::int32_t>(below(random, 30));
    one.column = static_cast<std::int32_t>(below(random, 3));
    one.ordinal = ordinal;
    return one;
}

Matched random_side(Random& random) {
    Matched side;
    for (std::uint32_t i = below(random, 40); i > 0; --i) {
        side.findings.push_back(random_finding(random, i));
        if (below(random, 3) == 0)
            side.fingerprints.push_back({hash_of(std::uint64_t{below(random, 20)}),
                                         static_cast<std::uint32_t>(side.findings.size() - 1)});
    }
    return side;
}

// Moves some findings of a side, and leaves out some.
Matched edited(Random& random, Matched const& old) {
    Matched side;
    for (Finding one : old.findings) {
        if (below(random, 10) == 0) continue;
        if (one.line > 10) one.line += 3;
        if (below(random, 10) == 0) one.message = hash_of(std::uint64_t{99});
        one.ordinal = static_cast<std::uint32_t>(side.findings.size());
        side.findings.push_back(one);
    }
    Matched const more = random_side(random);
    for (Finding one : more.findings) {
        if (below(random, 4) != 0) continue;
        one.ordinal = static_cast<std::uint32_t>(side.findings.size());
        side.findings.push_back(one);
    }
    return side;
}

Matched shuffled(Random& random, Matched const& side) {
    std::vector<std::uint32_t> order(side.findings.size());
    std::iota(order.begin(), order.end(), 0);
    std::ranges::shuffle(order, random);
    Matched                    made;
    std::vector<std::uint32_t> places(order.size());
    for (std::uint32_t const from : order) {
        places[from] = static_cast<std::uint32_t>(made.findings.size());
        made.findings.push_back(side.findings[from]);
    }
    for (Fingerprint one : side.fingerprints) {
        one.finding = places[one.finding];
        made.fingerprints.push_back(one);
    }
    return made;
}

using Pairs = std::vector<std::tuple<std::uint32_t, std::uint32_t, Stage>>;

// By ordinals; sorted.
Pairs matched(Matched olds, Matched news) {
    match(olds, news, files);
    Pairs pairs;
    for (std::uint32_t i = 0; i < olds.findings.size(); ++i) {
        Finding const& one = olds.findings[i];
        if (!one.has_partner()) continue;
        Finding const& other = news.findings[one.partner];
        EXPECT_EQ(other.partner, i);
        EXPECT_EQ(other.rule, one.rule);
        EXPECT_EQ(other.stage, one.stage);
        pairs.emplace_back(one.ordinal, other.ordinal, one.stage);
    }
    std::ranges::sort(pairs);
    return pairs;
}

template <class Test>
void with_random_sides(Test const& test) {
    auto const seed = runs::seed();
    for (int i = 0; i < runs::count(300, 30000); ++i) {
        SCOPED_TRACE(i);
        Random  random(seed + static_cast<std::uint64_t>(i));
        Matched olds = random_side(random);
        Matched news = i % 2 == 0 ? random_side(random) : edited(random, olds);
        test(olds, news, random);
        if (testing::Test::HasFailure()) return;
    }
}

TEST(Matching, SwappedSidesHaveTheSamePairs) {
    with_random_sides([](Matched const& olds, Matched const& news, Random&) {
        Pairs swapped;
        for (auto const& [one, other, stage] : matched(news, olds))
            swapped.emplace_back(other, one, stage);
        std::ranges::sort(swapped);
        EXPECT_EQ(matched(olds, news), swapped);
    });
}

TEST(Matching, OrderOfFindingsDoesNotMatter) {
    with_random_sides([](Matched const& olds, Matched const& news, Random& random) {
        EXPECT_EQ(matched(shuffled(random, olds), shuffled(random, news)), matched(olds, news));
    });
}

TEST(Matching, EachFindingOfEqualSidesIsItsOwnPartner) {
    with_random_sides([](Matched const& olds, Matched const&, Random& random) {
        auto const pairs = matched(olds, shuffled(random, olds));
        EXPECT_EQ(pairs.size(), olds.findings.size());
        for (auto const& [one, other, stage] : pairs) EXPECT_EQ(one, other);
    });
}

// A finding at a line, of one rule, message and file.
Finding at(std::int32_t line) {
    Finding one;
    one.message = one.loose = one.content = hash_of("message");
    one.line = line;
    one.ordinal = static_cast<std::uint32_t>(line);
    return one;
}

std::vector<std::pair<std::uint32_t, std::uint32_t>> lines_matched(std::vector<Finding> olds,
                                                                   std::vector<Finding> news) {
    std::vector<std::pair<std::uint32_t, std::uint32_t>> lines;
    for (auto const& [one, other, stage] : matched({olds, {}}, {news, {}}))
        lines.emplace_back(one, other);
    return lines;
}

using Lines = std::vector<std::pair<std::uint32_t, std::uint32_t>>;

TEST(Matching, DuplicatesAreMatchedInTheirOrder) {
    EXPECT_EQ(lines_matched({at(10), at(20), at(30)}, {at(40), at(20), at(30)}),
              (Lines{{10, 20}, {20, 30}, {30, 40}}));
}

TEST(Matching, OfMoreDuplicatesThoseInPlaceAreMatched) {
    EXPECT_EQ(lines_matched({at(10), at(20), at(30)}, {at(20), at(30)}),
              (Lines{{20, 20}, {30, 30}}));
    EXPECT_EQ(lines_matched({at(20)}, {at(10), at(20), at(30)}), (Lines{{20, 20}}));
}

TEST(Matching, OfMoreDuplicatesOfALineThoseWithOneFlowAreMatched) {
    auto const with_flow = [](std::string_view flow, std::int32_t column, std::string_view level) {
        Finding one = at(20);
        one.flow = hash_of(flow);
        one.content = hash_of(level);
        one.column = column;
        return one;
    };
    for (std::int32_t const column : {1, 3}) {
        Finding const gone = with_flow("gone", 2, "error");
        Finding const older = with_flow("kept", column, "error");
        Finding const newer = with_flow("kept", 2, "warning");
        Matched       olds{{gone, older}, {}};
        Matched       news{{newer}, {}};
        match(olds, news, files);
        EXPECT_EQ(news.findings[0].partner, 1u) << column;
        EXPECT_FALSE(olds.findings[0].has_partner());
    }
}

TEST(Matching, DuplicatesThatChangedAreToldApartByTheirFlows) {
    auto const with = [](std::int32_t line, std::string_view flow, std::string_view level) {
        Finding one = at(line);
        one.flow = hash_of(flow);
        one.content = hash_of(level);
        return one;
    };
    EXPECT_EQ(lines_matched({with(10, "x", "error"), with(20, "y", "error")},
                            {with(11, "y", "note"), with(21, "x", "warning")}),
              (Lines{{10, 21}, {20, 11}}));
}

TEST(Matching, WithoutALineNoOtherMessageIsTaken) {
    Finding older = at(0);
    Finding newer = at(0);
    newer.message = newer.loose = hash_of("other");
    EXPECT_TRUE(matched({{older}, {}}, {{newer}, {}}).empty());
}

TEST(Matching, OfMovedFindingsThoseWithOneContentAreMatched) {
    auto const in_file = [](std::uint32_t file, std::int32_t line, std::string_view level) {
        Finding one = at(line);
        one.file = file;
        one.function = hash_of("f()");
        one.content = hash_of(level);
        return one;
    };
    EXPECT_EQ(
        lines_matched({in_file(0, 10, "error"), in_file(0, 20, "note")}, {in_file(3, 10, "note")}),
        (Lines{{20, 10}}));
}

TEST(Matching, FunctionThatSeveralFilesHaveDoesNotMove) {
    auto const in_file = [](std::uint32_t file, std::string_view said, std::int32_t line) {
        Finding one = at(line);
        one.file = file;
        one.message = one.loose = hash_of(said);
        one.function = hash_of("f()");
        return one;
    };
    EXPECT_EQ(lines_matched({in_file(0, "a", 10)}, {in_file(3, "a", 20)}), (Lines{{10, 20}}));
    EXPECT_EQ(lines_matched({in_file(0, "a", 10), in_file(1, "b", 30)},
                            {in_file(3, "a", 20), in_file(1, "b", 30)}),
              (Lines{{30, 30}}));
}

TEST(Matching, FindingsAroundTellWhereAFindingMustBe) {
    auto const other = [](std::int32_t line) {
        Finding one = at(line);
        one.message = hash_of("other");
        return one;
    };
    // The others have moved by five lines.
    EXPECT_EQ(lines_matched({other(1), at(10), at(15), other(20)}, {other(6), at(15), other(25)}),
              (Lines{{1, 6}, {10, 15}, {20, 25}}));
}

TEST(Matching, MessageChangesWhereTheCodeIsTheSame) {
    Finding older = at(10);
    Finding newer = at(12);
    older.text = newer.text = hash_of("free(p);");
    newer.message = newer.loose = hash_of("other");
    EXPECT_EQ(matched({{older}, {}}, {{newer}, {}}), (Pairs{{10, 12, Stage::message}}));
    newer.text = hash_of("free(q);");
    EXPECT_TRUE(matched({{older}, {}}, {{newer}, {}}).empty());
}

TEST(Matching, SharedFingerprintDecidesNothing) {
    auto const print = hash_of("shared");
    Finding    other = at(20);
    other.message = other.loose = hash_of("other");
    EXPECT_TRUE(matched({{at(10)}, {{print, 0}}}, {{other, at(5)}, {{print, 0}, {print, 1}}}) ==
                (Pairs{{10, 5, Stage::function}}));
    EXPECT_TRUE(matched({{at(10)}, {{print, 0}}}, {{other}, {{print, 0}}}) ==
                (Pairs{{10, 20, Stage::fingerprint}}));
}

TEST(Matching, FingerprintNeedsTheMessageOrTheFile) {
    auto const print = hash_of("own");
    Finding    newer = at(20);
    newer.message = newer.loose = hash_of("other");
    newer.file = 3;
    EXPECT_TRUE(matched({{at(10)}, {{print, 0}}}, {{newer}, {{print, 0}}}).empty());
    newer.message = newer.loose = at(10).message;
    EXPECT_EQ(matched({{at(10)}, {{print, 0}}}, {{newer}, {{print, 0}}}),
              (Pairs{{10, 20, Stage::fingerprint}}));
}

TEST(Matching, FindingWithTwoFingerprintsHasOnePartner) {
    auto const one = hash_of("one");
    auto const other = hash_of("other");
    Finding    changed = at(5);
    changed.message = changed.loose = hash_of("changed");
    Matched olds{{at(10)}, {{one, 0}, {other, 0}}};
    Matched news{{changed, at(20)}, {{one, 0}, {other, 1}}};
    match(olds, news, files);
    EXPECT_EQ(olds.findings[0].partner, 1u);
    EXPECT_FALSE(news.findings[0].has_partner());
}

TEST(Matching, RulesThatDifferAreNeverMatched) {
    Finding other = at(10);
    other.rule = 1;
    auto const print = hash_of("own");
    EXPECT_TRUE(matched({{at(10)}, {{print, 0}}}, {{other}, {{print, 0}}}).empty());
}

TEST(Matching, RenamedFileIsFound) {
    auto const in_file = [](std::uint32_t file, std::string_view said, std::int32_t line) {
        Finding one = at(line);
        one.file = file;
        one.message = one.loose = hash_of(said);
        return one;
    };
    std::vector<Finding> const olds = {in_file(2, "a", 1), in_file(2, "b", 2), in_file(2, "c", 3)};
    std::vector<Finding> const news = {in_file(3, "a", 4), in_file(3, "b", 5), in_file(3, "d", 9)};
    EXPECT_EQ(lines_matched(olds, news), (Lines{{1, 4}, {2, 5}}));

    // Of a file with many more findings, rules and messages alone are not enough.
    std::vector<Finding> many = news;
    for (std::int32_t line = 10; line < 16; ++line) many.push_back(in_file(3, "d", line));
    EXPECT_TRUE(lines_matched(olds, many).empty());

    // Of two files that have its findings, the one with more of them.
    std::vector<Finding> const both = {in_file(3, "a", 4), in_file(3, "b", 5), in_file(3, "c", 6),
                                       in_file(0, "a", 7), in_file(0, "b", 8)};
    EXPECT_EQ(lines_matched(olds, both), (Lines{{1, 4}, {2, 5}, {3, 6}}));
}

TEST(Alignment, IsTheCheapestWithoutCrossing) {
    auto const seed = runs::seed();
    Random     random(seed);
    for (int run = 0; run < runs::count(300, 3000); ++run) {
        std::size_t const                      fewer = 1 + below(random, 4);
        std::size_t const                      more = fewer + below(random, 4);
        std::vector<std::vector<std::int64_t>> costs(fewer, std::vector<std::int64_t>(more));
        for (auto& row : costs)
            for (auto& cost : row) cost = below(random, 5);
        auto const pairs =
            cheapest_pairs(fewer, more, [&](std::size_t i, std::size_t k) { return costs[i][k]; });
        ASSERT_EQ(pairs.size(), fewer);
        std::int64_t sum = 0;
        for (std::size_t i = 0; i < fewer; ++i) {
            EXPECT_EQ(pairs[i].first, i);
            if (i > 0) {
                EXPECT_GT(pairs[i].second, pairs[i - 1].second);
            }
            sum += costs[i][pairs[i].second];
        }
        if (fewer == more) continue;
        // All ways to choose columns.
        std::int64_t least = 1000;
        for (unsigned chosen = 0; chosen < 1u << more; ++chosen) {
            std::int64_t one = 0;
            std::size_t  row = 0;
            for (std::size_t k = 0; k < more && row <= fewer; ++k)
                if ((chosen >> k & 1) != 0) {
                    one += row < fewer ? costs[row][k] : 0;
                    ++row;
                }
            if (row == fewer) least = std::min(least, one);
        }
        EXPECT_EQ(sum, least);
    }
}

}  // namespace
