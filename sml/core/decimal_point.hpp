#pragma once
// The decimal point of the process's locale, which stands in the texts of floats.

#include <clocale>

namespace sml::core {

/// Returns the point, or 0 where it is not exactly one byte long.
inline char decimal_point() noexcept {
    char const* const point = std::localeconv()->decimal_point;
    return point[0] != '\0' && point[1] == '\0' ? point[0] : '\0';
}

}  // namespace sml::core
