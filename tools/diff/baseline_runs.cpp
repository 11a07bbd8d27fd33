#include "diff/baseline_runs.hpp"

#include <string>
#include <string_view>
#include <utility>

namespace bradep {

namespace json = sarif::json;

namespace {

std::string name_of_tool(sarif::LogSource const& source, std::size_t number) {
    json::value const         run = source.run(number);
    boost::system::error_code error;
    auto const* const         name = run.find_pointer("/tool/driver/name", error);
    auto const* const         text = name ? name->if_string() : nullptr;
    return text ? std::string(*text) : std::string();
}

bool has_results(sarif::LogSource const& source, std::size_t run) {
    bool has_some = false;
    source.results(run, [&](std::string const&, json::object&&) { has_some = true; });
    return has_some;
}

json::object* object_in(json::object* object, std::string_view name) {
    auto* const value = object ? object->if_contains(name) : nullptr;
    return value ? value->if_object() : nullptr;
}

// The driver's rules; null if there are none.
json::array* rules_in(json::object& run) {
    auto* const driver = object_in(object_in(&run, "tool"), "driver");
    auto* const rules = driver ? driver->if_contains("rules") : nullptr;
    return rules ? rules->if_array() : nullptr;
}

std::string text_in(json::value const& object, std::string_view name) {
    auto const* const members = object.if_object();
    auto const* const value = members ? members->if_contains(name) : nullptr;
    auto const* const text = value ? value->if_string() : nullptr;
    return text ? std::string(*text) : std::string();
}

// The rule of the driver that a result refers to.
json::value const* rule_of(json::object const& result, json::array const* rules) {
    auto const* const value = result.if_contains("ruleIndex");
    auto const* const index = value ? value->if_int64() : nullptr;
    if (!index || !rules || *index < 0 || std::cmp_greater_equal(*index, rules->size()))
        return nullptr;
    return &(*rules)[static_cast<std::size_t>(*index)];
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
    Rules&      known = rules_[number];
    json::array added;
    auto* const own = rules_in(run);
    std::size_t count = own ? own->size() : 0;
    for (std::size_t i = 0; i < count; ++i)
        known.try_emplace(text_in((*own)[i], "id"), static_cast<std::int64_t>(i));
    for (std::size_t const old_number : absent_.at(number)) {
        auto              old_run = olds_.run(old_number);
        auto const* const old_rules = rules_in(old_run);
        bool              has_results = false;
        olds_.results(old_number, [&](std::string const&, json::object&& result) {
            has_results = true;
            auto const* const rule = rule_of(result, old_rules);
            if (!rule) return;
            auto const [at, is_new] =
                known.try_emplace(text_in(*rule, "id"), static_cast<std::int64_t>(count));
            if (!is_new) return;
            added.push_back(*rule);
            ++count;
        });
        if (has_results) add_base_uris(run, old_run);
    }
    if (added.empty()) return;
    if (own)
        own->insert(own->end(), added.begin(), added.end());
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
            if (rule)
                result["ruleIndex"] = known.at(text_in(*rule, "id"));
            else
                result.erase("rule");  // of an extension: that may stand elsewhere
            sink(key, std::move(result));
        });
    }
}

}  // namespace bradep
