#pragma once
// Whole variants and enumerations checked against a table written out by hand.

#include <sml/core/kinds.hpp>
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>

namespace tables {

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

/// A variant on `tag` writes the tag and this payload; both come back.
template <class Variant>
void expect_payload(std::int32_t tag, std::string_view payload) {
    SCOPED_TRACE(testing::Message() << "tag " << tag);
    Variant const value = with_tag<Variant>(tag);
    EXPECT_EQ(value.tag, tag);
    wire::expect(value, wire::hex(tag_bytes(tag)) + std::string(payload));
    std::string const bytes = tag_bytes(tag) + wire::bytes(payload);
    EXPECT_EQ(wire::read<Variant>(bytes).tag, tag);
}

/// The table names every arm, and none is missing.
template <class Variant, std::size_t Count>
void expect_arms(ArmRow const (&rows)[Count]) {
    EXPECT_EQ(std::size_t{Variant::arms::count}, Count)
        << "the table in this test must have a row for each arm, at its place in byte order";
    for (std::size_t i = 0; i < Count; ++i) {
        auto const tag = static_cast<std::int32_t>(i);
        EXPECT_STREQ(with_tag<Variant>(tag).toString(), rows[i].name);
        expect_payload<Variant>(tag, rows[i].payload);
    }
    EXPECT_EQ(Variant().tag, -1);
    constexpr auto past_last = static_cast<std::int32_t>(Count);
    constexpr auto smallest = std::numeric_limits<std::int32_t>::min();
    constexpr auto largest = std::numeric_limits<std::int32_t>::max();
    for (std::int32_t const tag : {-1, -2, smallest})
        EXPECT_STREQ(with_tag<Variant>(tag).toString(), rows[0].name) << tag;
    for (std::int32_t const tag : {past_last, past_last + 1, largest})
        EXPECT_EQ(with_tag<Variant>(tag).toString(), nullptr) << tag;
}

/// The tags that no arm has, negative ones too, carry this payload.
template <class Variant>
void expect_stray_tags(std::string_view payload) {
    for (std::int32_t const tag :
         {-1, -2, std::numeric_limits<std::int32_t>::min(), Variant::arms::count,
          Variant::arms::count + 1, std::numeric_limits<std::int32_t>::max()})
        expect_payload<Variant>(tag, payload);
}

/// Of two values on one tag each is less than the other exactly on the arms without payload (and
/// on the tags past the last arm where those are bare), and they are equal. On arms with payload
/// `fill` makes the payload such that it is equal to itself.
template <class Variant, class Fill>
void expect_arms_without_payload_less(Fill fill) {
    for (std::int32_t tag = 0; tag < Variant::arms::count; ++tag) {
        SCOPED_TRACE(testing::Message() << "tag " << tag);
        Variant left = with_tag<Variant>(tag);
        fill(left);
        ASSERT_EQ(left.tag, tag);
        Variant const right = left;
        bool const    bare = !Variant::arms::has_payload[static_cast<std::size_t>(tag)];
        EXPECT_TRUE(left == right);
        EXPECT_EQ(left < right, bare);
        EXPECT_EQ(right < left, bare);
    }
}

/// The enumerators count from 0 and print their names; every other value prints a null pointer.
template <class Enumeration, std::size_t Count>
void expect_enumerators(char const* const (&names)[Count]) {
    for (std::size_t i = 0; i < Count; ++i)
        EXPECT_STREQ(toString(static_cast<Enumeration>(i)), names[i]);
    constexpr auto past_last = static_cast<std::int32_t>(Count);
    for (std::int32_t const value :
         {-1, past_last, past_last + 1, std::numeric_limits<std::int32_t>::min(),
          std::numeric_limits<std::int32_t>::max()})
        EXPECT_EQ(toString(static_cast<Enumeration>(value)), nullptr) << value;
}

}  // namespace tables
