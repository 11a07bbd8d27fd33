#include "diff/baseline_runs.hpp"

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

// In another run, the same rule may stand elsewhere or not at all.
void forget_place_of_rule(json::object& result) {
    result.erase("ruleIndex");
    result.erase("rule");
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
    return number < news_.runs() ? news_.run(number) : olds_.run(others_[number - news_.runs()]);
}

void BaselineRuns::results(std::size_t run, ResultSink const& sink) const {
    if (run >= news_.runs()) return olds_.results(others_[run - news_.runs()], sink);
    news_.results(run, sink);
    auto const absent = absent_.find(run);
    if (absent == absent_.end()) return;
    for (std::size_t const old_run : absent->second)
        olds_.results(old_run, [&](std::string const& key, json::object&& result) {
            forget_place_of_rule(result);
            sink(key, std::move(result));
        });
}

}  // namespace bradep
