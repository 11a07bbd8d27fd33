#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace bradep::sarif {

/// Replaces each `{N}` by arguments[N], and `{{` and `}}` by single braces. A placeholder without
/// an argument is kept as it is. Returns nothing if the message would have more than `most` bytes.
std::optional<std::string> formatted_message(std::string_view                     pattern,
                                             std::vector<std::string_view> const& arguments,
                                             std::uint64_t                        most);

}  // namespace bradep::sarif
