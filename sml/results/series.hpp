#pragma once
// Gives the findings of a series of runs identities that stay.

#include <sml/results/diff.hpp>
#include <sml/results/series_store.hpp>

#include <atomic>
#include <optional>
#include <string>

namespace sml::results {

/// A run: its findings, its name, and the digest by which it is known again.
struct Run {
    SideInput   side;
    std::string name;
    std::string digest;
};

/// Adds a run to a series, in the transaction that the store has begun. Its findings are matched
/// with the open ones by the stages of `diff`, then those that are new with those that are gone.
/// Findings that a log itself says are absent do not count. Throws what reading tables throws,
/// SqlError while `is_interrupted` is true.
RunCounts add_run(Run const& run, DiffOptions const& options, SeriesStore& store,
                  std::atomic<bool> const& is_interrupted);

}  // namespace sml::results
