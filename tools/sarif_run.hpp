#pragma once
// One run of a SARIF log, with what its results refer to by index, id or guid.

#include <map>
#include <string>
#include <vector>

#include "json_input.hpp"
#include "sarif_result.hpp"

namespace bradep::sarif {

namespace json = boost::json;

// A rule's descriptor and the part of the tool that defines it. Either may be null.
struct Rule {
    json::value const* descriptor = nullptr;
    json::value const* component = nullptr;
};

// Refers to the document's values, which must outlive it. All members throw json_input::Misfit.
class Run {
public:
    Run(json::value const& run, std::int32_t number);

    json::array const* results() const { return results_; }
    Result             resolve(json::value const& result) const;

private:
    Rule               rule_of(json::value const& result) const;
    json::value const* component_of(json::value const* reference) const;
    json::value const* descriptor_by_id(std::string const& id, json::value const* component) const;
    std::optional<std::string> message_of(json::value const& holder, Rule const& rule) const;
    std::optional<std::string> message_string(std::string const& id, Rule const& rule) const;
    Place                      place_of(json::value const& location) const;
    void resolve_artifact(json::value const& artifact_location, Place& place) const;
    std::optional<std::string> logical_name(json::value const& location) const;
    Step      step_of(json::value const& thread_flow_location, Rule const& rule) const;
    Code_Flow flow_of(json::value const& code_flow, Rule const& rule) const;
    void      index_rules(json::value const& component);

    std::int32_t                    number_;
    json::array const*              results_ = nullptr;
    json::value const*              driver_ = nullptr;
    std::vector<json::value const*> extensions_;
    json::array const*              artifacts_ = nullptr;
    json::array const*              logical_locations_ = nullptr;
    json::array const*              thread_flow_locations_ = nullptr;
    std::optional<std::string>      tool_;
    std::optional<std::string>      tool_version_;
    std::map<json::value const*, std::map<std::string, json::value const*>> rules_by_id_;
};

}  // namespace bradep::sarif
