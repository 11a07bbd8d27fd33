#pragma once
// The arms and enumerators that a series of values has reached.

#include "tests/generic/node.hpp"

#include <map>
#include <set>

namespace generic {

class Coverage {
public:
    void add(Node const& value) {
        bool const counted = value.kind == Kind::variant || value.kind == Kind::reference ||
                             value.kind == Kind::enumeration;
        if (counted) reached_[value.shape].insert(value.tag);
        for (Node const& part : value.parts) add(part);
    }

    /// The arms or enumerators of a shape that no value had.
    std::vector<std::string> missing(Shape const& shape) const {
        std::vector<std::string> names;
        auto const               reached = reached_.find(&shape);
        for (std::int32_t tag = 0; tag < shape.count(); ++tag)
            if (reached == reached_.end() || !reached->second.contains(tag))
                names.push_back(shape.names[static_cast<std::size_t>(tag)]);
        return names;
    }

    bool has_met(Shape const& shape) const { return reached_.contains(&shape); }

private:
    std::map<Shape const*, std::set<std::int32_t>> reached_;
};

}  // namespace generic
