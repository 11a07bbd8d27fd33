#include <sml/inspect/canonical.hpp>

#include <sml/bindings/bindings.hpp>
#include <sml/inspect/describe.hpp>
#include <sml/inspect/verify.hpp>
#include "tests/hex.hpp"
#include "tests/inspect/real_roots.hpp"
#include "tests/inspect/wire_bytes.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using hex::bytes;
using sml::Strings_T;
using sml::inspect::Answer;
using sml::inspect::describe;
using sml::inspect::digest;
using sml::inspect::find_root;
using sml::inspect::Root;
using sml::inspect::verify;
using sml::inspect::write_canonical;
using Numbers = std::unordered_map<Strings_T, std::int32_t>;
using wire_bytes::in_full;
using wire_bytes::word;

std::string canonical(Root const& root, std::string const& bytes) {
    std::ostringstream out;
    write_canonical(root, bytes, out);
    return out.str();
}

/// The canonical bytes of a value of any type, as if it were a root.
template <class T>
std::string canonical(std::string const& bytes) {
    return canonical(Root{"R", describe<T>()}, bytes);
}

template <class T>
void expect_canonical(std::string const& given, std::string const& expected) {
    EXPECT_EQ(hex::shown(canonical<T>(given)), hex::shown(expected));
}

TEST(Canonical, IsGoodAndAFixedPointForEveryRoot) {
    for (RealRoot const& one : real_roots()) {
        Root const& root = *find_root(one.stem);
        for (std::uint64_t seed = 31; seed < 41; ++seed) {
            SCOPED_TRACE(one.stem + std::string(", seed ") + std::to_string(seed));
            RandomValues      random(seed);
            std::string const whole = one.random_bytes(random);
            std::string const first = canonical(root, whole);
            EXPECT_EQ(first.size(), whole.size());
            EXPECT_EQ(verify(root, first).answer, Answer::good);
            EXPECT_TRUE(canonical(root, first) == first);
            EXPECT_EQ(digest(root, first), digest(root, whole));
        }
    }
}

TEST(Canonical, IsThatOfTheValueWrittenAgain) {
    for (RealRoot const& one : real_roots()) {
        SCOPED_TRACE(one.stem);
        Root const&       root = *find_root(one.stem);
        RandomValues      random(41);
        std::string const whole = one.random_bytes(random);
        // Reading about reverses the order of every hash table.
        EXPECT_TRUE(canonical(root, one.read_and_write(whole)) == canonical(root, whole));
    }
}

TEST(Canonical, ListsKeepTheirOrder) {
    expect_canonical<std::list<Strings_T>>(word(3) + in_full(1, "b") + in_full(2, "a") + word(1),
                                           word(3) + in_full(1, "b") + in_full(2, "a") + word(1));
}

TEST(Canonical, MapsAndSetsAreSortedByTextAndNumberedAnew) {
    std::string const given = word(2) + in_full(1, "b") + word(1) + in_full(2, "a") + word(2);
    std::string const sorted = word(2) + in_full(1, "a") + word(2) + in_full(2, "b") + word(1);
    expect_canonical<Numbers>(given, sorted);
    expect_canonical<std::map<Strings_T, std::int32_t>>(given, sorted);
    std::string const set = word(2) + in_full(1, "b") + in_full(2, "a");
    expect_canonical<std::set<Strings_T>>(set, word(2) + in_full(1, "a") + in_full(2, "b"));
    expect_canonical<std::unordered_set<Strings_T>>(set,
                                                    word(2) + in_full(1, "a") + in_full(2, "b"));
}

TEST(Canonical, NumberingFollowsTheSortedOrderThroughTheWholeObject) {
    using Sets = std::unordered_map<Strings_T, std::unordered_set<Strings_T>>;
    expect_canonical<Sets>(
        word(2) + in_full(1, "b") + word(2) + in_full(2, "z") + in_full(3, "a") + word(3) + word(0),
        word(2) + in_full(1, "a") + word(0) + in_full(2, "b") + word(2) + word(1) +
            in_full(3, "z"));
}

TEST(Canonical, TextsAreComparedByTheirBytes) {
    // Unsorted. A prefix is less than the whole, and bytes are compared as unsigned.
    std::vector<std::string> const texts{"\xFF", "b", "", "ab", "\x7F", "a", "B", "aa"};
    std::vector<std::string> const sorted{"", "B", "a", "aa", "ab", "b", "\x7F", "\xFF"};
    std::string                    given = word(8);
    std::string                    expected = word(8);
    for (std::size_t i = 0; i < texts.size(); ++i) {
        given += in_full(static_cast<std::int32_t>(i + 1), texts[i]);
        expected += in_full(static_cast<std::int32_t>(i + 1), sorted[i]);
    }
    expect_canonical<std::set<Strings_T>>(given, expected);
}

TEST(Canonical, MoreThan256TextsAreStillSortedByText) {
    std::vector<std::string> texts;
    for (int i = 0; i < 1000; ++i) texts.push_back("text " + std::to_string(i));
    std::ranges::shuffle(texts, std::mt19937(5));
    auto const in_order = [&] {
        std::string all = word(1000);
        for (std::size_t i = 0; i < texts.size(); ++i)
            all += in_full(static_cast<std::int32_t>(i + 1), texts[i]);
        return all;
    };
    std::string const given = in_order();
    std::ranges::sort(texts);
    EXPECT_TRUE(canonical<std::unordered_set<Strings_T>>(given) == in_order());
}

