#pragma once
// What a diff says of the findings in a report.

#include <sml/results/diff_store.hpp>
#include "report/reported_findings.hpp"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace bradep {

/// Of one side: the state of each finding, and what has changed in it. Of the old side, only
/// absent findings are reported.
class DiffNotes : public FindingNotes {
public:
    /// The store must outlive this object.
    DiffNotes(sml::results::DiffStore& store, sml::results::Side side);

    bool             is_reported(std::size_t finding) const override;
    std::string_view state(std::size_t finding) const override;
    void             add(std::size_t finding, report::FindingColumns& columns,
                         sml::inspect::JsonWriter& details) const override;

private:
    struct Pair {
        std::int64_t number = 0;
        std::uint8_t state = 0;  // index in the list of all
    };

    bool                           is_old_;
    std::vector<Pair>              pairs_;    // by finding
    mutable sml::tables::Statement changes_;  // of a pair
};

}  // namespace bradep
