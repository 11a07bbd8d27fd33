#include "sarif/mapping.hpp"

#include <algorithm>
#include <string>

#include "errors.hpp"

namespace bradep::sarif {
namespace {

using sml::Strings_T;
using Event = sml::Events::T_An_Event;
using Failure = sml::Failure::T;
using Info = sml::Infos::T_An_Info;
using Source_Ref = sml::SourceLocRef::T_SourceLocRef;

// `kind` of a source reference: which parts of the place the log gives.
enum Given_In_Place : std::uint32_t {
    given_place = 1,
    given_uri = 2,
    given_base = 4,
    given_line = 8,
    given_column = 16,
    given_end_line = 32,
    given_end_column = 64,
    given_logical = 128,
};

// `second_int` of a check: which of its texts the log gives.
enum Given_In_Check : std::int32_t {
    given_tool = 1,
    given_tool_version = 2,
    given_message = 4,
    given_baseline_state = 8,
};

// `first_string` of an information record: what it tells of its check.
constexpr char const* further_location = "location";
constexpr char const* related_location = "relatedLocation";
constexpr char const* suppression_role = "suppression";

constexpr char const* related_id = "id";
constexpr char const* complete_fingerprint = "fingerprints";
constexpr char const* partial_fingerprint = "partialFingerprints";

Text or_empty(std::optional<Text> const& text) { return text.value_or(Text()); }

std::optional<Text> text_if(bool given, Text const& text) {
    if (!given) return std::nullopt;
    return text;
}

// The end of a place in one word: its line in the upper half, its column in the lower.
std::int64_t packed_end(Place const& place) {
    auto const line = static_cast<std::uint32_t>(place.end_line.value_or(0));
    auto const column = static_cast<std::uint32_t>(place.end_column.value_or(0));
    return static_cast<std::int64_t>((std::uint64_t{line} << 32) | column);
}

Source_Ref source_ref_of(Place const& place) {
    std::uint32_t given = given_place;
    if (place.uri) given |= given_uri;
    if (place.base) given |= given_base;
    if (place.line) given |= given_line;
    if (place.column) given |= given_column;
    if (place.end_line) given |= given_end_line;
    if (place.end_column) given |= given_end_column;
    if (place.logical) given |= given_logical;

    Source_Ref reference;
    reference.kind = given;
    reference.localization.first_position = place.line.value_or(0);
    reference.localization.file = or_empty(place.uri);
    reference.localization.second_position = place.column.value_or(0);
    reference.reference = packed_end(place);
    return reference;
}

std::optional<Place> place_of(Source_Ref const& reference, Strings_T const& base,
                              Strings_T const& logical) {
    auto const given = reference.kind;
    if (!(given & given_place)) return std::nullopt;
    auto const end = static_cast<std::uint64_t>(reference.reference);
    Place      place;
    place.uri = text_if(given & given_uri, reference.localization.file);
    place.base = text_if(given & given_base, base);
    if (given & given_line) place.line = reference.localization.first_position;
    if (given & given_column) place.column = reference.localization.second_position;
    if (given & given_end_line) place.end_line = static_cast<std::int32_t>(end >> 32);
    if (given & given_end_column) place.end_column = static_cast<std::int32_t>(end & 0xFFFFFFFFU);
    place.logical = text_if(given & given_logical, logical);
    return place;
}

// A set to which results are added. What is looked up in its tables, or among all texts, is
// counted.
struct Filling {
    Result_Set&  set;
    Comparisons& comparisons;

    // The value behind a key, which is added where it is not there.
    template <typename Table>
    typename Table::mapped_type& at(Table& table, typename Table::key_type const& key) const {
        auto& value = table[key];
        comparisons.count_key(table, key);
        return value;
    }

