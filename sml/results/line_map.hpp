#pragma once
// By how many lines findings have moved within their file, as those around them show that are
// matched already.

#include <sml/results/finding.hpp>

#include <cstdint>
#include <span>
#include <vector>

namespace sml::results {

class LineMap {
public:
    /// Of all matched pairs whose files are the same.
    LineMap(std::span<Finding const> olds, std::span<Finding const> news);

    /// How far a finding can have moved: from `least` to `most` lines.
    struct Shift {
        std::int64_t least = 0;
        std::int64_t most = 0;
        int          anchors = 0;  ///< how many matched findings say so, up to 4

        /// Whether findings before and behind it have moved by the same number of lines.
        bool is_sure() const { return anchors == 4 && least == most; }
        /// Whether all that is known says that it has moved by so many lines.
        bool is_exactly(std::int64_t lines) const { return least == most && lines == least; }
    };
    Shift shift(Finding const& older, Finding const& newer) const;

    /// How many lines the pair is away from where it would be expected; 0 if both have no line.
    std::int64_t distance(Finding const& older, Finding const& newer) const;

private:
    struct Anchor {
        std::uint32_t file;
        std::int32_t  line;  // on the side that the list is sorted by
        std::int32_t  shift;

        auto operator<=>(Anchor const&) const = default;
    };

    static void add(std::vector<Anchor> const& anchors, Finding const& finding, Shift& shift);

    std::vector<Anchor> by_old_;
    std::vector<Anchor> by_new_;
};

}  // namespace sml::results
