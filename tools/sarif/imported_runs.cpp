#include "sarif/imported_runs.hpp"

#include "errors.hpp"
#include "sarif/fields.hpp"
#include "sarif/fitting.hpp"
#include "sarif/mapping.hpp"
#include "sarif/schema.hpp"

#include <algorithm>
#include <set>
#include <string>

namespace bradep::sarif {

namespace {

constexpr std::string_view driver_pointer = "tool/driver";
constexpr std::string_view extensions_prefix = "tool/extensions/";
constexpr std::string_view taxonomies_prefix = "taxonomies/";

/// The facts of the components of a list, by their index: those from 0 on without a gap.
std::vector<KeptJson> components(More const& facts, std::string_view prefix) {
    std::vector<KeptJson> all;
    for (;;) {
        auto const pointer = Text(std::string(prefix) + std::to_string(all.size()));
        auto const found = facts.texts.find(pointer);
        if (found == facts.texts.end()) return all;
        all.push_back(found->second);
    }
}

More without_components(More facts, std::size_t extensions, std::size_t taxonomies) {
    auto const erase = [&](std::string_view pointer) {
        facts.texts.erase(Text(std::string(pointer)));
    };
    erase(driver_pointer);
    for (std::size_t i = 0; i < extensions; ++i)
        erase(std::string(extensions_prefix) + std::to_string(i));
    for (std::size_t i = 0; i < taxonomies; ++i)
        erase(std::string(taxonomies_prefix) + std::to_string(i));
    return facts;
}

json::object& object_in(json::value& value) {
    return value.is_object() ? value.get_object() : value.emplace_object();
}

}  // namespace

ImportedRuns::ImportedRuns(ResultSet const& set, std::uint64_t most) : set_(set), json_(most) {
    auto const& tables = set.application_results;
    if (tables.checks.size() > set.check_data.size()) not_imported("a check has no form");
    for (auto const& [id, form] : set.check_data) {
        if (form.first_int < 0) not_imported("a check is of no run");
        forms_.emplace_back(form.first_int, &form);
    }
    std::ranges::stable_sort(forms_, {}, &Forms::value_type::first);
    for (auto& one : restored_facts(set))
        facts_.emplace(static_cast<std::size_t>(one.run), std::move(one.facts));
    runs_ = static_cast<std::size_t>(std::max(tables.first_int, 0));
    if (!forms_.empty()) runs_ = std::max(runs_, forms_.back().first + 1);
}

std::pair<ImportedRuns::Forms::const_iterator, ImportedRuns::Forms::const_iterator>
ImportedRuns::forms_of(std::size_t run) const {
    return {std::ranges::lower_bound(forms_, run, {}, &Forms::value_type::first),
            std::ranges::upper_bound(forms_, run, {}, &Forms::value_type::first)};
}

More const& ImportedRuns::facts_of(std::size_t run) const {
    static More const none;
    auto const        facts = facts_.find(run);
    return facts == facts_.end() ? none : facts->second;
}

// The rules of a component stand in the order of their numbers, so in that of their first use.
ImportedRuns::Rules ImportedRuns::rules_of(std::size_t run) const {
    std::map<std::string, std::size_t> pointers{{std::string(driver_pointer), 0}};
    for (auto left = components(facts_of(run), extensions_prefix).size(); left > 0; --left)
        pointers.emplace(std::string(extensions_prefix) + std::to_string(left - 1), left);
    std::set<std::int32_t> numbers;
    auto const [first, last] = forms_of(run);
    for (auto form = first; form != last; ++form) numbers.insert(form->second->second_int);
    Rules                                                      rules;
    std::map<std::pair<std::size_t, std::string>, std::size_t> known;
    std::vector<std::pair<std::size_t, json::value>>           unfit;  // by component
    for (auto const number : numbers) {
        auto const descriptor = fields::descriptor_at(number, set_);
        auto const known_component =
            descriptor ? pointers.find(descriptor->component.str()) : pointers.end();
        if (known_component == pointers.end()) continue;
        auto const component = known_component->second;
        auto       value = json_.value_of_text(descriptor->text.text.str());
        LeftOut    not_counted;  // the writer makes them fit, and counts
        auto       written = value;
        if (!make_fit(written, schema::reporting_descriptor, "", not_counted)) {
            unfit.emplace_back(component, std::move(value));
            continue;
        }
        auto& list = rules.lists[component];
        auto const [at, is_new] =
            known.try_emplace({component, json::serialize(written)}, list.size());
        if (is_new) list.push_back(std::move(value));
        rules.places.emplace(number, RuleAt{component, at->second});
    }
    for (auto& [component, value] : unfit) rules.lists[component].push_back(std::move(value));
    return rules;
}

// Sets of earlier imports have no facts, only the name and the version of the tool in each check.
json::object ImportedRuns::driver_without_facts(std::size_t run) const {
    json::object driver;
    auto const [first, last] = forms_of(run);
    if (first == last) return driver;
    auto const result = restored_result(*first->second, set_);
    if (result.tool) driver.emplace("name", result.tool->str());
    if (result.tool_version) driver.emplace("version", result.tool_version->str());
    return driver;
}

json::array ImportedRuns::values_of(std::vector<KeptJson> const& texts) const {
    json::array list;
    for (auto const& one : texts) list.push_back(json_.value_of_text(one.text.str()));
    return list;
}

json::object ImportedRuns::run(std::size_t number) const {
    json_.start();
    auto const& facts = facts_of(number);
    auto const  extensions = components(facts, extensions_prefix);
    auto const  taxonomies = components(facts, taxonomies_prefix);
    auto const  driver = facts.texts.find(Text(std::string(driver_pointer)));

    json::array tools = values_of(extensions);
    tools.insert(tools.begin(), driver == facts.texts.end()
                                    ? json::value(driver_without_facts(number))
                                    : json_.value_of_text(driver->second.text.str()));
    for (auto& [component, list] : rules_of(number).lists)
        object_in(tools[component])["rules"] = std::move(list);

    json::object tool;
    tool.emplace("driver", std::move(tools.front()));
    tools.erase(tools.begin());
    if (!tools.empty()) tool.emplace("extensions", std::move(tools));
    json::object run;
    run.emplace("tool", std::move(tool));
    if (!taxonomies.empty()) run.emplace("taxonomies", values_of(taxonomies));
    json_.add_kept(run, without_components(facts, extensions.size(), taxonomies.size()));
    return run;
}

void ImportedRuns::results(std::size_t run, ResultSink const& sink) const {
    auto const rules = rules_of(run);
    auto const [first, last] = forms_of(run);
    for (auto form = first; form != last; ++form) {
        auto const result = restored_result(*form->second, set_);
        json_.start();
        auto       object = json_.object_of(result);
        auto const rule = rules.places.find(form->second->second_int);
        if (rule != rules.places.end()) refer(object, rule->second);
        auto const& key = form->second->first_numbered_name;
        sink(key->first.str() + ':' + std::to_string(key->second), std::move(object));
    }
}

void ImportedRuns::refer(json::object& result, RuleAt const& rule) {
    if (rule.component == 0) {
        result["ruleIndex"] = static_cast<std::int64_t>(rule.index);
        return;
    }
    json::object reference;
    if (auto const* const id = result.if_contains("ruleId")) reference.emplace("id", *id);
    reference.emplace("index", static_cast<std::int64_t>(rule.index));
    reference.emplace("toolComponent",
                      json::object{{"index", static_cast<std::int64_t>(rule.component - 1)}});
    result["rule"] = std::move(reference);
}

}  // namespace bradep::sarif
