#pragma once
// Entries of tables as JSON.

#include <sml/inspect/contents.hpp>
#include <sml/inspect/json_visitor.hpp>
#include <sml/inspect/memory.hpp>
#include <sml/tables/table.hpp>

#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

namespace sml::tables {

/// The entries of one table of a result set, in any order.
class EntryJson {
public:
    /// The contents and the schema must outlive this object. Requires a list, set or map whose
    /// parent is the root.
    EntryJson(inspect::Contents const& contents, Schema const& schema, Table const& table);

    /// Appends the entry in this row as `dump` prints it: an element, or `[key, value]`.
    void append(std::string& json, std::int64_t row);

private:
    inspect::Contents const&   contents_;
    inspect::Type const&       container_;
    std::vector<std::uint64_t> starts_;  // by row
    inspect::Budget            budget_;
    std::ostringstream         text_;
    inspect::JsonVisitor       json_;
};

}  // namespace sml::tables
