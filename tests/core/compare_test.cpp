#include <sml/core/compare.hpp>
#include <sml/core/define.hpp>
#include <sml/schema/AccessProtections.hpp>
#include <sml/schema/BlockKind.hpp>
#include <sml/schema/Blocks.hpp>
#include <sml/schema/Critical_Section_Funtype_Base.hpp>

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <functional>
#include <limits>
#include <list>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <unordered_map>
#include <unordered_set>
#include <utility>

using sml::int32;
using sml::int64;
using sml::Strings_T;
using sml::uint32;
using sml::uint64;
using sml::BlockKind::T_BlockKind;
using sml::core::Comparison;

// The declaring macros give types members with external linkage, so the namespace has a name.
namespace compare_test {

/// A record with fields around a list.
struct Record {
    int32             first{};
    std::list<double> values;
    int32             last{};

    SML_RECORD(Record, first, values, last);
};
SML_DEFINE_RECORD(Record);

}  // namespace compare_test

namespace {

using compare_test::Record;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// Parts that are compared field by field.
struct Parts {
    double first{};
    double second{};

    SML_FIELDS(Parts, first, second);
};

/// The same, compared by `<` alone.
struct Group {
    double first{};
    double second{};

    static constexpr bool walked_with_less = true;
    SML_FIELDS(Group, first, second);
};

/// Compared by `<` alone, and so are its parts.
struct DeepGroup {
    std::optional<std::pair<double, double>> bounds;
    std::list<double>                        values;
    bool                                     flag{};

