#include <sml/schema/Infos.hpp>
#include "tests/core/string_table.hpp"
#include "tests/order.hpp"
#include "tests/schema/tables.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <string>

namespace concurrency = sml::Infos::Concurrency_Info;
using concurrency::T_Origin;
using Info = concurrency::T;
using Item = Info::ConcurrentItem_args;
using Routine = Info::ConcurrentRoutine_args;
using Spawned = T_Origin::Spawned_args;
using Spawners = decltype(Spawned::spawners);

namespace {

sml::PackagedPrettySignature::T signature(sml::Strings_T const& package) { return {package, {}}; }

Spawners spawners(std::initializer_list<std::pair<char const*, std::int32_t>> entries) {
    Spawners result;
    for (auto const& [package, number] : entries)
        result.emplace(signature(std::string(package)), number);
    return result;
}

T_Origin spawned(Spawned const& args) {
    T_Origin result;
    result.choose<"Spawned">() = args;
    return result;
}

TEST(ConcurrencyInfo, RoutinesPrintTheirNames) {
    tables::expect_enumerators<concurrency::T_Routine>({"Activate", "Create"});
    wire::expect(concurrency::Create, "01000000");
}

// ---- the origin of an item ----

TEST(Origin, HasFourArms) {
    tables::expect_arms_with_catch_all<T_Origin>(
        {{"Assumed"}, {"Declared"}, {"Manual"}, {"Spawned", "00000000  46"}});
}

TEST(Origin, SpawnedWritesTableAndFlag) {
    wire::expect(spawned({spawners({{"p", -2}}), true}),
                 "03000000  01000000"
                 "FFFFFFFF 01000000 'p' FEFFFFFF 00000000 02000000 02000000  FEFFFFFF"
                 "54");
}

// Required: every tag other than 0, 1 and 2, also that of an unset value, is followed by a map.
TEST(Origin, EveryOtherTagHasTheSpawnedPayload) {
    for (char const* const tag : {"04000000", "FFFFFFFF", "00000080"}) {
        std::string const bytes =
            tag + std::string(
                      "01000000  FFFFFFFF 01000000 'p' FEFFFFFF 00000000 02000000 02000000"
                      "07000000  54");
        auto const read = wire::read<T_Origin>(hex::bytes(bytes));
        EXPECT_EQ(read.arm<"Spawned">(), (Spawned{spawners({{"p", 7}}), true}));
        wire::expect(read, bytes);
        wire::expect(T_Origin(read), bytes);
    }
    EXPECT_EQ(tables::with_tag<T_Origin>(4).toString(), nullptr);
}

TEST(Origin, TagDecidesFirst) {
    tables::expect_order_by_tag<T_Origin>();
    order::expect_less(spawned({{}, false}), spawned({{}, true}));
    order::expect_equal(spawned({{}, true}), spawned({{}, true}));
}

// ---- maps of spawners ----

TEST(Spawners, FreshTableHasOneBucketAndFullLoad) {
    Spawned const fresh;
    EXPECT_EQ(fresh.spawners.bucket_count(), 1u);
    EXPECT_EQ(fresh.spawners.max_load_factor(), 1.0f);
}

TEST(Spawners, AreHashedByTheHashOfTheSignature) {
    Spawners const table;
    EXPECT_EQ(table.hash_function()(signature({"core"})), signature({"core"}).hash());
    EXPECT_EQ(table.hash_function()({}), 0xdf87ea5aeaa8863cu);
}

TEST(Spawners, EmptyMapsAreEqualAndNeitherIsLess) {
    order::expect_equal(Spawned{{}, false}, Spawned{{}, false});
}

TEST(Spawners, FewerEntriesAreLessWhateverTheKeys) {
    for (char const* const key : {"a", "b", "c"})
        order::expect_less(Spawned{spawners({{key, 9}}), true},
                           Spawned{spawners({{"a", 1}, {"b", 1}}), false});
    order::expect_less(Spawned{{}, true}, Spawned{spawners({{"a", -9}}), false});
}

// Required: the order is only partial.
TEST(Spawners, MapsOfOneSizeWithDifferentKeysAreUnordered) {
    order::expect_unordered(Spawned{spawners({{"a", 1}}), false},
                            Spawned{spawners({{"b", 2}}), true});
    order::expect_unordered(Spawned{spawners({{"a", 1}, {"b", 1}}), false},
                            Spawned{spawners({{"a", 2}, {"c", 2}}), true});
}

TEST(Spawners, NumbersOfOneKeyOrderAsSigned) {
    order::expect_less(Spawned{spawners({{"a", -1}}), true}, Spawned{spawners({{"a", 1}}), false});
    order::expect_less(Spawned{spawners({{"a", 1}, {"b", 1}}), true},
                       Spawned{spawners({{"a", 1}, {"b", 2}}), false});
}

// Required: the comparison follows the order of the left hash table and ends at the first
// difference.
TEST(Spawners, FirstDifferentNumberInTheLeftMapsOrderDecides) {
    Spawned const left{spawners({{"a", 1}, {"b", 2}}), false};
    Spawned const right{spawners({{"a", 2}, {"b", 1}}), false};
    auto const    first_of_left = *left.spawners.begin();
    auto const    first_of_right = *right.spawners.begin();
    EXPECT_EQ(left < right, first_of_left.second < right.spawners.at(first_of_left.first));
    EXPECT_EQ(right < left, first_of_right.second < left.spawners.at(first_of_right.first));
    EXPECT_FALSE(left == right);
}

TEST(Spawners, InsertionOrderPlaysNoPartInEquality) {
    order::expect_equal(Spawned{spawners({{"a", 1}, {"b", 2}, {"c", 3}}), true},
                        Spawned{spawners({{"c", 3}, {"b", 2}, {"a", 1}}), true});
    EXPECT_FALSE((Spawned{spawners({{"a", 1}}), true}) == (Spawned{spawners({{"a", 2}}), true}));
}

TEST(Spawners, FlagDecidesBehindEqualMaps) {
    order::expect_less(Spawned{spawners({{"a", 1}}), false}, Spawned{spawners({{"a", 1}}), true});
}

// Required: a key is inserted before its value is read, so the last value of a repeated key is
// kept.
TEST(Spawners, RepeatedKeyTakesItsLastNumber) {
    auto const read = wire::read<Spawned>(
        hex::bytes("02000000"
                   "FFFFFFFF 01000000 'p' FEFFFFFF 00000000 02000000 02000000  01000000"
                   "01000000 02000000 02000000 02000000  07000000"
                   "46"));
    EXPECT_EQ(read, (Spawned{spawners({{"p", 7}}), false}));
}

TEST(Spawners, ReadingTheHeldArmAddsAndReplacesNumbersInTheirEntries) {
    T_Origin          held = spawned({spawners({{"p", 1}, {"q", 2}}), true});
    auto const&       table = held.arm<"Spawned">().spawners;
    auto const* const entry = &*table.find(signature({"p"}));
    wire::read_over(held, wire::write(spawned({spawners({{"p", 7}, {"r", 8}}), false})));
    EXPECT_EQ(held, spawned({spawners({{"p", 7}, {"q", 2}, {"r", 8}}), false}));
    EXPECT_EQ(&*table.find(signature({"p"})), entry);
}

// ---- items and routines ----

TEST(ConcurrencyInfo, HasTwoArms) {
    tables::expect_arms_with_catch_all<Info>(
        {{"ConcurrentItem", "FFFFFFFF 00000000  FFFFFFFF 00000000 46"},
         {"ConcurrentRoutine", "46  00000000  FFFFFFFF 00000000 01000000 01000000 01000000"}});
}

TEST(ConcurrencyInfo, ItemWritesNameThenOrigin) {
    Item item{{"i"}, {}};
    item.origin.choose<"Declared">();
    wire::expect(item, "FFFFFFFF 01000000 'i'  01000000");
    item.origin = spawned({spawners({{"i", 7}}), true});
    wire::expect(item,
                 "FFFFFFFF 01000000 'i'  03000000"
                 "01000000 01000000 FEFFFFFF 00000000 02000000 02000000 07000000  54");
}

TEST(ConcurrencyInfo, RoutineWritesFieldsInOrder) {
    wire::expect(Routine{{}, concurrency::Create, signature({"p"})},
                 "46  01000000  FFFFFFFF 01000000 'p' FEFFFFFF 00000000 02000000 02000000");
    wire::expect(Routine{spawners({{"q", 7}}), concurrency::Create, signature({"q"})},
                 "54 01000000 FFFFFFFF 01000000 'q' FEFFFFFF 00000000 02000000 02000000 07000000"
                 "01000000  01000000 02000000 02000000 02000000");
}

// Required: every tag other than 0, also that of an unset value, is followed by a routine.
TEST(ConcurrencyInfo, EveryOtherTagHasTheRoutine) {
    for (char const* const tag : {"02000000", "FFFFFFFF"}) {
        std::string const bytes =
            tag +
            std::string("46  01000000  FFFFFFFF 01000000 'p' FEFFFFFF 00000000 02000000 02000000");
        auto const read = wire::read<Info>(hex::bytes(bytes));
        EXPECT_EQ(read.arm<"ConcurrentRoutine">().routine, concurrency::Create);
        wire::expect(read, bytes);
    }
    EXPECT_EQ(tables::with_tag<Info>(2).toString(), nullptr);
}

TEST(ConcurrencyInfo, OrdersByTagAndIsLessThanItselfWithoutPayload) {
    tables::expect_order_by_tag<Info>();
}

// Required: an origin without payload is less than itself.
TEST(ConcurrencyInfo, ItemsOfOneNameAndAnOriginWithoutPayloadAreEachLess) {
    for (std::int32_t const tag : {0, 1, 2}) {
        Item item{{"i"}, {}};
        item.origin.choose_tag(tag);
        order::expect_equal_and_each_less(item, Item(item));
    }
}

TEST(ConcurrencyInfo, ItemsOrderByNameThenOrigin) {
    order::Handles const names;
    auto                 item = [](sml::Strings_T const& name, std::int32_t tag) {
        Item result{name, {}};
        result.origin.choose_tag(tag);
        return result;
    };
    order::expect_less(item(names.lesser, 3), item(names.greater, 0));
    order::expect_less(item(names.lesser, 0), item(names.lesser, 1));
    order::expect_less(item(names.lesser, -1), item(names.lesser, 0));
    order::expect_unordered(item(names.lesser, -1), item(names.lesser, -1));
    order::expect_equal(item(names.lesser, 3), item(names.lesser, 3));
    order::expect_equal(item(names.lesser, 4), item(names.lesser, 4));
    order::expect_less(Item{{}, spawned({{}, false})}, Item{{}, spawned({{}, true})});
}

TEST(ConcurrencyInfo, AbsentSpawnersAreLessThanPresent) {
    order::expect_less(Routine{{}, concurrency::Create, {}},
                       Routine{Spawners(), concurrency::Activate, {}});
    order::expect_less(Routine{Spawners(), concurrency::Create, {}},
                       Routine{spawners({{"a", 1}}), concurrency::Activate, {}});
    order::expect_unordered(Routine{spawners({{"a", 1}}), concurrency::Activate, {}},
                            Routine{spawners({{"b", 1}}), concurrency::Create, {}});
}

TEST(ConcurrencyInfo, RoutineOrdersAsSigned) {
    order::expect_less(Routine{{}, static_cast<concurrency::T_Routine>(-1), {}},
                       Routine{{}, concurrency::Activate, {}});
}

TEST(ConcurrencyInfo, ReadingOptionalSpawnersStartsAFreshTableWhereTheLastNumberWins) {
    Routine read{spawners({{"held before", 1}}), concurrency::Create, {}};
    wire::read_over(read, hex::bytes("54 02000000"
                                     "FFFFFFFF 01000000 'p' FEFFFFFF 00000000 02000000 02000000"
                                     "01000000"
                                     "01000000 02000000 02000000 02000000  07000000"
                                     "00000000  02000000 02000000 02000000 02000000"));
    EXPECT_EQ(read, (Routine{spawners({{"p", 7}}), concurrency::Activate, {}}));
    EXPECT_EQ(string_table::count_of("held before"), 0u);
}

}  // namespace
