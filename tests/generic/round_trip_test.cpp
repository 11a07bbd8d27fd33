// Writes and reads random values of every type in memory and through streams.

#include "tests/generic/coverage.hpp"
#include "tests/generic/enumeration_shapes.hpp"
#include "tests/generic/loops.hpp"
#include "tests/hex.hpp"

using generic::Row;
using generic::Value;

namespace {

void expect_equal(Value const& copy, Value const& value, Row const& row) {
    ASSERT_EQ(copy.text(), value.text());
    if (!row.compared) return;
    EXPECT_TRUE(copy == value);
    EXPECT_TRUE(value == copy);
}

void expect_round_trip(Value const& value, Row const& row) {
    std::string const bytes = value.bytes();
    ASSERT_EQ(hex::shown(value.stream_bytes()), hex::shown(bytes));

    Value from_bytes(row);
    ASSERT_EQ(from_bytes.read(bytes), bytes.size());
    expect_equal(from_bytes, value, row);

    Value from_stream(row);
    ASSERT_EQ(from_stream.read_from_stream(bytes), bytes.size());
    expect_equal(from_stream, value, row);
}

// Hash tables of at most one entry have only one order.
void expect_equal_bytes_again(Value const& value, Row const& row) {
    std::string const bytes = value.bytes();
    Value             copy(row);
    copy.read(bytes);
    ASSERT_EQ(hex::shown(copy.bytes()), hex::shown(bytes));
    ASSERT_EQ(hex::shown(copy.stream_bytes()), hex::shown(bytes));
}

// Calls `use` with some values of the type and, for a variant, with some for each arm.
template <class Use>
void for_some_values(Row const& row, RandomValues& random, Use&& use) {
    constexpr int values = 20;
    for (int i = 0; i < values; ++i) use(Value(row, random));
    if (row.arms == nullptr) return;
    for (std::int32_t tag = 0; tag < row.arms->count(); ++tag)
        for (int i = 0; i < 5; ++i) use(Value::on_arm(row, tag, random));
}

TEST(RoundTrip, RandomValuesComeBackEqualThroughAllArchives) {
    generic::for_each_type_and_seed([](Row const& row, std::uint64_t seed) {
        RandomValues random(seed);
        for_some_values(row, random, [&](Value const& value) { expect_round_trip(value, row); });
    });
}

TEST(RoundTrip, RandomValuesGoOutAsTheSameBytesAgain) {
    generic::for_each_type_and_seed([](Row const& row, std::uint64_t seed) {
        RandomValues random(seed, {.elements = 1, .depth = 4});
        for_some_values(row, random,
                        [&](Value const& value) { expect_equal_bytes_again(value, row); });
    });
}

TEST(RoundTrip, RandomValuesReachEveryArmAndEveryEnumerator) {
    generic::Coverage coverage;
    for (Row const& row : generic::all_rows()) {
        for (std::uint64_t const seed : generic::seeds()) {
            RandomValues random(seed);
            for_some_values(row, random, [&](Value const& value) { coverage.add(value.view()); });
        }
    }
    std::vector<std::string> const none;
    generic::for_each_variant(
        [&](Row const& row) { EXPECT_EQ(coverage.missing(*row.arms), none); });
    for (auto const& [name, shape] : generic::field_enumerations())
        EXPECT_EQ(coverage.missing(*shape), none) << name;
    for (auto const& [name, shape] : generic::lone_enumerations())
        EXPECT_FALSE(coverage.has_met(*shape))
            << name << " is held by a field: it moves to FIELD_ENUMERATIONS in "
            << "tests/generic/all_enumerations.hpp";
}

}  // namespace