/// Bytes go out in pieces of 64 KiB.
TEST(Canonical, TextAsLongAsAPieceIsWhole) {
    for (std::size_t const length : {65'535u, 65'536u, 65'537u}) {
        std::string const whole = word(1) + in_full(1, std::string(length, 'x')) + word(7);
        EXPECT_TRUE(canonical<Numbers>(whole) == whole) << length;
    }
}

TEST(Canonical, EntriesWithOneKeyAreSortedByTheirValue) {
    expect_canonical<Numbers>(word(2) + in_full(1, "a") + word(2) + word(1) + word(1),
                              word(2) + in_full(1, "a") + word(1) + word(1) + word(2));
}

TEST(Canonical, TableWithoutAnEntryAndPairsWithoutFraming) {
    expect_canonical<Numbers>(word(0), word(0));
    using Keys = std::set<std::pair<Strings_T, std::int32_t>>;
    expect_canonical<Keys>(
        word(3) + in_full(1, "b") + word(1) + in_full(2, "a") + word(2) + word(2) + word(1),
        word(3) + in_full(1, "a") + word(1) + word(1) + word(2) + in_full(2, "b") + word(1));
}

TEST(Canonical, UnknownTagsStay) {
    Root const&       root = *find_root("IL_Extras_ZelvaniteResultData");
    std::string const odd = word(77) + word(9);
    EXPECT_EQ(hex::shown(canonical(root, odd)), hex::shown(odd));
}

TEST(Canonical, RefusesUnsafeBytes) {
    Root const&        root = *find_root("Answers_Context");
    std::ostringstream out;
    EXPECT_THROW(write_canonical(root, "", out), std::invalid_argument);
    EXPECT_THROW(write_canonical(root, "TT", out), std::invalid_argument);
    EXPECT_THROW(digest(root, ""), std::invalid_argument);
    std::string const deep = word(1) + in_full(1, "a") + word(0);
    EXPECT_THROW(digest(*find_root("String_To_StringSet_T"), deep, {.limits = {.depth = 1}}),
                 std::invalid_argument);
}

/// The bytes of the same content for any order of insertion and of the strings' addresses: maps by
/// number, hash sets, and a map and a set that are sorted by address.
std::string written(std::vector<int> const& order) {
    std::vector<Strings_T> strings(order.size());
    for (int const i : order)
        strings[static_cast<std::size_t>(i)] =
            Strings_T("a longer text, number " + std::to_string(i));
    sml::Application_Results::T_Application_Results results;
    for (int const i : order) {
        Strings_T const& text = strings[static_cast<std::size_t>(i)];
        results.check_numbers[text] = i;
        results.integer_sets[strings[0]].insert(sml::BigInteger(i));
        results.first_key_sets[{strings[1], 7}].insert({text, i});
        auto& named = results.checks[{strings[2], 1}].located_names;
        named[{i, text, 0}].first.insert({text, strings[0]});
        results.infos[{text, i}].first_string = text;
    }
    return sml::Application_Results_Application_Results_fromCxx(results);
}

TEST(Canonical, IsTheSameForEveryOrderOfInsertionAndOfAddresses) {
    Root const&           root = *find_root("Application_Results_Application_Results");
    std::mt19937          engine(51);
    std::vector<int>      order(12);
    std::set<std::string> forms;
    std::set<std::string> canonicals;
    std::iota(order.begin(), order.end(), 0);
    for (int round = 0; round < 30; ++round) {
        std::string const whole = written(order);
        forms.insert(whole);
        canonicals.insert(canonical(root, whole));
        std::ranges::shuffle(order, engine);
    }
    EXPECT_GT(forms.size(), 10u);
    EXPECT_EQ(canonicals.size(), 1u);
}

TEST(Digest, IsTheSha256OfTheCanonicalBytes) {
    // The SHA-256 of 02000000 ffffffff0100000061 00000000 feffffff0100000062 02000000 01000000
    // fdffffff010000007a, computed by another program.
    constexpr char const* known =
        "10712251a9cb7e34a1a3c0de5b267077e954319609c0ea063eb69d47c2308195";
    Root const&       root = *find_root("String_To_StringSet_T");
    std::string const given =
        word(2) + in_full(1, "b") + word(2) + in_full(2, "z") + in_full(3, "a") + word(3) + word(0);
    EXPECT_EQ(digest(root, given), known);
    EXPECT_EQ(digest(root, canonical(root, given)), known);
}

TEST(Digest, DiffersForOtherContent) {
    std::set<std::string> digests;
    std::size_t           values = 0;
    for (RealRoot const& one : real_roots()) {
        if (one.stem != std::string("Answers_AnswerAssert")) continue;
        RandomValues          random(61);
        std::set<std::string> contents;
        for (int i = 0; i < 50; ++i)
            contents.insert(canonical(*find_root(one.stem), one.random_bytes(random)));
        values += contents.size();
        for (std::string const& content : contents)
            digests.insert(digest(*find_root(one.stem), content));
    }
    EXPECT_GT(values, 20u);
    EXPECT_EQ(digests.size(), values);
}

TEST(Digest, DiffersWhenATextMovesToAnotherKey) {
    Root const&       root = *find_root("String_To_StringSet_T");
    std::string const in_a =
        word(2) + in_full(1, "a") + word(1) + in_full(2, "x") + in_full(3, "b") + word(0);
    std::string const in_b =
        word(2) + in_full(1, "a") + word(0) + in_full(2, "b") + word(1) + in_full(3, "x");
    EXPECT_NE(digest(root, in_a), digest(root, in_b));
}

}  // namespace
