#pragma once
// The members of an object that is not parsed as a whole.

#include "json_cursor.hpp"

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace bradep::sarif {

/// Steps over the object at the cursor. Returns where the values of the members with these names
/// stand; of two with one name the last one.
template <std::size_t count>
std::array<std::optional<json_input::Cursor>, count> members_at(
    json_input::Cursor& at, std::array<std::string_view, count> const& names) {
    std::array<std::optional<json_input::Cursor>, count> found;
    for (at.enter(); at.next(); at.skip()) {
        auto const name = at.name();
        for (std::size_t i = 0; i < count; ++i)
            if (name == names[i]) found[i] = at;
    }
    return found;
}

}  // namespace bradep::sarif
