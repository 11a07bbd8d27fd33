#include "sarif/upload_limits.hpp"

#include "sarif/json_members.hpp"
#include "signals.hpp"

#include <algorithm>
#include <array>
#include <functional>
#include <numeric>
#include <string_view>
#include <tuple>

namespace bradep::sarif {

namespace {

// Leaves the first elements; returns how many others there were.
std::size_t cut_list(json::array* list, std::size_t most) {
    if (list == nullptr || list->size() <= most) return 0;
    std::size_t const rest = list->size() - most;
    list->erase(list->begin() + static_cast<std::ptrdiff_t>(most), list->end());
    return rest;
}

template <class Use>
void for_each_object(json::array* list, Use const& use) {
    if (list == nullptr) return;
    for (auto& element : *list)
        if (auto* const object = element.if_object()) use(*object);
}

// Erases the objects of which a list has become empty.
void erase_if_empty(json::array* objects, std::string_view name) {
    if (objects == nullptr) return;
    auto const is_empty = [&](json::value& one) {
        auto* const list = list_in(one.if_object(), name);
        return list && list->empty();
    };
    objects->erase(std::remove_if(objects->begin(), objects->end(), is_empty), objects->end());
}

/// How much a result matters; greater is more.
struct Weight {
    std::size_t level;
    double      rank;
    std::size_t number;  // of the result in its run; the first ones count more

