#include "sarif/kept_text.hpp"

#include <sml/inspect/text/json_text.hpp>
#include "json_input.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <initializer_list>

namespace bradep::sarif {

namespace {

json::value const* member(json::value const* object, std::string_view name) {
    auto const* const members = object ? object->if_object() : nullptr;
    auto const* const value = members ? members->if_contains(name) : nullptr;
    return value && !value->is_null() ? value : nullptr;
}

json::value const* element(json::array const* list, json::value const* index) {
    if (list == nullptr || index == nullptr) return nullptr;
    auto const at = json_input::integer(*index);
    bool const is_inside = at && *at >= 0 && static_cast<std::uint64_t>(*at) < list->size();
    return is_inside ? &(*list)[static_cast<std::size_t>(*at)] : nullptr;
}

json::array const* list(json::value const* object, std::string_view name) {
    auto const* const value = member(object, name);
    return value ? value->if_array() : nullptr;
}

bool is_artifact_location(std::string_view name) {
    return name == "artifactLocation" || name == "analysisTarget";
}
bool is_reference(std::string_view name) { return name == "taxa" || name == "target"; }

class KeptText {
public:
    KeptText(std::string& text, RunLists const& lists, std::uint64_t most_resolved)
        : text_(text), lists_(lists), most_resolved_(most_resolved) {}

    void add(std::string_view name, json::value const& value) {
        switch (value.kind()) {
            case json::kind::object: return add_object(name, value);
            case json::kind::array: return add_array(name, value.get_array());
            case json::kind::string:
                return sml::inspect::append_json_string(text_, value.get_string());
            case json::kind::double_:
            case json::kind::int64: return add_number(value);
            case json::kind::uint64: return add_integer(value.get_uint64());
            case json::kind::bool_: text_ += value.get_bool() ? "true" : "false"; return;
            case json::kind::null: text_ += "null"; return;
        }
    }

private:
    template <class Integer>
    void add_integer(Integer number) {
        text_ += std::to_string(number);
    }

    void add_number(json::value const& value) {
        if (auto const whole = json_input::integer(value)) return add_integer(*whole);
        double const number = value.get_double();
        if (std::isinf(number)) {  // JSON has no name for it: it was spelled in digits
            text_ += number < 0 ? "-1e999" : "1e999";
            return;
        }
        char       digits[64];
        auto const written = std::to_chars(digits, digits + sizeof digits, number);
        text_.append(digits, written.ptr);
    }

    void add_array(std::string_view name, json::array const& elements) {
        text_ += '[';
        for (auto const& one : elements) {
            separate();
            add(name, one);
        }
        text_ += ']';
    }

    void separate() {
        if (text_.back() != '[' && text_.back() != '{') text_ += ',';
    }

    void add_member(std::string_view name, json::value const& value) {
        separate();
        sml::inspect::append_json_string(text_, name);
        text_ += ':';
        add(name, value);
    }

    void add_object(std::string_view name, json::value const& object) {
        bool const was_in_bag = is_in_bag_;
        is_in_bag_ = was_in_bag || name == "properties";
        text_ += '{';
        if (!is_in_bag_ && is_artifact_location(name))
            add_artifact_location(object);
        else if (!is_in_bag_ && is_reference(name))
            add_reference(object);
        else
            add_members(object);
        text_ += '}';
        is_in_bag_ = was_in_bag;
    }

    void add_members(json::value const&                      object,
                     std::initializer_list<std::string_view> except = {}) {
        for (auto const& [name, value] : object.get_object())
            if (std::ranges::count(except, std::string_view(name)) == 0 &&
                (is_in_bag_ || !value.is_null()))
                add_member(name, value);
    }

    void add_artifact_location(json::value const& object) {
        if (auto const* const artifact = element(lists_.artifacts, member(&object, "index"));
            artifact && !member(&object, "uri")) {
            auto const* const location = member(artifact, "location");
            add_resolved("uri", member(location, "uri"));
            if (!member(&object, "uriBaseId"))
                add_resolved("uriBaseId", member(location, "uriBaseId"));
        }
        add_members(object, {"index"});
    }

    void add_reference(json::value const& reference) {
        auto const* const component_reference = member(&reference, "toolComponent");
        auto const* const component = component_of(component_reference);
        auto const* const index = member(&reference, "index");
        auto const* const id = member(&reference, "id");
        auto const* const taxon = element(list(component, "taxa"), index);
        auto const* const rule = taxon ? taxon : element(list(component, "rules"), index);
        if (id)
            add_member("id", *id);
        else
            add_resolved("id", member(rule, "id"));
        if (component_reference) add_component(*component_reference, component);
        add_members(reference, {"id", "index", "toolComponent"});
    }

    void add_component(json::value const& reference, json::value const* component) {
        if (!reference.is_object()) return;
        separate();
        text_ += "\"toolComponent\":{";
        if (auto const* const name = member(&reference, "name"))
            add_member("name", *name);
        else
            add_resolved("name", member(component, "name"));
        add_members(reference, {"name", "index"});
        text_ += '}';
    }

    /// The component that the index of a reference leads to, in the taxonomies of the run or in the
    /// extensions of the tool: in the list where it has the name that the reference gives, else in
    /// the first that is long enough. Null if it leads nowhere.
    json::value const* component_of(json::value const* reference) const {
        if (reference == nullptr) return lists_.driver;
        auto const* const name = member(reference, "name");
        auto const* const index = member(reference, "index");
        auto const* const taxonomy = element(lists_.taxonomies, index);
        auto const* const extension = element(lists_.extensions, index);
        auto const        is_meant = [&](json::value const* component) {
            auto const* const given = member(component, "name");
            return name && given && *given == *name;
        };
        if (taxonomy && !is_meant(extension)) return taxonomy;
        return extension;
    }

    // Adds what an index leads to. A few bytes of a log can lead to any number.
    void add_resolved(std::string_view name, json::value const* value) {
        if (value == nullptr || !value->is_string()) return;
        add_member(name, *value);
        resolved_ += value->get_string().size();
        if (resolved_ > most_resolved_) throw TooMuchResolved();
    }

    std::string&    text_;
    RunLists const& lists_;
    std::uint64_t   most_resolved_;
    std::uint64_t   resolved_ = 0;
    bool            is_in_bag_ = false;
};

}  // namespace

void append_kept_text(std::string& text, std::string_view name, json::value const& value,
                      RunLists const& lists, std::uint64_t most_resolved) {
    KeptText(text, lists, most_resolved).add(name, value);
}

}  // namespace bradep::sarif
