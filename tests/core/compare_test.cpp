#include <sml/core/compare.hpp>
#include <sml/core/define.hpp>
#include <sml/schema/AccessProtections.hpp>
#include <sml/schema/BlockKind.hpp>
#include <sml/schema/Blocks.hpp>
#include <sml/schema/Critical_Section_Funtype_Base.hpp>
#include "tests/order.hpp"

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

/// A value with the library's comparison as its operators. Containers have others of their own.
template <class T>
struct Compared {
    T const& value;

    bool operator<(Compared const& other) const { return Comparison::less(value, other.value); }
    bool operator==(Compared const& other) const { return Comparison::equal(value, other.value); }
};

template <class T>
void expect_less(T const& a, T const& b) {
    order::expect_less(Compared<T>{a}, Compared<T>{b});
}
template <class T>
void expect_equal(T const& a, T const& b) {
    order::expect_equal(Compared<T>{a}, Compared<T>{b});
}
template <class T>
void expect_unordered(T const& a, T const& b) {
    order::expect_unordered(Compared<T>{a}, Compared<T>{b});
}
template <class T>
void expect_equal_and_each_less(T const& a, T const& b) {
    order::expect_equal_and_each_less(Compared<T>{a}, Compared<T>{b});
}
template <class T>
void expect_unequal_and_each_less(T const& a, T const& b) {
    order::expect_unequal_and_each_less(Compared<T>{a}, Compared<T>{b});
}

T_BlockKind block(std::int32_t tag) {
    T_BlockKind kind;
    kind.choose_tag(tag);
    return kind;
}

TEST(Comparison, WordsCompareByTheirSignedness) {
    expect_less(int32{-1}, int32{1});
    expect_less(int64{-1}, int64{1});
    expect_less(uint32{1}, ~uint32{0});
    expect_less(uint64{1}, ~uint64{0});
    expect_less(false, true);
    expect_equal(true, true);
}

TEST(Comparison, EnumerationsCompareAsSignedNumbers) {
    using sml::Critical_Section_Funtype_Base::T;
    expect_less(static_cast<T>(-1), sml::Critical_Section_Funtype_Base::Destroy);
    expect_less(static_cast<T>(2), static_cast<T>(3));
}

TEST(Comparison, PlainTextsCompareByTheirBytes) {
    expect_less(std::string("a"), std::string("b"));
    expect_less(std::string("a"), std::string("ab"));
    expect_less(std::string("z"), std::string("\xe4"));
}

TEST(Comparison, HandlesCompareByAddress) {
    Strings_T const a("compare: a");
    Strings_T const b("compare: b");
    bool const      a_is_first = std::less<std::string const*>{}(&a.str(), &b.str());
    if (a_is_first)
        expect_less(a, b);
    else
        expect_less(b, a);
    expect_less(Strings_T(), a);
}

TEST(Comparison, AbsentIsLessThanPresent) {
    using Optional = std::optional<int32>;
    expect_less(Optional(), Optional(-5));
    expect_less(Optional(1), Optional(2));
    expect_equal(Optional(), Optional());
    expect_equal(Optional(1), Optional(1));
    expect_less(Optional(), Optional(0));
}

TEST(Comparison, OptionalOfAnArmWithoutPayloadIsLessThanItself) {
    std::optional<T_BlockKind> const value(block(0));
    expect_equal_and_each_less(value, value);
    expect_less({}, value);
}

TEST(Comparison, PairComparesFirstThenSecond) {
    using Pair = std::pair<int32, int32>;
    expect_less(Pair(1, 9), Pair(2, 0));
    expect_less(Pair(1, 1), Pair(1, 2));
    expect_equal(Pair(1, 1), Pair(1, 1));
}

// The first parts are compared by equality, not by `<` in the other direction.
TEST(Comparison, PairEndsAtAnUnequalFirst) {
    using Pair = std::pair<double, double>;
    expect_unordered(Pair(nan, 1), Pair(nan, 2));
    expect_less(Pair(0.0, 1), Pair(-0.0, 2));
}

TEST(Comparison, TupleAndFlagsCompareInOrder) {
    using Tuple = std::tuple<int32, double, int32>;
    expect_less(Tuple(1, 2, 3), Tuple(1, 2, 4));
    expect_less(Tuple(1, 2, 9), Tuple(1, 3, 0));
    expect_unordered(Tuple(1, nan, 3), Tuple(1, nan, 4));
    using Flags = std::array<bool, 4>;
    expect_less(Flags{false, true, true, true}, Flags{true});
    expect_less(Flags{}, Flags{false, false, false, true});
    expect_equal(Flags{true}, Flags{true});
}

