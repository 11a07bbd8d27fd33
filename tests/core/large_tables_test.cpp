// Tables of so many entries that they are not added one by one.

#include "tests/core/string_table.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

using sml::int32;

namespace {

/// Few hashes, so that keys share them.
struct FewHashes {
    std::size_t operator()(int32 key) const { return static_cast<std::size_t>(key % 50); }
};

using Table = std::unordered_map<int32, std::string, FewHashes>;
using Entries = std::vector<std::pair<int32, std::string>>;

Entries in_order(Table const& table) { return {table.begin(), table.end()}; }

/// The keys are those numbers modulo `keys`; each value tells its place.
Entries entries(int32 count, int32 keys) {
    Entries         made;
    std::mt19937_64 engine(static_cast<std::uint64_t>(count));
    for (int32 i = 0; i < count; ++i)
        made.emplace_back(static_cast<int32>(engine() % static_cast<std::uint64_t>(keys)),
                          std::to_string(i));
    return made;
}

std::string bytes_of(Entries const& entries) {
    std::string bytes = wire::write(static_cast<int32>(entries.size()));
    for (auto const& [key, value] : entries) bytes += wire::write(key) + wire::write(value);
    return bytes;
}

void add(Table& table, Entries const& entries) {
    for (auto const& [key, value] : entries) table.try_emplace(key, value);
}

void expect_alike(Table const& table, Table const& expected) {
    EXPECT_EQ(in_order(table), in_order(expected));
    EXPECT_EQ(table.bucket_count(), expected.bucket_count());
}

constexpr int32 counts[] = {62, 63, 64, 65, 66, 100, 127, 128, 1000, 5000};

TEST(LargeTable, HasTheOrderOfOneThatGrows) {
    for (int32 const count : counts) {
        for (int32 const keys : {30, 60, 1'000'000}) {
            SCOPED_TRACE(std::to_string(count) + " of " + std::to_string(keys));
            Entries const all = entries(count, keys);
            Table         expected;
            add(expected, all);
            auto table = wire::read<Table>(bytes_of(all));
            expect_alike(table, expected);
            expect_alike(wire::read_from_stream<Table>(bytes_of(all)), expected);

            // It goes on growing like one.
            for (int32 key = 0; key < 2 * count; ++key) {
                table.try_emplace(key);
                expected.try_emplace(key);
            }
            expect_alike(table, expected);
        }
    }
}

TEST(LargeTable, AddsToOneThatHasBeenUsed) {
    Entries const all = entries(200, 500);
    for (int32 const held : {0, 1, 20, 100}) {
        Table table;
        add(table, entries(held, 500));
        Table expected = table;
        wire::read_over(table, bytes_of(all));
        add(expected, all);
        expect_alike(table, expected);
    }
    Table table;
    table.reserve(70);
    Table expected = table;
    wire::read_over(table, bytes_of(all));
    add(expected, all);
    expect_alike(table, expected);

    Table loaded;
    loaded.max_load_factor(3);
    Table expected_loaded = loaded;
    wire::read_over(loaded, bytes_of(all));
    add(expected_loaded, all);
    expect_alike(loaded, expected_loaded);
}

TEST(LargeTable, KeepsWhatWasReadBeforeAnEntryThatThrows) {
    for (int32 const before : {0, 1, 13, 14, 63, 64, 100}) {
        for (bool const is_repeated : {false, true}) {
            SCOPED_TRACE(before);
            Entries all;
            for (int32 key = 0; key < before; ++key) all.emplace_back(3 * key, "value");
            Table expected;
            add(expected, all);
            int32 const key = is_repeated && before > 0 ? all.front().first : 1000;
            if (expected.try_emplace(key).second) expected.erase(key);

            std::string bytes = bytes_of(all);
            bytes.replace(0, 4, wire::write(before + 100));
            bytes += wire::write(key) + wire::bytes("FF FF FF FF");
            Table table;
            EXPECT_THROW(wire::read_over(table, bytes), std::length_error);
            expect_alike(table, expected);
            Table              from_stream;
            std::istringstream stream(bytes);
            EXPECT_THROW(wire::read_over_from_stream(from_stream, stream), std::length_error);
            expect_alike(from_stream, expected);
        }
    }
}

/// Its entries are all the same then, and no memory is kept for those that are dropped.
TEST(LargeTable, EndsWhenAStreamDoes) {
    std::istringstream                          stream(wire::bytes("00 00 10 00  05 00 00 00"));
    std::unordered_map<int32, int32, FewHashes> table;
    wire::read_over_from_stream(table, stream);
    EXPECT_TRUE(stream.fail());
    EXPECT_EQ(table, (std::unordered_map<int32, int32, FewHashes>{{5, 5}}));
}

TEST(LargeTable, LetsStringsGoWithDroppedEntries) {
    std::string bytes = wire::bytes("00 01 00 00");
    for (int32 i = 0; i < 256; ++i)
        bytes += wire::write(i % 128) + wire::write(-1 - i) + wire::write("s" + std::to_string(i));
    std::size_t const before = string_table::size();
    {
        std::unordered_map<int32, sml::Strings_T> table;
        wire::read_over(table, bytes);
        EXPECT_EQ(table.size(), 128u);
        EXPECT_EQ(string_table::size(), before + 128);
        EXPECT_EQ(string_table::count_of("s5"), 1u);
    }
    EXPECT_EQ(string_table::size(), before);
}

}  // namespace
