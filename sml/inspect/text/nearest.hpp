#pragma once
// Finds the name that somebody may have meant.

#include <sml/core/names.hpp>

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

namespace sml::inspect {

/// The number of letters that must be added, removed or changed to make one text of the other.
inline std::size_t edit_distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    return core::edit_distance(a, b, row.data());
}

/// The name with the smallest edit distance, the first one of several. The range must not be empty.
template <class Range, class NameOf>
std::string_view nearest_name(std::string_view given, Range const& range, NameOf name_of) {
    constexpr std::size_t longest = 200;  // a longer text is cut: it is near to no name
    given = given.substr(0, longest);
    auto const distance = [&](auto const& one) { return edit_distance(given, name_of(one)); };
    return name_of(*std::ranges::min_element(range, {}, distance));
}

}  // namespace sml::inspect