TEST(Comparison, ShorterListIsLessWhateverItHolds) {
    using List = std::list<int32>;
    expect_less(List{9}, List{1, 1});
    expect_less(List{}, List{-1});
    expect_less(List{1, 1}, List{1, 2});
    expect_less(List{1, 9}, List{2, 0});
    expect_equal(List{}, List{});
    expect_equal(List{1}, List{1});
}

TEST(Comparison, ListsAreEqualElementByElement) {
    using List = std::list<int32>;
    EXPECT_TRUE(Comparison::equal(List{1, 2}, List{1, 2}));
    EXPECT_FALSE(Comparison::equal(List{1, 2}, List{2, 1}));
    EXPECT_FALSE(Comparison::equal(List{1}, List{1, 1}));
}

TEST(Comparison, ElementNeitherLessNorGreaterIsPassedOver) {
    expect_less(std::list<double>{nan, 1}, {nan, 2});
    expect_less(std::list<double>{nan, 1}, {5, 2});
    expect_unordered(std::list<double>{nan, 1}, {5, 1});
    using Map = std::map<int32, double>;
    expect_less(Map{{1, nan}, {2, 1}}, Map{{1, 7}, {2, 2}});
}

TEST(Comparison, ListOfArmsWithoutPayloadIsLessThanItself) {
    std::list<T_BlockKind> const list{block(0), block(3)};
    expect_equal_and_each_less(list, list);
    expect_unequal_and_each_less(list, {block(0), block(2)});
    expect_less(list, {block(1), block(0)});
}

TEST(Comparison, SetAndMapHaveNoSizeStep) {
    using Set = std::set<int32>;
    expect_less(Set{1}, Set{1, 2});
    expect_less(Set{1, 5}, Set{2});
    expect_less(Set{}, Set{1});
    expect_equal(Set{1, 2}, Set{1, 2});

    using Map = std::map<int32, int32>;
    expect_less(Map{{1, 1}, {0, 0}}, Map{{1, 1}});
    expect_less(Map{{1, 1}, {2, 2}}, Map{{1, 2}});
    expect_less(Map{{1, 1}}, Map{{1, 1}, {2, 2}});
}

TEST(Comparison, MapEntryEndsAtAnUnequalKey) {
    using Map = std::map<double, int32>;
    expect_less(Map{{0.0, 1}}, Map{{-0.0, 2}});
    expect_unordered(Map{{nan, 1}}, Map{{nan, 2}});
}

TEST(Comparison, SetOfArmsWithoutPayloadKeepsEqualOnes) {
    std::set<T_BlockKind> kinds;
    kinds.insert(block(0));
    kinds.insert(block(0));
    EXPECT_EQ(kinds.size(), 2u);
    expect_equal_and_each_less(kinds, kinds);
}

TEST(Comparison, HashedTableComparesBySizeFirst) {
    using Map = std::unordered_map<int32, int32>;
    using Set = std::unordered_set<int32>;
    expect_less(Map{{9, 9}}, Map{{1, 1}, {2, 2}});
    expect_less(Set{9}, Set{1, 2});
    expect_equal(Map{}, Map{});
    expect_equal(Set{}, Set{});
}

TEST(Comparison, HashedMapsOfOneSizeWithOtherKeysAreUnrelated) {
    using Map = std::unordered_map<int32, int32>;
    using Set = std::unordered_set<int32>;
    expect_unordered(Map{{1, 1}}, Map{{2, 2}});
    expect_unordered(Map{{1, 1}, {2, 2}}, Map{{1, 5}, {3, 5}});
    expect_unordered(Set{1, 2}, Set{1, 3});
}

TEST(Comparison, ValuesOfAHashedMapDecideInTheLeftMapsOrder) {
    using Map = std::unordered_map<int32, int32>;
    Map a{{1, 0}, {2, 0}};
    Map b{{1, 0}, {2, 0}};
    expect_equal(a, b);

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
    expect_less(Map{{1, nan}, {2, 1}}, Map{{1, nan}, {2, 2}});
    expect_unordered(Map{{1, nan}}, Map{{1, nan}});
}

