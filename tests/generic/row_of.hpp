#pragma once
// Makes the row of a type. Only the files that define rows include this, one for each area, so that
// each type is compiled in only one of them.

#include "tests/all_types.hpp"
#include "tests/generic/row.hpp"

#include <sml/core/archives.hpp>
#include <sml/core/kinds.hpp>

#include <sstream>

namespace generic {

/// The functions of one type.
template <class T>
struct Functions {
    static constexpr bool is_reference = requires(T & value) { value.which; };
    static constexpr bool is_variant = !is_reference && requires { typename T::arms; };
    static constexpr bool is_compared = requires(T const& value) {
        value == value;
        value < value;
    };

    static Node view(T const& value, bool fixed);
    static void fill(T& value, RandomValues& random);
    static Row  row(char const* name);
};

#define DECLARE_FUNCTIONS(Type) extern template struct Functions<sml::Type>;

ALL_TYPES(DECLARE_FUNCTIONS)
#undef DECLARE_FUNCTIONS

template <class T>
Node view(T const& value, bool fixed = false);

inline std::vector<std::string> split_names(std::string const& list) {
    std::vector<std::string> names(1);
    for (char const c : list) {
        if (c == ',')
            names.emplace_back();
        else if (c != ' ')
            names.back() += c;
    }
    return names;
}

template <class T>
Shape const& enumeration_shape() {
    static Shape const shape = [] {
        constexpr auto table = enumerators(T{});
        Shape          made;
        for (std::size_t i = 0; i < table.start.size(); ++i) made.names.emplace_back(table[i]);
        return made;
    }();
    return shape;
}

template <class Arms>
Shape arms_shape() {
    Shape shape;
    for (char const* name : Arms::names) shape.names.emplace_back(name);
    shape.has_payload.assign(Arms::has_payload.begin(), Arms::has_payload.end());
    shape.has_catch_all = Arms::has_catch_all;
    return shape;
}

template <class T>
Shape const& variant_shape() {
    static Shape const shape = [] {
        Shape made = arms_shape<typename T::arms>();
        made.choose = [](void* object, std::int32_t tag) {
            if constexpr (Functions<T>::is_reference) {
                static_cast<T*>(object)->which = tag;
                static_cast<T*>(object)->value = 0;
            } else {
                static_cast<T*>(object)->choose_tag(tag);
            }
        };
        return made;
    }();
    return shape;
}

template <class T>
Shape const& record_shape() {
    static Shape const shape = [] {
        Shape made;
        made.names = split_names(T::field_names());
        return made;
    }();
    return shape;
}

template <class T>
void grow(void* object, RandomValues& random) {
    using namespace sml::core;
    T& container = *static_cast<T*>(object);
    if constexpr (Optional<T> || List<T>) {
        if constexpr (Optional<T>)
            random.fill(container.emplace());
        else
            random.fill(container.emplace_back());
    } else if constexpr (Map<T>) {
        container.emplace(random.make<typename T::key_type>(),
                          random.make<typename T::mapped_type>());
    } else {
        container.insert(random.make<typename T::value_type>());
    }
}

template <class T>
void shrink(void* object) {
    T& container = *static_cast<T*>(object);
    if constexpr (sml::core::Optional<T>)
        container.reset();
    else
        container.erase(container.begin());
}

template <class T>
Shape const& container_shape() {
    static Shape const shape = [] {
        Shape made;
        if constexpr (sml::core::Map<T>) made.last_wins = sml::core::last_wins<T>;
        made.shrink = shrink<T>;
        made.grow = grow<T>;
        return made;
    }();
    return shape;
}

template <class T>
constexpr Kind leaf_kind() {
    if constexpr (std::is_enum_v<T>) return Kind::enumeration;
    if constexpr (std::is_same_v<T, std::int32_t>) return Kind::int32;
    if constexpr (std::is_same_v<T, std::uint32_t>) return Kind::uint32;
    if constexpr (std::is_same_v<T, std::int64_t>) return Kind::int64;
    if constexpr (std::is_same_v<T, std::uint64_t>) return Kind::uint64;
    if constexpr (std::is_same_v<T, bool>) return Kind::flag;
    if constexpr (std::is_same_v<T, double>) return Kind::real;
    if constexpr (std::is_same_v<T, std::string>) return Kind::text;
    if constexpr (std::is_same_v<T, sml::Strings_T>) return Kind::handle;
    if constexpr (std::is_same_v<T, sml::BigInteger>) return Kind::big_integer;
    if constexpr (std::is_same_v<T, zelvanite::IEEE754Float>) return Kind::ieee_float;
}

template <class T>
constexpr Kind container_kind() {
    using namespace sml::core;
    if constexpr (List<T>) return Kind::list;
    if constexpr (SortedSet<T>) return Kind::sorted_set;
    if constexpr (SortedMap<T>) return Kind::sorted_map;
    if constexpr (HashSet<T>) return Kind::hash_set;
    if constexpr (HashMap<T>) return Kind::hash_map;
}

template <class T>
void view_fields(Node& node, T const& value, bool fixed) {
    value.with_fields([&](auto const&... field) {
        node.parts.reserve(sizeof...(field));
        (node.parts.push_back(view(field, fixed)), ...);
    });
}

template <class T>
Node view(T const& value, bool fixed) {
    using namespace sml::core;
    if constexpr (Serialized<T> && !Leaf<T>) {
        return Functions<T>::view(value, fixed);
    } else {
        Node node;
        node.object = &value;
        node.fixed = fixed;
        if constexpr (Leaf<T>) {
            node.kind = leaf_kind<T>();
            if constexpr (std::is_enum_v<T>) {
                node.shape = &enumeration_shape<T>();
                node.tag = value;
            }
        } else if constexpr (Optional<T>) {
            node.kind = Kind::optional;
            node.shape = &container_shape<T>();
            if (value) node.parts.push_back(view(*value, fixed));
        } else if constexpr (Boxed<T>) {
            node.kind = Kind::box;
            node.parts.push_back(view(*value, fixed));
        } else if constexpr (PairOrTuple<T> || FlagArray<T>) {
            node.kind = Kind::group;
            std::apply([&](auto const&... part) { (node.parts.push_back(view(part, fixed)), ...); },
                       value);
        } else if constexpr (Fielded<T>) {
            node.kind = Kind::record;
            node.shape = &record_shape<T>();
            view_fields(node, value, fixed);
        } else {
            node.kind = container_kind<T>();
            node.shape = &container_shape<T>();
            node.parts.reserve(value.size());
            for (auto const& element : value) {
                if constexpr (Map<T>) {
                    Node entry;
                    entry.kind = Kind::group;
                    entry.parts.push_back(view(element.first, true));
                    entry.parts.push_back(view(element.second, fixed));
                    node.parts.push_back(std::move(entry));
                } else {
                    node.parts.push_back(view(element, fixed || Set<T>));
                }
            }
        }
        return node;
    }
}

/// Adds the payload of a variant to the node. If the payload of a catch-all arm was not built, it
/// is shown as a value that the node owns.
template <class T>
void view_payload(Node& node, T const& variant, bool fixed) {
    variant.visit_payload([&]<class Payload>(Payload const& payload) {
        auto const at = reinterpret_cast<std::uintptr_t>(&payload);
        auto const start = reinterpret_cast<std::uintptr_t>(&variant);
        if (at >= start && at < start + sizeof variant) {
            node.parts.push_back(view(payload, fixed));
        } else {
            auto const copy = std::make_shared<Payload const>(payload);
            node.parts.push_back(view(*copy, true));
            node.owned = copy;
        }
    });
}

template <class T>
Node Functions<T>::view(T const& value, bool fixed) {
    Node node;
    node.object = &value;
    node.fixed = fixed;
    if constexpr (is_variant) {
        node.kind = Kind::variant;
        node.shape = &variant_shape<T>();
        node.tag = value.tag;
        view_payload(node, value, fixed);
    } else if constexpr (is_reference) {
        node.kind = Kind::reference;
        node.shape = &variant_shape<T>();
        node.tag = value.which;
        view_fields(node, value, fixed);
    } else {
        node.kind = Kind::record;
        node.shape = &record_shape<T>();
        view_fields(node, value, fixed);
    }
    return node;
}

template <class T>
void Functions<T>::fill(T& value, RandomValues& random) {
    random.fill(value);
}

template <class T>
FieldList field_list(char const* owner) {
    FieldList list{owner, split_names(T::field_names()), {}};
    T const   value{};
    auto      offset = [&](auto const& field) {
        return reinterpret_cast<char const*>(&field) - reinterpret_cast<char const*>(&value);
    };
    value.with_fields([&](auto const&... field) { (list.offsets.push_back(offset(field)), ...); });
    list.offsets.push_back(sizeof value);
    return list;
}

template <class Payload>
void add_field_list(std::vector<FieldList>& lists, char const* owner) {
    if constexpr (sml::core::Fielded<Payload> && !sml::core::Serialized<Payload>)
        lists.push_back(field_list<Payload>(owner));
}

template <class Arms, std::int32_t... Tag>
std::vector<FieldList> arm_field_lists(std::integer_sequence<std::int32_t, Tag...>) {
    std::vector<FieldList> lists;
    (add_field_list<typename Arms::template payload<Tag>>(lists, Arms::names[Tag]), ...);
    return lists;
}

template <class T>
void assign_field(T& target, T const& source, std::size_t field) {
    target.with_fields([&](auto&... to) {
        source.with_fields([&](auto const&... from) {
            std::size_t index = 0;
            static_cast<void>(((index++ == field && (to = from, true)) || ...));
        });
    });
}

template <class T>
Row Functions<T>::row(char const* name) {
    Row row{
        .name = name,
        .type = typeid(T),
        .form = is_variant     ? Form::variant
                : is_reference ? Form::reference
                               : Form::record,
        .compared = is_compared,
        .arms = nullptr,
        .make = []() -> void* { return new T{}; },
        .copy = [](void const* source) -> void* { return new T(*static_cast<T const*>(source)); },
        .move = [](void* source) -> void* { return new T(std::move(*static_cast<T*>(source))); },
        .assign =
            [](void* target, void const* source) {
                *static_cast<T*>(target) = *static_cast<T const*>(source);
            },
        .move_assign =
            [](void* target, void* source) {
                *static_cast<T*>(target) = std::move(*static_cast<T*>(source));
            },
        .destroy = [](void* object) { delete static_cast<T*>(object); },
        .fill = [](void*         object,
                   RandomValues& random) { Functions::fill(*static_cast<T*>(object), random); },
        .fill_arm = nullptr,
        .view =
            [](void const* object) {
                return Functions::view(*static_cast<T const*>(object), false);
            },
        .equal = nullptr,
        .less = nullptr,
        .to_string = nullptr,
        .write =
            [](void const* object, sml::StringOArchive& archive) {
                static_cast<T*>(const_cast<void*>(object))->serialize(archive, 0);
            },
        .write_to_stream =
            [](void const* object, sml::StreamOArchive& archive) {
                static_cast<T*>(const_cast<void*>(object))->serialize(archive, 0);
            },
        .read =
            [](void* object, sml::StringIArchive& archive) {
                static_cast<T*>(object)->serialize(archive, 0);
            },
        .read_from_stream =
            [](void* object, sml::StreamIArchive& archive) {
                static_cast<T*>(object)->serialize(archive, 0);
            },
        .field_lists = nullptr,
        .assign_field = nullptr};
    if constexpr (is_compared) {
        row.equal = [](void const* a, void const* b) {
            return *static_cast<T const*>(a) == *static_cast<T const*>(b);
        };
        row.less = [](void const* a, void const* b) {
            return *static_cast<T const*>(a) < *static_cast<T const*>(b);
        };
    }
    if constexpr (is_variant || is_reference) {
        row.arms = &variant_shape<T>();
        row.to_string = [](void const* object) {
            return static_cast<T const*>(object)->toString();
        };
    }
    if constexpr (is_variant) {
        row.fill_arm = [](void* object, std::int32_t tag, RandomValues& random) {
            random.fill_arm(*static_cast<T*>(object), tag);
        };
        row.field_lists = [] {
            using Arms = typename T::arms;
            return arm_field_lists<Arms>(std::make_integer_sequence<std::int32_t, Arms::count>());
        };
    } else {
        row.field_lists = [] { return std::vector<FieldList>{field_list<T>("")}; };
        row.assign_field = [](void* target, void const* source, std::size_t field) {
            generic::assign_field(*static_cast<T*>(target), *static_cast<T const*>(source), field);
        };
    }
    if constexpr (is_reference) {
        row.fill_arm = [](void* object, std::int32_t tag, RandomValues& random) {
            T& reference = *static_cast<T*>(object);
            random.fill(reference);
            reference.which = tag;
        };
    }
    return row;
}

}  // namespace generic

/// Defines the rows of an area's types.
#define DEFINE_ROWS(function, TYPES)                          \
    namespace generic {                                       \
    TYPES(INSTANTIATE_FUNCTIONS)                              \
    std::vector<Row> function() { return {TYPES(MAKE_ROW)}; } \
    }
#define INSTANTIATE_FUNCTIONS(Type) template struct Functions<sml::Type>;
#define MAKE_ROW(Type)              Functions<sml::Type>::row(#Type),
