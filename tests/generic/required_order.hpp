#pragma once
// A second implementation of the order and equality that all types must have: slow, over trees.

#include "tests/generic/node.hpp"

namespace generic {

bool required_equal(Node const& a, Node const& b);
bool required_less(Node const& a, Node const& b);

}  // namespace generic
