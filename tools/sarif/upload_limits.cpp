#include "sarif/upload_limits.hpp"

#include <algorithm>
#include <array>
#include <functional>
#include <numeric>
#include <string_view>
#include <tuple>

namespace bradep::sarif {

namespace {

json::array* list_in(json::object& object, std::string_view name) {
    auto* const value = object.if_contains(name);
    return value ? value->if_array() : nullptr;
}

json::object* object_in(json::object& object, std::string_view name) {
    auto* const value = object.if_contains(name);
    return value ? value->if_object() : nullptr;
}

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
    auto const* const      level = result.if_contains("level");
    std::string_view const name = level && level->is_string() ? level->get_string() : "warning";
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
    auto       run = all_.run(kept_[number]);
    auto const limit_rules = [&](json::object& component) {
        auto* const rules = list_in(component, "rules");
        cut_.rules += cut_list(rules, limits_.rules);
        for_each_object(rules, [&](json::object& rule) {
            if (auto* const bag = object_in(rule, "properties"))
                cut_.tags += cut_list(list_in(*bag, "tags"), limits_.tags);
        });
    };
    if (auto* const tool = object_in(run, "tool")) {
        if (auto* const driver = object_in(*tool, "driver")) limit_rules(*driver);
        for_each_object(list_in(*tool, "extensions"), limit_rules);
    }
    return run;
}

// Which results of a run matter most.
std::vector<bool> LimitedRuns::chosen(std::size_t run) const {
    std::vector<Weight> weights;
    all_.results(kept_[run], [&](std::string const&, json::object&& result) {
        weights.push_back(weight_of(result, weights.size()));
    });
    std::vector<bool> is_chosen(weights.size(), weights.size() <= limits_.results);
    if (weights.size() <= limits_.results) return is_chosen;
    auto const end = weights.begin() + static_cast<std::ptrdiff_t>(limits_.results);
    std::ranges::nth_element(weights, end, std::greater(), &Weight::order);
    for (auto one = weights.begin(); one != end; ++one) is_chosen[one->number] = true;
    return is_chosen;
}

void LimitedRuns::results(std::size_t run, ResultSink const& sink) const {
    auto const is_chosen = chosen(run);
    auto const kept = std::ranges::count(is_chosen, true);
    cut_.most_kept = std::max(cut_.most_kept, static_cast<std::uint64_t>(kept));
    std::size_t number = 0;
    all_.results(kept_[run], [&](std::string const& key, json::object&& result) {
        if (!is_chosen[number++]) {
            ++cut_.results;
            return;
        }
        trim(result);
        sink(key, std::move(result));
    });
}

void LimitedRuns::trim(json::object& result) const {
    auto const* const index = result.if_contains("ruleIndex");
    if (index && index->is_int64() && std::cmp_greater_equal(index->get_int64(), limits_.rules))
        result.erase("ruleIndex");
    for (std::string_view const name : {"locations", "relatedLocations"})
        cut_.locations += cut_list(list_in(result, name), limits_.locations);
    std::size_t left = limits_.flow_locations;
    for_each_object(list_in(result, "codeFlows"), [&](json::object& flow) {
        for_each_object(list_in(flow, "threadFlows"), [&](json::object& thread) {
            auto* const steps = list_in(thread, "locations");
            cut_.flow_locations += cut_list(steps, left);
            if (steps) left -= steps->size();
        });
    });
}

}  // namespace bradep::sarif
