// Maps with so many entries that a reader does not add them one by one.

#include <sml/core/large_tables.hpp>

#include "tests/core/string_table.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

using sml::int32;

namespace {

/// Few different hashes, so that keys share them.
struct FewHashes {
    std::size_t operator()(int32 key) const { return static_cast<std::size_t>(key % 50); }
};

/// Hashes that use all bits, so that different hashes share a bucket.
struct WideHashes {
    std::size_t operator()(int32 key) const {
        return static_cast<std::size_t>(key) * std::size_t{0x9e3779b97f4a7c15};
    }
};

/// noexcept, so that the standard library does not store the hash with each entry.
struct FastHashes {
    std::size_t operator()(int32 key) const noexcept { return WideHashes()(key); }
};

/// Makes the entry a large one.
using Rest = std::array<bool, 128>;
using Value = std::pair<std::string, Rest>;

template <class Hashes>
using TableOf = std::unordered_map<int32, Value, Hashes>;
using Table = TableOf<WideHashes>;
using Entries = std::vector<std::pair<int32, Value>>;

/// Entries with at most `keys` different keys, some of them repeated. Each value is different.
Entries entries(int32 count, int32 keys) {
    Entries         made;
    std::mt19937_64 engine(static_cast<std::uint64_t>(count));
    for (int32 i = 0; i < count; ++i)
        made.emplace_back(static_cast<int32>(engine() % static_cast<std::uint64_t>(keys)),
                          Value{std::to_string(i), {}});
    return made;
}

std::string bytes_of(Entries const& entries) {
    std::string bytes = wire::write(static_cast<int32>(entries.size()));
    for (auto const& [key, value] : entries) bytes += wire::write(key) + wire::write(value);
    return bytes;
}

template <class Map>
void add(Map& table, Entries const& entries) {
    for (auto const& [key, value] : entries) table.try_emplace(key, value);
}

template <class Map>
void expect_alike(Map const& table, Map const& expected) {
    EXPECT_EQ(Entries(table.begin(), table.end()), Entries(expected.begin(), expected.end()));
    EXPECT_EQ(table.bucket_count(), expected.bucket_count());
}

template <class Hashes>
class LargeTableOf : public testing::Test {};
using AllHashes = testing::Types<FewHashes, WideHashes, FastHashes>;
TYPED_TEST_SUITE(LargeTableOf, AllHashes, );

TYPED_TEST(LargeTableOf, HasTheOrderOfOneThatGrows) {
    using Map = TableOf<TypeParam>;
    for (int32 const count : {62, 63, 64, 65, 66, 100, 127, 128, 1000, 5000}) {
        for (int32 const keys : {30, 60, 1'000'000}) {
            SCOPED_TRACE(std::to_string(count) + " of " + std::to_string(keys));
            Entries const all = entries(count, keys);
            Map           expected;
            add(expected, all);
            auto table = wire::read<Map>(bytes_of(all));
            expect_alike(table, expected);
            expect_alike(wire::read_from_stream<Map>(bytes_of(all)), expected);

            // It grows on like one that was filled entry by entry.
            for (int32 key = 0; key < 2 * count; ++key) {
                table.try_emplace(key);
                expected.try_emplace(key);
            }
            expect_alike(table, expected);
        }
    }
}

TEST(LargeTable, HoldsLargeTables) {
    Entries const all = entries(100, 1'000'000);
    Table         expected;
    add(expected, all);
    std::string bytes = wire::write(int32{70});
    for (int32 key = 0; key < 70; ++key)
        bytes += wire::write(key) + bytes_of(all) + wire::write(Rest());
    auto const tables = wire::read<std::unordered_map<int32, std::pair<Table, Rest>>>(bytes);
    ASSERT_EQ(tables.size(), 70u);
    for (auto const& [key, value] : tables) expect_alike(value.first, expected);
}

void expect_added_to(Table table) {
    Entries const all = entries(200, 500);
    Table         expected = table;
    wire::read_over(table, bytes_of(all));
    add(expected, all);
    expect_alike(table, expected);
}

TEST(LargeTable, AddsToOneThatIsNotNew) {
    for (int32 const held : {0, 1, 20, 100}) {
        Table table;
        add(table, entries(held, 500));
        expect_added_to(table);
        table.clear();
        expect_added_to(table);
    }
    Table with_room;
    with_room.reserve(70);
    expect_added_to(with_room);
    Table of_high_load;
    of_high_load.max_load_factor(3);
    expect_added_to(of_high_load);
}

/// An entry whose reading throws is not in the map, and the map has not grown for it.
void expect_kept(Entries const& all, std::string const& unreadable) {
    SCOPED_TRACE(all.size());
    Table expected;
    add(expected, all);
    std::string bytes = bytes_of(all) + unreadable;
    bytes.replace(0, 4, wire::write(static_cast<int32>(all.size()) + 100));
    Table table;
    EXPECT_THROW(wire::read_over(table, bytes), std::length_error);
    expect_alike(table, expected);
    Table              from_stream;
    std::istringstream stream(bytes);
    EXPECT_THROW(sml::core::read_from_stream(from_stream, stream), std::length_error);
    expect_alike(from_stream, expected);
}

TEST(LargeTable, KeepsWhatWasReadBeforeAnEntryThatThrows) {
    for (int32 const before : {0, 1, 12, 13, 14, 29, 63, 64, 100}) {
        Entries all;
        for (int32 key = 0; key < before; ++key) all.emplace_back(3 * key, Value{"value", {}});
        expect_kept(all, wire::write(int32{1000}) + hex::bytes("FF FF FF FF"));
        expect_kept(all, wire::write(int32{0}) + hex::bytes("FF FF FF FF"));
    }
}

TEST(LargeTable, KeepsWhatWasReadBeforeAKeyThatThrows) {
    std::string                            bytes = hex::bytes("64 00 00 00");
    std::unordered_map<std::string, Value> expected;
    for (int32 i = 0; i < 40; ++i) {
        expected.try_emplace(std::to_string(i), std::to_string(i), Rest());
        bytes += wire::write(std::to_string(i)) + wire::write(Value{std::to_string(i), {}});
    }
    std::unordered_map<std::string, Value> table;
    EXPECT_THROW(wire::read_over(table, bytes + hex::bytes("FF FF FF FF")), std::length_error);
    EXPECT_EQ(table, expected);
    EXPECT_TRUE(std::equal(table.begin(), table.end(), expected.begin(), expected.end()));
}

/// A failed read leaves the bytes that were read before, so all keys are equal.
TEST(LargeTable, HasOneEntryOfAStreamThatEnds) {
    std::istringstream              stream(hex::bytes("00 10 00 00  05 00 00 00"));
    std::unordered_map<int32, Rest> table;
    sml::core::read_from_stream(table, stream);
    EXPECT_TRUE(stream.fail());
    EXPECT_EQ(table, (std::unordered_map<int32, Rest>{{5, Rest()}}));
}

TEST(LargeTable, DropsAnEntryAtOnceWhoseKeyItHas) {
    auto const                                      value = std::make_shared<int>(1);
    std::unordered_map<int32, std::shared_ptr<int>> table;
    sml::core::LargeTable                           large(table);
    for (int i = 0; i < 2; ++i) {
        large.make(7) = value;
        large.keep();
    }
    EXPECT_EQ(value.use_count(), 2);
}

TEST(LargeTable, LetsStringsGoWithDroppedEntries) {
    std::string bytes = hex::bytes("00 01 00 00");
    for (int32 i = 0; i < 256; ++i)
        bytes += wire::write(i % 128) + wire::write(-1 - i) + wire::write("s" + std::to_string(i)) +
                 wire::write(Rest());
    std::size_t const before = string_table::size();
    {
        std::unordered_map<int32, std::pair<sml::Strings_T, Rest>> table;
        wire::read_over(table, bytes);
        EXPECT_EQ(table.size(), 128u);
        EXPECT_EQ(string_table::size(), before + 128);
        EXPECT_EQ(string_table::count_of("s5"), 1u);
    }
    EXPECT_EQ(string_table::size(), before);
}

}  // namespace
