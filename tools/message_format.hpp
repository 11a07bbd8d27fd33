#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace bradep::sarif {

// Puts arguments[N] where `{N}` stands and turns `{{` and `}}` into single braces. A placeholder
// without its argument stays as it is.
std::string formatted_message(std::string_view pattern, std::vector<std::string> const& arguments);

}  // namespace bradep::sarif
