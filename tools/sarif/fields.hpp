#pragma once
// Maps properties of SARIF objects to fields of a result set: one list of rows for both directions.
//
// A row is a property of a SARIF object: its name in a log, its name in `show --json`, the member
// of the object (result.hpp) that has it, and the field of the set that holds it. `hold` goes
// through the rows of an object to fill a record of the set, and `restore` goes through the same
// rows to get the object back. If a field can't say that a value is absent, the row names a bit
// that does. A property that is not a plain field has a row with two functions of its own. A field
// that is computed from others has a row that is never read. docs/sarif.md prints the rows, and a
// test compares each path with the output of `bradep dump`.

#include "sarif/field.hpp"
#include "sarif/flows.hpp"
#include "sarif/place_fields.hpp"
#include "sarif/records.hpp"
#include "sarif/result.hpp"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

namespace bradep::sarif::fields {

// A set has one number of runs for all its logs.

struct Logs {
    std::int32_t runs;
};

inline constexpr Field runs{
    no_property("how many `runs`"), nullptr, &Logs::runs,
    held(
        "application_results", "first_int",
        [](auto const& record) -> auto& { return record.set.application_results.first_int; })};

inline constexpr std::tuple of_logs{runs};

// A step of a flow is an event.

inline constexpr std::tuple of_step{
    PlaceField{"location", &Step::place, short_place, in_event("source_ref", &Event::source_ref),
               in_event("first_string", &Event::first_string),
               in_event("signature.qualified_signature.qualified_name.name",
                        along<&Event::signature, &Signature::qualified_signature,
                              &QualifiedSignature::qualified_name, &QualifiedName::name>)},
    Field{{"location.message.text", "`location.message`"},
          "message",
          &Step::message,
          in_event("optional_string", &Event::optional_string)},
    Field{no_property("other properties, by pointer"), "more", &Step::more,
          in_event("signature.package", along<&Event::signature, &Signature::package>),
          Given{1, in_event("first_flag", &Event::first_flag)}},
    Derived{no_property("number of the run, from 0"), events_path, "first_int",
            [](auto const&, FilledEvent const& record) { record.event.first_int = record.run; }},
    Derived{no_property("always `DEFECT_EVENT`"), events_path, "kind",
            [](auto const&, FilledEvent const& record) {
                record.event.kind->choose<"DEFECT_EVENT">();
            }}};

inline constexpr std::tuple of_failure{Derived{no_property("always `UNKNOWN`"), checks_path,
                                               "failure.technology",
                                               [](auto const&, FilledFailure const& record) {
                                                   record.failure.technology.choose<"UNKNOWN">();
                                               }}};

// Information records hold more of a check: the elements of three lists.

/// The check of an information record, the list, and the index of the element in it.
struct InfoHead {
    Text         role;
    std::int32_t position;
    NumberedKey  check;
};

inline constexpr Field role{no_property("the list: `location`, `relatedLocation` or `suppression`"),
                            nullptr, &InfoHead::role, in_info("first_string", &Info::first_string)};
inline constexpr Field position{no_property("the index in it"), nullptr, &InfoHead::position,
                                in_info("first_int", &Info::first_int)};

inline constexpr std::tuple of_info{
    role, position,
    Field{no_property("URI in the key of the check"), nullptr,
          along<&InfoHead::check, &NumberedKey::first>,
          in_info("second_string", &Info::second_string)},
    Field{no_property("ordinal in the key of the check"), nullptr,
          along<&InfoHead::check, &NumberedKey::second>, in_info("second_int", &Info::second_int)},
    Derived{no_property("always `TOOLTIP_INFO`"), infos_path, "category",
            [](auto const&, FilledInfo const& record) {
                record.info.category.choose<"TOOLTIP_INFO">();
            }}};

inline constexpr auto tooltip = in_info(
    "category.TOOLTIP_INFO.tooltip",
    [](auto& info) -> auto& { return info.category.template arm<"TOOLTIP_INFO">().tooltip; });
inline constexpr Given tooltip_is_given{1, in_info("flag", &Info::flag)};

template <class Said>
constexpr auto place_in_info(Said said) {
    return PlaceField{Sarif{"", "the location"},
                      said,
                      of_place,
                      in_info("location", &Info::location),
                      in_info("fourth_string", &Info::fourth_string),
                      in_info("third_string", &Info::third_string)};
}

inline constexpr std::tuple of_further_location{place_in_info(std::identity())};

inline constexpr std::tuple of_related_location{
    ByHand{"id", "id", &RelatedPlace::id, infos_path, "string_and_int.1",
           [](std::optional<std::int32_t> const& id, FilledInfo const& record) {
               auto& comparisons = record.filling.comparisons;
               if (id) record.info.string_and_int.emplace(comparisons.interned("id"), *id);
           },
           [](std::optional<std::int32_t>& id, ReadInfo const& record) {
               if (record.info.string_and_int) id = record.info.string_and_int->second;
           }},
    place_in_info(&RelatedPlace::place),
    Field{{"message.text", "`message`"},
          "message",
          &RelatedPlace::message,
          tooltip,
          tooltip_is_given}};

inline constexpr std::tuple of_suppression{
    ByHand{"kind", "kind", &Suppression::kind, infos_path, "string_and_int.0",
           [](std::optional<Text> const& kind, FilledInfo const& record) {
               if (kind) record.info.string_and_int.emplace(*kind, 0);
           },
           [](std::optional<Text>& kind, ReadInfo const& record) {
               if (record.info.string_and_int) kind = record.info.string_and_int->first;
           }},
    Field{"status", "status", &Suppression::status, tooltip, tooltip_is_given}};

/// A list of a result. Each element, from index `first` on, is an information record.
template <class Said, class Rows>
struct InfoList {
    Sarif       sarif;
    char const* shown;
    Said        said;
    char const* role;
    std::size_t first;
    Rows        rows;  ///< the rows of an element
};
template <class Said, class Rows>
InfoList(Sarif, char const*, Said, char const*, std::size_t, Rows) -> InfoList<Said, Rows>;

inline constexpr InfoList further_locations{no_property("`locations[i]`, i from 1"),
                                            "locations",
                                            &Result::locations,
                                            "location",
                                            1,
                                            of_further_location};
inline constexpr InfoList related_locations{{"relatedLocations", "`relatedLocations[i]`"},
                                            "related",
                                            &Result::related,
                                            "relatedLocation",
                                            0,
                                            of_related_location};
inline constexpr InfoList suppressions{{"suppressions", "`suppressions[i]`"},
                                       "suppressions",
                                       &Result::suppressions,
                                       "suppression",
                                       0,
                                       of_suppression};

inline constexpr std::tuple info_lists{further_locations, related_locations, suppressions};

// Fingerprints are in the form.

constexpr char const* complete_family = "fingerprints";
constexpr char const* partial_family = "partialFingerprints";

struct Fingerprint {
    Text family;
    Text name;
    Text value;
};

inline constexpr std::tuple of_fingerprint{
    Field{no_property("the list: `fingerprints` or `partialFingerprints`"), nullptr,
          &Fingerprint::family,
          in_fingerprint("0.package", along<&SignatureAndText::first, &Signature::package>)},
    Field{no_property("the name"), nullptr, &Fingerprint::name,
          in_fingerprint("0.qualified_signature.qualified_name.name",
                         along<&SignatureAndText::first, &Signature::qualified_signature,
                               &QualifiedSignature::qualified_name, &QualifiedName::name>)},
    Field{no_property("the value"), nullptr, &Fingerprint::value,
          in_fingerprint("1", &SignatureAndText::second)}};

template <class Said>
constexpr auto fingerprints_in(Said said, char const* family) {
    auto const hold_all = [family](Fingerprints const& all, FilledCheck const& record) {
        for (auto const& [name, value] : all) {
            SignatureAndText  held;
            Fingerprint const one{record.filling.comparisons.interned(family), name, value};
            hold(of_fingerprint, one, FilledFingerprint{held});
            record.form.signature_locations.insert({record.form.localization, std::move(held)});
        }
    };
    // Every family but `partialFingerprints` is read as complete.
    auto const restore_all = [family](Fingerprints& all, ReadCheck const& record) {
        bool const wants_partial = std::string_view(family) == partial_family;
        for (auto const& [place, held] : record.form.signature_locations) {
            Fingerprint one;
            restore(of_fingerprint, one, ReadFingerprint{held});
            if ((one.family.str() == partial_family) == wants_partial) all[one.name] = one.value;
        }
    };
    return ByHand{family,   "fingerprints", said, forms_path, "signature_locations",
                  hold_all, restore_all};
}

// What is kept of runs and rules, beside the checks. Each rule that results name is kept once.

inline constexpr std::tuple of_descriptor{
    Field{no_property("the rule's descriptor, as JSON text"), nullptr,
          along<&Descriptor::text, &KeptJson::text>,
          in_entry(
              "0.qualified_name.name",
              along<&KeptEntry::first, &QualifiedSignature::qualified_name, &QualifiedName::name>)},
    Field{no_property("the JSON pointer of its tool component in the run"), nullptr,
          &Descriptor::component,
          in_entry("0.qualified_name.qualifier",
                   along<&KeptEntry::first, &QualifiedSignature::qualified_name,
                         &QualifiedName::qualifier>)}};

/// A property of a run.
inline constexpr std::tuple of_run_fact{Field{
    no_property("the property, as JSON text"), nullptr, &KeptJson::text,
    in_entry("0.qualified_name.name",
             along<&KeptEntry::first, &QualifiedSignature::qualified_name, &QualifiedName::name>)}};

constexpr std::string_view rules_prefix = "rules/";
constexpr std::string_view runs_prefix = "runs/";

inline sml::Strings_T rule_key(std::int32_t number, Comparisons& comparisons) {
    return comparisons.interned(std::string(rules_prefix) + std::to_string(number));
}

/// The number of the descriptor in the set, from 1. It is added if it is new.
inline std::int32_t number_of(Descriptor const& descriptor, Filling const& filling) {
    auto const number = static_cast<std::int32_t>(filling.descriptors.size()) + 1;
    auto const [known, is_new] =
        filling.descriptors.try_emplace({descriptor.component, descriptor.text.text}, number);
    if (!is_new) return known->second;
    auto const key = rule_key(number, filling.comparisons);
    auto&      entries = filling.set.application_results.signatures;
    hold(of_descriptor, descriptor, FilledEntry{filling.at(entries, key)});
    return number;
}

/// None if the set has no descriptor of this number.
inline std::optional<Descriptor> descriptor_at(std::int32_t number, ResultSet const& set) {
    auto const& entries = set.application_results.signatures;
    auto const  found = number > 0
                            ? entries.find(Text(std::string(rules_prefix) + std::to_string(number)))
                            : entries.end();
    if (found == entries.end()) return std::nullopt;
    Descriptor descriptor{{}, Text()};
    restore(of_descriptor, descriptor, ReadEntry{found->second});
    return descriptor;
}

// A result is a check and its form.

constexpr auto given_in_check(std::uint32_t bits) {
    return Given{bits, in_check("second_int", &Check::second_int)};
}

inline constexpr Derived category{
    no_property("always `BF_CHECKER_WITH_PRECOMPUTED_MESSAGE`"), checks_path, "category",
    [](auto const&, FilledCheck const& record) {
        record.check.category.choose<"BF_CHECKER_WITH_PRECOMPUTED_MESSAGE">();
    }};
inline constexpr auto message_of_category = in_check(
    "category.BF_CHECKER_WITH_PRECOMPUTED_MESSAGE.message", [](auto& check) -> auto& {
        return check.category.template arm<"BF_CHECKER_WITH_PRECOMPUTED_MESSAGE">().message;
    });

inline constexpr Field run{no_property("number of the run, from 0"), "run", &Result::run,
                           in_check("first_int", &Check::first_int)};
inline constexpr Field tool{no_property("`tool.driver.name`"), "tool", &Result::tool,
                            in_check("first_string", &Check::first_string), given_in_check(1)};
inline constexpr Field tool_version{
    no_property("`tool.driver.version`, else `semanticVersion`"), nullptr, &Result::tool_version,
    in_check("second_string", &Check::second_string), given_in_check(2)};
inline constexpr Field rule{{"ruleId", "`ruleId`, else `rule.id`, else the rule's `id`"},
                            "rule",
                            &Result::rule,
                            in_check("optional_string", &Check::optional_string)};
inline constexpr Field level{"level", "level", &Result::level,
                             in_check("third_string", &Check::third_string)};
inline constexpr Field kind{"kind", "kind", &Result::kind,
                            in_check("fourth_string", &Check::fourth_string)};
inline constexpr Field message{{"message.text", "`message`"},
                               "message",
                               &Result::message,
                               message_of_category,
                               given_in_check(4)};
inline constexpr Field baseline_state{"baselineState", "baselineState", &Result::baseline_state,
                                      in_check("sixth_string", &Check::sixth_string),
                                      given_in_check(8)};
inline constexpr PlaceField first_location{
    {"locations", "`locations[0]`"},
    &Result::locations,
    std::tuple{},
    in_check("source_ref", &Check::source_ref),
    in_check("fifth_string", &Check::fifth_string),
    in_form("second_optional_name", &CheckForm::second_optional_name)};
inline constexpr ByHand flows{"codeFlows", "flows",    &Result::flows, checks_path,
                              "failure",   hold_flows, restore_flows};

inline constexpr ByHand more{
    no_property("other properties: the pointer in `qualifier`, the text in `name`"),
    "more",
    &Result::more,
    checks_path,
    "located_names",
    [](More const& all, FilledCheck const& record) {
        if (all.texts.empty()) return;
        auto& names = record.check.located_names[record.check.source_ref.localization].first;
        for (auto const& [pointer, text] : all.texts) {
            QualifiedName const name{pointer, text};
            names.insert(name);
            record.filling.comparisons.count_key(names, name);
        }
    },
    [](More& all, ReadCheck const& record) {
        for (auto const& [place, located] : record.check.located_names)
            for (auto const& name : located.first) all.texts.emplace(name.qualifier, name.name);
    }};

/// The order matters: `message` needs the category, and `flows` needs the run.
inline constexpr std::tuple of_check{category, run,  tool,    tool_version,   rule,
                                     level,    kind, message, baseline_state, first_location,
                                     flows,    more};

/// A field of the form that repeats a row of the result.
template <class Row, class Member>
constexpr auto again(Row const& row, char const* field, Member member) {
    return Derived{row.sarif, forms_path, field,
                   [row, member](Result const& result, FilledCheck const& record) {
                       std::invoke(member, record.form) = std::invoke(row.said, result);
                   }};
}

/// A field of the form that repeats a row of the first location.
template <class Row, class Member>
constexpr auto again_of_place(Row const& row, char const* field, Member member) {
    return Derived{row.sarif, forms_path, field,
                   [row, member](Result const& result, FilledCheck const& record) {
                       if (auto const* const place = place_in(result.locations))
                           std::invoke(member, record.form) = std::invoke(row.said, *place);
                   }};
}

inline constexpr auto complete = fingerprints_in(&Result::fingerprints, complete_family);
inline constexpr auto partial = fingerprints_in(&Result::partial_fingerprints, partial_family);

inline constexpr std::tuple of_form_place{
    again_of_place(line, "first_optional_int", &CheckForm::first_optional_int),
    again_of_place(column, "second_optional_int", &CheckForm::second_optional_int),
    again_of_place(end_line, "third_optional_int", &CheckForm::third_optional_int),
    again_of_place(end_column, "fourth_optional_int", &CheckForm::fourth_optional_int)};

/// Must be filled after `of_check`, because some rows read the check.
inline constexpr std::tuple of_form{
    Derived{no_property("the key of the check"), forms_path, "first_numbered_name",
            [](auto const&, FilledCheck const& record) {
                record.form.first_numbered_name = record.key;
            }},
    again(run, "first_int", &CheckForm::first_int),
    again(rule, "first_optional_name", &CheckForm::first_optional_name),
    ByHand{no_property("the number of the rule's descriptor in the set, from 1"), nullptr,
           &Result::descriptor, forms_path, "second_int",
           [](std::optional<Descriptor> const& descriptor, FilledCheck const& record) {
               if (descriptor) record.form.second_int = number_of(*descriptor, record.filling);
           },
           [](std::optional<Descriptor>& descriptor, ReadCheck const& record) {
               descriptor = descriptor_at(record.form.second_int, record.set);
           }},
    again(level, "name", &CheckForm::name),
    Derived{no_property("`message`, as in the check"), forms_path, "category",
            [](auto const&, FilledCheck const& record) {
                record.form.category = record.check.category;
            }},
    Derived{no_property("`locations[0]`, as in its source reference"), forms_path, "localization",
            [](auto const&, FilledCheck const& record) {
                record.form.localization = record.check.source_ref.localization;
            }},
    Derived{no_property("always `UNCLASSIFIED`"), forms_path, "classification.classification_class",
            [](auto const&, FilledCheck const& record) {
                record.form.classification.classification_class =
                    sml::Results_API_base::GUI_Check_Classification_base::UNCLASSIFIED;
            }},
    complete,
    partial};

/// The members of a line of `show --json`, in its order, before the fingerprints.
inline constexpr std::tuple of_line{run,
                                    tool,
                                    rule,
                                    level,
                                    kind,
                                    baseline_state,
                                    suppressions,
                                    message,
                                    further_locations,
                                    related_locations,
                                    flows,
                                    more};

/// The rows of a part of a result.
constexpr auto const& rows_of(Place const&) { return of_place; }
constexpr auto const& rows_of(Step const&) { return of_step; }
constexpr auto const& rows_of(RelatedPlace const&) { return of_related_location; }
constexpr auto const& rows_of(Suppression const&) { return of_suppression; }

}  // namespace bradep::sarif::fields
