#pragma once
// Which properties of SARIF objects are kept as JSON text, as the set has no field for them.
//
// Each is found by its JSON pointer, relative to the object that its table is of and without the
// first slash: `rank`, `locations/0/physicalLocation/region/snippet`. docs/sarif.md prints the
// tables.

#include <string_view>

namespace bradep::sarif::kept {

struct Members;

enum class How {
    whole,
    parts,
    markdown,           ///< of a message whose text has a field: only its `markdown`
    logical_locations,  ///< unless one name, which has a field, is all that they say
    component,          ///< of a run, once its results are known
};

/// A property that is kept.
struct Member {
    constexpr Member(std::string_view its_name, How kept = How::whole)
        : name(its_name), how(kept) {}
    constexpr Member(std::string_view its_name, Members const& parts)
        : name(its_name), how(How::parts), below(&parts) {}

    std::string_view name;
    How              how;
    Members const*   below = nullptr;  ///< its parts that are kept
};

/// The properties of an object that are kept; of an array, those of each of its elements.
struct Members {
    Member const* first;
    std::size_t   count;

    constexpr Member const* begin() const { return first; }
    constexpr Member const* end() const { return first + count; }
};

template <std::size_t count>
constexpr Members members(Member const (&all)[count]) {
    return {all, count};
}

inline constexpr Member  all_of_region[] = {{"charOffset"},     {"charLength"}, {"byteOffset"},
                                            {"byteLength"},     {"snippet"},    {"message"},
                                            {"sourceLanguage"}, {"properties"}};
inline constexpr Members of_region = members(all_of_region);

inline constexpr Member all_of_physical_location[] = {
    {"region", of_region}, {"contextRegion"}, {"address"}, {"properties"}};
inline constexpr Members of_physical_location = members(all_of_physical_location);

inline constexpr Member  all_of_location[] = {{"id"},
                                              {"message"},
                                              {"physicalLocation", of_physical_location},
                                              {"logicalLocations", How::logical_locations},
                                              {"annotations"},
                                              {"relationships"},
                                              {"properties"}};
inline constexpr Members of_location = members(all_of_location);

inline constexpr Member  all_of_related_location[] = {{"message", How::markdown},
                                                      {"physicalLocation", of_physical_location},
                                                      {"logicalLocations", How::logical_locations},
                                                      {"annotations"},
                                                      {"relationships"},
                                                      {"properties"}};
inline constexpr Members of_related_location = members(all_of_related_location);

inline constexpr Member  all_of_step_location[] = {{"id"},
                                                   {"message", How::markdown},
                                                   {"physicalLocation", of_physical_location},
                                                   {"logicalLocations", How::logical_locations},
                                                   {"annotations"},
                                                   {"relationships"},
                                                   {"properties"}};
inline constexpr Members of_step_location = members(all_of_step_location);

/// A location of a thread flow. What it keeps stands in its event.
inline constexpr Member  all_of_step[] = {{"kinds"},
                                          {"state"},
                                          {"nestingLevel"},
                                          {"executionOrder"},
                                          {"executionTimeUtc"},
                                          {"importance"},
                                          {"taxa"},
                                          {"module"},
                                          {"stack"},
                                          {"webRequest"},
                                          {"webResponse"},
                                          {"properties"},
                                          {"location", of_step_location}};
inline constexpr Members of_step = members(all_of_step);

inline constexpr Member all_of_thread_flow[] = {
    {"id"}, {"message"}, {"initialState"}, {"immutableState"}, {"properties"}};
inline constexpr Members of_thread_flow = members(all_of_thread_flow);

inline constexpr Member all_of_code_flow[] = {
    {"message"}, {"threadFlows", of_thread_flow}, {"properties"}};
inline constexpr Members of_code_flow = members(all_of_code_flow);

inline constexpr Member all_of_suppression[] = {
    {"guid"}, {"justification"}, {"location"}, {"properties"}};
inline constexpr Members of_suppression = members(all_of_suppression);

inline constexpr Member  all_of_result[] = {{"guid"},
                                            {"correlationGuid"},
                                            {"rank"},
                                            {"occurrenceCount"},
                                            {"message", How::markdown},
                                            {"locations", of_location},
                                            {"relatedLocations", of_related_location},
                                            {"codeFlows", of_code_flow},
                                            {"suppressions", of_suppression},
                                            {"fixes"},
                                            {"taxa"},
                                            {"analysisTarget"},
                                            {"attachments"},
                                            {"stacks"},
                                            {"provenance"},
                                            {"hostedViewerUri"},
                                            {"workItemUris"},
                                            {"webRequest"},
                                            {"webResponse"},
                                            {"properties"}};
inline constexpr Members of_result = members(all_of_result);

/// Of the components, those are kept that results refer to, and the driver.
inline constexpr Member all_of_tool[] = {
    {"driver", How::component}, {"extensions", How::component}, {"properties"}};
inline constexpr Members of_tool = members(all_of_tool);

inline constexpr Member  all_of_run[] = {{"tool", of_tool},
                                         {"taxonomies", How::component},
                                         {"invocations"},
                                         {"automationDetails"},
                                         {"runAggregates"},
                                         {"baselineGuid"},
                                         {"originalUriBaseIds"},
                                         {"versionControlProvenance"},
                                         {"conversion"},
                                         {"language"},
                                         {"columnKind"},
                                         {"defaultEncoding"},
                                         {"defaultSourceLanguage"},
                                         {"newlineSequences"},
                                         {"redactionTokens"},
                                         {"specialLocations"},
                                         {"properties"}};
inline constexpr Members of_run = members(all_of_run);

}  // namespace bradep::sarif::kept
