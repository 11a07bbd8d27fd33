#pragma once
// Makes descriptors of types from their declarations: `describe<T>()`.

#include <sml/core/kinds.hpp>
#include <sml/inspect/reader/heap_chunk.hpp>
#include <sml/inspect/type.hpp>
#include <sml/inspect/wire/form.hpp>

#include <algorithm>
#include <array>
#include <string_view>
#include <type_traits>
#include <utility>

namespace sml::inspect {

namespace detail {

/// The fully qualified name of a class or enumeration.
template <class T>
consteval std::string_view name_of() {
    std::string_view const function = __PRETTY_FUNCTION__;
    std::size_t const      start = function.find("T = ") + 4;
    return function.substr(start, function.find_first_of(";]", start) - start);
}

using core::FieldTypes;
using core::parts_of;
using core::Types;

/// Holds the descriptor of a type. Other descriptors can point to it before it is defined, so a
/// type can contain itself.
template <class T>
struct Described {
    static Type const type;
};

template <class T>
using BoxedType = std::remove_cvref_t<decltype(*std::declval<T&>())>;

template <class T>
consteval Kind kind_of_leaf() {
    if constexpr (std::is_enum_v<T>) return Kind::enumeration;
    if constexpr (std::is_same_v<T, std::int32_t>) return Kind::int32;
    if constexpr (std::is_same_v<T, std::uint32_t>) return Kind::uint32;
    if constexpr (std::is_same_v<T, std::int64_t>) return Kind::int64;
    if constexpr (std::is_same_v<T, std::uint64_t>) return Kind::uint64;
    if constexpr (std::is_same_v<T, bool>) return Kind::flag;
    if constexpr (std::is_same_v<T, double>) return Kind::number;
    if constexpr (std::is_same_v<T, BigInteger>) return Kind::big_integer;
    if constexpr (std::is_same_v<T, zelvanite::IEEE754Float>) return Kind::ieee_float;
    if constexpr (std::is_same_v<T, std::string>) return Kind::text;
    if constexpr (std::is_same_v<T, Strings_T>) return Kind::string;
}

/// The arrays that a descriptor points to.
template <class T>
struct Tables {};

template <class... T>
constexpr std::array<Part, sizeof...(T)> unnamed_parts(Types<T...>) {
    return {Part{{}, &Described<T>::type}...};
}

template <class T>
    requires core::PairOrTuple<T>
struct Tables<T> {
    static constexpr auto parts = unnamed_parts(decltype(parts_of(std::declval<T>())){});
};

template <class T>
struct FieldNames {
    static constexpr std::string_view list = T::field_names();
    static constexpr std::size_t      count = core::count_names(list);

