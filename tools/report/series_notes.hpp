#pragma once
// What a series of runs says of the findings in a report.

#include <sml/tables/result_sets.hpp>
#include "report/reported_findings.hpp"
#include "track/series_file.hpp"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace bradep {

/// The runs of a series and, if its last run is that of the report, the identities of findings.
class SeriesNotes : public FindingNotes {
public:
    /// Both arguments are only used while the object is made.
    SeriesNotes(SeriesFile& series, sml::tables::ResultSets const& sets);

    std::vector<report::SeriesRun> const& history() const { return history_; }
    bool                                  has_identities() const { return !identities_.empty(); }

    void add(std::size_t finding, report::FindingColumns& columns,
             sml::inspect::JsonWriter& details) const override;

private:
    struct Identity {
        std::uint32_t number = 0;  // 0: the series does not have the finding
        std::int64_t  first_run = 0;
    };
    void read_identities(sml::results::SeriesStore& store, sml::tables::ResultSets const& sets);
    std::string const& name_of(std::int64_t run) const;

    std::vector<report::SeriesRun> history_;
    std::vector<Identity>          identities_;  // by finding
};

}  // namespace bradep
