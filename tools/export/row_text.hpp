#pragma once
// Rows as lines of text files.

#include <sml/tables/source.hpp>
#include <sml/tables/table.hpp>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace bradep {

/// `csv`: a line with the names of the columns, then one for each row. Texts are in quotes, which
/// are doubled within; a null is \N without quotes. `ndjson`: a JSON object for each row.
enum class FileFormat : std::uint8_t { csv, ndjson };

/// The name of a format, which is also the extension of its files.
std::string_view name_of(FileFormat format);

/// The rows of one table as text.
class RowText {
public:
    RowText(FileFormat format, std::vector<sml::tables::Column> const& columns);

    /// The line before the rows; empty if there is none.
    std::string header() const { return format_ == FileFormat::csv ? header_ : std::string(); }

    /// Appends the present row. The result set has this number.
    void append(std::string& text, std::int64_t result_set, sml::tables::RowStream& row) const;

private:
    void append_csv(std::string& text, sml::tables::Cell const& cell) const;
    void append_json(std::string& text, sml::tables::Cell const& cell) const;

    FileFormat               format_;
    std::string              header_;
    std::vector<std::string> before_;  // what stands before each cell
};

}  // namespace bradep
