#pragma once
// Members of JSON objects that are changed. None stands for one of another kind, too.

#include <boost/json.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace bradep::sarif {

namespace json = boost::json;

/// A member that is an object; null if there is none, or no object.
template <class Object>
auto* object_in(Object* object, std::string_view name) {
    auto* const value = object ? object->if_contains(name) : nullptr;
    return value ? value->if_object() : nullptr;
}

/// A member that is an array.
template <class Object>
auto* list_in(Object* object, std::string_view name) {
    auto* const value = object ? object->if_contains(name) : nullptr;
    return value ? value->if_array() : nullptr;
}

/// A member that is a text; an empty one if there is none.
inline std::string text_in(json::object const* object, std::string_view name) {
    auto const* const value = object ? object->if_contains(name) : nullptr;
    auto const* const text = value ? value->if_string() : nullptr;
    return text ? std::string(*text) : std::string();
}

/// A member that is an index.
inline std::optional<std::size_t> index_in(json::object const* object, std::string_view name) {
    auto const* const value = object ? object->if_contains(name) : nullptr;
    auto const* const index = value ? value->if_int64() : nullptr;
    if (!index || *index < 0) return std::nullopt;
    return static_cast<std::size_t>(*index);
}

}  // namespace bradep::sarif
