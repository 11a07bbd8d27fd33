#pragma once
// The kinds of C++ types, by which rules of the wire form and of comparison are chosen.

#include <sml/core/big_integer.hpp>
#include <sml/core/declare.hpp>
#include <sml/core/ieee754_float.hpp>

namespace sml::core {

template <class T, template <class...> class Container>
constexpr bool is_a = false;
template <class... Args, template <class...> class Container>
constexpr bool is_a<Container<Args...>, Container> = true;

template <class T>
concept List = is_a<T, std::list>;
template <class T>
concept SortedSet = is_a<T, std::set>;
template <class T>
concept SortedMap = is_a<T, std::map>;
template <class T>
concept HashSet = is_a<T, std::unordered_set>;
template <class T>
concept HashMap = is_a<T, std::unordered_map>;
template <class T>
concept Optional = is_a<T, std::optional>;
template <class T>
concept Boxed = is_a<T, Box>;
template <class T>
concept PairOrTuple = is_a<T, std::pair> || is_a<T, std::tuple>;

template <class T>
constexpr bool is_flag_array = false;
template <std::size_t Size>
constexpr bool is_flag_array<std::array<bool, Size>> = true;
template <class T>
concept FlagArray = is_flag_array<T>;

template <class T>
concept Word =
    (std::is_integral_v<T> && !std::is_same_v<T, bool> && sizeof(T) >= 4) || std::is_enum_v<T>;

/// A record, a reference, or the grouped parts of an arm.
template <class T>
concept Fielded = requires {
    T::field_names();
};

template <class... T>
struct Types {};

struct TypesOf {
    template <class... T>
    constexpr Types<T...> operator()(T&...) const {
        return {};
    }
};

/// The types of the parts of a fielded class.
template <class T>
using FieldTypes = decltype(std::declval<T&>().with_fields(TypesOf{}));

/// Never called and not defined: the result type lists the types of the parts of a pair or tuple.
template <class... T>
Types<T...> parts_of(std::pair<T...> const&);
template <class... T>
Types<T...> parts_of(std::tuple<T...> const&);

/// A class with members of its own for the wire form and, in most cases, for comparison.
template <class T>
concept Serialized = requires(T& value, StringOArchive& archive) {
    value.serialize(archive, 0u);
};

/// The grouped parts of an arm.
template <class T>
concept GroupedParts = Fielded<T> && !Serialized<T>;

template <class T>
concept Set = SortedSet<T> || HashSet<T>;
template <class T>
concept Map = SortedMap<T> || HashMap<T>;

template <class T>
constexpr bool last_wins = false;
template <class Key, class Value, class Base>
constexpr bool last_wins<std::map<Key, Value, LastWins<Base>>> = true;
template <class Key, class Value, class Base>
constexpr bool last_wins<std::unordered_map<Key, Value, LastWins<Base>>> = true;

template <class T>
concept Leaf = Word<T> || std::is_same_v<T, bool> || std::is_same_v<T, double> ||
    std::is_same_v<T, std::string> || std::is_same_v<T, Strings_T> ||
    std::is_same_v<T, BigInteger> || std::is_same_v<T, zelvanite::IEEE754Float>;

/// The types that a field or a payload can have.
template <class T>
concept WireType = Leaf<T> || List<T> || Set<T> || Map<T> || Optional<T> || Boxed<T> ||
    PairOrTuple<T> || FlagArray<T> || Fielded<T> || Serialized<T>;

template <class T>
struct WireFormAnswer {
    static constexpr bool exists = WireType<T>;
};

/// Asserts that a type has a wire form: one that has none gives one error, however often this is
/// used. `exists` is inherited, because clang drops the members of a class in which an assertion
/// fails.
template <class T>
struct WireForm : WireFormAnswer<T> {
    static_assert(WireType<T>, "this type has no wire form");
};

}  // namespace sml::core
