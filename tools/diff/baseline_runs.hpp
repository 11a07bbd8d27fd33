#pragma once
// A diff as runs of a log: the new findings' runs, with the state of each result.

#include "sarif/log_source.hpp"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace bradep {

/// The states of findings by their keys.
using StatesByKey = std::unordered_map<std::string, std::string_view>;

/// The runs of another source with those results whose findings have states, each with its state as
/// `baselineState`.
class StatedRuns : public sarif::LogSource {
public:
    StatedRuns(std::unique_ptr<sarif::LogSource> all, StatesByKey states)
        : all_(std::move(all)), states_(std::move(states)) {}

    std::size_t         runs() const override { return all_->runs(); }
    sarif::json::object run(std::size_t number) const override { return all_->run(number); }
    void                results(std::size_t run, ResultSink const& sink) const override;

private:
    std::unique_ptr<sarif::LogSource> all_;
    StatesByKey                       states_;
};

/// The runs of the new side. Behind the results of the first run of a tool are those of the old
/// side's runs of that tool, which are absent; rules and base URIs that only these have are added.
/// Old runs of tools that have no run follow, if they have results.
class BaselineRuns : public sarif::LogSource {
public:
    /// The sources must outlive this object. All results of `olds` are absent ones.
    BaselineRuns(sarif::LogSource const& olds, sarif::LogSource const& news);

    std::size_t         runs() const override { return news_.runs() + others_.size(); }
    sarif::json::object run(std::size_t number) const override;
    void                results(std::size_t run, ResultSink const& sink) const override;

private:
    /// The indices of the driver's rules by their ids.
    using Rules = std::map<std::string, std::int64_t>;

    void add_rules(sarif::json::object& run, std::size_t number) const;

    sarif::LogSource const&                         olds_;
    sarif::LogSource const&                         news_;
    std::map<std::size_t, std::vector<std::size_t>> absent_;  // old runs, by the new run
    std::vector<std::size_t>                        others_;  // old runs
    mutable std::map<std::size_t, Rules>            rules_;   // of runs with absent results
};

}  // namespace bradep
