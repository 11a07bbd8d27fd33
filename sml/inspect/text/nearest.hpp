#pragma once
// Which of the names somebody may have meant.

#include <sml/core/names.hpp>

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

namespace sml::inspect {

/// How many letters have to be added, taken away or changed.
inline std::size_t edit_distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    return core::edit_distance(a, b, row.data());
}

/// The name that is nearest, the first of several. There is at least one.
template <class Range, class NameOf>
std::string_view nearest_name(std::string_view given, Range const& range, NameOf name_of) {
    constexpr std::size_t longest = 200;  // a longer one was not meant to be any
    given = given.substr(0, longest);
    auto const distance = [&](auto const& one) { return edit_distance(given, name_of(one)); };
    return name_of(*std::ranges::min_element(range, {}, distance));
}

}  // namespace sml::inspect
