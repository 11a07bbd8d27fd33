#pragma once
// Uses of a type by a program outside the library, with the public headers alone.

#include <sml/core/arms.hpp>
#include <sml/core/declare.hpp>
#include "tests/all_types.hpp"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <type_traits>
#include <utility>

namespace consumer {

template <class T>
constexpr bool is_reference = requires(T& value) {
    value.which;
};
template <class T>
constexpr bool is_variant = !is_reference<T> && requires {
    typename T::arms;
};
template <class T>
constexpr bool is_record = !is_reference<T> && requires {
    T::field_names();
};
template <class T>
constexpr bool is_compared = requires(T const& value) {
    value == value;
    value < value;
};

/// The name of an arm as a template argument.
template <class ArmType>
struct NameOf;
template <sml::core::Name ArmName, class... Payload>
struct NameOf<sml::core::Arm<ArmName, Payload...>> {
    static constexpr auto value = ArmName;
};
template <sml::core::Name ArmName, class Payload>
struct NameOf<sml::core::ElseArm<ArmName, Payload>> {
    static constexpr auto value = ArmName;
};

template <class T>
void fill(T& value);

/// Chooses the arm by its name and fills its payload.
template <class Variant, class ArmType>
void choose_and_fill(Variant& value) {
    constexpr auto name = NameOf<ArmType>::value;
    if constexpr (std::is_void_v<typename ArmType::payload>)
        value.template choose<name>();
    else
        fill(value.template choose<name>());
}

/// Fills strings and numbers, and chooses the first arm of every variant. Containers and optionals
/// stay empty.
template <class T>
void fill(T& value) {
    if constexpr (std::is_same_v<T, sml::Strings_T> || std::is_same_v<T, std::string>) {
        value = std::string("from outside");
    } else if constexpr (std::is_same_v<T, bool>) {
        value = true;
    } else if constexpr (std::is_arithmetic_v<T> || std::is_same_v<T, sml::BigInteger>) {
        value = 7;
    } else if constexpr (is_variant<T> || is_reference<T>) {
        choose_and_fill<T, typename T::arms::template arm<0>>(value);
    } else if constexpr (is_record<T>) {
        value.with_fields([](auto&... field) { (fill(field), ...); });
    } else if constexpr (requires { std::tuple_size<T>::value; }) {
        std::apply([](auto&... part) { (fill(part), ...); }, value);
    } else if constexpr (
        requires { value.operator->(); } && !requires { value.reset(); }) {
        fill(*value);
    }
}

/// Expects that a filled value equals its copies. A fresh one, whose variants are unset, need not.
template <class T>
void copy_and_move(T const& value, bool is_filled) {
    T copy(value);
    T moved(std::move(copy));
    copy = moved;
    T assigned;
    assigned = value;
    assigned = std::move(moved);
    moved = assigned;
    if constexpr (is_compared<T>) {
        if (is_filled) {
            EXPECT_TRUE(copy == value);
            EXPECT_TRUE(moved == value);
            EXPECT_TRUE(assigned == value);
        }
        EXPECT_EQ(assigned < value, value < assigned);
    }
}

template <class Variant, class ArmType>
void use_arm() {
    constexpr auto name = NameOf<ArmType>::value;
    constexpr bool has_no_payload = std::is_void_v<typename ArmType::payload>;
    SCOPED_TRACE(name.text);
    Variant value;
    EXPECT_FALSE(value.template holds<name>());
    choose_and_fill<Variant, ArmType>(value);
    EXPECT_TRUE(value.template holds<name>());
    EXPECT_STREQ(value.toString(), name.text);
    if constexpr (!has_no_payload) {
        EXPECT_EQ(&value.template arm<name>(), &std::as_const(value).template arm<name>());
    }

    copy_and_move(value, true);
    Variant const copy(value);
    EXPECT_TRUE(copy.template holds<name>());
    if constexpr (is_compared<Variant>) {
        EXPECT_TRUE(Variant() < value);
        EXPECT_TRUE(copy < value || !has_no_payload);
    }
}

template <class Variant, std::int32_t... Tag>
void use_arms(std::integer_sequence<std::int32_t, Tag...>) {
    (use_arm<Variant, typename Variant::arms::template arm<Tag>>(), ...);
}

/// Constructs, fills, copies, moves, compares, hashes and destroys values.
template <class T>
void use_type() {
    T value;
    copy_and_move(value, false);
    fill(value);
    copy_and_move(value, true);
    if constexpr (requires { value.hash(); }) {
        EXPECT_EQ(T(value).hash(), value.hash());
        EXPECT_NE(T().hash(), value.hash());
        EXPECT_EQ(sml::Hash<T>{}(value), value.hash());
    }
    if constexpr (is_variant<T> || is_reference<T>) {
        EXPECT_STREQ(T().toString(), T::arms::names[0]);
        use_arms<T>(std::make_integer_sequence<std::int32_t, T::arms::count>());
    }
}

}  // namespace consumer

/// Defines one test that uses all types of an area.
#define USE_TYPES(Name, TYPES) \
    TEST(Consumer, Name) { TYPES(USE_TYPE) }
#define USE_TYPE(Type)                   \
    {                                    \
        SCOPED_TRACE(#Type);             \
        consumer::use_type<sml::Type>(); \
    }