    // The next key of a table for a URI: ordinals count from 1 and `numbers` holds the last one.
    template <typename Numbers>
    Numbered_Key next_key(Numbers& numbers, Strings_T const& uri) const {
        return {uri, ++at(numbers, uri)};
    }
};

void add_event(Step const& step, std::int32_t run, Failure& failure, Filling const& filling) {
    auto&      tables = filling.set.application_results;
    auto const place = step.place.value_or(Place{});
    auto const key = filling.next_key(tables.event_numbers, or_empty(place.uri));
    Event&     event = filling.at(tables.events, key);
    event.optional_string = step.message;
    event.signature.qualified_signature.qualified_name.name = or_empty(place.logical);
    event.first_string = or_empty(place.base);
    event.first_int = run;
    event.kind->choose<"DEFECT_EVENT">();
    if (step.place) event.source_ref = source_ref_of(place);
    failure.steps.emplace_back(key, std::nullopt);
}

Step restored_step(Event const& event) {
    Step        step;
    auto const& logical = event.signature.qualified_signature.qualified_name.name;
    step.place = place_of(event.source_ref, event.first_string, logical);
    step.message = event.optional_string;
    return step;
}

// `named_ints` of a failure holds how many elements each list of the flows has, under its pointer
// below the result.
std::string flow_pointer(std::size_t flow) {
    return "codeFlows/" + std::to_string(flow) + "/threadFlows";
}

std::string thread_pointer(std::size_t flow, std::size_t thread) {
    return flow_pointer(flow) + "/" + std::to_string(thread) + "/locations";
}

constexpr char const* flows_pointer = "codeFlows";

Failure failure_of(Result const& result, Filling const& filling) {
    Failure failure;
    failure.technology.choose<"UNKNOWN">();
    auto const count = [&](std::string const& pointer, std::size_t size) {
        filling.at(failure.named_ints, filling.comparisons.interned(pointer)) =
            static_cast<std::int32_t>(size);
    };
    count(flows_pointer, result.flows.size());
    for (std::size_t i = 0; i < result.flows.size(); ++i) {
        count(flow_pointer(i), result.flows[i].size());
        for (std::size_t j = 0; j < result.flows[i].size(); ++j) {
            count(thread_pointer(i, j), result.flows[i][j].size());
            for (auto const& step : result.flows[i][j])
                add_event(step, result.run, failure, filling);
        }
    }
    return failure;
}

[[noreturn]] void not_imported(std::string const& what) {
    throw Damaged_Input("not an imported result set: " + what);
}

template <typename Table>
typename Table::mapped_type const& entry(Table const& table, typename Table::key_type const& key,
                                         char const* what) {
    auto const found = table.find(key);
    if (found == table.end())
        not_imported(std::string("a check has ") + what + " that is in no table");
    return found->second;
}

std::int32_t count_at(Failure const& failure, std::string const& pointer) {
    return entry(failure.named_ints, Strings_T(pointer), "a flow");
}

std::vector<Code_Flow> restored_flows(Failure const& failure, Result_Set const& set) {
    std::vector<Code_Flow> flows;
    auto                   step = failure.steps.begin();
    auto const             flow_count = static_cast<std::size_t>(count_at(failure, flows_pointer));
    for (std::size_t i = 0; i < flow_count; ++i) {
        auto&      flow = flows.emplace_back();
        auto const thread_count = static_cast<std::size_t>(count_at(failure, flow_pointer(i)));
        for (std::size_t j = 0; j < thread_count; ++j) {
            auto& thread = flow.emplace_back();
            for (auto left = count_at(failure, thread_pointer(i, j)); left > 0; --left, ++step) {
                if (step == failure.steps.end())
                    not_imported("a check has fewer steps than its flows");
                thread.push_back(
                    restored_step(entry(set.application_results.events, step->first, "an event")));
            }
        }
    }
    return flows;
}

// A new information record about the check; the caller fills in what it says.
Info& add_info(char const* role, std::size_t position, Numbered_Key const& check,
               Strings_T const& uri, Filling const& filling) {
    auto&      tables = filling.set.application_results;
    auto const key = filling.next_key(tables.info_numbers, uri);
    filling.at(tables.first_key_sets, check).insert(key);
    Info& info = filling.at(tables.infos, key);
    info.first_string = filling.comparisons.interned(role);
    info.first_int = static_cast<std::int32_t>(position);
    info.second_string = check.first;
    info.second_int = check.second;
    info.category.choose<"TOOLTIP_INFO">();
    return info;
}

void set_place(Info& info, Place const& place) {
    info.location = source_ref_of(place);
    info.third_string = or_empty(place.logical);
    info.fourth_string = or_empty(place.base);
}

void set_text(Info& info, std::optional<Text> const& text) {
    info.flag = text.has_value();
    info.category.arm<"TOOLTIP_INFO">().tooltip = or_empty(text);
}

void add_infos(Result const& result, Numbered_Key const& check, Filling const& filling) {
    for (std::size_t i = 1; i < result.locations.size(); ++i) {
        auto const& place = result.locations[i];
        set_place(add_info(further_location, i, check, or_empty(place.uri), filling), place);
    }
    for (std::size_t i = 0; i < result.related.size(); ++i) {
        auto const& related = result.related[i];
        Info& info = add_info(related_location, i, check, or_empty(related.place.uri), filling);
        set_place(info, related.place);
        set_text(info, related.message);
        if (related.id)
            info.string_and_int.emplace(filling.comparisons.interned(related_id), *related.id);
    }
    for (std::size_t i = 0; i < result.suppressions.size(); ++i) {
        Info& info = add_info(suppression_role, i, check, check.first, filling);
        set_text(info, result.suppressions[i].status);
        if (result.suppressions[i].kind)
            info.string_and_int.emplace(*result.suppressions[i].kind, 0);
    }
}

std::vector<Info const*> infos_of(Numbered_Key const& check, Result_Set const& set) {
    std::vector<Info const*> infos;
    auto const&              tables = set.application_results;
    auto const               keys = tables.first_key_sets.find(check);
    if (keys == tables.first_key_sets.end()) return infos;
    for (auto const& key : keys->second)
        infos.push_back(&entry(tables.infos, key, "an information record"));
    // Keys are in the order of addresses, which says nothing.
    std::sort(infos.begin(), infos.end(),
              [](auto const* a, auto const* b) { return a->first_int < b->first_int; });
    return infos;
}

void restore_info(Info const& info, Result& result) {
    auto const text = [&] {
        return text_if(info.flag, info.category.arm<"TOOLTIP_INFO">().tooltip);
    };
    auto const place =
        place_of(info.location, info.fourth_string, info.third_string).value_or(Place{});
    if (!info.category.holds<"TOOLTIP_INFO">()) not_imported("an information record is no tooltip");
    if (info.first_string.str() == further_location) {
        result.locations.push_back(place);
    } else if (info.first_string.str() == related_location) {
        auto& related = result.related.emplace_back();
        related.place = place;
        related.message = text();
        if (info.string_and_int) related.id = info.string_and_int->second;
    } else if (info.first_string.str() == suppression_role) {
        auto& one = result.suppressions.emplace_back();
        one.status = text();
        if (info.string_and_int) one.kind = info.string_and_int->first;
    }
}

void fill_check(Result const& result, Check& check, Filling const& filling) {
    check.first_string = or_empty(result.tool);
    check.first_int = result.run;
    check.category.choose<"BF_CHECKER_WITH_PRECOMPUTED_MESSAGE">().message =
        or_empty(result.message);
    if (result.tool) check.second_int |= given_tool;
    if (result.tool_version) check.second_int |= given_tool_version;
    if (result.message) check.second_int |= given_message;
    if (result.baseline_state) check.second_int |= given_baseline_state;
    check.optional_string = result.rule;
    check.second_string = or_empty(result.tool_version);
    check.third_string = result.level;
    check.fourth_string = result.kind;
    check.sixth_string = or_empty(result.baseline_state);
    if (!result.locations.empty()) {
        check.fifth_string = or_empty(result.locations.front().base);
        check.source_ref = source_ref_of(result.locations.front());
    }
    if (!result.flows.empty()) check.failure = failure_of(result, filling);
}

void add_fingerprints(Fingerprints const& fingerprints, char const* family, Check_Form& form,
                      Filling const& filling) {
    for (auto const& [name, value] : fingerprints) {
        sml::PackagedPrettySignature::T signature;
        signature.package = filling.comparisons.interned(family);
        signature.qualified_signature.qualified_name.name = name;
        form.signature_locations.insert({form.localization, {signature, value}});
    }
}

void fill_form(Result const& result, Numbered_Key const& key, Check const& check, Check_Form& form,
               Filling const& filling) {
    auto const place = result.locations.empty() ? Place{} : result.locations.front();
    form.first_optional_int = place.line;
    form.second_optional_int = place.column;
    form.third_optional_int = place.end_line;
    form.fourth_optional_int = place.end_column;
    form.first_optional_name = check.optional_string;
    form.second_optional_name = place.logical;
    form.classification.classification_class =
        sml::Results_API_base::GUI_Check_Classification_base::UNCLASSIFIED;
    form.first_int = result.run;
    form.first_numbered_name = key;
    form.localization = check.source_ref.localization;
    form.name = check.third_string;
    form.category = check.category;
    add_fingerprints(result.fingerprints, complete_fingerprint, form, filling);
    add_fingerprints(result.partial_fingerprints, partial_fingerprint, form, filling);
}

void restore_form(Check_Form const& form, Result& result) {
    for (auto const& [localization, fingerprint] : form.signature_locations) {
        auto const& [signature, value] = fingerprint;
        bool const partial = signature.package.str() == partial_fingerprint;
        auto&      family = partial ? result.partial_fingerprints : result.fingerprints;
        family[signature.qualified_signature.qualified_name.name] = value;
    }
}

void restore_check(Check const& check, Check_Form const& form, Result& result) {
    constexpr auto message_arm = [](Check const& c) -> auto const& {
        return c.category.arm<"BF_CHECKER_WITH_PRECOMPUTED_MESSAGE">().message;
    };
    if (!check.category.holds<"BF_CHECKER_WITH_PRECOMPUTED_MESSAGE">())
        not_imported("a check has no message");
    result.run = check.first_int;
    result.tool = text_if(check.second_int & given_tool, check.first_string);
    result.tool_version = text_if(check.second_int & given_tool_version, check.second_string);
    result.rule = check.optional_string;
    result.level = check.third_string;
    result.kind = check.fourth_string;
    result.message = text_if(check.second_int & given_message, message_arm(check));
    result.baseline_state = text_if(check.second_int & given_baseline_state, check.sixth_string);
    auto const logical = form.second_optional_name.value_or(Strings_T());
    if (auto const place = place_of(check.source_ref, check.fifth_string, logical))
        result.locations.push_back(*place);
}

// How long the longest text of a result is.
class Longest_Text {
public:
    explicit Longest_Text(Result const& result) {
        see(result.level, result.kind, result.tool, result.tool_version, result.rule,
            result.message, result.baseline_state);
        for (auto const& place : result.locations) see(place);
        for (auto const& related : result.related) see(related.place, related.message);
        for (auto const& flow : result.flows)
            for (auto const& thread : flow)
                for (auto const& step : thread) see(step.place, step.message);
        for (auto const* family : {&result.fingerprints, &result.partial_fingerprints})
            for (auto const& [name, value] : *family) see(name, value);
        for (auto const& one : result.suppressions) see(one.kind, one.status);
    }

