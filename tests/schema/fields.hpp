#pragma once
// Makes values that differ in every part, and tests the order of a record's fields.

#include <sml/core/kinds.hpp>
#include "tests/schema/order.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <tuple>
#include <type_traits>

namespace fields {

/// Handles that live until the process ends.
inline order::Handles const& handles() {
    static order::Handles const found;
    return found;
}

/// Fills a value with the lesser or the greater of two contents. Both are equal to their copies and
/// not less than themselves, and they differ in every part. A variant gets its first arm with a
/// payload.
template <class T>
void fill(T& value, bool greater) {
    using namespace sml::core;
    if constexpr (std::is_enum_v<T>) {
        value = static_cast<T>(greater ? 1 : 0);
    } else if constexpr (Word<T> && std::is_signed_v<T>) {
        value = greater ? 1 : -1;
    } else if constexpr (Word<T>) {
        value = greater ? std::numeric_limits<T>::max() : 1;
    } else if constexpr (std::is_same_v<T, bool>) {
        value = greater;
    } else if constexpr (std::is_same_v<T, double>) {
        value = greater ? 0.25 : -0.5;
    } else if constexpr (std::is_same_v<T, sml::Strings_T>) {
        value = greater ? handles().greater : handles().lesser;
    } else if constexpr (std::is_same_v<T, sml::BigInteger>) {
        value = greater ? 16 : -9;
    } else if constexpr (std::is_same_v<T, zelvanite::IEEE754Float>) {
        mpfr_set_si(value.number(), greater ? 16 : -9, MPFR_RNDN);
    } else if constexpr (Optional<T>) {
        fill(value.emplace(), greater);
    } else if constexpr (List<T>) {
        value.clear();
        fill(value.emplace_back(), greater);
    } else if constexpr (SortedSet<T>) {
        value.clear();
        typename T::value_type element{};
        fill(element, greater);
        value.insert(element);
    } else if constexpr (HashSet<T>) {
        // Hash sets of the same size are not ordered, so the sizes differ.
        value.clear();
        typename T::value_type element{};
        fill(element, false);
        if (greater) value.insert(element);
    } else if constexpr (Map<T>) {
        value.clear();
        typename T::key_type key{};
        fill(key, false);
        fill(value[key], greater);
    } else if constexpr (PairOrTuple<T>) {
        std::apply([greater](auto&... part) { (fill(part, greater), ...); }, value);
    } else if constexpr (requires { value.which; }) {
        value.which = 0;
        value.value = greater ? 2 : 1;
    } else if constexpr (HashedVariant<T>) {
        std::int32_t tag = 0;
        while (!T::arms::has_payload[static_cast<std::size_t>(tag)]) ++tag;
        value.choose_tag(tag);
        value.visit_payload([greater](auto const& payload) {
            fill(const_cast<std::remove_cvref_t<decltype(payload)>&>(payload), greater);
        });
    } else {
        value.with_fields([greater](auto&... field) { (fill(field, greater), ...); });
    }
}

template <class T>
T filled(bool greater) {
    T value{};
    fill(value, greater);
    return value;
}

/// Expects that these are all fields of the record, that the first field that differs decides the
/// order, and that every field takes part in equality.
template <class Record, class... Field>
void expect_order(Field Record::*... fields) {
    ASSERT_EQ(sml::core::count_names(Record::field_names()), sizeof...(fields));
    order::expect_equal(filled<Record>(false), filled<Record>(false));
    for (std::size_t deciding = 0; deciding < sizeof...(fields); ++deciding) {
        SCOPED_TRACE(testing::Message() << "field " << deciding);
        // The fields before it are equal, those after it have the opposite order.
        Record      lesser{};
        Record      greater{};
        std::size_t index = 0;
        ((fill(lesser.*fields, index > deciding), fill(greater.*fields, index == deciding),
          ++index),
         ...);
        order::expect_less(lesser, greater);

        Record all_lesser = filled<Record>(false);
        Record one_greater = all_lesser;
        index = 0;
        ((index++ == deciding ? fill(one_greater.*fields, true) : void()), ...);
        order::expect_less(all_lesser, one_greater);
    }
}

}  // namespace fields
