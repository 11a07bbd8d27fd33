#pragma once
// The arms of a variant as a compile-time table.

#include <sml/core/names.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <tuple>
#include <type_traits>

namespace sml::core {

/// An arm with at most one payload type.
template <Name ArmName, class... Payload>
struct Arm {
    static_assert(sizeof...(Payload) <= 1, "an arm has one payload: group several in a struct");

    static constexpr bool is_catch_all = false;
    static constexpr Name literal = ArmName;
    using payload = std::tuple_element_t<0, std::tuple<Payload..., void>>;
    static constexpr std::string_view name() { return ArmName.view(); }
    static constexpr char const*      text() { return ArmName.text; }
};

/// A catch-all arm, which must be the last one: its payload is also that of every tag that no other
/// arm has, negative ones too.
template <Name ArmName, class Payload>
struct ElseArm : Arm<ArmName, Payload> {
    static constexpr bool is_catch_all = true;
};

template <class Payload>
constexpr std::size_t size_of_payload = sizeof(Payload);
template <>
inline constexpr std::size_t size_of_payload<void> = 0;

template <class Payload>
constexpr std::size_t align_of_payload = alignof(Payload);
template <>
inline constexpr std::size_t align_of_payload<void> = 1;

/// The arms in tag order, counted from 0.
template <class... A>
struct Arms {
    static constexpr std::int32_t count = sizeof...(A);
    static constexpr std::int32_t last = count - 1;

    template <std::int32_t Tag>
    using arm = std::tuple_element_t<static_cast<std::size_t>(Tag), std::tuple<A...>>;
    template <std::int32_t Tag>
    using payload = typename arm<Tag>::payload;

    static constexpr std::array<char const*, sizeof...(A)> names{A::text()...};
    static constexpr std::array<bool, sizeof...(A)>        has_payload{
        !std::is_void_v<typename A::payload>...};
    static constexpr bool has_catch_all = arm<last>::is_catch_all;

    static constexpr std::size_t storage_size =
        std::max({std::size_t{1}, size_of_payload<typename A::payload>...});
    static constexpr std::size_t storage_align =
        std::max({align_of_payload<typename A::payload>...});

    /// The arm whose payload belongs to `tag`, -1 if the tag has no payload.
    static constexpr std::int32_t arm_with_payload(std::int32_t tag) {
        if (tag >= 0 && tag < count) return has_payload[static_cast<std::size_t>(tag)] ? tag : -1;
        return has_catch_all ? last : -1;
    }

    /// The tag of the arm with this name, `count` if there is none.
    template <Name ArmName>
    static consteval std::int32_t tag_of() {
        std::int32_t tag = 0;
        static_cast<void>(((A::name() == ArmName.view() || (++tag, false)) || ...));
        return tag;
    }

    static consteval bool names_ascend() {
        std::array<std::string_view, sizeof...(A)> const all{A::name()...};
        return std::ranges::is_sorted(all, std::ranges::less_equal{}) || all.size() == 1;
    }
    static consteval bool only_last_is_catch_all() {
        std::int32_t const catch_all_arms = (0 + ... + (A::is_catch_all ? 1 : 0));
        return catch_all_arms == (has_catch_all ? 1 : 0);
    }
};

/// Checks the arms of a variant. This is done where the variant is defined, to save the users of
/// its header the time.
template <class Arms>
struct WellFormed {
    static_assert(Arms::names_ascend(), "arms stand in ascending byte order of their names");
    static_assert(Arms::only_last_is_catch_all(), "only the last arm can be a catch-all arm");
    static constexpr bool value = true;
};

/// The tag of a variant. It converts to an `int32`, and changes only together with the payload. -1:
/// unset.
class Tag {
public:
    Tag() = default;
    Tag(Tag const&) = default;
    Tag& operator=(Tag const&) = delete;

    constexpr operator std::int32_t() const noexcept { return value_; }

private:
    friend struct VariantAccess;

    std::int32_t value_ = -1;
};

}  // namespace sml::core
