#pragma once
// The order and equality of all types. The standard containers' own `<` is never used: it may ask
// an element's `<` in other directions than required, and `x < x` holds for some elements.

#include <sml/core/kinds.hpp>
#include <sml/core/read_ahead.hpp>

#include <algorithm>

namespace sml::core {

/// A group of parts that is walked with `<` in both directions and never asked for equality.
template <class T>
concept WalkedWithLess = Fielded<T> && requires {
    requires T::walked_with_less;
};

/// Equality and order, one function a rule.
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

    /// What the containers' own `==` gives.
    template <HashMap T>
    static bool equal_tables(T const& a, T const& b) {
        return every_entry(a, b,
                           [](auto const& left, auto const& right) { return equal(left, right); });
    }

    /// Whether tables have the same keys and `holds` for the values of each, with the entries to
    /// come on their way: the next one of `a` and its counterpart, and the one behind it.
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

    /// Whether the two are equal and neither is less, which one walk tells. Asking `less` one way,
    /// then the other way and then for equality takes several at each level. What has no payload
    /// is never the same: it is less than itself.
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

    /// Of the same tag, whose payload is built in both: only a tag below 0 can go without.
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

    /// Field by field: a lesser one gives true, an unequal one false, the last one decides.
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

    /// Required: the shorter list is less, whatever it holds.
    template <List T>
    static bool less(T const& a, T const& b) {
        if (a.size() != b.size()) return a.size() < b.size();
        return less_elements(a, b);
    }

    /// Required: no size step.
    template <class T>
        requires SortedSet<T> || SortedMap<T>
    static bool less(T const& a, T const& b) { return less_elements(a, b); }

    /// Required: of one size and with different elements, neither is less. Equal elements can
    /// still be less than one another.
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

    /// Required: the walk follows the left table's own order and stops at a greater value.
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

    /// Each part with `<` in both directions; parts that are neither are passed over.
    template <GroupedParts T>
        requires WalkedWithLess<T>
    static bool less(T const& a, T const& b) {
        return a.with_fields([&](auto const&... left) {
            return b.with_fields([&](auto const&... right) {
                bool result = false;
                static_cast<void>((settled_by_less(left, right, result) || ...));
                return result;
            });
        });
    }

private:
    /// Required: walked with `<` in both directions; an element that is neither less nor greater
    /// is passed over, equal or not.
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
                static_cast<void>((settled(left, right, --left_to_do == 0, result) || ...));
                return result;
            },
            left_parts);
    }

    template <class T>
    static bool settled(T const& left, T const& right, bool is_last, bool& result) {
        if (!is_last && same(left, right)) return false;
        result = less(left, right);
        return result || is_last || !equal(left, right);
    }

    template <class T>
    static bool settled_by_less(T const& left, T const& right, bool& result) {
        if (same(left, right)) return false;
        result = less_alone(left, right);
        return result || less_alone(right, left);
    }

    template <class T>
    static bool less_alone(T const& a, T const& b) {
        return less(a, b);
    }

    template <Optional T>
    static bool less_alone(T const& a, T const& b) {
        if (!b) return false;
        return !a || less_alone(*a, *b);
    }

    template <class First, class Second>
    static bool less_alone(std::pair<First, Second> const& a, std::pair<First, Second> const& b) {
        if (less(a.first, b.first)) return true;
        return !less(b.first, a.first) && less(a.second, b.second);
    }
};

}  // namespace sml::core
