#include "row_output.hpp"

#include <sml/inspect/text/json_text.hpp>
#include <sml/inspect/text/quote.hpp>
#include "terminal.hpp"

#include <algorithm>
#include <iterator>
#include <map>
#include <string_view>

namespace bradep {

namespace {

using Names = std::vector<std::string>;

bool is_number(sqlite3_stmt* statement, int column) {
    int const type = sqlite3_column_type(statement, column);
    return type == SQLITE_INTEGER || type == SQLITE_FLOAT;
}

bool is_null(sqlite3_stmt* statement, int column) {
    return sqlite3_column_type(statement, column) == SQLITE_NULL;
}

/// The text of a value; hexadecimal for a blob.
std::string text_of(sqlite3_stmt* statement, int column) {
    auto const size = [&] {
        return static_cast<std::size_t>(sqlite3_column_bytes(statement, column));
    };
    if (sqlite3_column_type(statement, column) == SQLITE_BLOB) {
        constexpr std::string_view digits = "0123456789abcdef";
        auto const* const          bytes =
            static_cast<unsigned char const*>(sqlite3_column_blob(statement, column));
        std::string text;
        for (std::size_t i = 0; i < size(); ++i) {
            text += digits[bytes[i] >> 4];
            text += digits[bytes[i] & 15];
        }
        return text;
    }
    auto const* const text = sqlite3_column_text(statement, column);
    if (text == nullptr) return {};
    return {reinterpret_cast<char const*>(text), size()};
}

std::string quoted_field(std::string_view text) {
    if (text.find_first_of(",\"\r\n") == std::string_view::npos) return std::string(text);
    std::string quoted = "\"";
    for (char const c : text) quoted.append(c == '"' ? 2 : 1, c);
    return quoted += '"';
}

/// RFC 4180, with lines that end with LF.
class CsvOutput : public RowOutput {
public:
    CsvOutput(RowOptions const& options, std::ostream& out) : options_(options), out_(out) {}

    void begin(Names const& columns) override {
        if (!options_.has_header) return;
        for (std::size_t i = 0; i < columns.size(); ++i)
            out_ << (i == 0 ? "" : ",") << quoted_field(columns[i]);
        out_ << '\n';
    }

    void row(sqlite3_stmt* statement) override {
        int const count = sqlite3_column_count(statement);
        for (int i = 0; i < count; ++i) {
            if (i > 0) out_ << ',';
            if (is_null(statement, i))
                out_ << quoted_field(options_.null);
            else
                put(text_of(statement, i), count == 1);
        }
        out_ << '\n';
    }

private:
    // An empty text is in quotes where a null could be meant, or an empty line.
    void put(std::string const& text, bool is_alone) {
        bool const        looks_null = text == options_.null || (text.empty() && is_alone);
        std::string const field = quoted_field(text);
        if (looks_null && field == text)
            out_ << '"' << text << '"';
        else
            out_ << field;
    }

    RowOptions const& options_;
    std::ostream&     out_;
};

class JsonOutput : public RowOutput {
public:
    JsonOutput(std::ostream& out, bool in_lines) : out_(out), in_lines_(in_lines) {}

    void begin(Names const& columns) override {
        columns_ = columns;
        if (!in_lines_) out_ << '[';
    }

    void row(sqlite3_stmt* statement) override {
        text_.clear();
        if (!in_lines_) text_ += is_first_ ? "\n" : ",\n";
        is_first_ = false;
        text_ += '{';
        for (int i = 0; i < sqlite3_column_count(statement); ++i) {
            if (i > 0) text_ += ',';
            sml::inspect::append_json_string(text_, columns_[static_cast<std::size_t>(i)]);
            text_ += ':';
            append_value(statement, i);
        }
        text_ += in_lines_ ? "}\n" : "}";
        out_ << text_;
    }

    void end() override {
        if (!in_lines_) out_ << (is_first_ ? "]\n" : "\n]\n");
    }

private:
    void append_value(sqlite3_stmt* statement, int column) {
        switch (sqlite3_column_type(statement, column)) {
            case SQLITE_NULL: text_ += "null"; break;
            case SQLITE_INTEGER:
                sml::inspect::append_json_integer(
                    text_, std::int64_t{sqlite3_column_int64(statement, column)});
                break;
            case SQLITE_FLOAT:
                sml::inspect::append_json_double(text_, sqlite3_column_double(statement, column));
                break;
            default: sml::inspect::append_json_string(text_, text_of(statement, column));
        }
    }

    std::ostream& out_;
    bool          in_lines_;
    bool          is_first_ = true;
    Names         columns_;
    std::string   text_;
};

/// Columns of equal width, up to a limit. The widths are those of the first rows; a wider cell
/// moves those behind it.
class AlignedOutput : public RowOutput {
public:
    AlignedOutput(RowOptions const& options, std::ostream& out, std::size_t terminal_columns)
        : options_(options), out_(out), terminal_columns_(terminal_columns) {}

    void begin(Names const& columns) override {
        columns_ = columns;
        is_numeric_.assign(columns.size(), true);
        widths_.assign(columns.size(), 0);
        if (options_.has_header || options_.format == RowFormat::markdown)
            for (std::size_t i = 0; i < columns.size(); ++i) widen(i, shown(columns[i]));
    }

    void row(sqlite3_stmt* statement) override {
        Names cells;
        for (int i = 0; i < sqlite3_column_count(statement); ++i) {
            bool const null = is_null(statement, i);
            if (!is_begun_ && !null && !is_number(statement, i))
                is_numeric_[static_cast<std::size_t>(i)] = false;
            cells.push_back(shown(null ? options_.null : text_of(statement, i)));
        }
        if (is_begun_) return put(cells);
        for (std::size_t i = 0; i < cells.size(); ++i) widen(i, cells[i]);
        first_.push_back(std::move(cells));
        if (first_.size() == rows_for_widths) put_first();
    }

