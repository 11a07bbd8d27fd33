#pragma once
// Which of several equal findings are the same, if one side has more of them.

#include <cstddef>

#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

namespace sml::results {

using IndexPairs = std::vector<std::pair<std::uint32_t, std::uint32_t>>;

/// Pairs each of the fewer items with one of the more items, so that no pairs cross and the sum of
/// their costs is the least. Of several such ways it takes the one with the first items. Indices
/// are returned: of the fewer ones first.
IndexPairs cheapest_pairs(std::size_t fewer, std::size_t more,
                          std::function<std::int64_t(std::size_t, std::size_t)> const& cost);

}  // namespace sml::results