    static constexpr std::string_view at(std::size_t index) {
        std::size_t start = 0;
        for (; index > 0; --index) start = list.find(',', start) + 1;
        start = list.find_first_not_of(' ', start);
        return list.substr(start, list.find(',', start) - start);
    }
};

template <class T, class... Field, std::size_t... Index>
constexpr std::array<Part, sizeof...(Field)> named_parts(Types<Field...>,
                                                         std::index_sequence<Index...>) {
    return {Part{FieldNames<T>::at(Index), &Described<Field>::type}...};
}

template <class T>
    requires core::Fielded<T>
struct Tables<T> {
    static constexpr auto parts =
        named_parts<T>(FieldTypes<T>{}, std::make_index_sequence<FieldNames<T>::count>{});
};

/// The types of the parts of a type with parts.
template <class T>
struct PartTypesOf;
template <class T>
    requires core::PairOrTuple<T>
struct PartTypesOf<T> {
    using type = decltype(parts_of(std::declval<T>()));
};
template <class T>
    requires core::Fielded<T>
struct PartTypesOf<T> {
    using type = FieldTypes<T>;
};
template <class T>
using PartTypes = typename PartTypesOf<T>::type;

template <class T>
concept HasArms = requires {
    T::arms::count;
};

template <class T>
concept HasParts = core::PairOrTuple<T> ||(core::Fielded<T> && !HasArms<T>);

template <class... T>
constexpr std::size_t count_flat_parts(Types<T...>);

template <class T>
constexpr std::size_t count_flat_part() {
    if constexpr (HasParts<T>)
        return count_flat_parts(PartTypes<T>{});
    else
        return 1;
}

template <class... T>
constexpr std::size_t count_flat_parts(Types<T...>) {
    return (std::size_t{0} + ... + count_flat_part<T>());
}

template <class T>
consteval Kind kind_of() {
    using namespace core;
    if constexpr (Leaf<T>)
        return kind_of_leaf<T>();
    else if constexpr (Optional<T>)
        return Kind::optional;
    else if constexpr (List<T>)
        return Kind::list;
    else if constexpr (Boxed<T>)
        return Kind::boxed;
    else if constexpr (Set<T>)
        return Kind::set;
    else if constexpr (Map<T>)
        return Kind::map;
    else if constexpr (PairOrTuple<T>)
        return Kind::tuple;
    else if constexpr (FlagArray<T>)
        return Kind::flags;
    else if constexpr (HasArms<T>)
        return Fielded<T> ? Kind::reference : Kind::variant;
    else
        return Serialized<T> ? Kind::record : Kind::group;
}

template <class T>
consteval std::uint32_t least_size();

template <class... T>
consteval std::uint32_t least_size_of_all(Types<T...>) {
    return (0 + ... + least_size<T>());
}

template <class Payload>
consteval std::uint32_t least_size_of_arm() {
    if constexpr (std::is_void_v<Payload>)
        return 0;
    else
        return least_size<Payload>();
}

template <class V, std::int32_t... Index>
consteval std::uint32_t least_size_of_arms(std::integer_sequence<std::int32_t, Index...>) {
    // Without catch-all arm, an unknown tag has no payload. That the payloads are not looked at
    // also ends the recursion of types that contain themselves.
    if constexpr (!V::arms::has_catch_all)
        return 0;
    else
        return std::min({least_size_of_arm<typename V::arms::template payload<Index>>()...});
}

template <class T>
consteval std::uint32_t least_size() {
    constexpr Kind          kind = kind_of<T>();
    constexpr std::uint32_t own = least_size_of(kind);
    static_assert(!core::Word<T> || own == sizeof(T));
    if constexpr (HasParts<T>)
        return own + least_size_of_all(PartTypes<T>{});
    else if constexpr (kind == Kind::boxed)
        return own + least_size<BoxedType<T>>();
    else if constexpr (kind == Kind::flags)
        return own + std::tuple_size_v<T> * least_size_of(Kind::flag);
    else if constexpr (kind == Kind::variant)
        return own +
               least_size_of_arms<T>(std::make_integer_sequence<std::int32_t, T::arms::count>{});
    else
        return own;
}

/// Whether a walk can skip a part of this kind after one comparison: a back-reference, a flag, an
/// enumerator, a tag without payload, an empty container, an absent optional.
constexpr bool passes_at_a_glance(Kind kind) {
    return kind == Kind::string || kind == Kind::flag || kind == Kind::enumeration ||
           kind == Kind::optional || kind == Kind::variant || kind == Kind::list ||
           kind == Kind::set || kind == Kind::map;
}

template <class T, bool is_hashed>
consteval bool is_key();

template <bool is_hashed, class... T>
consteval bool are_keys(Types<T...>) {
    return (is_key<T, is_hashed>() && ...);
}

template <class V, bool is_hashed, std::int32_t... Index>
consteval bool are_arms_of_key(std::integer_sequence<std::int32_t, Index...>) {
    return (is_key<typename V::arms::template payload<Index>, is_hashed>() && ...);
}

/// Whether `take_key` can take a type apart: in a key, as a part of one, or as a payload of an arm
/// of one. Floating-point numbers have an equality of their own, and no key holds containers,
/// boxes, references or rows of flags. No key in a hash table holds an optional: the readers' hash
/// of one is not known.
template <class T, bool is_hashed>
consteval bool is_key() {
    using namespace core;
    if constexpr (std::is_void_v<T>)
        return true;
    else if constexpr (Leaf<T>)
        return !std::is_same_v<T, double> && !std::is_same_v<T, zelvanite::IEEE754Float>;
    else if constexpr (Optional<T>)
        return !is_hashed && is_key<typename T::value_type, is_hashed>();
    else if constexpr (HasParts<T>)
        return are_keys<is_hashed>(PartTypes<T>{});
    else if constexpr (kind_of<T>() == Kind::variant)
        return are_arms_of_key<T, is_hashed>(
            std::make_integer_sequence<std::int32_t, T::arms::count>{});
    else
        return false;
}

/// Collects the flat parts of a type. It has room for all of them and for the end.
template <std::size_t Size>
struct FlatParts {
    std::array<FlatPart, Size + 1> parts{};
    std::size_t                    count = 0;
    FlatPart next{};  // what is added next: the words before it, the path to it

    template <class... T>
    constexpr void add_all(Types<T...>) {
        std::uint8_t const level = next.way_length++;
        next.way[level] = 0;
        ((add<T>(), ++next.way[level]), ...);
        --next.way_length;
    }

    template <class T>
    constexpr void add() {
        if constexpr (HasParts<T>)
            add_all(PartTypes<T>{});
        else if constexpr (is_plain_word(kind_of<T>()))
            next.words_before += least_size<T>();
        else
            add_part(&Described<T>::type, kind_of<T>(), least_size<T>());
    }

