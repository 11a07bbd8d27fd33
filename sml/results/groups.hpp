#pragma once
// Findings of both sides that have something in common.

#include <sml/results/finding.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace sml::results {

/// Findings without partner that have one key, each side in the order of ranks.
struct Group {
    std::span<std::uint32_t const> olds;
    std::span<std::uint32_t const> news;
};

/// Calls `use` for each group that has findings on both sides. `key_of` returns the hash of what
/// the findings of a group have in common, none for a finding that is in no group. In `use`,
/// findings of the group may get partners.
template <class KeyOf, class Use>
void for_each_group(std::span<Finding const> olds, std::span<Finding const> news,
                    KeyOf const& key_of, Use const& use) {
    struct Entry {
        Hash          key;
        std::uint32_t index;
        std::uint32_t side;
    };
    std::vector<Entry> entries;
    auto const         add = [&](std::span<Finding const> findings, std::uint32_t side) {
        for (std::uint32_t i = 0; i < findings.size(); ++i) {
            if (findings[i].has_partner()) continue;
            Hash const key = key_of(findings[i]);
            if (!key.is_none()) entries.push_back({key, i, side});
        }
    };
    auto const count_unmatched = [](std::span<Finding const> findings) {
        return std::ranges::count_if(findings,
                                     [](Finding const& one) { return !one.has_partner(); });
    };
    auto const left_olds = count_unmatched(olds);
    auto const left_news = count_unmatched(news);
    if (left_olds == 0 || left_news == 0) return;
    entries.reserve(static_cast<std::size_t>(left_olds + left_news));
    add(olds, 0);
    add(news, 1);
    std::ranges::sort(entries, [&](Entry const& a, Entry const& b) {
        if (a.key != b.key) return a.key < b.key;
        if (a.side != b.side) return a.side < b.side;
        auto const& findings = a.side == 0 ? olds : news;
        return findings[a.index].rank() < findings[b.index].rank();
    });
    std::vector<std::uint32_t> indices;
    for (auto first = entries.begin(); first != entries.end();) {
        auto const end = std::find_if(first, entries.end(),
                                      [&](Entry const& one) { return one.key != first->key; });
        auto const news_start =
            std::find_if(first, end, [](Entry const& one) { return one.side == 1; });
        if (news_start != first && news_start != end) {
            indices.clear();
            for (auto one = first; one != end; ++one) indices.push_back(one->index);
            auto const split = static_cast<std::size_t>(news_start - first);
            use(Group{std::span(indices).first(split), std::span(indices).subspan(split)});
        }
        first = end;
    }
}

}  // namespace sml::results
