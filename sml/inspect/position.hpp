#pragma once
// A place in a text, for people.

#include <cstddef>

namespace sml::inspect {

struct Position {
    std::size_t line;
    std::size_t column;  ///< in characters; both count from 1
};

}  // namespace sml::inspect
