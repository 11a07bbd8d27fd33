#pragma once
// Logs that are small enough to be uploaded.

#include "sarif/log_source.hpp"

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace bradep::sarif {

/// What GitHub takes in one log.
struct UploadLimits {
    std::size_t   runs = 20;
    std::size_t   results = 25'000;           ///< of a run
    std::size_t   rules = 25'000;             ///< of a run
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

/// How many results of a run are errors, warnings, notes and others.
using RunWeight = std::array<std::size_t, 4>;

/// The weights of the runs, in their order.
std::vector<RunWeight> weights_of(LogSource const& source);

/// Which `most` runs matter most: those with more errors, then with more warnings and so on, then
/// the first ones.
std::vector<bool> heaviest(std::vector<RunWeight> const& runs, std::size_t most);

/// Some runs without what is beyond the limits: of tags and locations the last ones; of results the
/// least severe, by level and then by rank; of too many rules those that no result has.
class LimitedRuns : public LogSource {
public:
    /// Has the runs with the numbers `kept`. The other arguments must outlive this object. `cut`
    /// counts what is left out of these runs.
    LimitedRuns(LogSource const& all, std::vector<std::size_t> kept, UploadLimits const& limits,
                Cut& cut)
        : all_(all), kept_(std::move(kept)), limits_(limits), cut_(cut) {}

    std::size_t  runs() const override { return kept_.size(); }
    json::object run(std::size_t number) const override;
    void         results(std::size_t run, ResultSink const& sink) const override;

private:
    /// Where a rule stands: in the driver, or in an extension, counted from 1.
    struct RuleAt {
        std::size_t component;
        std::size_t index;

        auto operator<=>(RuleAt const&) const = default;
    };
    /// What is kept of a run.
    struct Kept {
        std::vector<bool>             results;  // whether each is kept
        std::map<RuleAt, std::size_t> rules;    // the new indices of those that are kept
        bool                          has_all_rules = true;
    };

    static std::optional<RuleAt> rule_of(json::object const& result);

    Kept const& kept_of(std::size_t run) const;
    void        choose_rules(std::size_t run, Kept& kept) const;
    void        keep_rules(json::object& component, std::size_t number, Kept const& kept) const;
    void        trim(json::object& result, Kept const& kept) const;

    LogSource const&         all_;
    std::vector<std::size_t> kept_;
    UploadLimits const&      limits_;
    Cut&                     cut_;

    mutable std::map<std::size_t, Kept> kept_of_runs_;
};

}  // namespace bradep::sarif
