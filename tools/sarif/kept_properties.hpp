#pragma once
// Visits the properties of an object that are kept as JSON text.

#include "sarif/kept.hpp"

#include <boost/json.hpp>

#include <cstddef>
#include <string>
#include <string_view>

namespace bradep::sarif {

namespace json = boost::json;

/// Calls `use(pointer, member, value)` for each property of an object, in the order of the table.
/// The pointer is relative to the object. A value of another kind than SARIF says, in which others
/// should stand, has none.
template <class Use>
class KeptProperties {
public:
    explicit KeptProperties(Use const& use) : use_(use) {}

    /// A property that the object does not have is taken from `other`, if that is given.
    void of(json::value const& object, kept::Members const& members,
            json::value const* other = nullptr) {
        for (auto const& member : members)
            if (auto const* const value = property(&object, other, member.name))
                below(member.name, *value, member);
    }

private:
    static json::value const* property(json::value const* object, json::value const* other,
                                       std::string_view name) {
        for (auto const* const from : {object, other}) {
            auto const* const members = from ? from->if_object() : nullptr;
            auto const* const value = members ? members->if_contains(name) : nullptr;
            if (value && !value->is_null()) return value;
        }
        return nullptr;
    }

    // Calls `visit` with the name added to the pointer.
    template <class Visit>
    void below_name(std::string_view name, Visit const& visit) {
        auto const length = pointer_.size();
        if (length > 0) pointer_ += '/';
        pointer_ += name;
        visit();
        pointer_.resize(length);
    }

    void below(std::string_view name, json::value const& value, kept::Member const& member) {
        below_name(name, [&] {
            if (member.how != kept::How::parts)
                use_(pointer_, member, value);
            else if (auto const* const elements = value.if_array())
                for (std::size_t i = 0; i < elements->size(); ++i)
                    below_name(std::to_string(i), [&] { of((*elements)[i], *member.below); });
            else
                of(value, *member.below);
        });
    }

    Use const&  use_;
    std::string pointer_;
};

}  // namespace bradep::sarif
