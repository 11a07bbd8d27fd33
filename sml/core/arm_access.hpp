#pragma once
// The implementation of members that SML_VARIANT and SML_REFERENCE declare: finding arms by their
// names, and the payload of a tag.

#include <sml/core/arms.hpp>

#include <algorithm>
#include <array>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <new>
#include <type_traits>
#include <utility>

namespace sml::core {

template <Name A, Name B>
inline constexpr std::size_t distance_between = [] {
    std::array<std::size_t, sizeof(B.text)> row{};
    return edit_distance(A.view(), B.view(), row.data());
}();

#ifdef __clang__
// In messages, Clang shows a literal among template arguments as numbers, but a character as
// itself.
template <char... Character>
struct Spelled {};
template <Name A, std::size_t... Place>
Spelled<A.text[Place]...> spelled(std::index_sequence<Place...>);
template <Name A>
using Shown = decltype(spelled<A>(std::make_index_sequence<sizeof(A.text) - 1>()));
#else
template <Name A>
struct Shown {};
#endif

/// All tags, sorted by the edit distance of their arms' names, the nearest first.
template <Name Wanted, class... A>
constexpr std::array<std::int32_t, sizeof...(A)> nearest_arms(Arms<A...>) {
    std::array<std::size_t, sizeof...(A)> const distances{distance_between<Wanted, A::literal>...};
    std::array<std::int32_t, sizeof...(A)>      tags{};
    for (std::int32_t tag = 0; auto& each : tags) each = tag++;
    std::ranges::sort(tags, {}, [&](std::int32_t tag) {
        return std::pair(distances[static_cast<std::size_t>(tag)], tag);
    });
    return tags;
}

/// The compiler shows this type in its message if a variant is asked for an arm that it does not
/// have.
template <class Wanted, class... Nearest>
struct NoArmNamed {};

template <class V, Name Wanted, std::size_t... Rank>
NoArmNamed<Shown<Wanted>,
           Shown<V::arms::template arm<nearest_arms<Wanted>(typename V::arms())[Rank]>::literal>...>
    no_arm_named(std::index_sequence<Rank...>);

template <class V, Name ArmName>
auto look_for_arm() {
    constexpr std::size_t few = std::min(3, V::arms::count);
    if constexpr (V::arms::template tag_of<ArmName>() == V::arms::count)
        return no_arm_named<V, ArmName>(std::make_index_sequence<few>());
}

/// The tag of the named arm. If there is none, this gives an error, and the tag of the nearest
/// name, so that no further errors follow.
template <class V, Name ArmName, class Error = decltype(look_for_arm<V, ArmName>())>
consteval std::int32_t tag_of() {
    static_assert(std::is_void_v<Error>, "no arm has this name; the names behind it are nearest");
    if constexpr (std::is_void_v<Error>)
        return V::arms::template tag_of<ArmName>();
    else
        return nearest_arms<ArmName>(typename V::arms())[0];
}

/// The members of all variants. Beside its tag, a variant has `alive_`: the arm whose payload is in
/// its storage.
struct ArmAccess {
    template <std::int32_t Index, class V>
    static auto& payload_at(V& variant) noexcept {
        using Payload = typename V::arms::template payload<Index>;
        static_assert(!std::is_void_v<Payload>, "this arm has no payload");
        if constexpr (std::is_void_v<Payload>) {
            return variant;  // so that no further errors follow
        } else {
            using Held = std::conditional_t<std::is_const_v<V>, Payload const, Payload>;
            assert(variant.alive_ == Index);
            return *std::launder(reinterpret_cast<Held*>(variant.storage_));
        }
    }

    template <std::int32_t Index, class V>
    static decltype(auto) choose(V& variant) {
        variant.choose_tag(Index);
        if constexpr (V::arms::has_payload[Index]) return payload_at<Index>(variant);
    }

    template <class V, class Use>
    static void visit_payload(V const& variant, Use& use) {
        visit_payload(variant, use, std::make_integer_sequence<std::int32_t, V::arms::count>());
    }

private:
    template <class V, class Use, std::int32_t... Index>
    static void visit_payload(V const& variant, Use& use,
                              std::integer_sequence<std::int32_t, Index...>) {
        std::int32_t const arm = V::arms::arm_with_payload(variant.tag);
        static_cast<void>(((Index == arm && (use_payload_at<Index>(variant, use), true)) || ...));
    }

    template <std::int32_t Index, class V, class Use>
    static void use_payload_at(V const& variant, Use& use) {
        if constexpr (V::arms::has_payload[Index]) {
            if (variant.alive_ == Index) return use(payload_at<Index>(variant));
            use(typename V::arms::template payload<Index>());
        }
    }
};

}  // namespace sml::core