TEST(Comparison, HashedTableOfArmsWithoutPayloadIsLessThanItself) {
    std::unordered_map<int32, T_BlockKind> const kinds{{1, block(0)}};
    expect_equal_and_each_less(kinds, kinds);

    using sml::AccessProtections::T_AccessProtections;
    sml::core::HashedSet<T_AccessProtections> protections;
    T_AccessProtections                       rendez_vous;
    rendez_vous.choose<"RENDEZ_VOUS">();
    protections.insert(rendez_vous);
    expect_equal_and_each_less(protections, protections);

    sml::core::HashedSet<T_AccessProtections> others;
    T_AccessProtections                       resource;
    resource.choose<"RESOURCE">();
    others.insert(resource);
    expect_unordered(protections, others);
}

/// Takes numbers with one last digit for equal, which `<` does not.
struct LastDigit {
    std::size_t operator()(int32 number) const { return static_cast<std::size_t>(number % 10); }
    bool        operator()(int32 a, int32 b) const { return a % 10 == b % 10; }
};

TEST(Comparison, EqualElementsOfAHashedSetDecideInTheLeftSetsOrder) {
    using Set = std::unordered_set<int32, LastDigit, LastDigit>;
    Set const   a{11, 12};
    int32 const first = *a.begin();
    int32 const last = 23 - first;
    EXPECT_TRUE(Comparison::less(a, Set{first + 10, last - 10}));
    EXPECT_FALSE(Comparison::less(a, Set{first - 10, last + 10}));
}

TEST(Comparison, BoxComparesWhatItHolds) {
    using Box = sml::core::Box<int32>;
    expect_less(Box(1), Box(2));
    expect_equal(Box(1), Box(1));
}

TEST(Comparison, PartsEndAtAnUnequalOne) {
    expect_less(Parts{1, 9}, Parts{2, 0});
    expect_less(Parts{1, 1}, Parts{1, 2});
    expect_unordered(Parts{nan, 1}, Parts{nan, 2});
    expect_equal(Parts{1, 2}, Parts{1, 2});
    expect_unordered(Parts{1, nan}, Parts{1, nan});
}

TEST(Comparison, GroupIsWalkedWithLessAlone) {
    expect_less(Group{1, 9}, Group{2, 0});
    expect_less(Group{nan, 1}, Group{nan, 2});
    expect_less(Group{nan, 1}, Group{7, 2});
    expect_equal(Group{1, 1}, Group{1, 1});
    expect_unordered(Group{nan, 1}, Group{nan, 1});
}

TEST(Comparison, GroupAsksNoEqualityOfWhatItHolds) {
    expect_less(DeepGroup{std::pair(nan, 1.0), {}, false},
                DeepGroup{std::pair(nan, 2.0), {}, false});
    expect_less(DeepGroup{std::pair(nan, 1.0), {}, false},
                DeepGroup{std::pair(nan, 1.0), {}, true});
    expect_less(DeepGroup{{}, {nan}, false}, DeepGroup{{}, {nan}, true});
    expect_less(DeepGroup{{}, {9}, true}, DeepGroup{std::pair(0.0, 0.0), {}, false});
    expect_less(DeepGroup{{}, {9}, true}, DeepGroup{{}, {1, 1}, false});
}

TEST(Comparison, RecordIsLexicographicOverItsFields) {
    expect_less(Record{1, {9}, 9}, Record{2, {}, 0});
    expect_less(Record{1, {9}, 9}, Record{1, {1, 1}, 0});
    expect_less(Record{1, {2}, 1}, Record{1, {2}, 2});
    expect_equal(Record{1, {2}, 3}, Record{1, {2}, 3});
}

TEST(Comparison, ContainerIsAskedForEqualityAfterItsWalk) {
    // Neither less nor greater, and unequal: the next field is not reached.
    expect_unordered(Record{1, {nan}, 1}, Record{1, {nan}, 2});
    expect_unordered(Record{1, {nan}, 1}, Record{1, {5}, 2});
    // Unequal at first, but a later element decides.
    expect_less(Record{1, {nan, 3}, 9}, Record{1, {nan, 4}, 0});
    // Equal, though not the same.
    expect_less(Record{1, {0.0}, 1}, Record{1, {-0.0}, 2});
}

TEST(Comparison, RecordWithAnArmWithoutPayloadIsLessThanItself) {
    sml::Blocks::T_BlockAttribute a;
    a.kind.choose<"B_THEN">();
    auto b = a;
    b.last_number = 1;
    order::expect_equal_and_each_less(a, a);
    order::expect_unequal_and_each_less(a, b);
    b.first_number = 1;
    order::expect_less(a, b);
}

}  // namespace
