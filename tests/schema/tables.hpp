#pragma once
// Compares whole variants and enumerations with tables written by hand.

#include <sml/core/kinds.hpp>
#include "tests/order.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tables {

constexpr auto smallest = std::numeric_limits<std::int32_t>::min();
constexpr auto largest = std::numeric_limits<std::int32_t>::max();

/// An arm at the position of its tag: its name, and the payload that a fresh arm writes.
struct ArmRow {
    char const*      name;
    std::string_view payload = "";
};

template <class Variant>
Variant with_tag(std::int32_t tag) {
    Variant value;
    value.choose_tag(tag);
    return value;
}

inline std::string tag_bytes(std::int32_t tag) {
    std::string bytes;
    for (int shift = 0; shift < 32; shift += 8)
        bytes += static_cast<char>(static_cast<std::uint32_t>(tag) >> shift);
    return bytes;
}

/// Expects that a variant with `tag` writes the tag and this payload, and that both are read again.
template <class Variant>
void expect_payload(std::int32_t tag, std::string_view payload) {
    SCOPED_TRACE(testing::Message() << "tag " << tag);
    Variant const value = with_tag<Variant>(tag);
    EXPECT_EQ(value.tag, tag);
    wire::expect(value, hex::shown(tag_bytes(tag)) + std::string(payload));
    std::string const bytes = tag_bytes(tag) + hex::bytes(payload);
    EXPECT_EQ(wire::read<Variant>(bytes).tag, tag);
}

/// The table names every arm, and none is missing. Tags that no arm has, negative ones too, have
/// the payload `unknown`.
template <class Variant>
void expect_arms(std::span<ArmRow const> rows, std::string_view unknown) {
    ASSERT_EQ(std::size_t{Variant::arms::count}, rows.size())
        << "the table in this test must have a row for each arm, at its place in byte order";
    constexpr std::int32_t count = Variant::arms::count;
    for (std::int32_t tag = 0; tag < count; ++tag) {
        ArmRow const& row = rows[static_cast<std::size_t>(tag)];
        EXPECT_STREQ(with_tag<Variant>(tag).toString(), row.name);
        expect_payload<Variant>(tag, row.payload);
    }
    EXPECT_EQ(Variant().tag, -1);
    for (std::int32_t const tag : {-1, -2, smallest, count, count + 1, largest}) {
        EXPECT_STREQ(with_tag<Variant>(tag).toString(), tag < 0 ? rows[0].name : nullptr) << tag;
        expect_payload<Variant>(tag, unknown);
    }
}

/// Unset and unknown tags have no payload.
template <class Variant, std::size_t Count>
void expect_arms(ArmRow const (&rows)[Count]) {
    expect_arms<Variant>(rows, "");
}

/// Unset and unknown tags have the payload of the last arm, which is a catch-all arm.
template <class Variant, std::size_t Count>
void expect_arms_with_catch_all(ArmRow const (&rows)[Count]) {
    expect_arms<Variant>(rows, rows[Count - 1].payload);
}

/// Expects what `<` and `==` say by the tag alone. Different tags decide, as signed numbers, also
/// those that no arm has. A value is compared with one of the same tag: without a payload it is
/// equal and less, with a negative tag neither, and with a fresh payload not less.
template <class Variant>
void expect_order_by_tag() {
    using Arms = typename Variant::arms;
    std::vector<std::int32_t> tags{smallest, -2, -1};
    for (std::int32_t tag = 0; tag <= Arms::count; ++tag) tags.push_back(tag);
    tags.push_back(largest);
    order::expect_unordered(Variant(), Variant());
    for (auto tag = tags.begin(); tag != tags.end(); ++tag) {
        SCOPED_TRACE(testing::Message() << "tag " << *tag);
        Variant const value = with_tag<Variant>(*tag);
        Variant const same = value;
        if (*tag < 0)
            order::expect_unordered(value, same);
        else if (Arms::arm_with_payload(*tag) < 0)
            order::expect_equal_and_each_less(value, same);
        else
            EXPECT_FALSE(value < same);
        for (auto greater = tag + 1; greater != tags.end(); ++greater) {
            SCOPED_TRACE(testing::Message() << "and tag " << *greater);
            order::expect_less(value, with_tag<Variant>(*greater));
        }
    }
}

/// Expects that the enumerators count from 0 and print their names, and that toString returns null
/// for every other value.
template <class Enumeration, std::size_t Count>
void expect_enumerators(char const* const (&names)[Count]) {
    for (std::size_t i = 0; i < Count; ++i)
        EXPECT_STREQ(toString(static_cast<Enumeration>(i)), names[i]);
    constexpr auto past_last = static_cast<std::int32_t>(Count);
    for (std::int32_t const value : {-1, past_last, past_last + 1, smallest, largest})
        EXPECT_EQ(toString(static_cast<Enumeration>(value)), nullptr) << value;
}

}  // namespace tables
