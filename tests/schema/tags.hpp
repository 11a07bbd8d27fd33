#pragma once
// Expectations of the order of two variants that follow from their tags alone.

#include "tests/schema/order.hpp"
#include "tests/schema/tables.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <vector>

namespace tags {

/// Expects that different tags, including unknown ones, decide alone, as signed numbers. Two equal
/// negative tags are neither equal nor less.
template <class Variant>
void expect_to_decide() {
    constexpr auto            smallest = std::numeric_limits<std::int32_t>::min();
    constexpr auto            largest = std::numeric_limits<std::int32_t>::max();
    constexpr auto            count = Variant::arms::count;
    std::vector<std::int32_t> all{smallest, -2, -1};
    for (std::int32_t tag = 0; tag <= count; ++tag) all.push_back(tag);
    all.push_back(largest);
    for (std::size_t i = 0; i < all.size(); ++i)
        for (std::size_t j = i + 1; j < all.size(); ++j) {
            SCOPED_TRACE(testing::Message() << all[i] << " and " << all[j]);
            order::expect_less(tables::with_tag<Variant>(all[i]),
                               tables::with_tag<Variant>(all[j]));
        }
    for (std::int32_t const negative : {smallest, -2, -1}) {
        SCOPED_TRACE(negative);
        order::expect_unordered(tables::with_tag<Variant>(negative),
                                tables::with_tag<Variant>(negative));
    }
}

/// Expects that values with one of these tags, which have no payload, are equal and each less than
/// the other.
template <class Variant>
void expect_less_than_themselves(std::initializer_list<std::int32_t> tags) {
    for (std::int32_t const tag : tags) {
        SCOPED_TRACE(tag);
        Variant const value = tables::with_tag<Variant>(tag);
        EXPECT_TRUE(value == Variant(value));
        order::expect_each_less(value, Variant(value));
    }
}

}  // namespace tags
