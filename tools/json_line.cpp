#include "json_line.hpp"

#include "printable.hpp"

namespace bradep {
namespace {

using sarif::Place;
using sarif::Result;

std::string json_of(std::string const& text) { return json_string(text); }
std::string json_of(std::int32_t number) { return std::to_string(number); }

class Json_Object {
public:
    template <typename T>
    void add(char const* name, std::optional<T> const& value) {
        if (value) add_raw(name, json_of(*value));
    }
    void add(char const* name, std::string const& value) { add_raw(name, json_of(value)); }
    void add(char const* name, std::int32_t value) { add_raw(name, json_of(value)); }
    void add_raw(std::string const& name, std::string const& json) {
        text_ += (text_.empty() ? "" : ",") + json_string(name) + ":" + json;
    }
    bool        empty() const { return text_.empty(); }
    std::string str() const { return "{" + text_ + "}"; }

private:
    std::string text_;
};

template <typename List, typename Form>
std::string json_list(List const& list, Form form) {
    std::string text;
    for (auto const& element : list) text += (text.empty() ? "" : ",") + form(element);
    return "[" + text + "]";
}

void add_place(Json_Object& object, Place const& place) {
    object.add("uri", place.uri);
    object.add("base", place.base);
    object.add("line", place.line);
    object.add("column", place.column);
    object.add("endLine", place.end_line);
    object.add("endColumn", place.end_column);
}

std::string json_place(Place const& place) {
    Json_Object object;
    add_place(object, place);
    return object.str();
}

std::string json_related(sarif::Related_Place const& related) {
    Json_Object object;
    object.add("id", related.id);
    add_place(object, related.place);
    object.add("message", related.message);
    return object.str();
}

std::string json_step(sarif::Step const& step) {
    auto const  place = step.place.value_or(Place{});
    Json_Object object;
    object.add("uri", place.uri);
    object.add("line", place.line);
    object.add("column", place.column);
    object.add("message", step.message);
    return object.str();
}

std::string json_flow(sarif::Code_Flow const& flow) {
    return json_list(flow, [](auto const& thread) { return json_list(thread, json_step); });
}

// A log may use one name in both families; the complete fingerprint is the stronger one.
std::string json_fingerprints(Result const& result) {
    auto all = result.fingerprints;
    all.insert(result.partial_fingerprints.begin(), result.partial_fingerprints.end());
    Json_Object object;
    for (auto const& [name, value] : all) object.add_raw(name, json_string(value));
    return object.empty() ? "" : object.str();
}

}  // namespace

void write_json_line(std::ostream& out, std::string const& uri, std::int32_t ordinal,
                     Result const& result) {
    Json_Object object;
    object.add_raw("key", "[" + json_of(uri) + "," + json_of(ordinal) + "]");
    object.add("run", result.run);
    object.add("tool", result.tool);
    object.add("rule", result.rule);
    object.add("level", result.level);
    object.add("message", result.message);
    if (!result.locations.empty())
        object.add_raw("locations", json_list(result.locations, json_place));
    if (!result.related.empty()) object.add_raw("related", json_list(result.related, json_related));
    if (!result.flows.empty()) object.add_raw("flows", json_list(result.flows, json_flow));
    if (auto const fingerprints = json_fingerprints(result); !fingerprints.empty())
        object.add_raw("fingerprints", fingerprints);
    out << object.str() << '\n';
}

}  // namespace bradep
