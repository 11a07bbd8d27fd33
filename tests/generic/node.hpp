#pragma once
// A value as a tree of its parts, with the kind and the place of each part. With it, tests read,
// compare and change values of any type in code that is compiled only once.

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
    // Kinds with parts.
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

/// The properties that all values of a type share.
struct Shape {
    std::vector<std::string> names;        ///< arms, enumerators or fields
    std::vector<bool>        has_payload;  ///< by arm
    bool                     has_catch_all = false;
    bool                     last_wins = false;  ///< a map whose values are read over

    void (*choose)(void* variant, std::int32_t tag) = nullptr;
    void (*shrink)(void* container) = nullptr;                      ///< removes an element
    void (*grow)(void* container, RandomValues& random) = nullptr;  ///< adds a random element

    std::int32_t count() const { return static_cast<std::int32_t>(names.size()); }

    /// The arm whose payload follows the tag; -1 if there is no payload.
    std::int32_t arm_behind(std::int32_t tag) const {
        bool const listed = tag >= 0 && tag < count();
        if (!listed) return has_catch_all ? count() - 1 : -1;
        return has_payload[static_cast<std::size_t>(tag)] ? tag : -1;
    }
};

/// One part of a value, with its own parts. It points into the value, which must outlive it.
struct Node {
    Kind         kind{};
    void const*  object = nullptr;
    Shape const* shape = nullptr;
    std::int32_t tag = 0;        ///< of a variant or reference, or an enumeration's number
    bool         fixed = false;  ///< inside a key or element that must keep its place

    std::vector<Node> parts;

    std::shared_ptr<void const> owned;  ///< what `object` points to if it is not in the value

    template <class T>
    T const& as() const {
        return *static_cast<T const*>(object);
    }
};

/// The value as text. Two values have the same text exactly if they have the same content, whatever
/// the order of hash tables.
std::string text_of(Node const& value);

/// The text of the value that `held` becomes when the bytes of `read` are read over it.
std::string text_read_over(Node const& held, Node const& read);

/// Whether all numbers are zero, all containers empty and all variants unset.
bool is_fresh(Node const& value);

/// Whether some variant in the value is unset or has a tag without a payload.
bool has_variant_without_payload(Node const& value);

/// Changes one part at random; the results include unset variants, unknown tags and NaNs. Returns
/// false if there is no part to change.
bool mutate(Node const& value, RandomValues& random);

}  // namespace generic
