#pragma once
// The parts of a run of a log.

#include "json_cursor.hpp"

#include <cstddef>
#include <optional>

namespace bradep::sarif {

namespace json = boost::json;

/// The parts of a run that its results refer to or that are kept, and where its results are. They
/// may stand in any order; of two with one name the last one counts.
class RunParts {
public:
    /// `at` stands before the run and steps over it.
    RunParts(json_input::Cursor& at, json_input::ValueParser& parser);
    RunParts(RunParts const&) = delete;
    RunParts& operator=(RunParts const&) = delete;

    /// An object with these parts, the list of results without its elements; for a run that is no
    /// object, a value of its kind.
    json::value const& value() const { return value_; }

    /// Before the list of results; none if there is no list.
    std::optional<json_input::Cursor> const& results() const { return results_; }

private:
    void read(std::string_view name, json_input::Cursor part, json_input::ValueParser& parser);

    json::monotonic_resource          arena_;
    json::value                       value_;
    std::optional<json_input::Cursor> results_;
};

}  // namespace bradep::sarif
