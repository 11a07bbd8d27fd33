#pragma once
// One run of a SARIF log and the parts of it that its results refer to by index, id or guid.

#include "comparisons.hpp"
#include "sarif/elements_by_text.hpp"
#include "sarif/kept.hpp"
#include "sarif/kept_text.hpp"
#include "sarif/limits.hpp"
#include "sarif/result.hpp"
#include "sarif/rule_index.hpp"
#include "sarif/run_lists.hpp"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace bradep::sarif {

namespace json = boost::json;

/// Makes the texts of the results of a log, within its limits. All members throw json_input::Misfit
/// beyond them.
class Expansion {
public:
    Expansion(Limits const& limits, Comparisons& comparisons)
        : limits_(limits), left_(limits.expansion), comparisons_(comparisons) {}

    /// `where` is the value that is reported if a limit is exceeded.
    Text                text_of(std::string_view text, json::value const& where);
    std::optional<Text> text(std::optional<std::string_view> given, json::value const& where);
    Limits const&       limits() const { return limits_; }
    Text message(std::string_view pattern, std::vector<std::string_view> const& arguments,
                 json::value const& where);

private:
    void spend(std::uint64_t bytes, json::value const& where);

    Limits        limits_;
    std::uint64_t left_;
    Comparisons&  comparisons_;
};

/// `run` is an object with the parts that results refer to. Keeps pointers to values in it, which
/// must outlive this object. All members throw
/// json_input::Misfit.
class Run {
public:
    Run(json::value const& run, std::int32_t number, Expansion& expansion);

    Result resolve(json::value const& result);

    /// What is kept of the run, once all results are resolved: the components depend on them.
    RunFacts facts();

private:
    // The driver, whose value may be null, or an extension.
    struct Component {
        explicit Component(json::value const* given);

        json::value const* value;
        json::array const* rules;
        ElementsByText     rules_by_guid;
    };
    static constexpr std::size_t driver = 0;  // index in `components_`
    static constexpr std::size_t first_extension = 1;

    void                            add_component(json::value const* given);
    Rule                            rule_of(json::value const& result);
    std::size_t                     component_of(json::value const* reference);
    std::optional<Text>             message_of(json::value const& holder, Rule const& rule);
    std::optional<std::string_view> message_string(std::string_view id, Rule const& rule) const;
    Place                           place_of(json::value const& location);
    void         resolve_artifact(json::value const& artifact_location, Place& place);
    void         resolve_places(json::value const& given, Rule const& rule, Result& result);
    void         name_logically(json::value const& location, Place& place);
    Step         step_of(json::value const& thread_flow_location, Rule const& rule);
    CodeFlow     flow_of(json::value const& code_flow, Rule const& rule);
    Fingerprints fingerprints_of(json::value const& result, std::string_view name);
    std::vector<Suppression> suppressions_of(json::value const& result);
    bool                     says_one_name(json::value const& logical_locations) const;
    std::string              markdown_text(json::value const& message);
    template <class Append>
    std::string kept_text(json::value const& value, Rule const& rule, Append const& append);
    std::string kept_text(schema::Property const& property, json::value const& value,
                          Rule const& rule);
    std::string more_text(kept::Member const& member, schema::Property const& property,
                          json::value const& value, Rule const& rule);
    std::optional<KeptJson>   more_of(json::value const& thread_flow_location, Rule const& rule);
    void                      keep_more(json::value const& given, Rule const& rule, Result& result);
    std::optional<Descriptor> descriptor_of(Rule const& rule);
    std::string               pointer_of(json::value const* component);
    void keep_component(std::string const& pointer, json::value const& component, RunFacts& facts);
    void keep_extensions(RunFacts& facts);

    json::value const&                        run_;
    Expansion&                                expansion_;
    std::int32_t                              number_;
    json::array const*                        artifacts_ = nullptr;
    json::array const*                        logical_locations_ = nullptr;
    json::array const*                        thread_flow_locations_ = nullptr;
    RunLists                                  lists_;
    std::map<json::value const*, Descriptor>  descriptors_;
    std::vector<json::value const*>           used_extensions_;  // in the order of their first use
    std::map<json::value const*, std::size_t> used_numbers_;     // index of each of these
    std::optional<Text>                       tool_;
    std::optional<Text>                       tool_version_;
    std::vector<Component>                    components_;
    std::map<json::value const*, std::size_t> numbers_;  // index of each component in `components_`
    ElementsByText                            extensions_by_guid_{nullptr, "guid"};
    ElementsByText                            extensions_by_name_{nullptr, "name"};
    RuleIndex                                 rules_by_id_;
    bool                                      is_over_ = false;  // all results are resolved
};

}  // namespace bradep::sarif
