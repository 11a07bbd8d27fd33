#pragma once
// Hands the findings of result sets to the writer of a report.

#include <report/writer/report_writer.hpp>
#include <sml/inspect/text/json_writer.hpp>
#include <sml/inspect/verify.hpp>
#include <sml/tables/result_sets.hpp>
#include "sarif/fitting.hpp"
#include "sarif/log_source.hpp"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <utility>
#include <vector>

namespace bradep {

/// What is known of findings beside what their result sets say, such as their states in a diff.
class FindingNotes {
public:
    virtual ~FindingNotes() = default;

    /// Whether a finding is to be in the report. Findings are numbered from 0 over all sets, in the
    /// order of their rows.
    virtual bool is_reported(std::size_t) const { return true; }

    /// The state of the finding, for its result and for the column; none if it is empty.
    virtual std::string_view state(std::size_t) const { return {}; }

    /// Sets further columns, and adds members to the details.
    virtual void add(std::size_t, report::FindingColumns&, sml::inspect::JsonWriter&) const {}
};

/// The findings of the result sets of one side.
class ReportedFindings {
public:
    /// Texts of one result may come to `max_result` bytes.
    struct Options {
        sml::inspect::WalkOptions walk;
        std::uint64_t             max_result = 0;
        bool                      is_old = false;  ///< of a comparison
    };
    /// Takes each result with its run.
    using ResultSink =
        std::function<void(sarif::json::object const& run, sarif::json::object const& result)>;

    /// All arguments must outlive this object.
    ReportedFindings(sml::tables::ResultSets const& sets, Options const& options,
                     std::vector<FindingNotes const*> notes, report::ReportWriter& writer)
        : sets_(sets), options_(options), notes_(std::move(notes)), writer_(writer) {}

    /// Adds all runs and findings, and hands the results on. Of an old side, only runs with
    /// findings are added. Throws DamagedInput, IoFailure, Interrupted, and what the writer throws.
    void add(ResultSink const& sink);

    /// What of the results was no SARIF.
    sarif::LeftOut const& left_out() const { return left_out_; }

private:
    class OfSet;

    sml::tables::ResultSets const&   sets_;
    Options const&                   options_;
    std::vector<FindingNotes const*> notes_;
    report::ReportWriter&            writer_;
    std::size_t                      first_ = 0;  // number of the first finding of a set
    sarif::LeftOut                   left_out_;
};

}  // namespace bradep
