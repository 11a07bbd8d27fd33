#pragma once
// The runs of result sets, whoever wrote them.

#include <sml/inspect/finding.hpp>
#include <sml/tables/result_sets.hpp>
#include "sarif/log_source.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace bradep::sarif {

/// The runs of one of the sets, which are numbered from 1: those of an imported set as they were,
/// else one run with all of its checks. Texts of one result may come to `most` bytes. `sets` must
/// outlive it. Throws DamagedInput for a set without checks, IoFailure, and Interrupted; so do
/// the functions of what is returned.
std::unique_ptr<LogSource> runs_of_set(sml::tables::ResultSets const& sets, std::int64_t number,
                                       sml::inspect::WalkOptions const& options,
                                       std::uint64_t                    most);

/// The runs of several sources, one behind the other.
class JoinedRuns : public LogSource {
public:
    void add(std::unique_ptr<LogSource> source);

    std::size_t  runs() const override { return runs_; }
    json::object run(std::size_t number) const override;
    void         results(std::size_t run, ResultSink const& sink) const override;

private:
    struct Part {
        std::size_t                first;  // the number of its first run
        std::unique_ptr<LogSource> source;
    };
    Part const& part_of(std::size_t run) const;

    std::vector<Part> parts_;
    std::size_t       runs_ = 0;
};

}  // namespace bradep::sarif
