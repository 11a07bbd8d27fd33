#pragma once
// Visits the properties of an object that are kept as JSON text.

#include "json_input.hpp"
#include "sarif/kept.hpp"
#include "sarif/schema.hpp"

#include <boost/json.hpp>

#include <cstddef>
#include <string>
#include <string_view>

namespace bradep::sarif {

namespace json = boost::json;

/// Calls `use(pointer, member, property, value)` for each property of an object, in the order of
/// the table.
/// The pointer is relative to the object. A value of another kind than SARIF says, in which others
/// should stand, has none.
template <class Use>
class KeptProperties {
public:
    explicit KeptProperties(Use const& use) : use_(use) {}

    /// A property that the object does not have is taken from `other`, if that is given.
    void of(json::value const& object, schema::Type const& type, kept::Members const& members,
            json::value const* other = nullptr) {
        for (auto const& member : members) {
            auto const* const own = json_input::found(&object, member.name);
            auto const* const value = own ? own : json_input::found(other, member.name);
            if (value) below(member, *type.property(member.name), *value);
        }
    }

private:
    // Calls `visit` with the name added to the pointer.
    template <class Visit>
    void below_name(std::string_view name, Visit const& visit) {
        auto const length = pointer_.size();
        if (length > 0) pointer_ += '/';
        pointer_ += name;
        visit();
        pointer_.resize(length);
    }

    void below(kept::Member const& member, schema::Property const& property,
               json::value const& value) {
        below_name(member.name, [&] {
            if (member.how != kept::How::parts)
                use_(pointer_, member, property, value);
            else if (auto const* const elements = value.if_array())
                for (std::size_t i = 0; i < elements->size(); ++i)
                    below_name(std::to_string(i),
                               [&] { of((*elements)[i], *property.type, *member.below); });
            else
                of(value, *property.type, *member.below);
        });
    }

    Use const&  use_;
    std::string pointer_;
};

}  // namespace bradep::sarif