    void end() override {
        if (!is_begun_) put_first();
        if (options_.format == RowFormat::box) put_line("└", "┴", "┘");
    }

private:
    static constexpr std::size_t rows_for_widths = 2000;
    static constexpr std::size_t widest = 120;

    // On one line. In markdown, nothing becomes markup.
    std::string shown(std::string_view text) const {
        if (options_.format == RowFormat::markdown) return markdown_text(text);
        return sml::inspect::printable(text);
    }

    void widen(std::size_t column, std::string_view cell) {
        widths_[column] = std::max(widths_[column], std::min(display_columns(cell), widest));
    }

    void put_first() {
        is_begun_ = true;
        if (first_.empty()) is_numeric_.assign(columns_.size(), false);
        bool const is_box = options_.format == RowFormat::box;
        if (is_box) put_line("┌", "┬", "┐");
        bool const is_markdown = options_.format == RowFormat::markdown;
        if (options_.has_header || is_markdown) {
            Names header;
            std::ranges::transform(columns_, std::back_inserter(header),
                                   [&](std::string const& name) { return shown(name); });
            put(header);
            if (is_box) put_line("├", "┼", "┤");
            if (is_markdown) put_markdown_line();
            if (options_.format == RowFormat::text) put_rule();
        }
        for (Names const& cells : first_) put(cells);
        first_.clear();
    }

    void put(Names const& cells) {
        bool const        has_edges = options_.format != RowFormat::text;
        std::string_view  edge = options_.format == RowFormat::box ? "│" : "|";
        std::string const between = has_edges ? " " + std::string(edge) + " " : "  ";
        std::string       line = has_edges ? std::string(edge) + " " : "";
        for (std::size_t i = 0; i < cells.size(); ++i) {
            std::size_t const width = display_columns(cells[i]);
            std::string const blanks(widths_[i] - std::min(widths_[i], width), ' ');
            if (i > 0) line += between;
            line += is_numeric_[i] ? blanks + cells[i] : cells[i] + blanks;
        }
        if (has_edges)
            line += " " + std::string(edge);
        else
            line.erase(line.find_last_not_of(' ') + 1);
        out_ << (terminal_columns_ > 0 && options_.format == RowFormat::text
                     ? cut_to_columns(line, terminal_columns_)
                     : line)
             << '\n';
    }

    void put_rule() {
        Names rules;
        for (std::size_t const width : widths_) rules.emplace_back(width, '-');
        put(rules);
    }

    void put_markdown_line() {
        out_ << '|';
        for (std::size_t i = 0; i < widths_.size(); ++i)
            out_ << std::string(widths_[i] + 1, '-') << (is_numeric_[i] ? ':' : '-') << '|';
        out_ << '\n';
    }

    void put_line(std::string_view first, std::string_view between, std::string_view last) {
        out_ << first;
        for (std::size_t i = 0; i < widths_.size(); ++i) {
            if (i > 0) out_ << between;
            for (std::size_t k = 0; k < widths_[i] + 2; ++k) out_ << "─";
        }
        out_ << last << '\n';
    }

    RowOptions const&        options_;
    std::ostream&            out_;
    std::size_t              terminal_columns_;
    Names                    columns_;
    std::vector<bool>        is_numeric_;
    std::vector<std::size_t> widths_;
    std::vector<Names>       first_;  // rows that are not yet printed
    bool                     is_begun_ = false;
};

std::map<std::string, RowFormat> const& formats() {
    static std::map<std::string, RowFormat> const all = {
        {"text", RowFormat::text}, {"box", RowFormat::box},       {"csv", RowFormat::csv},
        {"json", RowFormat::json}, {"ndjson", RowFormat::ndjson}, {"markdown", RowFormat::markdown},
    };
    return all;
}

}  // namespace

bool set_format(RowFormat& format, std::string const& name) {
    auto const found = formats().find(name);
    if (found == formats().end()) return false;
    format = found->second;
    return true;
}

std::string format_names() {
    std::string names;
    for (auto const& [name, format] : formats()) names += (names.empty() ? "" : ", ") + name;
    return names;
}

void declare_row_options(CLI::App& app, RowOptions& options) {
    app.add_option_function<std::string>(
           "--format", [&options](std::string const& name) { set_format(options.format, name); },
           "How rows are printed: " + format_names())
        ->check([](std::string const& name) {
            return formats().contains(name) ? std::string() : "there are " + format_names();
        })
        ->default_str("text")
        ->type_name("FORMAT");
    app.add_flag_callback(
        "--no-header", [&options] { options.has_header = false; },
        "Rows only, without the names of the columns");
    app.add_option("--null", options.null, "What is printed for null, except in JSON")
        ->type_name("TEXT");
}

std::string markdown_text(std::string_view text) {
    constexpr std::string_view special = "\\`*_{}[]<>()#+!|~&";
    std::string                escaped;
    for (char const c : sml::inspect::printable(text)) {
        if (special.find(c) != std::string_view::npos) escaped += '\\';
        escaped += c;
    }
    return escaped;
}

std::unique_ptr<RowOutput> row_output(RowOptions const& options, std::ostream& out,
                                      std::size_t columns) {
    switch (options.format) {
        case RowFormat::csv: return std::make_unique<CsvOutput>(options, out);
        case RowFormat::json: return std::make_unique<JsonOutput>(out, false);
        case RowFormat::ndjson: return std::make_unique<JsonOutput>(out, true);
        default: return std::make_unique<AlignedOutput>(options, out, columns);
    }
}

}  // namespace bradep
