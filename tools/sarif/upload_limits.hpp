#pragma once
// Logs that are small enough to be uploaded.

#include "sarif/log_source.hpp"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace bradep::sarif {

/// What GitHub takes in one log.
struct UploadLimits {
    std::size_t   runs = 20;
    std::size_t   results = 25'000;           ///< of a run
    std::size_t   rules = 25'000;             ///< of a tool component
    std::size_t   tags = 20;                  ///< of a rule
    std::size_t   locations = 1'000;          ///< of a result
    std::size_t   flow_locations = 10'000;    ///< of a result, in all of its flows
    std::uint64_t packed_bytes = 10'000'000;  ///< of the log, compressed by gzip
};

/// How much was left out.
struct Cut {
    std::uint64_t runs = 0;
    std::uint64_t results = 0;
    std::uint64_t rules = 0;
    std::uint64_t tags = 0;
    std::uint64_t locations = 0;
    std::uint64_t flow_locations = 0;

    std::uint64_t most_kept = 0;  ///< the most results that a run has kept

    /// As in "12 results, 3 tags"; empty if nothing was.
    std::string in_words() const;
};

/// Runs without what is beyond the limits: of runs, rules, tags and locations the last ones; of
/// results the least severe, by level and then by rank.
class LimitedRuns : public LogSource {
public:
    /// All arguments must outlive this object. `cut` counts what is left out.
    LimitedRuns(LogSource const& all, UploadLimits const& limits, Cut& cut);

    std::size_t  runs() const override;
    json::object run(std::size_t number) const override;
    void         results(std::size_t run, ResultSink const& sink) const override;

private:
    std::vector<bool> chosen(std::size_t run) const;
    void              trim(json::object& result) const;

    LogSource const&    all_;
    UploadLimits const& limits_;
    Cut&                cut_;
};

}  // namespace bradep::sarif