    constexpr void add_part(Type const* type, Kind kind, std::uint32_t size) {
        FlatPart& part = parts[count++] = next;
        part.type = type;
        part.kind = kind;
        part.least_size = next.words_before + size;
        next.words_before = 0;
    }

    /// Adds the end, and computes `least_size_of_row` of all.
    constexpr void end() {
        add_part(nullptr, Kind::record, 0);
        std::uint32_t behind = 0;
        for (std::size_t i = count; i-- > 0;) {
            if (!passes_at_a_glance(parts[i].kind)) behind = 0;
            behind += parts[i].least_size;
            parts[i].least_size_of_row = behind;
        }
    }
};

template <class T>
constexpr auto flat_parts() {
    FlatParts<count_flat_part<T>()> flat;
    flat.template add<T>();
    flat.end();
    return flat.parts;
}

template <class T>
struct FlatTable {
    static constexpr auto parts = flat_parts<T>();
};

template <class Payload>
constexpr Type const* describe_payload() {
    if constexpr (std::is_void_v<Payload>)
        return nullptr;
    else
        return &Described<Payload>::type;
}

template <class V, std::int32_t... Index>
constexpr std::array<Arm, sizeof...(Index)> arms_of(std::integer_sequence<std::int32_t, Index...>) {
    return {Arm{V::arms::names[Index],
                describe_payload<typename V::arms::template payload<Index>>()}...};
}

/// Arms of a variant or a reference.
template <class T>
struct ArmTable {
    static constexpr auto arms =
        arms_of<T>(std::make_integer_sequence<std::int32_t, T::arms::count>{});
};

template <class T>
struct EnumeratorTable {
    static constexpr auto names = enumerators(T{});
    static constexpr auto views = [] {
        std::array<std::string_view, names.start.size()> result;
        for (std::size_t i = 0; i < result.size(); ++i) result[i] = names[i];
        return result;
    }();
};

/// The node in which the standard library holds an entry.
template <class T>
struct NodeOf {
    using type = std::_Rb_tree_node<typename T::value_type>;
};
template <core::List T>
struct NodeOf<T> {
    using type = std::_List_node<typename T::value_type>;
};
template <class T>
    requires core::HashSet<T> || core::HashMap<T>
struct NodeOf<T> {
    static constexpr bool keeps_hash =
        std::__cache_default<typename T::key_type, typename T::hasher>::value;
    using type = std::__detail::_Hash_node<typename T::value_type, keeps_hash>;
};

template <class T>
constexpr Type make() {
    using namespace core;
    Type type{.kind = kind_of<T>(), .least_size = least_size<T>(), .object_size = sizeof(T)};
    if constexpr (Leaf<T>) {
        if constexpr (std::is_enum_v<T>) {
            type.name = name_of<T>();
            type.enumerators = EnumeratorTable<T>::views;
        }
    } else if constexpr (Optional<T> || List<T>) {
        type.element = &Described<typename T::value_type>::type;
    } else if constexpr (Boxed<T>) {
        type.element = &Described<BoxedType<T>>::type;
    } else if constexpr (Set<T>) {
        static_assert(is_key<typename T::key_type, HashSet<T>>(), "these can't be keys");
        type.element = &Described<typename T::value_type>::type;
        type.hashed = HashSet<T>;
    } else if constexpr (Map<T>) {
        static_assert(is_key<typename T::key_type, HashMap<T>>(), "these can't be keys");
        type.key = &Described<typename T::key_type>::type;
        type.element = &Described<typename T::mapped_type>::type;
        type.hashed = HashMap<T>;
        type.last_wins = last_wins<T>;
    } else if constexpr (PairOrTuple<T>) {
        type.parts = Tables<T>::parts;
        type.flat = FlatTable<T>::parts.data();
    } else if constexpr (FlagArray<T>) {
        type.flag_count = std::tuple_size_v<T>;
    } else if constexpr (HasArms<T>) {
        type.name = name_of<T>();
        type.arms = ArmTable<T>::arms;
        type.has_catch_all = T::arms::has_catch_all;
    } else {
        type.name = name_of<T>();
        type.parts = Tables<T>::parts;
        type.flat = FlatTable<T>::parts.data();
    }
    if constexpr (List<T> || Set<T> || Map<T>) {
        type.entry_size = sizeof(typename T::value_type);
        type.node_heap = chunk_of(sizeof(typename NodeOf<T>::type));
    }
    return type;
}

template <class T>
constinit Type const Described<T>::type = make<T>();

}  // namespace detail

/// The descriptor of a type of the schema.
template <class T>
constexpr Type const* describe() {
    return &detail::Described<T>::type;
}

}  // namespace sml::inspect
