#include "finding_groups.hpp"

#include "path_check.hpp"
#include "report.hpp"
#include "walk_options.hpp"

namespace bradep {

using sml::inspect::Finding;

void FindingGroups::add(Finding const& finding) {
    auto shape = path_shape(finding.path);
    auto place = places_.find(shape);
    if (place == places_.end()) {
        if (groups_.size() == most_shapes_) return;
        place = places_.emplace(shape, groups_.size()).first;
        groups_.push_back({std::move(shape), {}, 0});
    }
    auto& group = groups_[place->second];
    ++group.count;
    if (group.first.size() < most_of_a_shape) group.first.push_back(finding);
}

void FindingGroups::report(std::ostream& err, std::string const& name,
                           sml::inspect::Verdict const& verdict) const {
    auto left = verdict.odd_count;
    for (auto const& group : groups_) {
        left -= group.count;
        report_findings(err, name, group.first);
        if (auto const more = group.count - group.first.size())
            bradep::report(
                err, name + ": " + std::to_string(more) + " more at " + group.shape + " (odd)");
    }
    report_findings(err, name, verdict.findings);
    if (left > 0) bradep::report(err, name + ": " + std::to_string(left) + " more odd findings");
}

}  // namespace bradep
