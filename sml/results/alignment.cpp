#include <sml/results/alignment.hpp>

#include <algorithm>
#include <cstddef>
#include <limits>

namespace sml::results {

namespace {

// Beyond so many combinations, items are paired by their order alone.
constexpr std::size_t most_combinations = std::size_t{1} << 22;

}  // namespace

IndexPairs cheapest_pairs(std::size_t fewer, std::size_t more,
                          std::function<std::int64_t(std::size_t, std::size_t)> const& cost) {
    IndexPairs        pairs;
    std::size_t const skips = more - fewer;
    std::size_t const width = skips + 1;
    auto const        pair = [&](std::size_t i, std::size_t skipped) {
        pairs.emplace_back(static_cast<std::uint32_t>(i), static_cast<std::uint32_t>(i + skipped));
    };
    if (skips == 0 || fewer * width > most_combinations) {
        for (std::size_t i = 0; i < fewer; ++i) pair(i, 0);
        return pairs;
    }
    // `sums[k]`: the least cost of the pairs so far if the last one skips up to k items.
    // `is_last[i * width + k]`: whether that pair skips exactly k.
    std::vector<std::int64_t> sums(width, 0);
    std::vector<bool>         is_last(fewer * width);
    for (std::size_t i = 0; i < fewer; ++i) {
        for (std::size_t k = 0; k < width; ++k) {
            std::int64_t const sum = sums[k] + cost(i, i + k);
            bool const         is_better = k == 0 || sum < sums[k - 1];
            is_last[i * width + k] = is_better;
            sums[k] = is_better ? sum : sums[k - 1];
        }
    }
    std::size_t skipped = skips;
    for (std::size_t i = fewer; i-- > 0;) {
        while (!is_last[i * width + skipped]) --skipped;
        pair(i, skipped);
    }
    std::ranges::reverse(pairs);
    return pairs;
}

}  // namespace sml::results
