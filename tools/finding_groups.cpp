#include "finding_groups.hpp"

#include "messages.hpp"
#include "path_check.hpp"
#include "walk_options.hpp"

namespace bradep {

using sml::inspect::Finding;

void FindingGroups::add(Finding const& finding) {
    auto path = path_without_keys(finding.path);
    auto known = by_path_.find(path);
    if (known == by_path_.end()) {
        if (groups_.size() == most_groups_) return;
        known = by_path_.emplace(path, groups_.size()).first;
        groups_.push_back({std::move(path), {}, 0});
    }
    auto& group = groups_[known->second];
    ++group.count;
    if (group.first.size() < most_of_a_group) group.first.push_back(finding);
}

void FindingGroups::report(std::ostream& err, std::string const& name,
                           sml::inspect::Verdict const& verdict) const {
    auto left = verdict.odd_count;
    for (auto const& group : groups_) {
        left -= group.count;
        report_findings(err, name, group.first);
        if (auto const more = group.count - group.first.size())
            print_message(err,
                          name + ": " + std::to_string(more) + " more at " + group.path + " (odd)");
    }
    report_findings(err, name, verdict.findings);
    if (left > 0) print_message(err, name + ": " + std::to_string(left) + " more odd findings");
}

}  // namespace bradep
