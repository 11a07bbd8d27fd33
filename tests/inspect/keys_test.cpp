// Keys of every kind that sets and maps may have: repeated keys are found, others are not, and both
// are shown.

#include <sml/inspect/describe.hpp>
#include <sml/inspect/dump.hpp>
#include <sml/inspect/keys/key_table.hpp>
#include <sml/inspect/keys/keys.hpp>
#include <sml/schema/Checks.hpp>
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <list>
#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <tuple>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace {

using namespace sml::inspect;
using Enum = sml::Checks::T_Check_Color;
using sml::Strings_T;

Strings_T text(char const* text) { return Strings_T(std::string(text)); }

/// The findings of verify about repeated keys, as it prints them.
std::string repeated(Root const& root, std::string const& bytes) {
    std::string all;
    for (Finding const& finding : verify(root, bytes, {.listed = 1000}).findings)
        if (finding.expected == "a new key or element") all += finding.found + "\n";
    return all;
}

std::string dumped(Root const& root, std::string const& bytes) {
    std::ostringstream json;
    dump(root, bytes, json);
    return json.str();
}

/// Verifies the bytes of a list as a set and as the keys of a map.
template <class Set, class Key = typename Set::value_type>
void expect_distinguished(std::list<Key> const& keys, std::string const& found,
                          std::string const& json) {
    Root const        root{"Set", describe<Set>()};
    std::string const bytes = wire::write(keys);
    Set               read;
    wire::read_over(read, bytes);
    ASSERT_LT(read.size(), keys.size());
    EXPECT_EQ(repeated(root, bytes), found);
    if (!json.empty()) {
        EXPECT_EQ(dumped(root, wire::write(read)), json);
    }

    std::list<std::pair<Key, std::int32_t>> entries;
    for (Key const& key : keys) entries.emplace_back(key, 7);
    std::map<Key, std::int32_t> map;
    std::string const           entry_bytes = wire::write(entries);
    Root const                  map_root{"Map", describe<std::map<Key, std::int32_t>>()};
    wire::read_over(map, entry_bytes);
    EXPECT_EQ(map.size(), read.size());
    EXPECT_EQ(repeated(map_root, entry_bytes), found);
}

TEST(Keys, WordsAreDistinguished) {
    expect_distinguished<std::set<std::int32_t>>({-1, 2, -1}, "-1 again\n",
                                                 R"({"root":"Set","value":[-1,2]})"
                                                 "\n");
    expect_distinguished<std::set<std::uint32_t>>({1, 2, 1}, "1 again\n",
                                                  R"({"root":"Set","value":[1,2]})"
                                                  "\n");
    expect_distinguished<std::set<std::int64_t>>({-1, 2, -1}, "-1 again\n",
                                                 R"({"root":"Set","value":["-1","2"]})"
                                                 "\n");
    expect_distinguished<std::set<std::uint64_t>>(
        {1, 2, std::uint64_t{1} << 63, 1}, "1 again\n",
        R"({"root":"Set","value":["1","2","9223372036854775808"]})"
        "\n");
}

TEST(Keys, FlagsEnumeratorsAndTextsAreDistinguished) {
    expect_distinguished<std::set<bool>>({false, true, true}, "true again\n",
                                         R"({"root":"Set","value":[false,true]})"
                                         "\n");
    expect_distinguished<std::set<Enum>>({Enum(0), Enum(1), Enum(1), Enum(77), Enum(77)},
                                         std::string(toString(Enum(1))) + " again\n77 again\n", "");
    expect_distinguished<std::set<std::string>>({"a", "", "b", "", "a"},
                                                "\"\" again\n\"a\" again\n",
                                                R"({"root":"Set","value":["","a","b"]})"
                                                "\n");
}

TEST(Keys, BigIntegersAreDistinguished) {
    using sml::BigInteger;
    expect_distinguished<std::set<BigInteger>>({BigInteger(-255), BigInteger(1), BigInteger(-255)},
                                               "-ff again\n",
                                               R"({"root":"Set","value":["-255","1"]})"
                                               "\n");
}

TEST(Keys, OptionalsAreDistinguished) {
    expect_distinguished<std::set<std::optional<std::int32_t>>>(
        {{}, 0, 1, {}, 1}, "null again\n1 again\n",
        R"({"root":"Set","value":[null,0,1]})"
        "\n");
    expect_distinguished<std::set<std::optional<Strings_T>>>({text("a"), {}, text(""), text("a")},
                                                             "\"a\" again\n", "");
}

TEST(Keys, TuplesOfThemAreDistinguished) {
    using Pair = std::pair<Enum, Strings_T>;
    expect_distinguished<std::set<Pair>>(
        {{Enum(0), text("a")}, {Enum(1), text("a")}, {Enum(0), text("b")}, {Enum(1), text("a")}},
        "(" + std::string(toString(Enum(1))) + ",\"a\") again\n", "");
    using Tuple = std::tuple<std::uint64_t, bool, std::optional<std::string>>;
    expect_distinguished<std::set<Tuple>>(
        {{1, true, {}}, {1, false, {}}, {1, true, ""}, {2, true, {}}, {1, true, {}}},
        "(1,true,null) again\n", "");
}

