#include "sarif/result_json.hpp"

#include "errors.hpp"
#include "sarif/fields.hpp"

#include <algorithm>
#include <charconv>
#include <functional>
#include <optional>
#include <type_traits>
#include <utility>

namespace bradep::sarif {

namespace {

// Their rows have no path.
template <class Value>
constexpr bool is_written_elsewhere = std::is_same_v<Value, bool> || std::is_same_v<Value, More> ||
                                      std::is_same_v<Value, std::optional<KeptJson>> ||
                                      std::is_same_v<Value, std::optional<Descriptor>>;

// Takes the part of a path before the first separator.
std::string_view first_part(std::string_view& path, char separator) {
    auto const end = std::min(path.find(separator), path.size());
    auto const part = path.substr(0, end);
    path.remove_prefix(std::min(end + 1, path.size()));
    return part;
}

void set_at(json::object& object, std::string_view path, json::value&& value) {
    auto const name = first_part(path, '.');
    if (path.empty()) {
        object[name] = std::move(value);
        return;
    }
    auto& below = object[name];
    set_at(below.is_object() ? below.get_object() : below.emplace_object(), path, std::move(value));
}

// The value at the end of the pointer; null if it leads nowhere. Objects are made, elements of
// lists are not.
json::value* place_at(json::object& object, std::string_view pointer) {
    constexpr int most_parts = 16;  // more than any property has that is kept
    if (std::ranges::count(pointer, '/') >= most_parts) return nullptr;
    json::value* at = nullptr;
    while (!pointer.empty()) {
        auto const name = first_part(pointer, '/');
        if (at != nullptr && at->is_array()) {
            auto&       list = at->get_array();
            std::size_t index = list.size();
            auto const  read = std::from_chars(name.data(), name.data() + name.size(), index);
            if (read.ptr != name.data() + name.size() || index >= list.size()) return nullptr;
            at = &list[index];
        } else if (at != nullptr && !at->is_object() && !at->is_null()) {
            return nullptr;
        } else {
            auto& from = at == nullptr   ? object
                         : at->is_null() ? at->emplace_object()
                                         : at->get_object();
            at = &from[name];
        }
    }
    return at;
}

}  // namespace

void ResultJson::spend(std::size_t bytes) {
    taken_ += bytes;
    if (taken_ > most_)
        throw DamagedInput("a result has texts of more than --max-result " + std::to_string(most_) +
                           " bytes");
}

json::value ResultJson::value_of(Text const& text) {
    spend(text.str().size());
    return json::string(text.str());
}

json::value ResultJson::value_of(Fingerprints const& fingerprints) {
    json::object object;
    for (auto const& [name, value] : fingerprints) {
        spend(name.str().size());
        object.emplace(name.str(), value_of(value));
    }
    return object;
}

json::value ResultJson::value_of(Place const& place) {
    json::object object;
    add_rows(object, fields::of_place, place);
    if (place.logical) {
        auto const* const name = place.logical_is_short ? "name" : "fullyQualifiedName";
        json::object      logical;
        logical.emplace(name, value_of(*place.logical));
        object.emplace("logicalLocations", json::array{std::move(logical)});
    }
    return object;
}

json::value ResultJson::value_of(Step const& step) {
    json::object object;
    add_rows(object, fields::of_step, step);
    if (step.more) add_more(object, *step.more);
    return object;
}

json::value ResultJson::value_of(ThreadFlow const& flow) {
    json::array steps;
    for (auto const& step : flow) steps.push_back(value_of(step));
    return json::object{{"locations", std::move(steps)}};
}

json::value ResultJson::value_of(CodeFlow const& flow) {
    json::array threads;
    for (auto const& thread : flow) threads.push_back(value_of(thread));
    return json::object{{"threadFlows", std::move(threads)}};
}

template <class T>
json::value ResultJson::value_of(std::vector<T> const& elements) {
    json::array list;
    for (auto const& element : elements) list.push_back(value_of(element));
    return list;
}

template <class Part>
json::value ResultJson::value_of(Part const& part) {
    json::object object;
    add_rows(object, fields::rows_of(part), part);
    return object;
}

template <class T>
void ResultJson::add(json::object& object, std::string_view path, T const& value) {
    constexpr std::size_t for_each_value = 16;
    spend(for_each_value);
    if constexpr (requires { value.empty(); })
        if (value.empty()) return;
    auto made = value_of(value);
    if (!path.empty()) return set_at(object, path, std::move(made));
    for (auto& [name, member] : made.as_object()) object[name] = std::move(member);
}

template <class T>
void ResultJson::add(json::object& object, std::string_view path, std::optional<T> const& value) {
    if (value) add(object, path, *value);
}

template <class Row, class Part>
void ResultJson::add_row(json::object& object, Row const& row, Part const& part) {
    if constexpr (requires { row.said; }) {
        using Value = std::remove_cvref_t<decltype(std::invoke(row.said, part))>;
        if constexpr (!is_written_elsewhere<Value>)
            if (row.sarif.path != nullptr) add(object, row.sarif.path, std::invoke(row.said, part));
    }
}

template <class Rows, class Part>
void ResultJson::add_rows(json::object& object, Rows const& rows, Part const& part) {
    for_each_row(rows, [&](auto const& row) { add_row(object, row, part); });
}

json::object ResultJson::object_of(Result const& result) {
    json::object object;
    add_rows(object, fields::of_check, result);
    add_rows(object, fields::info_lists, result);
    add_rows(object, fields::of_form, result);
    add_kept(object, result.more);
    return object;
}

void ResultJson::add_kept(json::object& object, More const& more) {
    for (auto const& [pointer, text] : more.texts) {
        spend(pointer.str().size());
        auto  value = value_of_text(text.text.str());
        auto* place = place_at(object, pointer.str());
        (place ? *place : object[pointer.str()]) = std::move(value);
    }
}

void ResultJson::add_more(json::object& object, KeptJson const& more) {
    auto  value = value_of_text(more.text.str());
    auto* members = value.if_object();
    if (members == nullptr) {
        object["more"] = std::move(value);
        return;
    }
    for (auto& [pointer, member] : *members) {
        auto* place = place_at(object, pointer);
        (place ? *place : object[pointer]) = std::move(member);
    }
}

json::value ResultJson::value_of_text(std::string_view text) {
    spend(text.size());
    auto value = parser_.parse(text);
    return value ? *std::move(value) : json::value(json::string(text));
}

}  // namespace bradep::sarif
