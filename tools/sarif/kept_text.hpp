#pragma once
// The JSON text of a property that is kept as such.

#include <boost/json.hpp>

#include <cstdint>
#include <string>
#include <string_view>

namespace bradep::sarif {

namespace json = boost::json;

/// The lists of a run that values refer to by index. Each may be null.
struct RunLists {
    json::array const* artifacts = nullptr;
    json::value const* driver = nullptr;
    json::array const* extensions = nullptr;
    json::array const* taxonomies = nullptr;
};

/// Thrown if what indexes lead to has more bytes than a value may take.
struct TooMuchResolved {};

/// Appends the text of a value that is the property `name` of its object: without blanks, whole
/// numbers without point and exponent. Artifact locations and references to taxa stand without
/// index, with what the index leads to, as another log has other lists; property bags stand as they
/// are. Throws TooMuchResolved if texts of more than `most_resolved` bytes come from elsewhere.
void append_kept_text(std::string& text, std::string_view name, json::value const& value,
                      RunLists const& lists, std::uint64_t most_resolved);

}  // namespace bradep::sarif
