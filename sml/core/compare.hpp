#pragma once
// The order and equality of all types. The standard containers' own `<` is never used: it may call
// the elements' `<` with other operands than is required, and since `x < x` is true for some
// elements, that would give another result.

#include <sml/core/kinds.hpp>
#include <sml/core/read_ahead.hpp>

#include <algorithm>

namespace sml::core {

/// A group of parts that are compared by `<` in both directions and never by equality.
template <class T>
concept WalkedWithLess = Fielded<T> && requires {
    requires T::walked_with_less;
};

/// Equality and order, with one function for each rule.
struct Comparison {
    template <class T>
    static bool equal(T const& a, T const& b) {
        if constexpr (GroupedParts<T>)
            return equal_fields(a, b);
        else if constexpr (HashMap<T>)
            return equal_tables(a, b);
        else
            return a == b;
    }

    template <Fielded T>
    static bool equal_fields(T const& a, T const& b) {
        return a.with_fields([&](auto const&... left) {
            return b.with_fields([&](auto const&... right) { return (equal(left, right) && ...); });
        });
    }

    /// Gives the result of the standard containers' `==`.
    template <HashMap T>
    static bool equal_tables(T const& a, T const& b) {
        return every_entry(a, b,
                           [](auto const& left, auto const& right) { return equal(left, right); });
    }

    /// Whether the maps have the same keys, and `holds` is true for the two values of each key.
    /// While it compares one entry, the next entry of `a`, its counterpart in `b` and the entry
    /// after it are prefetched.
    template <HashMap T, class Holds>
    static bool every_entry(T const& a, T const& b, Holds holds) {
        if (a.size() != b.size()) return false;
        auto const end = a.end();
        auto       behind = a.begin();
        auto       next = behind;
        auto       counterpart = b.end();
        auto const step = [&] {
            next = behind;
            if (behind != end && ++behind != end) prefetch(*behind);
            if (next == end) return;
            counterpart = b.find(next->first);
            if (counterpart != b.end()) prefetch(*counterpart);
        };
        for (step(); next != end;) {
            auto const& entry = *next;
            auto const  other = counterpart;
            if (other == b.end()) return false;
            step();
            if (!holds(entry.second, other->second)) return false;
        }
        return true;
    }

    /// Whether `a` and `b` are equal and neither is less than the other, found out in one walk. To
    /// call `less` both ways and then `equal` would take several walks at each level. Variants
    /// without payload are never the same, since they are less than themselves.
    template <class T>
    static bool same(T const& a, T const& b) {
        if constexpr (HashedVariant<T>) {
            return same_arms(a, b);
        } else if constexpr (Optional<T>) {
            return a.has_value() == b.has_value() && (!a || same(*a, *b));
        } else if constexpr (Boxed<T>) {
            return same(*a, *b);
        } else if constexpr (List<T> || SortedSet<T> || SortedMap<T>) {
            return std::equal(
                a.begin(), a.end(), b.begin(), b.end(),
                [](auto const& left, auto const& right) { return same(left, right); });
        } else if constexpr (HashSet<T>) {
            return a.size() == b.size() && std::ranges::all_of(a, [&](auto const& element) {
                       auto const other = b.find(element);
                       return other != b.end() && same(element, *other);
                   });
        } else if constexpr (HashMap<T>) {
            return every_entry(
                a, b, [](auto const& left, auto const& right) { return same(left, right); });
        } else if constexpr (PairOrTuple<T>) {
            return std::apply(
                [&](auto const&... left) {
                    return std::apply(
                        [&](auto const&... right) { return (same(left, right) && ...); }, b);
                },
                a);
        } else if constexpr (Fielded<T> && !requires { typename T::arms; }) {
            return a.with_fields([&](auto const&... left) {
                return b.with_fields(
                    [&](auto const&... right) { return (same(left, right) && ...); });
            });
        } else {
            return a == b;
        }
    }

    /// False for variants without payload. With equal tags of 0 or more, both have the payload of
    /// the same arm in their storage; only with a tag below 0 it may be missing.
    template <HashedVariant T>
    static bool same_arms(T const& a, T const& b) {
        if (a.tag != b.tag || a.tag < 0) return false;
        void const* other = nullptr;
        b.visit_payload([&](auto const& payload) { other = &payload; });
        bool result = false;
        a.visit_payload([&]<class Payload>(Payload const& payload) {
            result = same(payload, *static_cast<Payload const*>(other));
        });
        return result;
    }

    template <class T>
    static bool less(T const& a, T const& b) {
        static_assert(!WireForm<T>::exists || Leaf<T> || Boxed<T> || Serialized<T>);
        return a < b;
    }

    template <GroupedParts T>
        requires(!WalkedWithLess<T>)
    static bool less(T const& a, T const& b) { return less_fields(a, b); }

