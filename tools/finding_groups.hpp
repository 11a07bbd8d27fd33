#pragma once

#include <sml/inspect/verify.hpp>

#include <cstdint>
#include <map>
#include <ostream>
#include <string>
#include <vector>

namespace bradep {

/// Odd findings of one shape: their paths differ in keys and indices alone.
class FindingGroups {
public:
    /// Looking at each takes time: beyond so many they are counted only.
    static constexpr std::size_t most_findings = 1'000'000;

    explicit FindingGroups(std::size_t most_shapes) : most_shapes_(most_shapes) {}

    void add(sml::inspect::Finding const& finding);

    /// The first few of each shape and how many more there are; then what the verdict lists itself,
    /// and how many odd findings have not been told of.
    void report(std::ostream& err, std::string const& name,
                sml::inspect::Verdict const& verdict) const;

private:
    static constexpr std::size_t most_of_a_shape = 3;

    struct Group {
        std::string                        shape;
        std::vector<sml::inspect::Finding> first;
        std::uint64_t                      count = 0;
    };

    std::size_t                        most_shapes_;
    std::vector<Group>                 groups_;
    std::map<std::string, std::size_t> places_;  // of shapes among the groups
};

}  // namespace bradep
