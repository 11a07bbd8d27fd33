#include <sml/results/line_map.hpp>

#include <algorithm>
#include <utility>

namespace sml::results {

LineMap::LineMap(std::span<Finding const> olds, std::span<Finding const> news) {
    for (Finding const& older : olds) {
        if (!older.has_partner()) continue;
        Finding const& newer = news[older.partner];
        if (newer.file != older.file || older.line <= 0 || newer.line <= 0) continue;
        std::int32_t const shift = newer.line - older.line;
        by_old_.push_back({older.file, older.line, shift});
        by_new_.push_back({newer.file, newer.line, shift});
    }
    for (auto* const anchors : {&by_old_, &by_new_}) {
        std::ranges::sort(*anchors);
        anchors->erase(std::unique(anchors->begin(), anchors->end()), anchors->end());
    }
}

// Adds the shifts of the nearest lines with anchors before and behind the line, or of the line
// itself. Those of one line are sorted by their shifts.
void LineMap::add(std::vector<Anchor> const& anchors, Finding const& finding, Shift& shift) {
    auto const widen = [&](Anchor const& first, Anchor const& last) {
        bool const is_first = shift.anchors++ == 0;
        shift.least = is_first ? first.shift : std::min<std::int64_t>(shift.least, first.shift);
        shift.most = is_first ? last.shift : std::max<std::int64_t>(shift.most, last.shift);
    };
    auto const place = [](Anchor const& anchor) { return std::pair(anchor.file, anchor.line); };
    auto const is_of_file = [&](auto anchor) {
        return anchor != anchors.end() && anchor->file == finding.file;
    };
    auto const behind =
        std::ranges::lower_bound(anchors, std::pair(finding.file, finding.line), {}, place);
    if (is_of_file(behind)) {
        widen(*behind, std::ranges::upper_bound(anchors, place(*behind), {}, place)[-1]);
        if (behind->line == finding.line) {
            ++shift.anchors;  // it stands for both sides
            return;
        }
    }
    if (behind != anchors.begin() && is_of_file(behind - 1))
        widen(*std::ranges::lower_bound(anchors, place(behind[-1]), {}, place), behind[-1]);
}

LineMap::Shift LineMap::shift(Finding const& older, Finding const& newer) const {
    Shift shift;
    add(by_old_, older, shift);
    add(by_new_, newer, shift);
    return shift;
}

std::int64_t LineMap::distance(Finding const& older, Finding const& newer) const {
    if (older.line <= 0 || newer.line <= 0) return older.line == newer.line ? 0 : INT32_MAX;
    auto const by = std::int64_t{newer.line} - older.line;
    auto const expected = shift(older, newer);
    if (by < expected.least) return expected.least - by;
    return by > expected.most ? by - expected.most : 0;
}

}  // namespace sml::results