TEST(Keys, HashedOnesAreDistinguished) {
    expect_distinguished<std::unordered_set<std::uint64_t>>({1, 2, 1}, "1 again\n", "");
    expect_distinguished<std::unordered_set<std::int64_t>>({-1, 2, -1}, "-1 again\n", "");
    expect_distinguished<std::unordered_set<bool>>({false, true, true}, "true again\n", "");
    expect_distinguished<std::unordered_set<std::string>>({"a", "", ""}, "\"\" again\n", "");
}

/// Expects that the walk computes the same hash of a key as a reader's hash table. The estimate of
/// comparisons depends on it.
template <class Key, class Set = std::unordered_set<Key>>
void expect_hash(Key const& key) {
    std::string const bytes = wire::write(key);
    Budget            budget(Limits().own_memory);
    StringTable       strings(bytes, &budget);
    auto const        hash = Keys(bytes, strings, budget).readers_hash(*describe<Key>(), 0);
    EXPECT_FALSE(hash.equals_none);
    EXPECT_EQ(hash.hash, Set().hash_function()(key)) << hex::shown(bytes);
}

TEST(Keys, HashesOfReadersAreKnown) {
    expect_hash(std::int32_t{-5});
    expect_hash(std::uint32_t{0x80000001});
    expect_hash(std::int64_t{-5});
    expect_hash(~std::uint64_t{5});
    expect_hash(true);
    expect_hash(Enum(1));
    expect_hash(std::string());
    expect_hash(std::string("a text of more than one word"));
    using sml::BigInteger;
    for (BigInteger const& number : {BigInteger(0), BigInteger(-255), BigInteger(1) << 64})
        expect_hash<BigInteger, sml::core::HashedSet<BigInteger>>(number);
}

TEST(Keys, FindingsStandInTheOrderOfTheirPlaces) {
    Root const    root{"Map", describe<std::map<std::int32_t, Enum>>()};
    Verdict const verdict =
        verify(root, hex::bytes("02 00 00 00  07 00 00 00 00 00 00 00  07 00 00 00 77 00 00 00"));
    ASSERT_EQ(verdict.findings.size(), 2u);
    EXPECT_EQ(verdict.findings[0].offset, 12u);  // the key, which is judged behind its value
    EXPECT_EQ(verdict.findings[1].offset, 16u);
}

TEST(KeyTable, KeysOfOneHashAreTwo) {
    std::string const bytes = wire::write(std::list<std::int32_t>{5, 6, 5});
    Budget            budget(Limits().own_memory);
    StringTable       strings(bytes, &budget);
    Keys const        keys(bytes, strings, budget);
    Type const&       type = *describe<std::int32_t>();
    KeyTable          table(&budget);
    table.open(3);
    EXPECT_TRUE(table.add(keys, type, 4, 7));
    EXPECT_TRUE(table.add(keys, type, 8, 7));
    EXPECT_EQ(table.comparisons(), 1u);
    EXPECT_FALSE(table.add(keys, type, 12, 7));
}

/// A number whose hash as a key is so like that of `number` that both are compared in a table of
/// two keys. The hashes have a random seed.
std::int32_t colliding_with(std::int32_t number) {
    auto const place = [](std::int32_t key) {
        std::string const bytes = wire::write(key);
        Budget            budget(Limits().own_memory);
        StringTable       strings(bytes, &budget);
        auto const        hash = Keys(bytes, strings, budget).hash(*describe<std::int32_t>(), 0);
        return std::pair(hash & 0xFFFF, first_slot(hash, slots_for(2)));
    };
    std::int32_t other = number + 1;
    while (place(other) != place(number)) ++other;
    return other;
}

TEST(Keys, AComparisonOfTwoThatDifferIsWork) {
    Root const         root{"Set", describe<std::set<std::int32_t>>()};
    std::int32_t const other = colliding_with(1);
    auto const         work = [&](std::int32_t last) {
        Verdict const verdict = verify(root, wire::write(std::list<std::int32_t>{1, last}));
        EXPECT_EQ(verdict.answer, Answer::good);
        return verdict.work;
    };
    EXPECT_EQ(work(other), work(other + 1) + 1);
}

TEST(Keys, ManyHashedOnesAreDistinguished) {
    constexpr std::uint64_t  count = 10'000;
    std::list<std::uint64_t> keys;
    for (std::uint64_t i = 0; i < count; ++i) keys.push_back(i * 0x9e3779b97f4a7c15);
    keys.push_back(keys.front());
    Root const    root{"Set", describe<std::unordered_set<std::uint64_t>>()};
    Verdict const verdict = verify(root, wire::write(keys));
    EXPECT_EQ(verdict.odd_count, 1u);
    EXPECT_GT(verdict.work, count / 4);
    EXPECT_LT(verdict.work, 4 * count);
}

}  // namespace
