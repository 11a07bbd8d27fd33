#include "sarif_run.hpp"

#include <utility>

#include "message_format.hpp"

namespace bradep::sarif {
namespace {

using namespace json_input;  // member, list, text, number, index: the whole file is written in them

// The element at `at`, or null where the list is too short or not there.
json::value const* element(json::array const* list, std::size_t at) {
    return list && at < list->size() ? &(*list)[at] : nullptr;
}

[[noreturn]] void points_nowhere(json::value const& holder, std::string_view index_name,
                                 char const* list_name) {
    auto const* value = member(holder, index_name);
    throw Misfit{value, "index " + json::serialize(*value) + " points outside " + list_name};
}

json::value const* find_guid(json::array const* list, std::string const& guid) {
    if (!list) return nullptr;
    for (auto const& candidate : *list)
        if (text(candidate, "guid") == guid) return &candidate;
    return nullptr;
}

std::optional<std::string> first_given(std::optional<std::string> first,
                                       std::optional<std::string> second) {
    return first ? std::move(first) : std::move(second);
}

std::vector<std::string> arguments_of(json::value const& message) {
    std::vector<std::string> arguments;
    if (auto const* given = list(message, "arguments"))
        for (auto const& argument : *given) arguments.push_back(text_of(argument));
    return arguments;
}

std::optional<std::string> entry_text(json::value const* holder, std::string_view table,
                                      std::string const& id) {
    auto const* strings = holder ? member(*holder, table) : nullptr;
    auto const* entry = strings ? member(*strings, id) : nullptr;
    if (!entry) return std::nullopt;
    return first_given(text(*entry, "text"), text(*entry, "markdown"));
}

Fingerprints fingerprints_of(json::value const& result, std::string_view name) {
    Fingerprints fingerprints;
    auto const*  given = member(result, name);
    if (!given) return fingerprints;
    if (!given->is_object()) throw Misfit{given, "expected an object"};
    for (auto const& entry : given->get_object())
        if (!entry.value().is_null())
            fingerprints.insert_or_assign(std::string(entry.key()), text_of(entry.value()));
    return fingerprints;
}

std::vector<Suppression> suppressions_of(json::value const& result) {
    std::vector<Suppression> suppressions;
    if (auto const* given = list(result, "suppressions"))
        for (auto const& one : *given)
            suppressions.push_back({text(one, "kind"), text(one, "status")});
    return suppressions;
}

std::string level_of(json::value const& result, std::string const& kind,
                     json::value const* descriptor) {
    if (auto own = text(result, "level")) return *own;
    if (kind != "fail") return "none";
    auto const* defaults = descriptor ? member(*descriptor, "defaultConfiguration") : nullptr;
    return (defaults ? text(*defaults, "level") : std::nullopt).value_or("warning");
}

std::optional<std::string> rule_id(json::value const& result, json::value const* descriptor) {
    auto const* reference = member(result, "rule");
    auto        id =
        first_given(text(result, "ruleId"), reference ? text(*reference, "id") : std::nullopt);
    return first_given(std::move(id), descriptor ? text(*descriptor, "id") : std::nullopt);
}

void read_region(json::value const& region, Place& place) {
    place.line = number(region, "startLine");
    place.column = number(region, "startColumn");
    place.end_line = number(region, "endLine");
    place.end_column = number(region, "endColumn");
}

}  // namespace

Run::Run(json::value const& run, std::int32_t number)
    : number_(number),
      results_(list(run, "results")),
      artifacts_(list(run, "artifacts")),
      logical_locations_(list(run, "logicalLocations")),
      thread_flow_locations_(list(run, "threadFlowLocations")) {
    auto const* tool = member(run, "tool");
    driver_ = tool ? member(*tool, "driver") : nullptr;
    if (driver_) {
        tool_ = text(*driver_, "name");
        tool_version_ = first_given(text(*driver_, "version"), text(*driver_, "semanticVersion"));
        index_rules(*driver_);
    }
    auto const* extensions = tool ? list(*tool, "extensions") : nullptr;
    if (!extensions) return;
    for (auto const& extension : *extensions) {
        extensions_.push_back(&extension);
        index_rules(extension);
    }
}

void Run::index_rules(json::value const& component) {
    auto const* rules = list(component, "rules");
    if (!rules) return;
    auto& by_id = rules_by_id_[&component];
    for (auto const& rule : *rules)
        if (auto id = text(rule, "id")) by_id.emplace(std::move(*id), &rule);
}

json::value const* Run::component_of(json::value const* reference) const {
    if (!reference) return driver_;
    if (auto const at = index(*reference, "index")) {
        if (*at >= extensions_.size()) points_nowhere(*reference, "index", "the tool's extensions");
        return extensions_[*at];
    }
    for (char const* property : {"guid", "name"}) {
        auto const wanted = text(*reference, property);
        if (!wanted) continue;
        for (auto const* extension : extensions_)
            if (text(*extension, property) == wanted) return extension;
    }
    return driver_;
}

// A result may refine a rule's id by further parts behind a '/': "R1/a" is of rule "R1".
json::value const* Run::descriptor_by_id(std::string const& id,
                                         json::value const* component) const {
    auto const rules = rules_by_id_.find(component);
    if (rules == rules_by_id_.end()) return nullptr;
    for (auto prefix = id;;) {
        auto const rule = rules->second.find(prefix);
        if (rule != rules->second.end()) return rule->second;
        auto const slash = prefix.rfind('/');
        if (slash == std::string::npos) return nullptr;
        prefix.resize(slash);
    }
}

Rule Run::rule_of(json::value const& result) const {
    auto const* reference = member(result, "rule");
    auto const* component_reference = reference ? member(*reference, "toolComponent") : nullptr;
    auto const* component = component_of(component_reference);
    auto const* rules = component ? list(*component, "rules") : nullptr;

    auto const* index_holder = reference && index(*reference, "index") ? reference : &result;
    auto const* index_name = index_holder == reference ? "index" : "ruleIndex";
    auto const  at = index(*index_holder, index_name);
    if (at)
        if (auto const* descriptor = element(rules, *at)) return {descriptor, component};
    auto const guid = reference ? text(*reference, "guid") : std::nullopt;
    if (guid)
        if (auto const* descriptor = find_guid(rules, *guid)) return {descriptor, component};
    auto const id = rule_id(result, nullptr);
    if (at && !id) points_nowhere(*index_holder, index_name, "the rules");
    if (!id) return {nullptr, component};
    if (auto const* descriptor = descriptor_by_id(*id, component)) return {descriptor, component};
    if (!component_reference)
        for (auto const* extension : extensions_)
            if (auto const* descriptor = descriptor_by_id(*id, extension))
                return {descriptor, extension};
    return {nullptr, component};
}

std::optional<std::string> Run::message_string(std::string const& id, Rule const& rule) const {
    if (auto own = entry_text(rule.descriptor, "messageStrings", id)) return own;
    if (auto shared = entry_text(rule.component, "globalMessageStrings", id)) return shared;
    return entry_text(driver_, "globalMessageStrings", id);
}

std::optional<std::string> Run::message_of(json::value const& holder, Rule const& rule) const {
    auto const* message = member(holder, "message");
    if (!message) return std::nullopt;
    auto const arguments = arguments_of(*message);
    auto       own = text(*message, "text");
    // Many tools write braces as they are where there is nothing to put into them.
    if (own) return arguments.empty() ? *own : formatted_message(*own, arguments);
    auto const id = text(*message, "id");
    if (!id) return text(*message, "markdown");
    if (auto const pattern = message_string(*id, rule))
        return formatted_message(*pattern, arguments);
    if (auto markdown = text(*message, "markdown")) return markdown;
    throw Misfit{member(*message, "id"), "no message string has the id \"" + *id + "\""};
}

void Run::resolve_artifact(json::value const& artifact_location, Place& place) const {
    place.uri = text(artifact_location, "uri");
    place.base = text(artifact_location, "uriBaseId");
    auto const at = index(artifact_location, "index");
    if (place.uri || !at) return;
    auto const* artifact = element(artifacts_, *at);
    if (!artifact) points_nowhere(artifact_location, "index", "the run's artifacts");
    auto const* location = member(*artifact, "location");
    if (!location) return;
    place.uri = text(*location, "uri");
    if (!place.base) place.base = text(*location, "uriBaseId");
}

std::optional<std::string> Run::logical_name(json::value const& location) const {
    auto const* logical = element(list(location, "logicalLocations"), 0);
    if (!logical) return std::nullopt;
    if (auto full = text(*logical, "fullyQualifiedName")) return full;
    auto const  name = text(*logical, "name");
    auto const  at = index(*logical, "index");
    auto const* shared = at ? element(logical_locations_, *at) : nullptr;
    if (at && !shared && !name) points_nowhere(*logical, "index", "the run's logicalLocations");
    if (!shared) return name;
    if (auto full = text(*shared, "fullyQualifiedName")) return full;
    return first_given(name, text(*shared, "name"));
}

Place Run::place_of(json::value const& location) const {
    Place place;
    place.logical = logical_name(location);
    auto const* physical = member(location, "physicalLocation");
    if (!physical) return place;
    if (auto const* artifact_location = member(*physical, "artifactLocation"))
        resolve_artifact(*artifact_location, place);
    if (auto const* region = member(*physical, "region")) read_region(*region, place);
    return place;
}

Step Run::step_of(json::value const& thread_flow_location, Rule const& rule) const {
    auto const* location = member(thread_flow_location, "location");
    auto const  at = index(thread_flow_location, "index");
    if (!location && at) {
        auto const* shared = element(thread_flow_locations_, *at);
        if (!shared) points_nowhere(thread_flow_location, "index", "the run's threadFlowLocations");
        location = member(*shared, "location");
    }
    if (!location) return {};
    return {place_of(*location), message_of(*location, rule)};
}

Code_Flow Run::flow_of(json::value const& code_flow, Rule const& rule) const {
    Code_Flow   flow;
    auto const* thread_flows = list(code_flow, "threadFlows");
    if (!thread_flows) return flow;
    for (auto const& thread_flow : *thread_flows) {
        auto& steps = flow.emplace_back();
        if (auto const* locations = list(thread_flow, "locations"))
            for (auto const& location : *locations) steps.push_back(step_of(location, rule));
    }
    return flow;
}

Result Run::resolve(json::value const& given) const {
    auto const rule = rule_of(given);
    Result     result;
    result.run = number_;
    result.tool = tool_;
    result.tool_version = tool_version_;
    result.rule = rule_id(given, rule.descriptor);
    result.kind = text(given, "kind").value_or("fail");
    result.level = level_of(given, result.kind, rule.descriptor);
    result.message = message_of(given, rule);
    result.fingerprints = fingerprints_of(given, "fingerprints");
    result.partial_fingerprints = fingerprints_of(given, "partialFingerprints");
    result.suppressions = suppressions_of(given);
    result.baseline_state = text(given, "baselineState");
    if (auto const* locations = list(given, "locations"))
        for (auto const& location : *locations) result.locations.push_back(place_of(location));
    if (auto const* related = list(given, "relatedLocations"))
        for (auto const& location : *related)
            result.related.push_back(
                {place_of(location), number(location, "id"), message_of(location, rule)});
    if (auto const* flows = list(given, "codeFlows"))
        for (auto const& flow : *flows) result.flows.push_back(flow_of(flow, rule));
    return result;
}

}  // namespace bradep::sarif
