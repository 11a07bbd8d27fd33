#pragma once
// A kernel's own checks as a run of a log.

#include <sml/tables/sqlite/database.hpp>
#include "sarif/log_source.hpp"

#include <boost/json.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace bradep::sarif {

/// Whether a result set has checks that no import has written.
bool holds_kernel_checks(sml::tables::Database& database, std::int64_t set);

/// One run with all findings of a result set, as the view `findings` has them: categories are the
/// rules, information records the related locations, and payloads stand in the property bags.
class KernelRuns : public LogSource {
public:
    /// `set` is the number of the result set. The database must outlive this object. Throws what
    /// reading its tables throws.
    KernelRuns(sml::tables::Database& database, std::int64_t set);

    std::size_t  runs() const override { return 1; }
    json::object run(std::size_t number) const override;
    void         results(std::size_t run, ResultSink const& sink) const override;

private:
    sml::tables::Database&   database_;
    std::int64_t             set_;
    std::vector<std::string> rules_;         // sorted
    std::vector<std::string> fingerprints_;  // by the row of the finding
};

}  // namespace bradep::sarif
