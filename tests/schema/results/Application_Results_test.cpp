#include <sml/schema/Application_Results.hpp>
#include "tests/order.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>

namespace {

using sml::BigInteger;
using sml::Strings_T;
using std::string_literals::operator""s;

using Results = sml::Application_Results::T_Application_Results;
using Key = std::pair<Strings_T, sml::int32>;

/// Calls `use` with a pointer to each of the thirteen maps, in their order.
template <class Use>
void for_each_table(Use const& use) {
    use(&Results::block_numbers);
    use(&Results::blocks);
    use(&Results::check_numbers);
    use(&Results::checks);
    use(&Results::event_numbers);
    use(&Results::events);
    use(&Results::functions);
    use(&Results::info_numbers);
    use(&Results::infos);
    use(&Results::first_key_sets);
    use(&Results::second_key_sets);
    use(&Results::integer_sets);
    use(&Results::signatures);
}

/// The entry of a name in a map with keys of any type. It is added if there is none.
template <class Table>
typename Table::mapped_type& entry(Table& table, std::string const& name) {
    if constexpr (std::is_same_v<typename Table::key_type, Strings_T>)
        return table[name];
    else
        return table[Key(name, 0)];
}

/// A value with one entry in every map. It is equal to its copies and not less than itself.
Results one_of_each() {
    Results results;
    results.first_int = -1;
    results.block_numbers["k"s] = -1;
    results.blocks[Key("k"s, 1)].kind.choose<"B_SWITCH_CASE">();
    results.check_numbers["k"s] = -1;
    results.checks[Key("k"s, 1)].category.choose<"CC">();
    results.event_numbers["k"s] = -1;
    results.events[Key("k"s, 1)].kind->choose<"STD_LIB_EVENT">();
    results.functions["k"s].context.choose<"Some_Function_Context">();
    results.info_numbers["k"s] = -1;
    results.infos[Key("k"s, 1)].category.choose<"TOOLTIP_INFO">();
    results.first_key_sets[Key("k"s, 1)].emplace("k"s, -1);
    results.second_key_sets[Key("k"s, 1)].emplace("k"s, -1);
    results.integer_sets["k"s] = {5};
    results.signatures["k"s];
    return results;
}

TEST(ApplicationResults, EmptyOnesAreANumberAndThirteenCountsOfZero) {
    Results results;
    results.first_int = 0x01020304;
    wire::expect(results,
                 "04030201  00000000 00000000 00000000 00000000 00000000 00000000 00000000"
                 " 00000000 00000000 00000000 00000000 00000000 00000000");
    int tables = 0;
    for_each_table([&](auto table) {
        ++tables;
        EXPECT_TRUE((results.*table).empty());
        EXPECT_EQ((results.*table).bucket_count(), 1u);
        EXPECT_EQ((results.*table).max_load_factor(), 1.0f);
    });
    EXPECT_EQ(tables, 13);
}

TEST(ApplicationResults, WriteTheirMapsInOrder) {
    Results results;
    results.first_int = -1;
    results.block_numbers["k"s] = 1;
    results.blocks[Key("k"s, 2)];
    results.check_numbers["k"s] = 3;
    results.checks[Key("k"s, 4)];
    results.event_numbers["k"s] = 5;
    results.events[Key("k"s, 6)];
    results.functions["k"s];
    results.info_numbers["k"s] = 7;
    results.infos[Key("k"s, 8)].category.choose<"TOOLTIP_INFO">().tooltip = "k";
    results.first_key_sets[Key("k"s, 9)].emplace("k"s, 10);
    results.second_key_sets[Key("k"s, -11)];
    results.integer_sets["k"s] = {31};
    results.signatures["k"s].first.signature = "s";
    wire::expect(results,
                 "FFFFFFFF"
                 "  01000000  FFFFFFFF 01000000 'k' 01000000"
                 "  01000000  01000000 02000000"
                 "  'F' 'F' FEFFFFFF 00000000 00000000 02000000 00000000 'F' FFFFFFFF"
                 " 00000000 00000000 02000000 00000000 0000000000000000"
                 " 00000000 00000000 02000000 00000000 0000000000000000"
                 " 02000000 00000000 00000000"
                 "  01000000  01000000 03000000"
                 "  01000000  01000000 04000000"
                 "  02000000 00000000 FFFFFFFF 00000000 'F' 00000000 02000000 00000000 00000000 'F'"
                 " 02000000 02000000 00000000 00000000 02000000 00000000 'F' 00000000 'F'"
                 " 00000000 00000000 02000000 00000000 0000000000000000 02000000 00000000 'F'"
                 "  01000000  01000000 05000000"
                 "  01000000  01000000 06000000"
                 "  'F' 'F' 02000000 02000000 02000000 02000000 'F' 02000000 00000000"
                 " FFFFFFFF 02000000 02000000 02000000"
                 " 00000000 00000000 02000000 00000000 0000000000000000"
                 "  01000000  01000000"
                 "  00000000 00000000 00000000"
                 " FFFFFFFF 00000000 00000000 02000000 00000000 0000000000000000 02000000 02000000"
                 " 'F' 00000000 'F' 00000000 00000000 02000000 00000000 0000000000000000"
                 " 02000000 02000000 02000000 02000000 'F'"
                 "  01000000  01000000 07000000"
                 "  01000000  01000000 08000000"
                 "  02000000 00000000 03000000 01000000 02000000 00000000 'F' 02000000 00000000 'F'"
                 " 00000000 00000000 02000000 00000000 0000000000000000 02000000 00000000"
                 "  01000000  01000000 09000000  01000000 01000000 0A000000"
                 "  01000000  01000000 F5FFFFFF  00000000"
                 "  01000000  01000000  01000000 04000000 '1f' 00 00"
                 "  01000000  01000000  FDFFFFFF 01000000 's' 02000000 02000000  'F'");
}

TEST(ApplicationResults, AFlagStandsAheadOfASecondSignature) {
    Results results;
    results.signatures["k"s].second.emplace().signature = "s";
    std::string const bytes =
        std::string(13 * 4, '\0') + hex::bytes(
                                        "01000000  FFFFFFFF 01000000 'k'"
                                        "  FEFFFFFF 00000000 02000000 02000000"
                                        "  'T' FDFFFFFF 01000000 's' 02000000 02000000");
    wire::expect(results, hex::shown(bytes));
}

TEST(ApplicationResults, KeySetsAreWrittenInTheOrderOfTheirHandles) {
    order::Handles const names;
    Results              results;
    results.first_key_sets[Key(""s, 0)] = {{names.greater, 1}, {names.lesser, 2}};
    std::string const bytes = std::string(10 * 4, '\0') +
                              hex::bytes(
                                  "01000000  FFFFFFFF 00000000 00000000  02000000"
                                  "  FEFFFFFF 01000000 '" +
                                  names.lesser.str() +
                                  "' 02000000"
                                  "  FDFFFFFF 01000000 '" +
                                  names.greater.str() + "' 01000000") +
                              std::string(3 * 4, '\0');
    wire::expect(results, hex::shown(bytes));
}

TEST(ApplicationResults, HashOfANumberedKeyDependsOnItsTextAndNumber) {
    sml::Hash<Key> const hash;
    EXPECT_EQ(hash(Key()), 0xe6546b64u);
    EXPECT_EQ(hash(Key(""s, 1)), 0xbbddcb5b9bc10e60u);
    EXPECT_EQ(hash(Key(""s, -1)), 0x0e94074ef0199f19u);
    EXPECT_EQ(hash(Key("main.c"s, 0)), 0x07ad7435372836b1u);
    EXPECT_EQ(hash(Key("main.c"s, 1)), 0x99c2a3541cbaa05du);
    EXPECT_EQ(hash(Key("main.c"s, -1)), 0x0790f141f90b123cu);
    EXPECT_EQ(hash(Key("main.c"s, 2147483647)), 0xfd2b0a3506b1bba2u);
    EXPECT_EQ(hash(Key("main.c"s, -2147483647 - 1)), 0x486b2b90e8cc646fu);
    Results const results;
    EXPECT_EQ(results.checks.hash_function()(Key("main.c"s, 1)), 0x99c2a3541cbaa05du);
}

TEST(ApplicationResults, TheSmallerTableIsLess) {
    for_each_table([](auto table) {
        Results const none;
        Results       one;
        entry(one.*table, "a");
        Results two;
        entry(two.*table, "b");
        entry(two.*table, "c");
        order::expect_less(none, one);
        order::expect_less(one, two);
    });
}

TEST(ApplicationResults, MapsOfOneSizeAndDifferentKeysAreUnordered) {
    for_each_table([](auto table) {
        Results a;
        entry(a.*table, "a");
        Results b;
        entry(b.*table, "b");
        order::expect_unordered(a, b);
    });
}

TEST(ApplicationResults, AFieldBehindAnUnorderedTableIsNotReached) {
    Results a;
    a.check_numbers["a"s] = 1;
    Results b;
    b.check_numbers["b"s] = 2;
    b.signatures["later"s];
    order::expect_unordered(a, b);
}

TEST(ApplicationResults, TheWalkFollowsTheLeftTableAndStopsAtTheFirstThatDiffers) {
    auto with = [](std::initializer_list<int> numbers) {
        Results results;
        int     name = 0;
        for (int const number : numbers) results.check_numbers[std::to_string(name++)] = number;
        return results;
    };
    auto first_is_less = [](Results const& left, Results const& right) {
        for (auto const& [name, number] : left.check_numbers) {
            sml::int32 const other = right.check_numbers.at(name);
            if (number != other) return number < other;
        }
        return false;
    };
    Results const all[] = {with({1, 2, 3}), with({3, 2, 1}), with({2, 2, 2}), with({1, 3, 1})};
    for (Results const& left : all)
        for (Results const& right : all) {
            EXPECT_EQ(left < right, first_is_less(left, right));
            EXPECT_EQ(left == right, &left == &right);
        }
}

TEST(ApplicationResults, AValueThatIsLessThanItselfMakesTheResultsLess) {
    auto expect_decides = [](auto&& add) {
        Results a;
        add(a);
        Results b = a;
        order::expect_equal_and_each_less(a, a);
        b.signatures["later"s];
        order::expect_unequal_and_each_less(a, b);
    };
    expect_decides([](Results& v) { v.blocks[Key()].kind.choose<"B_THEN">(); });
    expect_decides([](Results& v) { v.checks[Key()].category.choose<"ACER">(); });
    expect_decides([](Results& v) { v.events[Key()].kind->choose<"THROW">(); });
    expect_decides([](Results& v) { v.functions[""s].context.choose<"No_Function_Context">(); });
    expect_decides([](Results& v) { v.infos[Key()].category.choose<"VOBJ">().choose<"F_CALL">(); });
}

TEST(ApplicationResults, AnUnsetValueIsPassedOverButUnequal) {
    Results a;
    a.blocks[Key()];
    Results b = a;
    b.check_numbers[""s] = 1;
    order::expect_unordered(a, a);
    order::expect_unordered(a, b);
}

TEST(ApplicationResults, KeySetsCompareElementByElementBeforeTheirSize) {
    auto with = [](std::set<Key> keys) {
        Results results;
        results.second_key_sets[Key()] = std::move(keys);
        return results;
    };
    order::expect_less(with({}), with({{"k"s, 1}}));
    order::expect_less(with({{"k"s, 1}}), with({{"k"s, 1}, {"k"s, 2}}));
    order::expect_less(with({{"k"s, 1}, {"k"s, 2}}), with({{"k"s, 2}}));
    order::expect_less(with({{"k"s, -1}}), with({{"k"s, 0}}));
}

TEST(ApplicationResults, IntegerSetsCompareBySizeOnly) {
    auto with = [](sml::core::HashedSet<BigInteger> integers) {
        Results results;
        results.integer_sets["k"s] = std::move(integers);
        return results;
    };
    BigInteger const large("0x123456789ABCDEF0123456789ABCDEF");
    order::expect_less(with({large}), with({1, 2}));
    order::expect_unordered(with({1}), with({2}));
    order::expect_unordered(with({1}), with({-1}));
    order::expect_equal(with({1, -1, large}), with({large, 1, -1}));
    Results const results = with({1, -1, large, BigInteger(large * large)});
    EXPECT_TRUE(wire::read<Results>(wire::write(results)) == results);
}

TEST(ApplicationResults, TheOrderOfInsertionDoesNotMatter) {
    constexpr int count = 60;
    auto          insert = [](Results& results, int i) {
        std::string const name = std::to_string(i);
        results.check_numbers[name] = i;
        results.first_key_sets[Key(name, i)].emplace(name, i);
        results.integer_sets["k"s].insert(i);
        results.functions[name].context.choose<"Some_Function_Context">().location.kind = 7;
        results.checks[Key(name, -i)].category.choose<"DV_ASSERT">().first_int = i;
    };
    Results a;
    Results b;
    for (int i = 0; i < count; ++i) insert(a, i);
    for (int i = count; i-- > 0;) insert(b, i);
    order::expect_equal(a, b);
    EXPECT_TRUE(wire::read<Results>(wire::write(a)) == b);
    EXPECT_TRUE(wire::read<Results>(wire::write(b)) == a);
    b.checks[Key("0"s, 0)].eighth_int = 1;
    EXPECT_FALSE(a == b);
}

TEST(ApplicationResults, AKeyThatComesTwiceKeepsItsFirstEntry) {
    std::string const bytes = hex::bytes(
                                  "00000000  00000000  00000000"
                                  "  03000000  FFFFFFFF 01000000 'a' 01000000"
                                  "  FEFFFFFF 01000000 'b' 02000000"
                                  "  01000000 03000000") +
                              std::string(10 * 4, '\0');
    auto const results = wire::read<Results>(bytes);
    EXPECT_EQ(results.check_numbers,
              (std::unordered_map<Strings_T, sml::int32>{{"a"s, 1}, {"b"s, 2}}));
}

TEST(ApplicationResults, ReadTwiceHoldTheUnionWithTheFirstValues) {
    Results first = one_of_each();
    first.check_numbers["first"s] = 1;
    Results second = one_of_each();
    second.first_int = 9;
    second.check_numbers = {{"k"s, 9}, {"second"s, 2}};
    second.checks[Key("k"s, 1)].eighth_int = 9;
    second.checks[Key("k"s, 2)];
    second.integer_sets["k"s] = {9};
    Results results;
    wire::read_over(results, wire::write(first));
    auto const* const held = &results.checks.at(Key("k"s, 1));
    wire::read_over(results, wire::write(second));
    EXPECT_EQ(results.first_int, 9);
    EXPECT_EQ(results.check_numbers, (std::unordered_map<Strings_T, sml::int32>{
                                         {"k"s, -1}, {"first"s, 1}, {"second"s, 2}}));
    EXPECT_EQ(results.checks.size(), 2u);
    EXPECT_EQ(&results.checks.at(Key("k"s, 1)), held);
    EXPECT_EQ(held->eighth_int, 0);
    EXPECT_EQ(results.integer_sets.at("k"s), (sml::core::HashedSet<BigInteger>{5}));
    EXPECT_EQ(results.events.size(), 1u);
}

TEST(ApplicationResults, AnEntryThatCannotBeReadLeavesTheOnesBefore) {
    Results results;
    EXPECT_THROW(wire::read_over(results, hex::bytes("07000000"
                                                     "  02000000  FFFFFFFF 01000000 'a' 01000000"
                                                     "  FEFFFFFF FFFFFFFF")),
                 std::length_error);
    EXPECT_EQ(results.first_int, 7);
    EXPECT_EQ(results.block_numbers, (std::unordered_map<Strings_T, sml::int32>{{"a"s, 1}}));
}

TEST(ApplicationResults, CopiesAreIndependentAndMovesTakeTheMaps) {
    Results original = one_of_each();
    Results copy = original;
    order::expect_equal(copy, original);
    copy.events[Key("k"s, 1)].kind->choose<"THROW">();
    EXPECT_TRUE(original.events[Key("k"s, 1)].kind->holds<"STD_LIB_EVENT">());
    Results const taken = std::move(original);
    order::expect_equal(taken, one_of_each());
    original = taken;
    order::expect_equal(original, taken);
}

}  // namespace
