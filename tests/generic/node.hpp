#pragma once
// A value as a tree of its parts: what each part is and where it stands. Lets tests read, compare
// and change values of any type in code that is compiled once.

#include "tests/random_values.hpp"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace generic {

enum class Kind {
    // Leaves.
    int32,
    uint32,
    int64,
    uint64,
    flag,
    real,
    text,
    handle,
    big_integer,
    ieee_float,
    enumeration,
    // Parts one by one.
    optional,
    box,
    group,  ///< pair, tuple or array
    record,
    variant,
    reference,  ///< its tag and its word
    list,
    sorted_set,
    sorted_map,  ///< a group for each entry
    hash_set,
    hash_map,
};

/// What holds for all values of a type.
struct Shape {
    std::vector<std::string> names;        ///< arms, enumerators or fields
    std::vector<bool>        has_payload;  ///< by arm
    bool                     has_catch_all = false;
    bool                     last_wins = false;  ///< a map that is read insert-then-read

    void (*choose)(void* variant, std::int32_t tag) = nullptr;
    void (*shrink)(void* container) = nullptr;                      ///< one element less
    void (*grow)(void* container, RandomValues& random) = nullptr;  ///< a random element more

    std::int32_t count() const { return static_cast<std::int32_t>(names.size()); }

    /// The arm whose payload stands behind the tag, -1 where none does.
    std::int32_t arm_behind(std::int32_t tag) const {
        bool const listed = tag >= 0 && tag < count();
        if (!listed) return has_catch_all ? count() - 1 : -1;
        return has_payload[static_cast<std::size_t>(tag)] ? tag : -1;
    }
};

/// One part of a value, with its own parts. It refers to the value and lives no longer.
struct Node {
    Kind         kind{};
    void const*  object = nullptr;
    Shape const* shape = nullptr;
    std::int32_t tag = 0;        ///< of a variant or reference, or an enumeration's number
    bool         fixed = false;  ///< inside a key or element that must keep its place

    std::vector<Node> parts;

    std::shared_ptr<void const> owned;  ///< what `object` refers to where the value has none

    template <class T>
    T const& as() const {
        return *static_cast<T const*>(object);
    }
};

/// The value as text. Equal texts: the same value, whatever the order of unordered tables.
std::string text_of(Node const& value);

/// The text of what `held` becomes when the bytes of `read` are read over it.
std::string text_read_over(Node const& held, Node const& read);

/// Whether all numbers are zero, all containers empty and all variants unset.
bool is_fresh(Node const& value);

/// Whether some variant in the value is unset or has no payload behind its tag.
bool has_bare_variant(Node const& value);

/// Changes one part at random; unset variants, unknown tags and NaNs are among the results. False
/// where there is no part to change.
bool mutate(Node const& value, RandomValues& random);

}  // namespace generic
