#pragma once
// The steps that lead to findings, in the order of their events.

#include <sml/results/hash.hpp>
#include <sml/tables/sqlite/database.hpp>

#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

namespace sml::results {

/// The hash of the key of a check, an event or an information record in a result set.
Hash hash_of_key(std::int64_t set, std::string_view uri, std::int64_t ordinal);

/// As in the view `steps`, which would look up each event four times.
struct FlowStep {
    std::uint32_t                   finding;  ///< as `index_of` numbers it
    std::uint32_t                   flow = 0, thread = 0, position = 0;
    std::optional<std::string_view> uri, message;
};

/// The hash of a step, `of_file` being that of its file. A flow has the sum of those of its steps.
Hash hash_of(FlowStep const& step, Hash const& of_file);

/// Calls `use` for each step of the findings for which `is_wanted` is true. The order of the steps
/// is not theirs. `index_of` numbers findings by result set and row.
void for_each_step(tables::Database&                                               database,
                   std::function<std::uint32_t(std::int64_t, std::int64_t)> const& index_of,
                   std::function<bool(std::uint32_t)> const&                       is_wanted,
                   std::function<void(FlowStep const&)> const&                     use);

}  // namespace sml::results
