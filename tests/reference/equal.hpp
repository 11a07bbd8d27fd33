#pragma once
// Equality, plainly written.

#include <sml/core/kinds.hpp>

#include <algorithm>
#include <tuple>

namespace plain {

template <class T>
bool equal(T const& a, T const& b);

template <class Parts>
bool equal_parts(Parts const& a, Parts const& b) {
    return std::apply(
        [&](auto const&... left) {
            return std::apply([&](auto const&... right) { return (equal(left, right) && ...); }, b);
        },
        a);
}

/// Looks up each entry of `a` in `b`.
template <class T>
bool equal_tables(T const& a, T const& b) {
    if (a.size() != b.size()) return false;
    for (auto const& entry : a) {
        if constexpr (sml::core::HashMap<T>) {
            auto const other = b.find(entry.first);
            if (other == b.end() || !equal(entry.second, other->second)) return false;
        } else {
            auto const other = b.find(entry);
            if (other == b.end() || !equal(entry, *other)) return false;
        }
    }
    return true;
}

template <class Variant>
bool equal_variants(Variant const& a, Variant const& b) {
    if (a.tag != b.tag || a.tag < 0) return false;
    bool result = true;
    a.visit_payload([&]<class Payload>(Payload const& left) {
        b.visit_payload([&]<class Other>(Other const& right) {
            if constexpr (std::is_same_v<Payload, Other>) result = equal(left, right);
        });
    });
    return result;
}

template <class T>
bool equal(T const& a, T const& b) {
    using namespace sml::core;
    if constexpr (HashSet<T> || HashMap<T>) {
        return equal_tables(a, b);
    } else if constexpr (List<T> || SortedSet<T> || SortedMap<T>) {
        return std::ranges::equal(
            a, b, [](auto const& left, auto const& right) { return equal(left, right); });
    } else if constexpr (Optional<T>) {
        return a.has_value() == b.has_value() && (!a || equal(*a, *b));
    } else if constexpr (Boxed<T>) {
        return equal(*a, *b);
    } else if constexpr (PairOrTuple<T>) {
        return equal_parts(a, b);
    } else if constexpr (requires { a.which; }) {
        return a == b;
    } else if constexpr (HashedVariant<T>) {
        return equal_variants(a, b);
    } else if constexpr (Fielded<T>) {
        return a.with_fields([&](auto const&... left) {
            return b.with_fields([&](auto const&... right) { return (equal(left, right) && ...); });
        });
    } else {
        return a == b;
    }
}

}  // namespace plain