    std::size_t bytes() const { return bytes_; }

private:
    template <typename... Parts>
    void see(Parts const&... parts) {
        (see_one(parts), ...);
    }
    template <typename T>
    void see_one(std::optional<T> const& part) {
        if (part) see_one(*part);
    }
    void see_one(Text const& text) { bytes_ = std::max(bytes_, text.str().size()); }
    void see_one(Place const& place) { see(place.uri, place.base, place.logical); }

    std::size_t bytes_ = 0;
};

// The longest container of a set to which the result is added.
std::size_t most_entries(Result const& result, Result_Set const& set) {
    std::size_t lists = 1 + result.flows.size();  // whose lengths `named_ints` holds
    std::size_t steps = 0;
    for (auto const& flow : result.flows) {
        lists += flow.size();
        for (auto const& thread : flow) steps += thread.size();
    }
    auto const infos = result.locations.size() + result.related.size() + result.suppressions.size();
    auto const& tables = set.application_results;
    return std::max({set.check_data.size() + 1, tables.events.size() + steps,
                     tables.infos.size() + infos, lists,
                     result.fingerprints.size() + result.partial_fingerprints.size()});
}

void refuse_more(std::size_t found, std::size_t most, char const* what) {
    if (found > most)
        throw Damaged_Input("a result set has no room for " + std::string(what) + " " +
                            std::to_string(found) + ", only for " + std::to_string(most));
}

}  // namespace

void add_result(Result const& result, Result_Set& set, Comparisons& comparisons,
                Set_Limits const& limits) {
    refuse_more(Longest_Text(result).bytes(), limits.text_bytes, "a text of this many bytes:");
    refuse_more(most_entries(result, set), limits.entries, "this many entries of a table:");
    Filling const filling{set, comparisons};
    auto&         tables = set.application_results;
    auto const    uri = result.locations.empty() ? std::nullopt : result.locations.front().uri;
    auto const    key = filling.next_key(tables.check_numbers, or_empty(uri));
    Check&        check = filling.at(tables.checks, key);
    fill_check(result, check, filling);
    add_infos(result, key, filling);
    auto& [id, form] = set.check_data.emplace_back();
    id = static_cast<std::int32_t>(set.check_data.size() - 1);
    fill_form(result, key, check, form, filling);
    auto const strings = Strings_T::fAllStrings.size() + 1;  // and the empty one
    refuse_more(strings, limits.strings, "this many strings:");
}

Result restored_result(Check_Form const& form, Result_Set const& set) {
    if (!form.first_numbered_name) not_imported("a check form names no check");
    auto const& key = *form.first_numbered_name;
    auto const& check = entry(set.application_results.checks, key, "a key");
    Result      result;
    restore_check(check, form, result);
    for (auto const* info : infos_of(key, set)) restore_info(*info, result);
    restore_form(form, result);
    if (check.failure) result.flows = restored_flows(*check.failure, set);
    return result;
}

std::set<Numbered_Key> suppressed_checks(Result_Set const& set) {
    std::set<Numbered_Key> suppressed;
    for (auto const& [key, info] : set.application_results.infos) {
        if (info.first_string.str() != suppression_role) continue;
        if (!info.category.holds<"TOOLTIP_INFO">()) continue;
        auto const& status = info.category.arm<"TOOLTIP_INFO">().tooltip.str();
        if (!info.flag || status == "accepted")
            suppressed.insert({info.second_string, info.second_int});
    }
    return suppressed;
}

}  // namespace bradep::sarif
