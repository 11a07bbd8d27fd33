#include "diff/baseline_runs.hpp"

#include "sarif/fitting.hpp"
#include "sarif/json_members.hpp"

#include <algorithm>
#include <string>
#include <utility>

namespace bradep {

namespace json = sarif::json;
using sarif::index_in;
using sarif::list_in;
using sarif::object_in;
using sarif::text_in;

namespace {

std::string name_of_tool(sarif::LogSource const& source, std::size_t number) {
    auto const        run = source.run(number);
    auto const* const driver = object_in(object_in(&run, "tool"), "driver");
    return text_in(driver, "name");
}

bool has_results(sarif::LogSource const& source, std::size_t run) {
    bool has_some = false;
    source.results(run, [&](std::string const&, json::object&&) { has_some = true; });
    return has_some;
}

template <class Run>
auto* rules_in(Run& run) {
    return list_in(object_in(object_in(&run, "tool"), "driver"), "rules");
}

// How many of the rules a log will have: those that SARIF does not allow stand behind the others.
std::size_t count_fitting(json::array const& rules) {
    auto const fits = [](json::value rule) {
        sarif::LeftOut not_counted;
        return make_fit(rule, sarif::schema::reporting_descriptor, "", not_counted);
    };
    return static_cast<std::size_t>(std::ranges::find_if_not(rules, fits) - rules.begin());
}

// The rule of the driver that a result refers to; null for one that has no id to be known by.
json::value const* rule_of(json::object const& result, json::array const* rules) {
    auto const index = index_in(&result, "ruleIndex");
    if (!index || !rules || *index >= rules->size()) return nullptr;
    json::value const& rule = (*rules)[*index];
    return text_in(rule.if_object(), "id").empty() ? nullptr : &rule;
}

// Adds what the old run's results need of it and the new run does not have.
void add_base_uris(json::object& run, json::object& old_run) {
    auto* const olds = object_in(&old_run, "originalUriBaseIds");
    if (!olds) return;
    auto& news = run["originalUriBaseIds"];
    if (!news.is_object()) news.emplace_object();
    for (auto const& [name, location] : *olds) news.get_object().emplace(name, location);
}

}  // namespace

void StatedRuns::results(std::size_t run, ResultSink const& sink) const {
    all_->results(run, [&](std::string const& key, json::object&& result) {
        auto const state = states_.find(key);
        if (state == states_.end()) return;
        result["baselineState"] = state->second;
        sink(key, std::move(result));
    });
}

BaselineRuns::BaselineRuns(sarif::LogSource const& olds, sarif::LogSource const& news)
    : olds_(olds), news_(news) {
    std::map<std::string, std::size_t> first_runs;
    for (std::size_t run = 0; run < news.runs(); ++run)
        first_runs.try_emplace(name_of_tool(news, run), run);
    for (std::size_t run = 0; run < olds.runs(); ++run) {
        auto const first = first_runs.find(name_of_tool(olds, run));
        if (first != first_runs.end())
            absent_[first->second].push_back(run);
        else if (has_results(olds, run))
            others_.push_back(run);
    }
}

json::object BaselineRuns::run(std::size_t number) const {
    if (number >= news_.runs()) return olds_.run(others_[number - news_.runs()]);
    auto run = news_.run(number);
    if (absent_.contains(number)) add_rules(run, number);
    return run;
}

void BaselineRuns::add_rules(json::object& run, std::size_t number) const {
    Rules&            known = rules_[number];
    json::array       added;
    auto* const       own = rules_in(run);
    std::size_t const fitting = own ? count_fitting(*own) : 0;
    for (std::size_t i = 0; i < fitting; ++i)
        known.try_emplace(text_in((*own)[i].if_object(), "id"), static_cast<std::int64_t>(i));
    for (std::size_t const old_number : absent_.at(number)) {
        auto              old_run = olds_.run(old_number);
        auto const* const old_rules = rules_in(old_run);
        bool              has_results = false;
        olds_.results(old_number, [&](std::string const&, json::object&& result) {
            has_results = true;
            auto const* const rule = rule_of(result, old_rules);
            if (!rule) return;
            auto const index = static_cast<std::int64_t>(fitting + added.size());
            if (known.try_emplace(text_in(rule->if_object(), "id"), index).second)
                added.push_back(*rule);
        });
        if (has_results) add_base_uris(run, old_run);
    }
    if (added.empty()) return;
    if (own)
        own->insert(own->begin() + static_cast<std::ptrdiff_t>(fitting), added.begin(),
                    added.end());
    else if (auto* const driver = object_in(object_in(&run, "tool"), "driver"))
        (*driver)["rules"] = std::move(added);
}

void BaselineRuns::results(std::size_t run, ResultSink const& sink) const {
    if (run >= news_.runs()) return olds_.results(others_[run - news_.runs()], sink);
    news_.results(run, sink);
    auto const absent = absent_.find(run);
    if (absent == absent_.end()) return;
    if (!rules_.contains(run)) this->run(run);
    Rules const& known = rules_.at(run);
    for (std::size_t const old_run : absent->second) {
        auto              old_object = olds_.run(old_run);
        auto const* const old_rules = rules_in(old_object);
        olds_.results(old_run, [&](std::string const& key, json::object&& result) {
            auto const* const rule = rule_of(result, old_rules);
            result.erase("rule");  // of an extension: that may stand elsewhere
            result.erase("ruleIndex");
            if (rule) result["ruleIndex"] = known.at(text_in(rule->if_object(), "id"));
            sink(key, std::move(result));
        });
    }
}

}  // namespace bradep
