// Prints the tables of tools/sarif/schema.cpp as JSON.

#include "sarif/schema.hpp"

#include <boost/json.hpp>

#include <iostream>
#include <string_view>

namespace {

namespace json = boost::json;
namespace schema = bradep::sarif::schema;

struct Named {
    std::string_view    name;
    schema::Type const& type;
};
Named const all[] = {
    {"propertyBag", schema::bag},
    {"address", schema::address},
    {"artifactChange", schema::artifact_change},
    {"artifactContent", schema::artifact_content},
    {"artifactLocation", schema::artifact_location},
    {"attachment", schema::attachment},
    {"codeFlow", schema::code_flow},
    {"configurationOverride", schema::configuration_override},
    {"conversion", schema::conversion},
    {"exception", schema::exception},
    {"fix", schema::fix},
    {"invocation", schema::invocation},
    {"location", schema::location},
    {"locationRelationship", schema::location_relationship},
    {"logicalLocation", schema::logical_location},
    {"message", schema::message},
    {"multiformatMessageString", schema::multiformat_message_string},
    {"notification", schema::notification},
    {"physicalLocation", schema::physical_location},
    {"rectangle", schema::rectangle},
    {"region", schema::region},
    {"replacement", schema::replacement},
    {"reportingConfiguration", schema::reporting_configuration},
    {"reportingDescriptor", schema::reporting_descriptor},
    {"reportingDescriptorReference", schema::reporting_descriptor_reference},
    {"reportingDescriptorRelationship", schema::reporting_descriptor_relationship},
    {"result", schema::result},
    {"resultProvenance", schema::result_provenance},
    {"run", schema::run},
    {"runAutomationDetails", schema::run_automation_details},
    {"specialLocations", schema::special_locations},
    {"stack", schema::stack},
    {"stackFrame", schema::stack_frame},
    {"suppression", schema::suppression},
    {"threadFlow", schema::thread_flow},
    {"threadFlowLocation", schema::thread_flow_location},
    {"tool", schema::tool},
    {"toolComponent", schema::tool_component},
    {"toolComponentReference", schema::tool_component_reference},
    {"translationMetadata", schema::translation_metadata},
    {"versionControlDetails", schema::version_control_details},
    {"webRequest", schema::web_request},
    {"webResponse", schema::web_response},
};

std::string_view name_of(schema::Type const& type) {
    for (auto const& [name, one] : all)
        if (&one == &type) return name;
    return {};
}

constexpr std::string_view samples[] = {"",
                                        "en",
                                        "en-US",
                                        "e1",
                                        "en-usa",
                                        "EN-",
                                        "1.2.3.4",
                                        "a1.22.3.4b",
                                        "1.2.3",
                                        "1.2..3.4",
                                        "1.2.3.x.4",
                                        "01234567-89ab-1def-8123-456789abcdef",
                                        "01234567-89AB-5DEF-b123-456789ABCDEF",
                                        "01234567-89ab-6def-8123-456789abcdef",
                                        "01234567-89ab-1def-c123-456789abcdef",
                                        "01234567-89ab-1def-8123-456789abcde",
                                        "01234567-89ab-1def-8123-456789abcdef0",
                                        "g1234567-89ab-1def-8123-456789abcdef",
                                        "01234567.89ab-1def-8123-456789abcdef"};

json::value texts(auto const& list) {
    json::array array;
    for (std::string_view const text : list) array.emplace_back(text);
    return array;
}

json::object shown(schema::Type const& type) {
    constexpr char const* kinds[] = {"boolean", "integer", "number", "string", "object"};
    json::object          shown{{"type", kinds[static_cast<int>(type.kind)]},
                       {"least", type.least},
                       {"most", type.most},
                       {"words", texts(type.words)},
                       {"open", type.is_open}};
    if (type.fits != nullptr) {
        json::object fits;
        for (auto const sample : samples) fits[sample] = type.fits(sample);
        shown["fits"] = fits;
    }
    return shown;
}

json::object shown(schema::Property const& property) {
    constexpr char const* shapes[] = {"one", "list", "map"};
    json::object          row{{"shape", shapes[static_cast<int>(property.shape)]},
                     {"required", (property.demands & schema::required) != 0},
                     {"unique", (property.demands & schema::unique) != 0},
                     {"not_empty", (property.demands & schema::not_empty) != 0}};
    auto const            name = name_of(*property.type);
    if (name.empty())
        row["value"] = shown(*property.type);
    else
        row["object"] = name;
    return row;
}

}  // namespace

int main() {
    json::object types;
    for (auto const& [name, type] : all) {
        json::object object = shown(type);
        json::object properties;
        for (auto const& property : type.properties) properties[property.name] = shown(property);
        object["properties"] = properties;
        types[name] = object;
    }
    std::cout << json::serialize(types) << '\n';
    return std::cout.flush() ? 0 : 1;
}