    /// Compares field by field: if one is less, the result is true; else if it is unequal, false.
    /// If all fields before it are equal, the last one decides by `<` alone.
    template <Fielded T>
    static bool less_fields(T const& a, T const& b) {
        return a.with_fields([&](auto const&... left) {
            return b.with_fields(
                [&](auto const&... right) { return less_parts(std::tie(left...), right...); });
        });
    }

    template <PairOrTuple T>
    static bool less(T const& a, T const& b) {
        return std::apply([&](auto const&... right) { return less_parts(a, right...); }, b);
    }

    template <FlagArray T>
    static bool less(T const& a, T const& b) {
        return std::apply([&](auto const&... right) { return less_parts(a, right...); }, b);
    }

    template <Optional T>
    static bool less(T const& a, T const& b) {
        if (!b) return false;
        return !a || less(*a, *b);
    }

    /// Required: a shorter list is less, whatever its elements are.
    template <List T>
    static bool less(T const& a, T const& b) {
        if (a.size() != b.size()) return a.size() < b.size();
        return less_elements(a, b);
    }

    /// Required: sizes are not compared first.
    template <class T>
        requires SortedSet<T> || SortedMap<T>
    static bool less(T const& a, T const& b) { return less_elements(a, b); }

    /// Required: if the sizes are equal and the elements are not, neither set is less. Equal
    /// elements are compared by `<`, too, since one of them can be less than the other.
    template <HashSet T>
    static bool less(T const& a, T const& b) {
        if (a.size() != b.size()) return a.size() < b.size();
        for (auto const& element : a)
            if (!b.contains(element)) return false;
        for (auto const& element : a) {
            auto const& other = *b.find(element);
            if (same(element, other)) continue;
            if (less(element, other)) return true;
            if (less(other, element)) return false;
        }
        return false;
    }

    /// Required: values are compared in the order of the left map's hash table, up to the first one
    /// that is less (true) or greater (false).
    template <HashMap T>
    static bool less(T const& a, T const& b) {
        if (a.size() != b.size()) return a.size() < b.size();
        for (auto const& entry : a)
            if (!b.contains(entry.first)) return false;
        for (auto const& [key, value] : a) {
            auto const& other = b.find(key)->second;
            if (same(value, other)) continue;
            if (less(value, other)) return true;
            if (less(other, value)) return false;
        }
        return false;
    }

    /// Compares each part by `<` in both directions; the first one that is less or greater decides.
    template <GroupedParts T>
        requires WalkedWithLess<T>
    static bool less(T const& a, T const& b) {
        return a.with_fields([&](auto const&... left) {
            return b.with_fields([&](auto const&... right) {
                bool result = false;
                static_cast<void>((decides_by_less(left, right, result) || ...));
                return result;
            });
        });
    }

private:
    /// Required: elements are compared by `<` in both directions, and the first one that is less or
    /// greater decides; whether others are equal does not matter.
    template <class T>
    static bool less_elements(T const& a, T const& b) {
        auto left = a.begin();
        auto right = b.begin();
        for (; left != a.end() && right != b.end(); ++left, ++right) {
            if (same(*left, *right)) continue;
            if (less(*left, *right)) return true;
            if (less(*right, *left)) return false;
        }
        return left == a.end() && right != b.end();
    }

    template <class Left, class... Right>
    static bool less_parts(Left const& left_parts, Right const&... right) {
        return std::apply(
            [&](auto const&... left) {
                bool        result = false;
                std::size_t left_to_do = sizeof...(right);
                static_cast<void>((decides(left, right, --left_to_do == 0, result) || ...));
                return result;
            },
            left_parts);
    }

    /// Whether this part decides the comparison; if it does, `result` says how.
    template <class T>
    static bool decides(T const& left, T const& right, bool is_last, bool& result) {
        if (!is_last && same(left, right)) return false;
        result = less(left, right);
        return result || is_last || !equal(left, right);
    }

    /// As `decides`, but asks `<` in both directions instead of equality.
    template <class T>
    static bool decides_by_less(T const& left, T const& right, bool& result) {
        if (same(left, right)) return false;
        result = less_without_equality(left, right);
        return result || less_without_equality(right, left);
    }

    /// `<` of a part whose components are not compared by equality either.
    template <class T>
    static bool less_without_equality(T const& a, T const& b) {
        return less(a, b);
    }

    template <Optional T>
    static bool less_without_equality(T const& a, T const& b) {
        if (!b) return false;
        return !a || less_without_equality(*a, *b);
    }

    template <class First, class Second>
    static bool less_without_equality(std::pair<First, Second> const& a,
                                      std::pair<First, Second> const& b) {
        if (less(a.first, b.first)) return true;
        return !less(b.first, a.first) && less(a.second, b.second);
    }
};

}  // namespace sml::core
