#pragma once

#include <sml/inspect/verify.hpp>

#include <cstdint>
#include <map>
#include <ostream>
#include <string>
#include <vector>

namespace bradep {

/// Groups odd findings by place: the findings of a group have the same path, except for keys and
/// indices.
class FindingGroups {
public:
    /// The number of findings that are grouped; grouping takes time. Findings after these are only
    /// counted.
    static constexpr std::size_t most_findings = 1'000'000;

    explicit FindingGroups(std::size_t most_groups) : most_groups_(most_groups) {}

    void add(sml::inspect::Finding const& finding);

    /// Prints the first findings of each group and the number of its other findings, then the
    /// findings that the verdict lists itself, then the number of odd findings that are in no
    /// group.
    void report(std::ostream& err, std::string const& name,
                sml::inspect::Verdict const& verdict) const;

private:
    static constexpr std::size_t most_of_a_group = 3;

    struct Group {
        std::string                        path;  // without keys
        std::vector<sml::inspect::Finding> first;
        std::uint64_t                      count = 0;
    };

    std::size_t                        most_groups_;
    std::vector<Group>                 groups_;
    std::map<std::string, std::size_t> by_path_;  // indices in `groups_`
};

}  // namespace bradep
