#include "sarif/rule_index.hpp"

#include <limits>

namespace bradep::sarif {

namespace {

// Moves the part of `id` before the first '/' to `part`. Returns false if it was the last part.
bool take_part(std::string_view& id, std::string_view& part) {
    auto const slash = id.find('/');
    part = id.substr(0, slash);
    if (slash == std::string_view::npos) return false;
    id.remove_prefix(slash + 1);
    return true;
}

}  // namespace

void RuleIndex::add(std::string_view id, std::size_t component,
                    boost::json::value const& descriptor) {
    Node             node = 0;
    std::string_view part;
    bool             has_more = true;
    while (has_more) {
        has_more = take_part(id, part);
        node = parts_.try_emplace({node, part}, parts_.size() + 1).first->second;
    }
    rules_.try_emplace({node, component}, &descriptor);
}

// Visits the nodes on the path of the id, the shortest first, until one is missing.
template <class Visit>
void RuleIndex::visit_parts(std::string_view id, Visit const& visit) const {
    Node             node = 0;
    std::string_view part;
    bool             has_more = true;
    while (has_more) {
        has_more = take_part(id, part);
        auto const found = parts_.find({node, part});
        if (found == parts_.end()) return;
        visit(node = found->second);
    }
}

RuleIndex::Rule RuleIndex::find_in(std::size_t component, std::string_view id) const {
    Rule longest;
    visit_parts(id, [&](Node node) {
        auto const found = rules_.find({node, component});
        if (found != rules_.end()) longest = {found->second, component};
    });
    return longest;
}

RuleIndex::Rule RuleIndex::find_from(std::size_t component, std::string_view id) const {
    Rule best{nullptr, std::numeric_limits<std::size_t>::max()};
    visit_parts(id, [&](Node node) {
        auto const found = rules_.lower_bound({node, component});
        if (found == rules_.end() || found->first.first != node) return;
        if (found->first.second <= best.component) best = {found->second, found->first.second};
    });
    return best;
}

}  // namespace bradep::sarif
