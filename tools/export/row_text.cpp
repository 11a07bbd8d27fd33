#include "export/row_text.hpp"

#include <sml/inspect/text/json_text.hpp>

#include <algorithm>
#include <cmath>

namespace bradep {

using namespace sml::tables;

namespace {

void append_quoted(std::string& text, std::string_view value) {
    text += '"';
    while (!value.empty()) {
        std::size_t const quote = std::min(value.find('"'), value.size());
        text += value.substr(0, quote);
        if (quote < value.size()) text += "\"\"";
        value.remove_prefix(std::min(quote + 1, value.size()));
    }
    text += '"';
}

// Only the nearest doubles of numbers are in tables, so there is no "nan".
void append_plain(std::string& text, double number) {
    if (std::isinf(number))
        text += number < 0 ? "-inf" : "inf";
    else
        sml::inspect::append_json_double(text, number);
}

}  // namespace

std::string_view name_of(FileFormat format) { return format == FileFormat::csv ? "csv" : "ndjson"; }

RowText::RowText(FileFormat format, std::vector<Column> const& columns) : format_(format) {
    for (Column const& column : columns) {
        bool const is_first = before_.empty();
        if (!is_first) header_ += ',';
        append_quoted(header_, column.name);
        std::string before = is_first ? "" : ",";
        if (format == FileFormat::ndjson) {
            if (is_first) before = "{";
            sml::inspect::append_json_string(before, column.name);
            before += ':';
        }
        before_.push_back(before);
    }
    header_ += '\n';
}

void RowText::append(std::string& text, std::int64_t result_set, RowStream& row) const {
    bool const is_csv = format_ == FileFormat::csv;
    text += before_[0];
    sml::inspect::append_json_integer(text, result_set);
    for (std::size_t i = 1; i < before_.size(); ++i) {
        text += before_[i];
        if (is_csv)
            append_csv(text, row.cell(i));
        else
            append_json(text, row.cell(i));
    }
    text += is_csv ? "\n" : "}\n";
}

void RowText::append_csv(std::string& text, Cell const& cell) const {
    if (auto const* const integer = std::get_if<std::int64_t>(&cell))
        sml::inspect::append_json_integer(text, *integer);
    else if (auto const* const number = std::get_if<double>(&cell))
        append_plain(text, *number);
    else if (auto const* const value = std::get_if<Text>(&cell))
        append_quoted(text, value->text);
    else
        text += "\\N";
}

void RowText::append_json(std::string& text, Cell const& cell) const {
    if (auto const* const integer = std::get_if<std::int64_t>(&cell))
        sml::inspect::append_json_integer(text, *integer);
    else if (auto const* const number = std::get_if<double>(&cell))
        sml::inspect::append_json_double(text, *number);
    else if (auto const* const value = std::get_if<Text>(&cell))
        sml::inspect::append_json_string(text, value->text);
    else
        text += "null";
}

}  // namespace bradep
