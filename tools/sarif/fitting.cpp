#include "sarif/fitting.hpp"

#include "json_input.hpp"

#include <algorithm>
#include <functional>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

namespace bradep::sarif {

namespace {

using schema::Kind;
using schema::Property;
using schema::Shape;
using schema::Type;

bool number_fits(json::value const& value, Type const& type) {
    auto const number = value.to_number<double>();
    return number >= static_cast<double>(type.least) && number <= static_cast<double>(type.most);
}

bool text_fits(std::string_view text, Type const& type) {
    bool const is_listed =
        type.words.empty() || std::ranges::find(type.words, text) != type.words.end();
    return is_listed && (type.fits == nullptr || type.fits(text));
}

/// A value without contents, or the first of those that are listed; none if the type has none.
std::optional<json::value> empty_value(Type const& type, Shape shape = Shape::one) {
    if (shape == Shape::list) return json::array();
    if (shape == Shape::map) return json::object();
    if (type.kind == Kind::text && !type.words.empty()) return json::string(type.words.front());
    if (type.kind == Kind::text && text_fits("", type)) return json::string();
    if (type.kind != Kind::object) return std::nullopt;
    json::object object;
    for (auto const& property : type.properties) {
        if ((property.demands & schema::required) == 0) continue;
        auto value = property.demands & schema::not_empty
                         ? std::nullopt
                         : empty_value(*property.type, property.shape);
        if (!value) return std::nullopt;
        object.emplace(property.name, *std::move(value));
    }
    if (type.words.empty()) return object;
    auto value = empty_value(*type.property(type.words.front())->type);
    if (!value) return std::nullopt;
    object.emplace(type.words.front(), *std::move(value));
    return object;
}

class Fitting {
public:
    Fitting(std::string const& pointer, LeftOut& left_out)
        : pointer_(pointer), left_out_(left_out) {}

    bool fit(json::value& value, Type const& type) {
        switch (type.kind) {
            case Kind::boolean: return value.is_bool();
            case Kind::integer:
                return (value.is_int64() || value.is_uint64()) && number_fits(value, type);
            case Kind::number: return value.is_number() && number_fits(value, type);
            case Kind::text: return value.is_string() && text_fits(value.get_string(), type);
            case Kind::object: return value.is_object() && fit_object(value.get_object(), type);
        }
        return false;
    }

private:
    bool fit(json::value& value, Property const& property) {
        switch (property.shape) {
            case Shape::one: return fit(value, *property.type);
            case Shape::list: return value.is_array() && fit_list(value.get_array(), property);
            case Shape::map: return value.is_object() && fit_map(value.get_object(), property);
        }
        return false;
    }

    /// Calls `fits` with a longer pointer, and notes a value that does not fit.
    template <class Fits>
    bool below(std::string_view name, Fits const& fits) {
        auto const length = pointer_.size();
        (pointer_ += '/') += json_input::escaped_token(name);
        bool const does_fit = fits();
        if (!does_fit) left_out_.add(pointer_);
        pointer_.resize(length);
        return does_fit;
    }

    /// Keeps the members for which `fits(name, value)` holds, in their order.
    template <class Fits>
    void keep_members(json::object& object, Fits const& fits) {
        std::vector<std::string> misfits;
        for (auto& [name, value] : object) {
            std::string_view const key = name;
            if (!below(key, [&, &member = value] { return fits(key, member); }))
                misfits.emplace_back(key);
        }
        if (misfits.empty()) return;
        std::ranges::sort(misfits);
        json::object kept(object.storage());
        for (auto& [name, value] : object)
            if (!std::ranges::binary_search(misfits, std::string(name)))
                kept.emplace(name, std::move(value));
        object = std::move(kept);
    }

    bool fit_object(json::object& object, Type const& type) {
        bool const was_empty = object.empty();
        keep_members(object, [&](std::string_view name, json::value& value) {
            auto const* const property = type.property(name);
            return property ? fit(value, *property) : type.is_open;
        });
        for (auto const& property : type.properties)
            if (property.demands & schema::required)
                if (!object.contains(property.name) && !add_empty(object, property)) return false;
        if (type.words.empty()) return was_empty || !object.empty();
        bool const has_one = std::ranges::any_of(
            type.words, [&](std::string_view name) { return object.contains(name); });
        return has_one || add_empty(object, *type.property(type.words.front()));
    }

    static bool add_empty(json::object& object, Property const& property) {
        if (property.demands & schema::not_empty) return false;
        auto value = empty_value(*property.type, property.shape);
        if (value) object.emplace(property.name, *std::move(value));
        return value.has_value();
    }

    bool fit_list(json::array& list, Property const& property) {
        bool const  was_empty = list.empty();
        json::array kept(list.storage());
        bool        is_whole = true;
        for (std::size_t i = 0; i < list.size(); ++i) {
            bool const fits =
                below(std::to_string(i), [&] { return fit(list[i], *property.type); });
            if (fits && !is_whole) kept.push_back(std::move(list[i]));
            if (fits || !is_whole) continue;
            is_whole = false;
            for (std::size_t j = 0; j < i; ++j) kept.push_back(std::move(list[j]));
        }
        if (!is_whole) list = std::move(kept);
        if (property.demands & schema::unique) leave_out_repeated(list);
        return !list.empty() || (was_empty && (property.demands & schema::not_empty) == 0);
    }

    void leave_out_repeated(json::array& list) {
        if (list.size() < 2) return;
        std::unordered_multimap<std::size_t, std::size_t> seen;  // by hash
        json::array                                       kept(list.storage());
        for (std::size_t i = 0; i < list.size(); ++i) {
            auto const hash = std::hash<json::value>()(list[i]);
            auto const [first, last] = seen.equal_range(hash);
            bool const is_new = std::none_of(
                first, last, [&](auto const& one) { return list[one.second] == list[i]; });
            if (below(std::to_string(i), [&] { return is_new; })) seen.emplace(hash, i);
        }
        if (seen.size() == list.size()) return;
        std::vector<std::size_t> order;
        for (auto const& [hash, i] : seen) order.push_back(i);
        std::ranges::sort(order);
        for (auto const i : order) kept.push_back(std::move(list[i]));
        list = std::move(kept);
    }

    bool fit_map(json::object& object, Property const& property) {
        keep_members(object, [&](std::string_view, json::value& value) {
            return fit(value, *property.type);
        });
        return true;
    }

    std::string pointer_;
    LeftOut&    left_out_;
};

}  // namespace

bool make_fit(json::value& value, schema::Type const& type, std::string const& pointer,
              LeftOut& left_out) {
    return Fitting(pointer, left_out).fit(value, type);
}

}  // namespace bradep::sarif
