// The content of fresh objects and fresh arms.

#include "tests/generic/loops.hpp"
#include "tests/hex.hpp"

#include <algorithm>
#include <limits>

using generic::Row;
using generic::Value;

namespace {

void expect_round_trip(Value const& value, Row const& row) {
    std::string const bytes = value.bytes();
    ASSERT_EQ(hex::shown(value.stream_bytes()), hex::shown(bytes));
    Value from_bytes(row);
    ASSERT_EQ(from_bytes.read(bytes), bytes.size());
    EXPECT_EQ(from_bytes.text(), value.text());
    EXPECT_EQ(hex::shown(from_bytes.bytes()), hex::shown(bytes));
    Value from_stream(row);
    ASSERT_EQ(from_stream.read_from_stream(bytes), bytes.size());
    EXPECT_EQ(from_stream.text(), value.text());
    EXPECT_EQ(hex::shown(from_stream.bytes()), hex::shown(bytes));
}

bool has_fresh_payload(Value const& value, Row const& row) {
    generic::Node const view = value.view();
    if (row.form == generic::Form::reference) return view.parts[1].as<std::uint64_t>() == 0;
    return std::ranges::all_of(view.parts, generic::is_fresh);
}

std::vector<std::int32_t> listed_and_unlisted_tags(Row const& row) {
    using Limits = std::numeric_limits<std::int32_t>;
    std::int32_t const        count = row.arms->count();
    std::vector<std::int32_t> tags{Limits::min(), -2, -1, count, count + 1, Limits::max()};
    for (std::int32_t tag = 0; tag < count; ++tag) tags.push_back(tag);
    return tags;
}

TEST(Defaults, AFreshValueIsZeroEmptyAndUnset) {
    generic::for_each_type(
        [](Row const& row) { EXPECT_TRUE(generic::is_fresh(Value(row).view())); });
}

TEST(Defaults, FilledValuesAreNotFresh) {
    generic::for_each_type([](Row const& row) {
        RandomValues  random(1);
        constexpr int values = 30;
        int           fresh = 0;  // a record of one flag may be fresh by chance
        for (int i = 0; i < values; ++i) fresh += generic::is_fresh(Value(row, random).view());
        EXPECT_LT(fresh, values);
    });
}

TEST(Defaults, AFreshValueIsWrittenAndReadBack) {
    generic::for_each_type([](Row const& row) { expect_round_trip(Value(row), row); });
}

TEST(Defaults, AFreshArmIsZeroEmptyAndUnset) {
    generic::for_each_variant([](Row const& row) {
        for (std::int32_t const tag : listed_and_unlisted_tags(row)) {
            SCOPED_TRACE(tag);
            Value value(row);
            value.choose(tag);
            EXPECT_EQ(value.view().tag, tag);
            EXPECT_TRUE(has_fresh_payload(value, row));
        }
    });
}

TEST(Defaults, AFreshArmIsWrittenAndReadBack) {
    generic::for_each_variant([](Row const& row) {
        for (std::int32_t const tag : listed_and_unlisted_tags(row)) {
            SCOPED_TRACE(tag);
            Value value(row);
            value.choose(tag);
            expect_round_trip(value, row);
        }
    });
}

TEST(Defaults, ChoosingTheHeldArmMakesItAnew) {
    generic::for_each_variant([](Row const& row) {
        RandomValues random(2);
        for (std::int32_t const tag : listed_and_unlisted_tags(row)) {
            SCOPED_TRACE(tag);
            Value value = Value::on_arm(row, tag, random);
            value.choose(tag);
            EXPECT_TRUE(has_fresh_payload(value, row));
        }
    });
}

}  // namespace
