#include "sarif/schema.hpp"

#include <algorithm>
#include <iterator>

namespace bradep::sarif::schema {

Property const* Type::property(std::string_view name) const {
    auto const found = std::ranges::lower_bound(properties, name, {}, &Property::name);
    return found != properties.end() && found->name == name ? &*found : nullptr;
}

namespace {

constexpr bool is_digit(char c) { return c >= '0' && c <= '9'; }
constexpr bool is_letter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
constexpr bool is_hexadecimal(char c) {
    return is_digit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

// As in "01234567-89ab-1def-8123-456789abcdef".
bool is_guid(std::string_view text) {
    constexpr std::string_view form = "xxxxxxxx-xxxx-Vxxx-Wxxx-xxxxxxxxxxxx";
    auto const                 fits = [](char c, char wanted) {
        if (wanted == 'V') return c >= '1' && c <= '5';
        if (wanted == 'W') return std::string_view("89abAB").find(c) != std::string_view::npos;
        return wanted == 'x' ? is_hexadecimal(c) : c == wanted;
    };
    return std::ranges::equal(text, form, fits);
}

// As in "en" or "en-US".
bool is_language(std::string_view text) {
    constexpr std::string_view form = "xx-xx";
    auto const fits = [](char c, char wanted) { return wanted == 'x' ? is_letter(c) : c == '-'; };
    return std::ranges::equal(text, form, fits) ||
           std::ranges::equal(text, form.substr(0, 2), fits);
}

// Whether four numbers with dots between stand somewhere in the text.
bool has_dotted_quad(std::string_view text) {
    int numbers = 0;  // of those that end here
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (is_digit(text[i])) {
            numbers = std::max(numbers, 1);
            if (numbers == 4) return true;
        } else {
            bool const goes_on = text[i] == '.' && i > 0 && is_digit(text[i - 1]) &&
                                 i + 1 < text.size() && is_digit(text[i + 1]);
            numbers = goes_on ? numbers + 1 : 0;
        }
    }
    return false;
}

Type const flag{.kind = Kind::boolean};
Type const whole{.kind = Kind::integer};
Type const index{.kind = Kind::integer, .least = -1};
Type const natural{.kind = Kind::integer, .least = 0};
Type const positive{.kind = Kind::integer, .least = 1};
Type const number{.kind = Kind::number};
Type const rank{.kind = Kind::number, .least = -1, .most = 100};
Type const text{.kind = Kind::text};
Type const guid{.kind = Kind::text, .fits = is_guid};
Type const language{.kind = Kind::text, .fits = is_language};
Type const dotted_quad{.kind = Kind::text, .fits = has_dotted_quad};

constexpr std::string_view baseline_states_words[] = {"new", "unchanged", "updated", "absent"};
Type const                 baseline_states{.kind = Kind::text, .words = baseline_states_words};

constexpr std::string_view column_kinds_words[] = {"utf16CodeUnits", "unicodeCodePoints"};
Type const                 column_kinds{.kind = Kind::text, .words = column_kinds_words};

constexpr std::string_view contents_words[] = {"localizedData", "nonLocalizedData"};
Type const                 contents{.kind = Kind::text, .words = contents_words};

constexpr std::string_view importances_words[] = {"important", "essential", "unimportant"};
Type const                 importances{.kind = Kind::text, .words = importances_words};

constexpr std::string_view kinds_words[] = {"notApplicable", "pass", "fail",
                                            "review",        "open", "informational"};
Type const                 kinds{.kind = Kind::text, .words = kinds_words};

constexpr std::string_view levels_words[] = {"none", "note", "warning", "error"};
Type const                 levels{.kind = Kind::text, .words = levels_words};

constexpr std::string_view suppression_kinds_words[] = {"external", "inSource"};
Type const                 suppression_kinds{.kind = Kind::text, .words = suppression_kinds_words};

constexpr std::string_view suppression_states_words[] = {"accepted", "underReview", "rejected"};
Type const suppression_states{.kind = Kind::text, .words = suppression_states_words};

}  // namespace

constexpr Property   of_bag[] = {{"tags", text, Shape::list, unique}};
constinit Type const bag{.kind = Kind::object, .properties = of_bag, .is_open = true};

// clang-format off
constexpr Property of_address[] = {
    {"absoluteAddress", index},
    {"fullyQualifiedName", text},
    {"index", index},
    {"kind", text},
    {"length", whole},
    {"name", text},
    {"offsetFromParent", whole},
    {"parentIndex", index},
    {"properties", bag},
    {"relativeAddress", whole}};
constinit Type const address{.kind = Kind::object, .properties = of_address};

constexpr Property of_artifact_change[] = {
    {"artifactLocation", artifact_location, Shape::one, required},
    {"properties", bag},
    {"replacements", replacement, Shape::list, required | not_empty}};
constinit Type const artifact_change{.kind = Kind::object, .properties = of_artifact_change};

constexpr Property of_artifact_content[] = {
    {"binary", text},
    {"properties", bag},
    {"rendered", multiformat_message_string},
    {"text", text}};
constinit Type const artifact_content{.kind = Kind::object, .properties = of_artifact_content};

constexpr Property of_artifact_location[] = {
    {"description", message},
    {"index", index},
    {"properties", bag},
    {"uri", text},
    {"uriBaseId", text}};
constinit Type const artifact_location{.kind = Kind::object, .properties = of_artifact_location};

constexpr Property of_attachment[] = {
    {"artifactLocation", artifact_location, Shape::one, required},
    {"description", message},
    {"properties", bag},
    {"rectangles", rectangle, Shape::list, unique},
    {"regions", region, Shape::list, unique}};
constinit Type const attachment{.kind = Kind::object, .properties = of_attachment};

constexpr Property of_code_flow[] = {
    {"message", message},
    {"properties", bag},
    {"threadFlows", thread_flow, Shape::list, required | not_empty}};
constinit Type const code_flow{.kind = Kind::object, .properties = of_code_flow};

constexpr Property of_configuration_override[] = {
    {"configuration", reporting_configuration, Shape::one, required},
    {"descriptor", reporting_descriptor_reference, Shape::one, required},
    {"properties", bag}};
constinit Type const configuration_override{.kind = Kind::object, .properties = of_configuration_override};

constexpr Property of_conversion[] = {
    {"analysisToolLogFiles", artifact_location, Shape::list, unique},
    {"invocation", invocation},
    {"properties", bag},
    {"tool", tool, Shape::one, required}};
constinit Type const conversion{.kind = Kind::object, .properties = of_conversion};

constexpr Property of_exception[] = {
    {"innerExceptions", exception, Shape::list},
    {"kind", text},
    {"message", text},
    {"properties", bag},
    {"stack", stack}};
constinit Type const exception{.kind = Kind::object, .properties = of_exception};

constexpr Property of_fix[] = {
    {"artifactChanges", artifact_change, Shape::list, required | unique | not_empty},
    {"description", message},
    {"properties", bag}};
constinit Type const fix{.kind = Kind::object, .properties = of_fix};

constexpr Property of_invocation[] = {
    {"account", text},
    {"arguments", text, Shape::list},
    {"commandLine", text},
    {"endTimeUtc", text},
    {"environmentVariables", text, Shape::map},
    {"executableLocation", artifact_location},
    {"executionSuccessful", flag, Shape::one, required},
    {"exitCode", whole},
    {"exitCodeDescription", text},
    {"exitSignalName", text},
    {"exitSignalNumber", whole},
    {"machine", text},
    {"notificationConfigurationOverrides", configuration_override, Shape::list, unique},
    {"processId", whole},
    {"processStartFailureMessage", text},
    {"properties", bag},
    {"responseFiles", artifact_location, Shape::list, unique},
    {"ruleConfigurationOverrides", configuration_override, Shape::list, unique},
    {"startTimeUtc", text},
    {"stderr", artifact_location},
    {"stdin", artifact_location},
    {"stdout", artifact_location},
    {"stdoutStderr", artifact_location},
    {"toolConfigurationNotifications", notification, Shape::list},
    {"toolExecutionNotifications", notification, Shape::list},
    {"workingDirectory", artifact_location}};
constinit Type const invocation{.kind = Kind::object, .properties = of_invocation};

constexpr Property of_location[] = {
    {"annotations", region, Shape::list, unique},
    {"id", index},
    {"logicalLocations", logical_location, Shape::list, unique},
    {"message", message},
    {"physicalLocation", physical_location},
    {"properties", bag},
    {"relationships", location_relationship, Shape::list, unique}};
constinit Type const location{.kind = Kind::object, .properties = of_location};

constexpr Property of_location_relationship[] = {
    {"description", message},
    {"kinds", text, Shape::list, unique},
    {"properties", bag},
    {"target", natural, Shape::one, required}};
constinit Type const location_relationship{.kind = Kind::object, .properties = of_location_relationship};

constexpr Property of_logical_location[] = {
    {"decoratedName", text},
    {"fullyQualifiedName", text},
    {"index", index},
    {"kind", text},
    {"name", text},
    {"parentIndex", index},
    {"properties", bag}};
constinit Type const logical_location{.kind = Kind::object, .properties = of_logical_location};

constexpr Property of_message[] = {
    {"arguments", text, Shape::list},
    {"id", text},
    {"markdown", text},
    {"properties", bag},
    {"text", text}};
constexpr std::string_view one_of_message[] = {"text", "id"};
constinit Type const message{.kind = Kind::object, .properties = of_message, .words = one_of_message};

constexpr Property of_multiformat_message_string[] = {
    {"markdown", text},
    {"properties", bag},
    {"text", text, Shape::one, required}};
constinit Type const multiformat_message_string{.kind = Kind::object, .properties = of_multiformat_message_string};

constexpr Property of_notification[] = {
    {"associatedRule", reporting_descriptor_reference},
    {"descriptor", reporting_descriptor_reference},
    {"exception", exception},
    {"level", levels},
    {"locations", location, Shape::list, unique},
    {"message", message, Shape::one, required},
    {"properties", bag},
    {"threadId", whole},
    {"timeUtc", text}};
constinit Type const notification{.kind = Kind::object, .properties = of_notification};

constexpr Property of_physical_location[] = {
    {"address", address},
    {"artifactLocation", artifact_location},
    {"contextRegion", region},
    {"properties", bag},
    {"region", region}};
constexpr std::string_view one_of_physical_location[] = {"artifactLocation", "address"};
constinit Type const physical_location{.kind = Kind::object, .properties = of_physical_location, .words = one_of_physical_location};

constexpr Property of_rectangle[] = {
    {"bottom", number},
    {"left", number},
    {"message", message},
    {"properties", bag},
    {"right", number},
    {"top", number}};
constinit Type const rectangle{.kind = Kind::object, .properties = of_rectangle};

constexpr Property of_region[] = {
    {"byteLength", natural},
    {"byteOffset", index},
    {"charLength", natural},
    {"charOffset", index},
    {"endColumn", positive},
    {"endLine", positive},
    {"message", message},
    {"properties", bag},
    {"snippet", artifact_content},
    {"sourceLanguage", text},
    {"startColumn", positive},
    {"startLine", positive}};
constinit Type const region{.kind = Kind::object, .properties = of_region};

constexpr Property of_replacement[] = {
    {"deletedRegion", region, Shape::one, required},
    {"insertedContent", artifact_content},
    {"properties", bag}};
constinit Type const replacement{.kind = Kind::object, .properties = of_replacement};

constexpr Property of_reporting_configuration[] = {
    {"enabled", flag},
    {"level", levels},
    {"parameters", bag},
    {"properties", bag},
    {"rank", rank}};
constinit Type const reporting_configuration{.kind = Kind::object, .properties = of_reporting_configuration};

constexpr Property of_reporting_descriptor[] = {
    {"defaultConfiguration", reporting_configuration},
    {"deprecatedGuids", guid, Shape::list, unique},
    {"deprecatedIds", text, Shape::list, unique},
    {"deprecatedNames", text, Shape::list, unique},
    {"fullDescription", multiformat_message_string},
    {"guid", guid},
    {"help", multiformat_message_string},
    {"helpUri", text},
    {"id", text, Shape::one, required},
    {"messageStrings", multiformat_message_string, Shape::map},
    {"name", text},
    {"properties", bag},
    {"relationships", reporting_descriptor_relationship, Shape::list, unique},
    {"shortDescription", multiformat_message_string}};
constinit Type const reporting_descriptor{.kind = Kind::object, .properties = of_reporting_descriptor};

constexpr Property of_reporting_descriptor_reference[] = {
    {"guid", guid},
    {"id", text},
    {"index", index},
    {"properties", bag},
    {"toolComponent", tool_component_reference}};
constexpr std::string_view one_of_reporting_descriptor_reference[] = {"index", "guid", "id"};
constinit Type const reporting_descriptor_reference{.kind = Kind::object, .properties = of_reporting_descriptor_reference, .words = one_of_reporting_descriptor_reference};

constexpr Property of_reporting_descriptor_relationship[] = {
    {"description", message},
    {"kinds", text, Shape::list, unique},
    {"properties", bag},
    {"target", reporting_descriptor_reference, Shape::one, required}};
constinit Type const reporting_descriptor_relationship{.kind = Kind::object, .properties = of_reporting_descriptor_relationship};

constexpr Property of_result[] = {
    {"analysisTarget", artifact_location},
    {"attachments", attachment, Shape::list, unique},
    {"baselineState", baseline_states},
    {"codeFlows", code_flow, Shape::list},
    {"correlationGuid", guid},
    {"fingerprints", text, Shape::map},
    {"fixes", fix, Shape::list, unique},
    {"guid", guid},
    {"hostedViewerUri", text},
    {"kind", kinds},
    {"level", levels},
    {"locations", location, Shape::list},
    {"message", message, Shape::one, required},
    {"occurrenceCount", positive},
    {"partialFingerprints", text, Shape::map},
    {"properties", bag},
    {"provenance", result_provenance},
    {"rank", rank},
    {"relatedLocations", location, Shape::list, unique},
    {"rule", reporting_descriptor_reference},
    {"ruleId", text},
    {"ruleIndex", index},
    {"stacks", stack, Shape::list, unique},
    {"suppressions", suppression, Shape::list, unique},
    {"taxa", reporting_descriptor_reference, Shape::list, unique},
    {"webRequest", web_request},
    {"webResponse", web_response},
    {"workItemUris", text, Shape::list, unique}};
constinit Type const result{.kind = Kind::object, .properties = of_result};

constexpr Property of_result_provenance[] = {
    {"conversionSources", physical_location, Shape::list, unique},
    {"firstDetectionRunGuid", guid},
    {"firstDetectionTimeUtc", text},
    {"invocationIndex", index},
    {"lastDetectionRunGuid", guid},
    {"lastDetectionTimeUtc", text},
    {"properties", bag}};
constinit Type const result_provenance{.kind = Kind::object, .properties = of_result_provenance};

constexpr Property of_run[] = {
    {"automationDetails", run_automation_details},
    {"baselineGuid", guid},
    {"columnKind", column_kinds},
    {"conversion", conversion},
    {"defaultEncoding", text},
    {"defaultSourceLanguage", text},
    {"invocations", invocation, Shape::list},
    {"language", language},
    {"newlineSequences", text, Shape::list, unique | not_empty},
    {"originalUriBaseIds", artifact_location, Shape::map},
    {"policies", tool_component, Shape::list, unique},
    {"properties", bag},
    {"redactionTokens", text, Shape::list, unique},
    {"runAggregates", run_automation_details, Shape::list, unique},
    {"specialLocations", special_locations},
    {"taxonomies", tool_component, Shape::list, unique},
    {"tool", tool, Shape::one, required},
    {"translations", tool_component, Shape::list, unique},
    {"versionControlProvenance", version_control_details, Shape::list, unique}};
constinit Type const run{.kind = Kind::object, .properties = of_run};

constexpr Property of_run_automation_details[] = {
    {"correlationGuid", guid},
    {"description", message},
    {"guid", guid},
    {"id", text},
    {"properties", bag}};
constinit Type const run_automation_details{.kind = Kind::object, .properties = of_run_automation_details};

constexpr Property of_special_locations[] = {
    {"displayBase", artifact_location},
    {"properties", bag}};
constinit Type const special_locations{.kind = Kind::object, .properties = of_special_locations};

constexpr Property of_stack[] = {
    {"frames", stack_frame, Shape::list, required},
    {"message", message},
    {"properties", bag}};
constinit Type const stack{.kind = Kind::object, .properties = of_stack};

constexpr Property of_stack_frame[] = {
    {"location", location},
    {"module", text},
    {"parameters", text, Shape::list},
    {"properties", bag},
    {"threadId", whole}};
constinit Type const stack_frame{.kind = Kind::object, .properties = of_stack_frame};

constexpr Property of_suppression[] = {
    {"guid", guid},
    {"justification", text},
    {"kind", suppression_kinds, Shape::one, required},
    {"location", location},
    {"properties", bag},
    {"status", suppression_states}};
constinit Type const suppression{.kind = Kind::object, .properties = of_suppression};

constexpr Property of_thread_flow[] = {
    {"id", text},
    {"immutableState", multiformat_message_string, Shape::map},
    {"initialState", multiformat_message_string, Shape::map},
    {"locations", thread_flow_location, Shape::list, required | not_empty},
    {"message", message},
    {"properties", bag}};
constinit Type const thread_flow{.kind = Kind::object, .properties = of_thread_flow};

constexpr Property of_thread_flow_location[] = {
    {"executionOrder", index},
    {"executionTimeUtc", text},
    {"importance", importances},
    {"index", index},
    {"kinds", text, Shape::list, unique},
    {"location", location},
    {"module", text},
    {"nestingLevel", natural},
    {"properties", bag},
    {"stack", stack},
    {"state", multiformat_message_string, Shape::map},
    {"taxa", reporting_descriptor_reference, Shape::list, unique},
    {"webRequest", web_request},
    {"webResponse", web_response}};
constinit Type const thread_flow_location{.kind = Kind::object, .properties = of_thread_flow_location};

constexpr Property of_tool[] = {
    {"driver", tool_component, Shape::one, required},
    {"extensions", tool_component, Shape::list, unique},
    {"properties", bag}};
constinit Type const tool{.kind = Kind::object, .properties = of_tool};

constexpr Property of_tool_component[] = {
    {"associatedComponent", tool_component_reference},
    {"contents", contents, Shape::list, unique},
    {"dottedQuadFileVersion", dotted_quad},
    {"downloadUri", text},
    {"fullDescription", multiformat_message_string},
    {"fullName", text},
    {"globalMessageStrings", multiformat_message_string, Shape::map},
    {"guid", guid},
    {"informationUri", text},
    {"isComprehensive", flag},
    {"language", language},
    {"localizedDataSemanticVersion", text},
    {"locations", artifact_location, Shape::list},
    {"minimumRequiredLocalizedDataSemanticVersion", text},
    {"name", text, Shape::one, required},
    {"notifications", reporting_descriptor, Shape::list, unique},
    {"organization", text},
    {"product", text},
    {"productSuite", text},
    {"properties", bag},
    {"releaseDateUtc", text},
    {"rules", reporting_descriptor, Shape::list, unique},
    {"semanticVersion", text},
    {"shortDescription", multiformat_message_string},
    {"supportedTaxonomies", tool_component_reference, Shape::list, unique},
    {"taxa", reporting_descriptor, Shape::list, unique},
    {"translationMetadata", translation_metadata},
    {"version", text}};
constinit Type const tool_component{.kind = Kind::object, .properties = of_tool_component};

constexpr Property of_tool_component_reference[] = {
    {"guid", guid},
    {"index", index},
    {"name", text},
    {"properties", bag}};
constinit Type const tool_component_reference{.kind = Kind::object, .properties = of_tool_component_reference};

constexpr Property of_translation_metadata[] = {
    {"downloadUri", text},
    {"fullDescription", multiformat_message_string},
    {"fullName", text},
    {"informationUri", text},
    {"name", text, Shape::one, required},
    {"properties", bag},
    {"shortDescription", multiformat_message_string}};
constinit Type const translation_metadata{.kind = Kind::object, .properties = of_translation_metadata};

constexpr Property of_version_control_details[] = {
    {"asOfTimeUtc", text},
    {"branch", text},
    {"mappedTo", artifact_location},
    {"properties", bag},
    {"repositoryUri", text, Shape::one, required},
    {"revisionId", text},
    {"revisionTag", text}};
constinit Type const version_control_details{.kind = Kind::object, .properties = of_version_control_details};

constexpr Property of_web_request[] = {
    {"body", artifact_content},
    {"headers", text, Shape::map},
    {"index", index},
    {"method", text},
    {"parameters", text, Shape::map},
    {"properties", bag},
    {"protocol", text},
    {"target", text},
    {"version", text}};
constinit Type const web_request{.kind = Kind::object, .properties = of_web_request};

constexpr Property of_web_response[] = {
    {"body", artifact_content},
    {"headers", text, Shape::map},
    {"index", index},
    {"noResponseReceived", flag},
    {"properties", bag},
    {"protocol", text},
    {"reasonPhrase", text},
    {"statusCode", whole},
    {"version", text}};
constinit Type const web_response{.kind = Kind::object, .properties = of_web_response};

// clang-format on

}  // namespace bradep::sarif::schema
