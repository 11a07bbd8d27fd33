#pragma once
// Prints the rows of a statement in one of several formats.

#include <sml/tables/sqlite/connection.hpp>
#include "command.hpp"

#include <cstddef>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace bradep {

enum class RowFormat { text, box, csv, json, ndjson, markdown };

struct RowOptions {
    RowFormat   format = RowFormat::text;
    bool        has_header = true;
    std::string null;  ///< what is printed for null, except in JSON
};

/// Declares --format, --no-header and --null.
void declare_row_options(CLI::App& app, RowOptions& options);

/// Sets the format with this name. Returns whether there is one.
bool set_format(RowFormat& format, std::string const& name);
/// The names of all formats.
std::string format_names();

/// Prints the rows of one statement.
class RowOutput {
public:
    virtual ~RowOutput() = default;

    /// Must be called once, before the rows.
    virtual void begin(std::vector<std::string> const& columns) = 0;
    /// Prints the present row of a statement.
    virtual void row(sqlite3_stmt* statement) = 0;
    /// Must be called after the last row, not after a failure.
    virtual void end() {}
};

/// The text on one line in which nothing is markup.
std::string markdown_text(std::string_view text);

/// `columns` is the width of the terminal that `out` goes to; 0 if it goes elsewhere. The options
/// and `out` must outlive the returned object.
std::unique_ptr<RowOutput> row_output(RowOptions const& options, std::ostream& out,
                                      std::size_t columns);

}  // namespace bradep
