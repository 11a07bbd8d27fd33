#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace bradep::sarif {

/// Puts arguments[N] where `{N}` stands and turns `{{` and `}}` into single braces. A placeholder
/// without its argument stays as it is. None where that comes to more than `most` bytes.
std::optional<std::string> formatted_message(std::string_view                     pattern,
                                             std::vector<std::string_view> const& arguments,
                                             std::uint64_t                        most);

}  // namespace bradep::sarif