    static constexpr bool walked_with_less = true;
    SML_FIELDS(DeepGroup, bounds, values, flag);
};

/// `a < b` and `b < a`.
template <class T>
std::pair<bool, bool> both_ways(T const& a, T const& b) {
    return {Comparison::less(a, b), Comparison::less(b, a)};
}

constexpr std::pair lesser(true, false);
constexpr std::pair neither(false, false);
constexpr std::pair each(true, true);

T_BlockKind block(std::int32_t tag) {
    T_BlockKind kind;
    kind.choose_tag(tag);
    return kind;
}

TEST(Comparison, WordsCompareByTheirSignedness) {
    EXPECT_EQ(both_ways(int32{-1}, int32{1}), lesser);
    EXPECT_EQ(both_ways(int64{-1}, int64{1}), lesser);
    EXPECT_EQ(both_ways(uint32{1}, ~uint32{0}), lesser);
    EXPECT_EQ(both_ways(uint64{1}, ~uint64{0}), lesser);
    EXPECT_EQ(both_ways(false, true), lesser);
    EXPECT_EQ(both_ways(true, true), neither);
}

TEST(Comparison, EnumerationsCompareAsSignedNumbers) {
    using sml::Critical_Section_Funtype_Base::T;
    EXPECT_EQ(both_ways(static_cast<T>(-1), sml::Critical_Section_Funtype_Base::Destroy), lesser);
    EXPECT_EQ(both_ways(static_cast<T>(2), static_cast<T>(3)), lesser);
}

TEST(Comparison, PlainTextsCompareByTheirBytes) {
    EXPECT_EQ(both_ways(std::string("a"), std::string("b")), lesser);
    EXPECT_EQ(both_ways(std::string("a"), std::string("ab")), lesser);
    EXPECT_EQ(both_ways(std::string("z"), std::string("\xe4")), lesser);
}

TEST(Comparison, HandlesCompareByAddress) {
    Strings_T const a("compare: a");
    Strings_T const b("compare: b");
    bool const      a_is_first = std::less<std::string const*>{}(&a.str(), &b.str());
    EXPECT_EQ(both_ways(a, b), std::pair(a_is_first, !a_is_first));
    EXPECT_EQ(both_ways(Strings_T(), a), lesser);
}

TEST(Comparison, AbsentIsLessThanPresent) {
    using Optional = std::optional<int32>;
    EXPECT_EQ(both_ways(Optional(), Optional(-5)), lesser);
    EXPECT_EQ(both_ways(Optional(1), Optional(2)), lesser);
    EXPECT_EQ(both_ways(Optional(), Optional()), neither);
    EXPECT_EQ(both_ways(Optional(1), Optional(1)), neither);
    EXPECT_TRUE(Comparison::equal(Optional(), Optional()));
    EXPECT_FALSE(Comparison::equal(Optional(), Optional(0)));
}

TEST(Comparison, OptionalOfAnArmWithoutPayloadIsLessThanItself) {
    std::optional<T_BlockKind> const value(block(0));
    EXPECT_EQ(both_ways(value, value), each);
    EXPECT_EQ(both_ways({}, value), lesser);
}

TEST(Comparison, PairComparesFirstThenSecond) {
    using Pair = std::pair<int32, int32>;
    EXPECT_EQ(both_ways(Pair(1, 9), Pair(2, 0)), lesser);
    EXPECT_EQ(both_ways(Pair(1, 1), Pair(1, 2)), lesser);
    EXPECT_EQ(both_ways(Pair(1, 1), Pair(1, 1)), neither);
}

// The first parts are compared by equality, not by `<` in the other direction.
TEST(Comparison, PairEndsAtAnUnequalFirst) {
    using Pair = std::pair<double, double>;
    EXPECT_EQ(both_ways(Pair(nan, 1), Pair(nan, 2)), neither);
    EXPECT_EQ(both_ways(Pair(0.0, 1), Pair(-0.0, 2)), lesser);
}

TEST(Comparison, TupleAndFlagsCompareInOrder) {
    using Tuple = std::tuple<int32, double, int32>;
    EXPECT_EQ(both_ways(Tuple(1, 2, 3), Tuple(1, 2, 4)), lesser);
    EXPECT_EQ(both_ways(Tuple(1, 2, 9), Tuple(1, 3, 0)), lesser);
    EXPECT_EQ(both_ways(Tuple(1, nan, 3), Tuple(1, nan, 4)), neither);
    using Flags = std::array<bool, 4>;
    EXPECT_EQ(both_ways(Flags{false, true, true, true}, Flags{true}), lesser);
    EXPECT_EQ(both_ways(Flags{}, Flags{false, false, false, true}), lesser);
    EXPECT_EQ(both_ways(Flags{true}, Flags{true}), neither);
}

TEST(Comparison, ShorterListIsLessWhateverItHolds) {
    using List = std::list<int32>;
    EXPECT_EQ(both_ways(List{9}, List{1, 1}), lesser);
    EXPECT_EQ(both_ways(List{}, List{-1}), lesser);
    EXPECT_EQ(both_ways(List{1, 1}, List{1, 2}), lesser);
    EXPECT_EQ(both_ways(List{1, 9}, List{2, 0}), lesser);
    EXPECT_EQ(both_ways(List{}, List{}), neither);
    EXPECT_EQ(both_ways(List{1}, List{1}), neither);
}

TEST(Comparison, ListsAreEqualElementByElement) {
    using List = std::list<int32>;
    EXPECT_TRUE(Comparison::equal(List{1, 2}, List{1, 2}));
    EXPECT_FALSE(Comparison::equal(List{1, 2}, List{2, 1}));
    EXPECT_FALSE(Comparison::equal(List{1}, List{1, 1}));
}

TEST(Comparison, ElementNeitherLessNorGreaterIsPassedOver) {
    EXPECT_EQ(both_ways(std::list<double>{nan, 1}, {nan, 2}), lesser);
    EXPECT_EQ(both_ways(std::list<double>{nan, 1}, {5, 2}), lesser);
    EXPECT_EQ(both_ways(std::list<double>{nan, 1}, {5, 1}), neither);
    using Map = std::map<int32, double>;
    EXPECT_EQ(both_ways(Map{{1, nan}, {2, 1}}, Map{{1, 7}, {2, 2}}), lesser);
}

TEST(Comparison, ListOfArmsWithoutPayloadIsLessThanItself) {
    std::list<T_BlockKind> const list{block(0), block(3)};
    EXPECT_EQ(both_ways(list, list), each);
    EXPECT_EQ(both_ways(list, {block(0), block(2)}), each);
    EXPECT_EQ(both_ways({block(1), block(0)}, list), std::pair(false, true));
}

TEST(Comparison, SetAndMapHaveNoSizeStep) {
    using Set = std::set<int32>;
    EXPECT_EQ(both_ways(Set{1}, Set{1, 2}), lesser);
    EXPECT_EQ(both_ways(Set{1, 5}, Set{2}), lesser);
    EXPECT_EQ(both_ways(Set{}, Set{1}), lesser);
    EXPECT_EQ(both_ways(Set{1, 2}, Set{1, 2}), neither);

    using Map = std::map<int32, int32>;
    EXPECT_EQ(both_ways(Map{{1, 1}}, Map{{1, 1}, {0, 0}}), std::pair(false, true));
    EXPECT_EQ(both_ways(Map{{1, 1}, {2, 2}}, Map{{1, 2}}), lesser);
    EXPECT_EQ(both_ways(Map{{1, 1}}, Map{{1, 1}, {2, 2}}), lesser);
}

TEST(Comparison, MapEntryEndsAtAnUnequalKey) {
    using Map = std::map<double, int32>;
    EXPECT_EQ(both_ways(Map{{0.0, 1}}, Map{{-0.0, 2}}), lesser);
    EXPECT_EQ(both_ways(Map{{nan, 1}}, Map{{nan, 2}}), neither);
}

TEST(Comparison, SetOfArmsWithoutPayloadKeepsEqualOnes) {
    std::set<T_BlockKind> kinds;
    kinds.insert(block(0));
    kinds.insert(block(0));
    EXPECT_EQ(kinds.size(), 2u);
    EXPECT_EQ(both_ways(kinds, kinds), each);
}

TEST(Comparison, HashedTableComparesBySizeFirst) {
    using Map = std::unordered_map<int32, int32>;
    using Set = std::unordered_set<int32>;
    EXPECT_EQ(both_ways(Map{{9, 9}}, Map{{1, 1}, {2, 2}}), lesser);
    EXPECT_EQ(both_ways(Set{9}, Set{1, 2}), lesser);
    EXPECT_EQ(both_ways(Map{}, Map{}), neither);
    EXPECT_EQ(both_ways(Set{}, Set{}), neither);
}

TEST(Comparison, HashedTablesOfOneSizeWithOtherKeysAreUnrelated) {
    using Map = std::unordered_map<int32, int32>;
    using Set = std::unordered_set<int32>;
    EXPECT_EQ(both_ways(Map{{1, 1}}, Map{{2, 2}}), neither);
    EXPECT_EQ(both_ways(Map{{1, 1}, {2, 2}}, Map{{1, 5}, {3, 5}}), neither);
    EXPECT_FALSE(Comparison::equal(Map{{1, 1}}, Map{{2, 2}}));
    EXPECT_EQ(both_ways(Set{1, 2}, Set{1, 3}), neither);
    EXPECT_FALSE(Comparison::equal(Set{1, 2}, Set{1, 3}));
}

TEST(Comparison, ValuesOfAHashedTableDecideInTheLeftTablesOrder) {
    using Map = std::unordered_map<int32, int32>;
    Map a{{1, 0}, {2, 0}};
    Map b{{1, 0}, {2, 0}};
    EXPECT_EQ(both_ways(a, b), neither);
    EXPECT_TRUE(Comparison::equal(a, b));

    // Less at the first entry in the order of `a`, greater at the other.
    int32 const first = a.begin()->first;
    a[first] = 1;
    b[first] = 2;
    a[3 - first] = 9;
    EXPECT_TRUE(Comparison::less(a, b));

    // Greater at the first entry, which ends the comparison.
    a[first] = 3;
    a[3 - first] = -9;
    EXPECT_FALSE(Comparison::less(a, b));
}

TEST(Comparison, HashedTableWalksItsOwnOrderNotThatOfTheOther) {
    using Map = std::unordered_map<int32, int32>;
    // The entries are inserted in different orders, so that the maps iterate differently.
    Map a;
    Map b;
    for (int32 const key : {1, 2}) a[key] = key;
    for (int32 const key : {2, 1}) b[key] = 3 - key;
    ASSERT_NE(a.begin()->first, b.begin()->first);
    bool const a_meets_lesser_first = a.begin()->first == 1;
    EXPECT_EQ(Comparison::less(a, b), a_meets_lesser_first);
    EXPECT_EQ(Comparison::less(b, a), b.begin()->first == 2);
}

TEST(Comparison, ValueNeitherLessNorGreaterIsPassedOverInAHashedTable) {
    using Map = std::unordered_map<int32, double>;
    EXPECT_EQ(both_ways(Map{{1, nan}, {2, 1}}, Map{{1, nan}, {2, 2}}), lesser);
    EXPECT_EQ(both_ways(Map{{1, nan}}, Map{{1, nan}}), neither);
    EXPECT_FALSE(Comparison::equal(Map{{1, nan}}, Map{{1, nan}}));
}

TEST(Comparison, HashedTableOfArmsWithoutPayloadIsLessThanItself) {
    std::unordered_map<int32, T_BlockKind> const kinds{{1, block(0)}};
    EXPECT_EQ(both_ways(kinds, kinds), each);

    using sml::AccessProtections::T_AccessProtections;
    sml::core::HashedSet<T_AccessProtections> protections;
    T_AccessProtections                       rendez_vous;
    rendez_vous.choose<"RENDEZ_VOUS">();
    protections.insert(rendez_vous);
    EXPECT_EQ(both_ways(protections, protections), each);

    sml::core::HashedSet<T_AccessProtections> others;
    T_AccessProtections                       resource;
    resource.choose<"RESOURCE">();
    others.insert(resource);
    EXPECT_EQ(both_ways(protections, others), neither);
}

TEST(Comparison, BoxComparesWhatItHolds) {
    using Box = sml::core::Box<int32>;
    EXPECT_EQ(both_ways(Box(1), Box(2)), lesser);
    EXPECT_TRUE(Comparison::equal(Box(1), Box(1)));
    EXPECT_FALSE(Comparison::equal(Box(1), Box(2)));
}

TEST(Comparison, PartsEndAtAnUnequalOne) {
    EXPECT_EQ(both_ways(Parts{1, 9}, Parts{2, 0}), lesser);
    EXPECT_EQ(both_ways(Parts{1, 1}, Parts{1, 2}), lesser);
    EXPECT_EQ(both_ways(Parts{nan, 1}, Parts{nan, 2}), neither);
    EXPECT_TRUE(Comparison::equal(Parts{1, 2}, Parts{1, 2}));
    EXPECT_FALSE(Comparison::equal(Parts{1, nan}, Parts{1, nan}));
}

TEST(Comparison, GroupIsWalkedWithLessAlone) {
    EXPECT_EQ(both_ways(Group{1, 9}, Group{2, 0}), lesser);
    EXPECT_EQ(both_ways(Group{nan, 1}, Group{nan, 2}), lesser);
    EXPECT_EQ(both_ways(Group{nan, 1}, Group{7, 2}), lesser);
    EXPECT_EQ(both_ways(Group{1, 1}, Group{1, 1}), neither);
    EXPECT_FALSE(Comparison::equal(Group{nan, 1}, Group{nan, 1}));
}

TEST(Comparison, GroupAsksNoEqualityOfWhatItHolds) {
    EXPECT_EQ(both_ways(DeepGroup{std::pair(nan, 1.0), {}, false},
                        DeepGroup{std::pair(nan, 2.0), {}, false}),
              lesser);
    EXPECT_EQ(both_ways(DeepGroup{std::pair(nan, 1.0), {}, false},
                        DeepGroup{std::pair(nan, 1.0), {}, true}),
              lesser);
    EXPECT_EQ(both_ways(DeepGroup{{}, {nan}, false}, DeepGroup{{}, {nan}, true}), lesser);
    EXPECT_EQ(both_ways(DeepGroup{{}, {9}, true}, DeepGroup{std::pair(0.0, 0.0), {}, false}),
              lesser);
    EXPECT_EQ(both_ways(DeepGroup{{}, {9}, true}, DeepGroup{{}, {1, 1}, false}), lesser);
}

TEST(Comparison, RecordIsLexicographicOverItsFields) {
    EXPECT_EQ(both_ways(Record{1, {9}, 9}, Record{2, {}, 0}), lesser);
    EXPECT_EQ(both_ways(Record{1, {9}, 9}, Record{1, {1, 1}, 0}), lesser);
    EXPECT_EQ(both_ways(Record{1, {2}, 1}, Record{1, {2}, 2}), lesser);
    EXPECT_EQ(both_ways(Record{1, {2}, 3}, Record{1, {2}, 3}), neither);
    EXPECT_TRUE((Record{1, {2}, 3} == Record{1, {2}, 3}));
    EXPECT_FALSE((Record{1, {2}, 3} == Record{1, {2}, 4}));
    EXPECT_FALSE((Record{1, {2}, 3} == Record{0, {2}, 3}));
}

TEST(Comparison, ContainerIsAskedForEqualityAfterItsWalk) {
    // The first list is neither less nor greater, and unequal: the next field is not compared.
    EXPECT_EQ(both_ways(Record{1, {nan}, 1}, Record{1, {nan}, 2}), neither);
    EXPECT_EQ(both_ways(Record{1, {nan}, 1}, Record{1, {5}, 2}), neither);
    // The first element is unequal, but a later one decides.
    EXPECT_EQ(both_ways(Record{1, {nan, 3}, 9}, Record{1, {nan, 4}, 0}), lesser);
    // The first fields are equal, though not identical.
    EXPECT_EQ(both_ways(Record{1, {0.0}, 1}, Record{1, {-0.0}, 2}), lesser);
}

TEST(Comparison, RecordWithAnArmWithoutPayloadIsLessThanItself) {
    sml::Blocks::T_BlockAttribute a;
    a.kind.choose<"B_THEN">();
    auto b = a;
    b.last_number = 1;
    EXPECT_TRUE(a == a);
    EXPECT_TRUE(a < a);
    EXPECT_TRUE(a < b);
    EXPECT_TRUE(b < a);
    b.first_number = 1;
    EXPECT_TRUE(a < b);
    EXPECT_FALSE(b < a);
}

}  // namespace
