#include "sarif/flows.hpp"

#include "sarif/fields.hpp"

#include <cstddef>
#include <string>

namespace bradep::sarif {

namespace {

using Failure = sml::Failure::T;

// `named_ints` of a failure has the length of each list of the flows. The key is the JSON pointer
// of the list relative to the result.
constexpr char const* flows_pointer = "codeFlows";

std::string flow_pointer(std::size_t flow) {
    return "codeFlows/" + std::to_string(flow) + "/threadFlows";
}

std::string thread_pointer(std::size_t flow, std::size_t thread) {
    return flow_pointer(flow) + "/" + std::to_string(thread) + "/locations";
}

void add_event(Step const& step, std::int32_t run, Failure& failure, Filling const& filling) {
    auto&      tables = filling.set.application_results;
    auto const uri = step.place ? content(step.place->uri) : Text();
    auto const key = filling.next_key(tables.event_numbers, uri);
    hold(fields::of_step, step, FilledEvent{filling.add(tables.events, key), run});
    failure.steps.emplace_back(key, std::nullopt);
}

std::int32_t count_at(Failure const& failure, std::string const& pointer) {
    return entry(failure.named_ints, Text(pointer), "a flow");
}

}  // namespace

void hold_flows(std::vector<CodeFlow> const& flows, FilledCheck const& record) {
    if (flows.empty()) return;
    auto const& filling = record.filling;
    Failure&    failure = record.check.failure.emplace();
    auto const  count = [&](std::string const& pointer, std::size_t size) {
        filling.at(failure.named_ints, filling.comparisons.interned(pointer)) =
            static_cast<std::int32_t>(size);
    };
    hold(fields::of_failure, flows, FilledFailure{failure});
    count(flows_pointer, flows.size());
    for (std::size_t i = 0; i < flows.size(); ++i) {
        count(flow_pointer(i), flows[i].size());
        for (std::size_t j = 0; j < flows[i].size(); ++j) {
            count(thread_pointer(i, j), flows[i][j].size());
            for (Step const& step : flows[i][j])
                add_event(step, fields::run.held(record), failure, filling);
        }
    }
}

void restore_flows(std::vector<CodeFlow>& flows, ReadCheck const& record) {
    if (!record.check.failure) return;
    auto const& failure = *record.check.failure;
    auto        step = failure.steps.begin();
    auto const  flow_count = static_cast<std::size_t>(count_at(failure, flows_pointer));
    for (std::size_t i = 0; i < flow_count; ++i) {
        auto&      flow = flows.emplace_back();
        auto const thread_count = static_cast<std::size_t>(count_at(failure, flow_pointer(i)));
        for (std::size_t j = 0; j < thread_count; ++j) {
            auto& thread = flow.emplace_back();
            for (auto left = count_at(failure, thread_pointer(i, j)); left > 0; --left, ++step) {
                if (step == failure.steps.end())
                    not_imported("a check has fewer steps than its flows");
                auto const& events = record.set.application_results.events;
                restore(fields::of_step, thread.emplace_back(),
                        ReadEvent{entry(events, step->first, "an event")});
            }
        }
    }
}

}  // namespace bradep::sarif
