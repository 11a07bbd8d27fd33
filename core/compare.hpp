#pragma once
// The order and equality of all types. The standard containers' own `<` is never used: it may ask
// an element's `<` in other directions than required, and `x < x` holds for some elements.

#include "core/kinds.hpp"
#include "core/read_ahead.hpp"

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
        if constexpr (Fielded<T> && !Serialized<T>)
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

    /// What the containers' own `==` gives, with the entries to come on their way: the next one of
    /// `a` and its counterpart, and the one behind it.
    template <HashMap T>
    static bool equal_tables(T const& a, T const& b) {
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
            if (!equal(entry.second, other->second)) return false;
        }
        return true;
    }

    template <class T>
    static bool less(T const& a, T const& b) {
        static_assert(!WireForm<T>::exists || Leaf<T> || Boxed<T> || Serialized<T>);
        return a < b;
    }

    template <Fielded T>
        requires(!Serialized<T> && !WalkedWithLess<T>)
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
            if (less(value, other)) return true;
            if (less(other, value)) return false;
        }
        return false;
    }

    /// Each part with `<` in both directions; parts that are neither are passed over.
    template <WalkedWithLess T>
        requires(!Serialized<T>)
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
        result = less(left, right);
        return result || is_last || !equal(left, right);
    }

    template <class T>
    static bool settled_by_less(T const& left, T const& right, bool& result) {
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
