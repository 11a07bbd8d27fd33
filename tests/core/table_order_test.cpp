#include <sml/core/table_order.hpp>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>
#include <unordered_set>
#include <vector>

namespace {

using sml::core::Remainder;
using sml::core::TableOrder;

TEST(Remainder, IsThatOfDivision) {
    constexpr std::uint64_t    most = std::numeric_limits<std::uint64_t>::max();
    std::mt19937_64            engine(1);
    std::vector<std::uint64_t> numbers{0, 1, 2, 3, most, most - 1, most / 2, most / 2 + 1};
    for (int i = 0; i < 200; ++i) numbers.push_back(engine() >> (engine() % 64));
    for (std::uint64_t const divisor : numbers) {
        if (divisor == 0) continue;
        Remainder const remainder(divisor);
        for (std::uint64_t const number : numbers)
            for (std::uint64_t const near :
                 {number, number / divisor * divisor, number / divisor * divisor - 1})
                ASSERT_EQ(remainder(near), near % divisor) << near << " by " << divisor;
    }
}

struct Itself {
    std::size_t operator()(std::uint64_t number) const { return number; }
};

using Table = std::unordered_set<std::uint64_t, Itself>;

std::vector<std::uint64_t> in_order(Table const& table) { return {table.begin(), table.end()}; }

/// A hash table that grows, and the model of its order.
class Both {
public:
    void add(std::uint64_t number) {
        bool const has =
            order_.has(number, [&](std::uint32_t at) { return added_[at - 1] == number; });
        ASSERT_EQ(has, table_.contains(number));
        table_.insert(number);
        if (has) return;
        if (order_.is_full()) {
            empty_.rehash(TableOrder::more_buckets(empty_.bucket_count()));
            order_.grow(empty_.bucket_count());
        }
        order_.add(number);
        added_.push_back(number);
        ASSERT_EQ(empty_.bucket_count(), table_.bucket_count()) << "at " << added_.size();
    }

    void compare() const {
        std::vector<std::uint64_t> numbers;
        order_.for_each([&](std::uint32_t at) { numbers.push_back(added_[at - 1]); });
        ASSERT_EQ(numbers, in_order(table_)) << "at " << added_.size();
    }

private:
    TableOrder                 order_;
    std::vector<std::uint64_t> added_;
    Table                      table_;
    Table                      empty_;
};

/// Hashes that use all bits, few hashes that repeat, and many that share a bucket at some size.
TEST(TableOrder, IsThatOfATableThatGrows) {
    std::mt19937_64 engine(2);
    for (std::uint64_t const most :
         {std::uint64_t{0}, std::uint64_t{1000}, std::uint64_t{100'000}}) {
        Both both;
        for (int i = 0; i < 3000 && !HasFatalFailure(); ++i) {
            both.add(most == 0 ? engine() : engine() % most);
            both.compare();
        }
    }
    for (std::uint64_t const step : {13u, 29u, 59u, 127u, 541u}) {
        Both both;
        for (std::uint64_t i = 0; i < 1000 && !HasFatalFailure(); ++i) {
            both.add(i * step);
            both.compare();
        }
    }
}

TEST(TableOrder, IsThatOfAnyLargeTable) {
    std::mt19937_64 engine(3);
    Both            both;
    for (int i = 0; i < 1'000'000 && !HasFatalFailure(); ++i) {
        both.add(engine());
        if ((i & (i - 1)) == 0) both.compare();
    }
    both.compare();
}

/// The caller distinguishes entries with the same hash.
TEST(TableOrder, AsksForEntriesOfTheHash) {
    TableOrder order;
    order.grow(13);
    for (std::size_t const hash : {5u, 18u, 5u, 31u, 5u, 6u}) order.add(hash);
    std::vector<std::uint32_t> asked;
    EXPECT_FALSE(order.has(5, [&](std::uint32_t number) {
        asked.push_back(number);
        return false;
    }));
    EXPECT_EQ(asked, (std::vector<std::uint32_t>{5, 3, 1}));
    EXPECT_TRUE(order.has(5, [](std::uint32_t number) { return number == 3; }));
    EXPECT_FALSE(order.has(7, [](std::uint32_t) { return true; }));
}

}  // namespace
