#pragma once
// Makes values of any origin fit the schema of SARIF.

#include "sarif/schema.hpp"

#include <boost/json.hpp>

#include <cstdint>
#include <string>
#include <string_view>

namespace bradep::sarif {

namespace json = boost::json;

/// What was left out of a log because SARIF does not allow it.
struct LeftOut {
    std::uint64_t count = 0;
    std::string   first;  ///< JSON pointer

    void add(std::string_view pointer) {
        if (count++ == 0) first = pointer;
    }
};

/// Leaves out of a value what does not fit its type: properties that the object does not have, or
/// whose values do not fit; elements that do not fit, and all but the first of equal ones where
/// they must differ; `null`. Adds required properties that may be empty. Returns whether the value
/// fits then. `pointer` is where it stands in its log.
bool make_fit(json::value& value, schema::Type const& type, std::string const& pointer,
              LeftOut& left_out);

}  // namespace bradep::sarif
