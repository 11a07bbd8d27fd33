#pragma once

#include <boost/json.hpp>

#include <cstddef>
#include <map>
#include <string_view>
#include <utility>

namespace bradep::sarif {

/// The rules of a tool's components by id. A result may refine the id of a rule by further parts
/// after a slash: "R1/a" refers to rule "R1" unless there is a rule "R1/a". The time to find a rule
/// depends only on the length of the id, not on the number of components. Keeps views of the ids,
/// whose texts must outlive this object.
class RuleIndex {
public:
    struct Rule {
        boost::json::value const* descriptor = nullptr;  ///< null if not found
        std::size_t               component = 0;
    };

    /// If a component has several rules with the same id, the first one added is kept.
    void add(std::string_view id, std::size_t component, boost::json::value const& descriptor);

    /// The rule of this component with the longest id that fits.
    Rule find_in(std::size_t component, std::string_view id) const;

    /// The rule with the longest id that fits, in the first component from this one on that has
    /// one.
    Rule find_from(std::size_t component, std::string_view id) const;

private:
    using Node =
        std::size_t;  // the number of an id, or of its start up to a '/'; 0 is the empty start

    template <class Visit>
    void visit_parts(std::string_view id, Visit const& visit) const;

    std::map<std::pair<Node, std::string_view>, Node>                 parts_;
    std::map<std::pair<Node, std::size_t>, boost::json::value const*> rules_;  // by component
};

}  // namespace bradep::sarif
