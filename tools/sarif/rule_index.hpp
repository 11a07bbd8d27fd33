#pragma once

#include <boost/json.hpp>

#include <cstddef>
#include <map>
#include <string_view>
#include <utility>

namespace bradep::sarif {

/// The rules of a tool's components by id. A result may refine a rule's id by further parts behind
/// a slash: "R1/a" is of rule "R1" unless there is a rule "R1/a". Finding takes the time of reading
/// the id, however many components and parts there are. Refers to the texts of ids, which must
/// outlive it.
class RuleIndex {
public:
    struct Rule {
        boost::json::value const* descriptor = nullptr;  ///< null: there is none
        std::size_t               component = 0;
    };

    /// Of a component's rules with the same id the first one counts.
    void add(std::string_view id, std::size_t component, boost::json::value const& descriptor);

    /// The rule with the longest id, of this component.
    Rule find_in(std::size_t component, std::string_view id) const;

    /// The rule with the longest id of the first component, from this one on, that has any.
    Rule find_from(std::size_t component, std::string_view id) const;

private:
    using Node =
        std::size_t;  // an id up to one of its '/', or all of it; 0 is before the first part

    template <class Visit>
    void visit_parts(std::string_view id, Visit const& visit) const;

    std::map<std::pair<Node, std::string_view>, Node>                 parts_;
    std::map<std::pair<Node, std::size_t>, boost::json::value const*> rules_;  // by component
};

}  // namespace bradep::sarif
