#pragma once
// What the categories of a kernel's checks are, in words.

#include <string_view>

namespace bradep::sarif {

/// One sentence about what a check of the category looks for, such as "A division by zero."; empty
/// for a category whose name and payload do not tell.
std::string_view description_of_category(std::string_view name);

}  // namespace bradep::sarif