    auto order() const { return std::tuple(level, rank, -static_cast<std::ptrdiff_t>(number)); }
};

constexpr std::array<std::string_view, 4> levels = {"none", "note", "warning", "error"};

// The position in `levels`; behind them for another one.
std::size_t level_of(json::object const& result) {
    auto const name = result.contains("level") ? text_in(&result, "level") : "warning";
    return static_cast<std::size_t>(std::ranges::find(levels, name) - levels.begin());
}

Weight weight_of(json::object const& result, std::size_t number) {
    auto const* const rank = result.if_contains("rank");
    return {level_of(result), rank && rank->is_number() ? rank->to_number<double>() : -1.0, number};
}

}  // namespace

std::string Cut::in_words() const {
    std::string words;
    for (auto const& [count, name] : {std::pair{runs, "run"},
                                      {results, "result"},
                                      {rules, "rule"},
                                      {tags, "tag"},
                                      {locations, "location"},
                                      {flow_locations, "flow location"}}) {
        if (count == 0) continue;
        if (!words.empty()) words += ", ";
        words += std::to_string(count) + ' ' + name + (count == 1 ? "" : "s");
    }
    return words;
}

std::vector<RunWeight> weights_of(LogSource const& source) {
    std::vector<RunWeight> weights(source.runs());
    for (std::size_t run = 0; run < weights.size(); ++run)
        source.results(run, [&](std::string const&, json::object&& result) {
            Interruption::check();
            ++weights[run][levels.size() - 1 - std::min(level_of(result), levels.size() - 1)];
        });
    return weights;
}

std::vector<bool> heaviest(std::vector<RunWeight> const& runs, std::size_t most) {
    std::vector<std::size_t> order(runs.size());
    std::iota(order.begin(), order.end(), 0);
    std::ranges::stable_sort(order, std::greater(), [&](std::size_t run) { return runs[run]; });
    std::vector<bool> kept(runs.size());
    for (std::size_t i = 0; i < std::min(most, order.size()); ++i) kept[order[i]] = true;
    return kept;
}

json::object LimitedRuns::run(std::size_t number) const {
    auto        run = all_.run(kept_[number]);
    Kept const& kept = kept_of(number);
    auto* const tool = object_in(&run, "tool");
    if (!tool) return run;
    if (auto* const driver = object_in(tool, "driver")) keep_rules(*driver, 0, kept);
    std::size_t component = 0;
    for_each_object(list_in(tool, "extensions"),
                    [&](json::object& extension) { keep_rules(extension, ++component, kept); });
    return run;
}

void LimitedRuns::keep_rules(json::object& component, std::size_t number, Kept const& kept) const {
    auto* const rules = list_in(&component, "rules");
    if (!rules) return;
    if (!kept.has_all_rules) {
        json::array left;
        for (std::size_t i = 0; i < rules->size(); ++i)
            if (kept.rules.contains({number, i})) left.push_back(std::move((*rules)[i]));
        cut_.rules += rules->size() - left.size();
        *rules = std::move(left);
    }
    for_each_object(rules, [&](json::object& rule) {
        if (auto* const bag = object_in(&rule, "properties"))
            cut_.tags += cut_list(list_in(bag, "tags"), limits_.tags);
    });
}

std::optional<LimitedRuns::RuleAt> LimitedRuns::rule_of(json::object const& result) {
    if (auto const index = index_in(&result, "ruleIndex")) return RuleAt{0, *index};
    auto const* const reference = object_in(&result, "rule");
    auto const        index = index_in(reference, "index");
    auto const        component = index_in(object_in(reference, "toolComponent"), "index");
    if (!index || !component) return std::nullopt;
    return RuleAt{*component + 1, *index};
}

// Which results of a run matter most.
LimitedRuns::Kept const& LimitedRuns::kept_of(std::size_t run) const {
    auto const [at, is_new] = kept_of_runs_.try_emplace(run);
    Kept& kept = at->second;
    if (!is_new) return kept;
    std::vector<Weight> weights;
    all_.results(kept_[run], [&](std::string const&, json::object&& result) {
        Interruption::check();
        weights.push_back(weight_of(result, weights.size()));
    });
    kept.results.assign(weights.size(), weights.size() <= limits_.results);
    if (weights.size() > limits_.results) {
        auto const end = weights.begin() + static_cast<std::ptrdiff_t>(limits_.results);
        std::ranges::nth_element(weights, end, std::greater(), &Weight::order);
        for (auto one = weights.begin(); one != end; ++one) kept.results[one->number] = true;
    }
    choose_rules(run, kept);
    return kept;
}

// The results that are kept have no more rules than a run may have.
void LimitedRuns::choose_rules(std::size_t run, Kept& kept) const {
    std::size_t count = 0;
    auto        given = all_.run(kept_[run]);
    if (auto* const tool = object_in(&given, "tool")) {
        auto const add = [&](json::object& component) {
            if (auto const* const rules = list_in(&component, "rules")) count += rules->size();
        };
        if (auto* const driver = object_in(tool, "driver")) add(*driver);
        for_each_object(list_in(tool, "extensions"), add);
    }
    kept.has_all_rules = count <= limits_.rules;
    if (kept.has_all_rules) return;
    std::size_t number = 0;
    all_.results(kept_[run], [&](std::string const&, json::object&& result) {
        if (!kept.results[number++]) return;
        if (auto const rule = rule_of(result)) kept.rules.emplace(*rule, 0);
    });
    std::size_t component = 0;
    std::size_t index = 0;
    for (auto& [rule, new_index] : kept.rules) {
        if (rule.component != component) index = 0;
        component = rule.component;
        new_index = index++;
    }
}

void LimitedRuns::results(std::size_t run, ResultSink const& sink) const {
    Kept const& kept = kept_of(run);
    auto const  count = std::ranges::count(kept.results, true);
    cut_.most_kept = std::max(cut_.most_kept, static_cast<std::uint64_t>(count));
    std::size_t number = 0;
    all_.results(kept_[run], [&](std::string const& key, json::object&& result) {
        if (!kept.results[number++]) {
            ++cut_.results;
            return;
        }
        trim(result, kept);
        sink(key, std::move(result));
    });
}

void LimitedRuns::trim(json::object& result, Kept const& kept) const {
    if (auto const rule = rule_of(result); rule && !kept.has_all_rules) {
        auto const index = static_cast<std::int64_t>(kept.rules.at(*rule));
        if (rule->component == 0)
            result["ruleIndex"] = index;
        else
            result["rule"].get_object()["index"] = index;
    }
    for (std::string_view const name : {"locations", "relatedLocations"})
        cut_.locations += cut_list(list_in(&result, name), limits_.locations);
    std::size_t left = limits_.flow_locations;
    auto* const flows = list_in(&result, "codeFlows");
    for_each_object(flows, [&](json::object& flow) {
        auto* const threads = list_in(&flow, "threadFlows");
        for_each_object(threads, [&](json::object& thread) {
            auto* const steps = list_in(&thread, "locations");
            cut_.flow_locations += cut_list(steps, left);
            if (steps) left -= steps->size();
        });
        erase_if_empty(threads, "locations");
    });
    erase_if_empty(flows, "threadFlows");
}

}  // namespace bradep::sarif
