#include "sarif/kept_text.hpp"

#include <sml/inspect/text/json_text.hpp>

#include <algorithm>
#include <utility>

namespace bradep::sarif {

using namespace json_input;
using schema::Shape;

/// Names of members that are left out, and an object whose members are left out as well.
struct KeptText::Names {
    std::initializer_list<std::string_view> names = {};
    json::value const*                      object = nullptr;

    bool has(std::string_view name) const {
        return std::ranges::count(names, name) > 0 || found(object, name) != nullptr;
    }
};

namespace {

/// The lists that references below these properties lead to.
constexpr std::pair<std::string_view, std::string_view> lists_below[] = {
    {"taxa", "taxa"},
    {"relationships", "taxa"},
    {"associatedRule", "rules"},
    {"ruleConfigurationOverrides", "rules"},
    {"notificationConfigurationOverrides", "notifications"},
    {"toolConfigurationNotifications", "notifications"},
    {"toolExecutionNotifications", "notifications"}};

// Analysers report by these, among others, each file that they have read.
bool is_of_no_level(json::value const& notification) {
    return found_text(&notification, "level") == "none";
}

// Whether the value is a list that has lost all its elements.
bool is_left_out(json::value const& value, schema::Property const& property) {
    auto const* const elements = value.if_array();
    return property.type == &schema::notification && elements && !elements->empty() &&
           std::ranges::all_of(*elements, is_of_no_level);
}

}  // namespace

void KeptText::append(std::string& text, schema::Property const& property,
                      json::value const& value) {
    text_ = &text;
    resolved_ = 0;
    add(value, property);
}

void KeptText::append(std::string& text, schema::Type const& type, json::value const& value) {
    text_ = &text;
    resolved_ = 0;
    add(value, &type);
}

void KeptText::add(json::value const& value, schema::Property const& property) {
    auto const below = std::ranges::find(lists_below, property.name,
                                         &std::pair<std::string_view, std::string_view>::first);
    auto const before = descriptors_;
    if (below != std::end(lists_below)) descriptors_ = below->second;
    bool const is_list = value.is_array();
    if (is_list == (property.shape == Shape::list) && property.shape != Shape::map) {
        add(value, property.type);
    } else if (value.is_object() && property.shape == Shape::map) {
        *text_ += '{';
        for (auto const& [name, one] : value.get_object()) {
            if (one.is_null()) continue;
            add_name(name);
            add(one, property.type);
        }
        *text_ += '}';
    } else {
        add(value, nullptr);
    }
    descriptors_ = before;
}

// Without a type, the value is kept as it is.
void KeptText::add(json::value const& value, schema::Type const* type) {
    switch (value.kind()) {
        case json::kind::object: return add_object(value, type);
        case json::kind::array:
            *text_ += '[';
            for (auto const& one : value.get_array()) {
                if (type == &schema::notification && is_of_no_level(one)) continue;
                separate();
                add(one, one.is_array() ? nullptr : type);
            }
            *text_ += ']';
            return;
        default: return append_json_scalar(*text_, value);
    }
}

void KeptText::separate() {
    if (text_->back() != '[' && text_->back() != '{') *text_ += ',';
}

void KeptText::add_name(std::string_view name) {
    separate();
    sml::inspect::append_json_string(*text_, name);
    *text_ += ':';
}

void KeptText::add_object(json::value const& object, schema::Type const* type) {
    *text_ += '{';
    if (type == &schema::artifact_location)
        add_artifact_location(object);
    else if (type == &schema::message)
        add_message(object);
    else if (type == &schema::notification)
        add_notification(object);
    else if (type == &schema::reporting_descriptor_reference)
        add_reference(object);
    else if (type == &schema::tool_component_reference)
        add_component_reference(object);
    else if (type == &schema::tool_component)
        add_component(object);
    else if (type && type->property("index"))
        add_shared(object, *type);
    else
        add_members(object, type, {});
    *text_ += '}';
}

void KeptText::add_members(json::value const& object, schema::Type const* type,
                           Names const& except) {
    bool const is_typed = type && !type->is_open;
    for (auto const& [name, value] : object.get_object()) {
        if (except.has(name) || (is_typed && value.is_null())) continue;
        auto const* const property = is_typed ? type->property(name) : nullptr;
        if (property && is_left_out(value, *property)) continue;
        add_name(name);
        if (property)
            add(value, *property);
        else
            add(value, nullptr);
    }
}

void KeptText::add_artifact_location(json::value const& location) {
    auto const* const artifact = lists_.artifact(found(&location, "index"));
    if (artifact && !found(&location, "uri")) {
        auto const* const its_location = found(artifact, "location");
        add_resolved("uri", found(its_location, "uri"));
        if (!found(&location, "uriBaseId"))
            add_resolved("uriBaseId", found(its_location, "uriBaseId"));
    }
    add_members(location, &schema::artifact_location, {{"index"}});
}

void KeptText::add_shared(json::value const& object, schema::Type const& type) {
    add_members(object, &type, {{"index", "parentIndex"}});
    auto const* const shared = lists_.shared(type, object);
    if (!shared || !shared->is_object()) return;
    auto const before = text_->size();
    add_members(*shared, &type, {{"index", "parentIndex"}, &object});
    spend(text_->size() - before);
}

void KeptText::add_message(json::value const& message) {
    auto const        id = found(&message, "text") ? std::nullopt : found_text(&message, "id");
    auto const* const string = id ? lists_.message_string(*id, rule_) : nullptr;
    if (!found_text(string, "text")) return add_members(message, &schema::message, {});
    add_resolved("text", found(string, "text"));
    if (!found(&message, "markdown")) add_resolved("markdown", found(string, "markdown"));
    add_members(message, &schema::message, {{"id"}});
}

void KeptText::add_notification(json::value const& notification) {
    auto const        before = rule_;
    auto const* const reference = found(&notification, "descriptor");
    rule_ = reference ? lists_.referred(*reference, {"notifications"}) : Rule();
    add_members(notification, &schema::notification, {});
    rule_ = before;
}

void KeptText::add_reference(json::value const& reference) {
    auto referred = lists_.referred(reference, {descriptors_});
    if (referred.descriptor && descriptors_ != "rules") lists_.use(referred.descriptor);
    if (!referred.descriptor) referred = lists_.referred(reference, {"rules"});
    if (auto const* const id = found(&reference, "id")) {
        add_name("id");
        add(*id, nullptr);
    } else {
        add_resolved("id", found(referred.descriptor, "id"));
    }
    add_members(reference, &schema::reporting_descriptor_reference, {{"id", "index"}});
}

void KeptText::add_component_reference(json::value const& reference) {
    auto const* const name = found(lists_.component(&reference), "name");
    bool const        is_known = name && name->is_string();
    if (is_known) add_resolved("name", name);
    if (is_known)
        add_members(reference, &schema::tool_component_reference, {{"name", "index"}});
    else
        add_members(reference, &schema::tool_component_reference, {{"index"}});
}

void KeptText::add_component(json::value const& component) {
    add_members(component, &schema::tool_component, {{"rules", "taxa", "notifications"}});
    for (auto const* const list : {"taxa", "notifications"}) add_used(component, list);
}

void KeptText::add_used(json::value const& component, std::string_view list) {
    auto const* const descriptors = found_list(&component, list);
    if (descriptors == nullptr) return;
    bool is_first = true;
    for (auto const& one : *descriptors) {
        if (!lists_.is_used(one)) continue;
        if (is_first) {
            add_name(list);
            *text_ += '[';
        }
        is_first = false;
        separate();
        add(one, &schema::reporting_descriptor);
    }
    if (!is_first) *text_ += ']';
}

// A few bytes of a log can lead to any number.
void KeptText::add_resolved(std::string_view name, json::value const* value) {
    if (value == nullptr || !value->is_string()) return;
    spend(value->get_string().size());
    add_name(name);
    add(*value, nullptr);
}

void KeptText::spend(std::uint64_t bytes) {
    resolved_ += bytes;
    if (resolved_ > most_resolved_) throw TooMuchResolved();
}

}  // namespace bradep::sarif
