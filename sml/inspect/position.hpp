#pragma once
// A position in a text, as messages show it.

#include <cstddef>

namespace sml::inspect {

struct Position {
    std::size_t line;
    std::size_t column;  ///< in characters; both count from 1
};

}  // namespace sml::inspect
