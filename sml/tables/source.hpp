#pragma once
// What a virtual table reads: rows that are in several result sets.

#include <sml/tables/rows.hpp>
#include <sml/tables/table.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace sml::tables {

/// Goes through rows of a source.
class RowStream {
public:
    virtual ~RowStream() = default;

    /// Moves to the next row, at first to the first one. Returns false after the last one.
    virtual bool next() = 0;

    /// The cell of the present row in a wanted column. That is never the first one.
    virtual Cell cell(std::size_t column) = 0;

    /// The number of the row in its table.
    virtual std::int64_t row() const = 0;

    /// The number of bytes up to the present row, for showing progress.
    virtual std::uint64_t offset() const { return 0; }
};

/// The rows of one table in several result sets, numbered from 1. Its first column is the number of
/// the result set.
class Source {
public:
    virtual ~Source() = default;

    virtual std::string const&         name() const = 0;
    virtual std::vector<Column> const& columns() const = 0;
    virtual std::int64_t               sets() const = 0;

    /// An estimate of the rows of all result sets.
    virtual std::uint64_t expected_rows() const = 0;

    /// The rows of one result set. Only cells of the wanted columns are asked for; the first column
    /// is never wanted.
    virtual std::unique_ptr<RowStream> rows(std::int64_t             set,
                                            std::vector<bool> const& is_wanted) const = 0;
};

}  // namespace sml::tables
