#include "sarif/run.hpp"

#include <sml/inspect/text/json_text.hpp>
#include "errors.hpp"
#include "sarif/kept_properties.hpp"
#include "sarif/message_format.hpp"

#include <algorithm>
#include <limits>
#include <set>
#include <utility>

namespace bradep::sarif {

namespace {

using namespace json_input;  // member, list, text, number, index

[[noreturn]] void points_nowhere(json::value const& holder, std::string_view index_name,
                                 char const* list_name) {
    auto const* value = member(holder, index_name);
    throw Misfit{value, "index " + json::serialize(*value) + " points outside " + list_name};
}

std::optional<std::string_view> first_given(std::optional<std::string_view> first,
                                            std::optional<std::string_view> second) {
    return first ? first : second;
}

std::vector<std::string_view> arguments_of(json::value const& message) {
    std::vector<std::string_view> arguments;
    if (auto const* given = list(message, "arguments"))
        for (auto const& argument : *given) arguments.push_back(view_of(argument));
    return arguments;
}

std::optional<std::string_view> entry_text(json::value const* holder, std::string_view table,
                                           std::string_view id) {
    auto const* strings = holder ? member(*holder, table) : nullptr;
    auto const* entry = strings ? member(*strings, id) : nullptr;
    if (!entry) return std::nullopt;
    return first_given(view(*entry, "text"), view(*entry, "markdown"));
}

std::string_view level_of(json::value const& result, std::string_view kind,
                          json::value const* descriptor) {
    if (auto const own = view(result, "level")) return *own;
    if (kind != "fail") return "none";
    auto const* defaults = descriptor ? member(*descriptor, "defaultConfiguration") : nullptr;
    return (defaults ? view(*defaults, "level") : std::nullopt).value_or("warning");
}

std::optional<std::string_view> rule_id(json::value const& result, json::value const* descriptor) {
    auto const* reference = member(result, "rule");
    auto const  id =
        first_given(view(result, "ruleId"), reference ? view(*reference, "id") : std::nullopt);
    return first_given(id, descriptor ? view(*descriptor, "id") : std::nullopt);
}

std::string pointer_of(std::string const& pointer, kept::Member const& member) {
    return member.how == kept::How::markdown ? pointer + "/markdown" : pointer;
}

void read_region(json::value const& region, Place& place) {
    place.line = number(region, "startLine");
    place.column = number(region, "startColumn");
    place.end_line = number(region, "endLine");
    place.end_column = number(region, "endColumn");
}

}  // namespace

void Expansion::spend(std::uint64_t bytes, json::value const& where) {
    if (bytes > left_)
        throw Misfit{&where, "the texts of the results come to more than --max-expansion " +
                                 std::to_string(limits_.expansion) + " bytes"};
    left_ -= bytes;
}

Text Expansion::text_of(std::string_view text, json::value const& where) {
    spend(text.size(), where);
    try {
        return comparisons_.interned(text);
    } catch (DamagedInput const& refusal) {
        throw Misfit{&where, refusal.what()};
    }
}

std::optional<Text> Expansion::text(std::optional<std::string_view> given,
                                    json::value const&              where) {
    if (!given) return std::nullopt;
    return text_of(*given, where);
}

Text Expansion::message(std::string_view pattern, std::vector<std::string_view> const& arguments,
                        json::value const& where) {
    std::uint64_t read = pattern.size() + arguments.size();
    for (auto const argument : arguments) read += argument.size();
    spend(read, where);
    auto const formatted = formatted_message(pattern, arguments, limits_.message);
    if (!formatted)
        throw Misfit{&where, "the message comes to more than --max-message " +
                                 std::to_string(limits_.message) + " bytes"};
    return text_of(*formatted, where);
}

Run::Component::Component(json::value const* given)
    : value(given), rules(given ? list(*given, "rules") : nullptr), rules_by_guid(rules, "guid") {}

Run::Run(json::value const& run, std::int32_t number, Expansion& expansion)
    : run_(run),
      expansion_(expansion),
      number_(number),
      artifacts_(list(run, "artifacts")),
      logical_locations_(list(run, "logicalLocations")),
      thread_flow_locations_(list(run, "threadFlowLocations")),
      lists_(run) {
    auto const* tool = member(run, "tool");
    auto const* given_driver = tool ? member(*tool, "driver") : nullptr;
    if (given_driver) {
        tool_ = expansion_.text(view(*given_driver, "name"), *given_driver);
        tool_version_ = expansion_.text(
            first_given(view(*given_driver, "version"), view(*given_driver, "semanticVersion")),
            *given_driver);
    }
    add_component(given_driver);
    auto const* extensions = tool ? list(*tool, "extensions") : nullptr;
    if (!extensions) return;
    for (auto const& extension : *extensions) add_component(&extension);
    extensions_by_guid_ = {extensions, "guid"};
    extensions_by_name_ = {extensions, "name"};
}

void Run::add_component(json::value const* given) {
    auto const  number = components_.size();
    auto const& component = components_.emplace_back(given);
    if (given) numbers_.emplace(given, number);
    if (!component.rules) return;
    for (auto const& rule : *component.rules)
        if (auto const id = view(rule, "id")) rules_by_id_.add(*id, number, rule);
}

std::size_t Run::component_of(json::value const* reference) {
    if (!reference) return driver;
    if (auto const at = index(*reference, "index")) {
        if (*at >= components_.size() - first_extension)
            points_nowhere(*reference, "index", "the tool's extensions");
        return first_extension + *at;
    }
    for (auto* extensions : {&extensions_by_guid_, &extensions_by_name_}) {
        auto const wanted = view(*reference, extensions->member_name());
        if (!wanted) continue;
        if (auto const* found = extensions->find(*wanted)) return numbers_.at(found);
    }
    return driver;
}

Rule Run::rule_of(json::value const& result) {
    auto const* reference = member(result, "rule");
    auto const* component_reference = reference ? member(*reference, "toolComponent") : nullptr;
    auto const  number = component_of(component_reference);
    auto&       component = components_[number];

    auto const* index_holder = reference && index(*reference, "index") ? reference : &result;
    auto const* index_name = index_holder == reference ? "index" : "ruleIndex";
    auto const  at = index(*index_holder, index_name);
    if (at)
        if (auto const* descriptor = element(component.rules, *at))
            return {descriptor, component.value};
    auto const guid = reference ? view(*reference, "guid") : std::nullopt;
    if (guid)
        if (auto const* descriptor = component.rules_by_guid.find(*guid))
            return {descriptor, component.value};
    auto const id = rule_id(result, nullptr);
    if (at && !id) points_nowhere(*index_holder, index_name, "the rules");
    if (!id) return {nullptr, component.value};
    auto rule = rules_by_id_.find_in(number, *id);
    if (!rule.descriptor && number != driver) rule = rules_by_id_.find_in(driver, *id);
    if (!rule.descriptor) rule = rules_by_id_.find_from(first_extension, *id);
    return {rule.descriptor, rule.descriptor ? components_[rule.component].value : component.value};
}

std::optional<std::string_view> Run::message_string(std::string_view id, Rule const& rule) const {
    if (auto own = entry_text(rule.descriptor, "messageStrings", id)) return own;
    if (auto shared = entry_text(rule.component, "globalMessageStrings", id)) return shared;
    return entry_text(components_[driver].value, "globalMessageStrings", id);
}

std::optional<Text> Run::message_of(json::value const& holder, Rule const& rule) {
    auto const* message = member(holder, "message");
    if (!message) return std::nullopt;
    auto const arguments = arguments_of(*message);
    auto const own = view(*message, "text");
    // Many tools write plain braces in a message that has no arguments.
    if (own && arguments.empty()) return expansion_.text_of(*own, *message);
    if (own) return expansion_.message(*own, arguments, *message);
    auto const id = view(*message, "id");
    auto const pattern = id ? message_string(*id, rule) : std::nullopt;
    if (pattern) return expansion_.message(*pattern, arguments, *message);
    auto const markdown = view(*message, "markdown");
    if (id && !markdown)
        throw Misfit{member(*message, "id"),
                     "no message string has the id \"" + std::string(*id) + "\""};
    if (markdown && !arguments.empty()) return expansion_.message(*markdown, arguments, *message);
    return expansion_.text(markdown, *message);
}

void Run::resolve_artifact(json::value const& artifact_location, Place& place) {
    place.uri = expansion_.text(view(artifact_location, "uri"), artifact_location);
    place.base = expansion_.text(view(artifact_location, "uriBaseId"), artifact_location);
    auto const at = index(artifact_location, "index");
    if (place.uri || !at) return;
    auto const* artifact = element(artifacts_, *at);
    if (!artifact) points_nowhere(artifact_location, "index", "the run's artifacts");
    auto const* location = member(*artifact, "location");
    if (!location) return;
    place.uri = expansion_.text(view(*location, "uri"), artifact_location);
    if (!place.base) place.base = expansion_.text(view(*location, "uriBaseId"), artifact_location);
}

void Run::name_logically(json::value const& location, Place& place) {
    auto const* logical = element(list(location, "logicalLocations"), 0);
    if (!logical) return;
    auto const give = [&](std::optional<std::string_view> name, bool is_short) {
        place.logical = expansion_.text(name, location);
        place.logical_is_short = name && is_short;
    };
    if (auto const full = view(*logical, "fullyQualifiedName")) return give(full, false);
    auto const  name = view(*logical, "name");
    auto const  at = index(*logical, "index");
    auto const* shared = at ? element(logical_locations_, *at) : nullptr;
    if (at && !shared && !name) points_nowhere(*logical, "index", "the run's logicalLocations");
    if (!shared) return give(name, true);
    if (auto const full = view(*shared, "fullyQualifiedName")) return give(full, false);
    give(first_given(name, view(*shared, "name")), true);
}

Place Run::place_of(json::value const& location) {
    Place place;
    name_logically(location, place);
    auto const* physical = member(location, "physicalLocation");
    if (!physical) return place;
    if (auto const* artifact_location = member(*physical, "artifactLocation"))
        resolve_artifact(*artifact_location, place);
    if (auto const* region = member(*physical, "region")) read_region(*region, place);
    return place;
}

Step Run::step_of(json::value const& thread_flow_location, Rule const& rule) {
    auto const* location = member(thread_flow_location, "location");
    auto const  at = index(thread_flow_location, "index");
    if (!location && at) {
        auto const* shared = element(thread_flow_locations_, *at);
        if (!shared) points_nowhere(thread_flow_location, "index", "the run's threadFlowLocations");
        location = member(*shared, "location");
    }
    auto more = more_of(thread_flow_location, rule);
    if (!location) return {std::nullopt, std::nullopt, std::move(more)};
    return {place_of(*location), message_of(*location, rule), std::move(more)};
}

CodeFlow Run::flow_of(json::value const& code_flow, Rule const& rule) {
    CodeFlow    flow;
    auto const* thread_flows = list(code_flow, "threadFlows");
    if (!thread_flows) return flow;
    for (auto const& thread_flow : *thread_flows) {
        auto& steps = flow.emplace_back();
        if (auto const* locations = list(thread_flow, "locations"))
            for (auto const& location : *locations) steps.push_back(step_of(location, rule));
    }
    return flow;
}

Fingerprints Run::fingerprints_of(json::value const& result, std::string_view name) {
    Fingerprints fingerprints;
    auto const*  given = member(result, name);
    if (!given) return fingerprints;
    if (!given->is_object()) throw Misfit{given, "expected an object"};
    for (auto const& entry : given->get_object())
        if (!entry.value().is_null())
            fingerprints.insert_or_assign(
                expansion_.text_of(entry.key(), entry.value()),
                expansion_.text_of(view_of(entry.value()), entry.value()));
    return fingerprints;
}

std::vector<Suppression> Run::suppressions_of(json::value const& result) {
    std::vector<Suppression> suppressions;
    if (auto const* given = list(result, "suppressions"))
        for (auto const& one : *given)
            suppressions.push_back({expansion_.text(view(one, "kind"), one),
                                    expansion_.text(view(one, "status"), one)});
    return suppressions;
}

void Run::resolve_places(json::value const& given, Rule const& rule, Result& result) {
    if (auto const* locations = list(given, "locations"))
        for (auto const& location : *locations) result.locations.push_back(place_of(location));
    if (auto const* related = list(given, "relatedLocations"))
        for (auto const& location : *related)
            result.related.push_back(
                {place_of(location), number(location, "id"), message_of(location, rule)});
    if (auto const* flows = list(given, "codeFlows"))
        for (auto const& flow : *flows) result.flows.push_back(flow_of(flow, rule));
}

Result Run::resolve(json::value const& given) {
    auto const rule = rule_of(given);
    Result     result;
    result.run = number_;
    result.tool = tool_;
    result.tool_version = tool_version_;
    result.rule = expansion_.text(rule_id(given, rule.descriptor), given);
    result.descriptor = descriptor_of(rule);
    auto const kind = view(given, "kind").value_or("fail");
    result.kind = expansion_.text_of(kind, given);
    result.level = expansion_.text_of(level_of(given, kind, rule.descriptor), given);
    result.message = message_of(given, rule);
    result.fingerprints = fingerprints_of(given, "fingerprints");
    result.partial_fingerprints = fingerprints_of(given, "partialFingerprints");
    result.suppressions = suppressions_of(given);
    result.baseline_state = expansion_.text(view(given, "baselineState"), given);
    resolve_places(given, rule, result);
    keep_more(given, rule, result);
    return result;
}

// Whether one name, which has a field, is all that the list says.
bool Run::says_one_name(json::value const& logical_locations) const {
    auto const* const all = logical_locations.if_array();
    if (!all || all->size() != 1 || !all->front().is_object()) return all && all->empty();
    std::set<std::string_view> names;
    for (auto const* const from :
         {&all->front(), lists_.shared(schema::logical_location, all->front())})
        if (auto const* const members = from ? from->if_object() : nullptr)
            for (auto const& [name, value] : *members)
                if (!value.is_null() && name != "index" && name != "parentIndex")
                    names.insert(name);
    return names.empty() ||
           (names.size() == 1 && (names.contains("fullyQualifiedName") || names.contains("name")));
}

// The markdown of a message as a JSON string; empty if there is none.
std::string Run::markdown_text(json::value const& message) {
    auto const* const members = message.if_object();
    auto const* const markdown = members ? members->if_contains("markdown") : nullptr;
    if (!markdown || !markdown->is_string()) return {};
    auto const  arguments = arguments_of(message);
    auto const  pattern = view_of(*markdown);
    auto const  whole = arguments.empty() ? expansion_.text_of(pattern, message)
                                          : expansion_.message(pattern, arguments, message);
    std::string text;
    sml::inspect::append_json_string(text, whole.str());
    return text;
}

// Calls `append` for what makes the text of the value. A property of a run may refer to far more
// than one of a result: it can be a list of all warnings of the tool.
template <class Append>
std::string Run::kept_text(json::value const& value, Rule const& rule, Append const& append) {
    std::uint64_t const times = is_over_ ? 64 : 1;
    auto const          whole = std::numeric_limits<std::uint64_t>::max();
    auto const          most = std::min(expansion_.limits().message, whole / times) * times;
    try {
        std::string text;
        KeptText    kept(lists_, rule, most);
        append(kept, text);
        return text;
    } catch (TooMuchResolved const&) {
        throw Misfit{&value, "what its indices lead to comes to more than " +
                                 std::string(is_over_ ? "64 times " : "") + "--max-message " +
                                 std::to_string(expansion_.limits().message) + " bytes"};
    }
}

std::string Run::kept_text(schema::Property const& property, json::value const& value,
                           Rule const& rule) {
    return kept_text(value, rule, [&](KeptText& kept, std::string& text) {
        kept.append(text, property, value);
    });
}

// The text of a property that is kept; empty if it has no more than what has a field.
std::string Run::more_text(kept::Member const& member, schema::Property const& property,
                           json::value const& value, Rule const& rule) {
    if (member.how == kept::How::markdown) return markdown_text(value);
    bool const has_field = member.how == kept::How::logical_locations && says_one_name(value);
    return has_field ? std::string() : kept_text(property, value, rule);
}

std::optional<KeptJson> Run::more_of(json::value const& thread_flow_location, Rule const& rule) {
    std::string object;
    auto const  use = [&](std::string const& pointer, kept::Member const& member,
                         schema::Property const& property, json::value const& value) {
        auto const text = more_text(member, property, value, rule);
        if (text.empty()) return;
        object += object.empty() ? '{' : ',';
        sml::inspect::append_json_string(object, sarif::pointer_of(pointer, member));
        object += ':' + text;
    };
    auto const  at = index(thread_flow_location, "index");
    auto const* shared = at ? element(thread_flow_locations_, *at) : nullptr;
    KeptProperties(use).of(thread_flow_location, schema::thread_flow_location, kept::of_step,
                           shared);
    if (object.empty()) return std::nullopt;
    return expansion_.text_of(object + '}', thread_flow_location);
}

void Run::keep_more(json::value const& given, Rule const& rule, Result& result) {
    auto const use = [&](std::string const& pointer, kept::Member const& member,
                         schema::Property const& property, json::value const& value) {
        auto const text = more_text(member, property, value, rule);
        if (text.empty()) return;
        result.more.texts.emplace(expansion_.text_of(sarif::pointer_of(pointer, member), value),
                                  expansion_.text_of(text, value));
    };
    KeptProperties(use).of(given, schema::result, kept::of_result);
}

constexpr schema::Property one_rule{"rules", schema::reporting_descriptor};

std::optional<Descriptor> Run::descriptor_of(Rule const& rule) {
    auto const* const descriptor = rule.descriptor;
    if (descriptor == nullptr) return std::nullopt;
    auto const known = descriptors_.find(descriptor);
    if (known != descriptors_.end()) return known->second;
    auto const pointer = pointer_of(rule.component);
    Descriptor made{expansion_.text_of(pointer, *descriptor),
                    expansion_.text_of(kept_text(one_rule, *descriptor, rule), *descriptor)};
    return descriptors_.emplace(descriptor, std::move(made)).first->second;
}

// Extensions are numbered in the order of their first use.
std::string Run::pointer_of(json::value const* component) {
    if (component == lists_.driver()) return "tool/driver";
    auto const [number, is_new] = used_numbers_.try_emplace(component, used_extensions_.size());
    if (is_new) used_extensions_.push_back(component);
    return "tool/extensions/" + std::to_string(number->second);
}

void Run::keep_component(std::string const& pointer, json::value const& component,
                         RunFacts& facts) {
    auto const text = kept_text(
        component, {nullptr, &component},
        [&](KeptText& kept, std::string& made) { kept.append_component(made, component); });
    facts.facts.texts.emplace(expansion_.text_of(pointer, component),
                              expansion_.text_of(text, component));
}

// Those that define rules of results come first, then those whose taxa and the like are referred
// to.
void Run::keep_extensions(RunFacts& facts) {
    auto const is_used = [&](json::value const& descriptor) { return lists_.is_used(descriptor); };
    auto const names_used = [&](json::value const& component) {
        for (auto const* const name : {"taxa", "notifications"})
            if (auto const* const descriptors = found_list(&component, name))
                if (std::ranges::any_of(*descriptors, is_used)) return true;
        return false;
    };
    if (lists_.extensions())
        for (auto const& one : *lists_.extensions())
            if (names_used(one)) pointer_of(&one);
    for (std::size_t i = 0; i < used_extensions_.size(); ++i)
        keep_component("tool/extensions/" + std::to_string(i), *used_extensions_[i], facts);
    std::size_t number = 0;
    if (lists_.taxonomies())
        for (auto const& one : *lists_.taxonomies())
            if (names_used(one))
                keep_component("taxonomies/" + std::to_string(number++), one, facts);
}

RunFacts Run::facts() {
    is_over_ = true;
    RunFacts   facts{number_, {}};
    auto const use = [&](std::string const& pointer, kept::Member const& member,
                         schema::Property const& property, json::value const& value) {
        if (member.how == kept::How::component) return;
        facts.facts.texts.emplace(
            expansion_.text_of(pointer, value),
            expansion_.text_of(kept_text(property, value, {nullptr, lists_.driver()}), value));
    };
    KeptProperties(use).of(run_, schema::run, kept::of_run);
    if (lists_.driver()) keep_component("tool/driver", *lists_.driver(), facts);
    keep_extensions(facts);
    return facts;
}

}  // namespace bradep::sarif
