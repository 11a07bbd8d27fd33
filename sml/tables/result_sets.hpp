#pragma once
// The result sets that are asked together, and their tables.

#include <sml/inspect/contents.hpp>
#include <sml/inspect/type.hpp>
#include <sml/tables/source.hpp>
#include <sml/tables/table.hpp>

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace sml::tables {

/// A result set in bytes that have been verified.
struct ResultSet {
    std::string       name;
    std::string_view  bytes;  ///< as they are in the file; they must outlive this object
    inspect::Contents contents;

    /// The digest of the content, as `bradep digest` prints it, or "bytes:" and the SHA-256 of the
    /// bytes if these have no canonical form. Throws what `inspect::digest` throws.
    std::string identity(inspect::WalkOptions const& options) const;
};

/// Result sets of one root, numbered from 1.
class ResultSets {
public:
    ResultSets(inspect::Root const& root, inspect::WalkOptions const& options)
        : schema_(schema_of(root)), options_(options) {}
    ResultSets(ResultSets const&) = delete;
    ResultSets& operator=(ResultSets const&) = delete;

    void add(ResultSet set) { sets_.push_back(std::move(set)); }

    Schema const&    schema() const { return schema_; }
    std::int64_t     count() const { return static_cast<std::int64_t>(sets_.size()); }
    ResultSet const& set(std::int64_t number) const {
        return sets_[static_cast<std::size_t>(number) - 1];
    }
    /// The same as of the set; it is found out once.
    std::string const& identity(std::int64_t number) const;

private:
    Schema                schema_;
    inspect::WalkOptions  options_;
    std::deque<ResultSet> sets_;

    mutable std::map<std::int64_t, std::string> identities_;
};

inline constexpr std::string_view name_of_list = "result_sets";

/// The table of that name, with a row for each result set.
std::unique_ptr<Source const> list_of(ResultSets const& sets);

/// A table of the schema. `sets` must outlive it.
std::unique_ptr<Source const> source_of(ResultSets const& sets, Table const& table);

/// A table that these result sets do not have: it has no rows.
std::unique_ptr<Source const> empty_source(ResultSets const& sets, Table const& table);

/// The columns of that table.
std::vector<Column> const& columns_of_list();

}  // namespace sml::tables
