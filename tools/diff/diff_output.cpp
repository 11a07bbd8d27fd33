#include "diff/diff_output.hpp"

#include <sml/inspect/text/json_writer.hpp>
#include <sml/inspect/text/quote.hpp>
#include <sml/results/stages.hpp>
#include <sml/tables/sqlite/functions.hpp>
#include "errors.hpp"
#include "row_output.hpp"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <utility>

namespace bradep {

namespace {

using sml::inspect::JsonWriter;
using sml::inspect::printable;
using sml::tables::Statement;

// The columns of a finding, in the order of `findings_columns`.
enum Column : int {
    pair,
    state,
    stage,
    old_key,
    new_key,
    tool,
    rule,
    level,
    message,
    uri,
    line,
    column,
    function,
    suppressed,
    old_uri,
    old_line,
    old_column,
    old_result_set,
    new_result_set
};
constexpr char const* finding_columns =
    "pair, state, stage, old_key, new_key, tool, rule, level, message, uri, line, \"column\","
    " function, suppressed, old_uri, old_line, old_column, old_result_set, new_result_set";

// New findings first. What follows the place makes the order the same for equal contents.
constexpr char const* finding_order =
    " ORDER BY CASE state WHEN 'new' THEN 0 WHEN 'updated' THEN 1 WHEN 'absent' THEN 2 ELSE 3 END,"
    " uri, line, \"column\", rule, message, length(new_key), new_key, length(old_key), old_key,"
    " new_result_set, old_result_set";

bool is_null(Statement const& row, int column) {
    return sqlite3_column_type(row.get(), column) == SQLITE_NULL;
}
std::string_view text_of(Statement const& row, int column) {
    return is_null(row, column) ? std::string_view() : row.text(column);
}

std::string alternatives(std::string const& condition, std::size_t count) {
    std::string sql;
    for (std::size_t i = 0; i < count; ++i) sql += (i == 0 ? "" : " OR ") + condition;
    return count == 0 ? "" : " AND (" + sql + ')';
}

// "src/a.c:12:3"
std::string place_of(Statement const& row, int of_uri) {
    std::string place(is_null(row, of_uri) ? "-" : row.text(of_uri));
    if (is_null(row, of_uri + 1)) return place;
    place += ':' + std::string(row.text(of_uri + 1));
    if (!is_null(row, of_uri + 2)) place += ':' + std::string(row.text(of_uri + 2));
    return place;
}

/// A value of a change on a line of its own: short, without line breaks.
std::string shown(Statement const& row, int column) {
    return is_null(row, column) ? "(none)" : sml::inspect::quoted(row.text(column), 200);
}

/// The changes of a pair.
class Changes {
public:
    explicit Changes(sml::results::DiffStore& store)
        : statement_(store.connection().get(),
                     "SELECT path, old, new FROM changes WHERE pair = ? ORDER BY position") {}

    template <class Use>
    void for_each(std::int64_t of_pair, Use const& use) {
        statement_.bind(1, of_pair);
        while (statement_.step()) use(statement_);
        statement_.reset();
    }

private:
    Statement statement_;
};

void add_text(JsonWriter& json, char const* name, Statement const& row, int column) {
    json.member(name);
    if (is_null(row, column))
        json.text += "null";
    else
        json.string(row.text(column));
}

void add_number(JsonWriter& json, char const* name, Statement const& row, int column) {
    json.member(name);
    if (is_null(row, column))
        json.text += "null";
    else
        sml::inspect::append_json_integer(json.text, row.integer(column));
}

void add_finding(JsonWriter& json, Statement const& row, Changes& changes) {
    json.open('{');
    for (auto const& [name, which] :
         {std::pair{"state", state}, std::pair{"stage", stage}, std::pair{"old", old_key},
          std::pair{"new", new_key}, std::pair{"tool", tool}, std::pair{"rule", rule},
          std::pair{"level", level}, std::pair{"message", message}, std::pair{"uri", uri}})
        add_text(json, name, row, which);
    add_number(json, "line", row, line);
    add_number(json, "column", row, column);
    add_text(json, "function", row, function);
    json.member("suppressed");
    json.text += row.integer(suppressed) != 0 ? "true" : "false";
    add_text(json, "oldUri", row, old_uri);
    add_number(json, "oldLine", row, old_line);
    add_text(json, "oldFile", row, old_result_set);
    add_text(json, "newFile", row, new_result_set);
    json.member("changes");
    json.open('[');
    changes.for_each(row.integer(pair), [&](Statement const& change) {
        json.next();
        json.open('{');
        add_text(json, "path", change, 0);
        add_text(json, "old", change, 1);
        add_text(json, "new", change, 2);
        json.close('}');
    });
    json.close(']');
    json.close('}');
}

}  // namespace

std::vector<std::string> const& diff_states() {
    static std::vector<std::string> const all = {"new", "updated", "absent", "unchanged"};
    return all;
}

DiffOutput::DiffOutput(sml::results::DiffStore& store, DiffFilter const& filter, Streams& streams)
    : store_(store), filter_(filter), streams_(streams) {
    add_functions(store.connection());
}

void DiffOutput::print(DiffFormat format) {
    switch (format) {
        case DiffFormat::text: return print_text();
        case DiffFormat::json: return print_json();
        case DiffFormat::ndjson: return print_lines();
        case DiffFormat::markdown: return print_markdown();
    }
}

std::string DiffOutput::condition(bool by_state) const {
    return " WHERE true" + alternatives("level = ?", filter_.levels.size()) +
           alternatives("fnmatch(?, rule)", filter_.rules.size()) +
           alternatives("state = ?", by_state ? filter_.states.size() : 0);
}

Statement DiffOutput::selection(std::string const& columns, std::string const& rest,
                                bool by_state) {
    Statement rows(store_.connection().get(),
                   "SELECT " + columns + " FROM diff" + condition(by_state) + rest);
    int       parameter = 0;
    for (auto const* const values : {&filter_.levels, &filter_.rules, &filter_.states}) {
        if (values == &filter_.states && !by_state) continue;
        for (std::string const& value : *values) rows.bind(++parameter, std::string_view(value));
    }
    return rows;
}

Statement DiffOutput::findings() { return selection(finding_columns, finding_order, true); }

DiffOutput::Counts DiffOutput::counts() {
    Counts counts;
    for (std::string const& one : diff_states()) counts[one] = 0;
    auto rows = selection("state, count(*)", " GROUP BY state", false);
    while (rows.step()) counts[std::string(rows.text(0))] = rows.integer(1);
    return counts;
}

std::uint64_t DiffOutput::count(std::vector<std::string> const& states) {
    std::uint64_t found = 0;
    auto          rows = selection("state, count(*)", " AND NOT suppressed GROUP BY state", false);
    while (rows.step())
        if (std::ranges::count(states, rows.text(0)) > 0)
            found += static_cast<std::uint64_t>(rows.integer(1));
    return found;
}

// "10 new, 0 updated, 1 absent, 83 unchanged"
std::string DiffOutput::summary() {
    auto const  of = counts();
    std::string text;
    for (std::string const& one : diff_states())
        text += (text.empty() ? "" : ", ") + std::to_string(of.at(one)) + ' ' + one;
    return text;
}

void DiffOutput::print_text() {
    auto& out = streams_.out;
    out << summary() << '\n';
    Statement records(
        store_.connection().get(),
        "SELECT name, new - both, old - both FROM records WHERE new > both OR old > both"
        " ORDER BY rowid");
    std::string of_records;
    while (records.step())
        of_records += (of_records.empty() ? "" : ", ") + std::string(records.text(0)) + ": " +
                      std::to_string(records.integer(1)) + " new, " +
                      std::to_string(records.integer(2)) + " absent";
    if (!of_records.empty()) out << of_records << '\n';
    Changes     changes(store_);
    std::string last_state;
    auto        rows = findings();
    while (rows.step()) {
        if (rows.text(state) != last_state) out << '\n' << (last_state = rows.text(state)) << ":\n";
        std::string text = printable(place_of(rows, uri)) + ':';
        if (!is_null(rows, level)) text += ' ' + printable(rows.text(level)) + ':';
        if (!is_null(rows, message)) text += ' ' + printable(rows.text(message));
        if (!is_null(rows, rule)) text += " [" + printable(rows.text(rule)) + ']';
        if (rows.integer(suppressed) != 0) text += " (suppressed)";
        out << text << '\n';
        changes.for_each(rows.integer(pair), [&](Statement const& change) {
            out << "    " << printable(change.text(0)) << ": " << shown(change, 1) << " -> "
                << shown(change, 2) << '\n';
        });
    }
}

void DiffOutput::print_json() {
    JsonWriter json(streams_.out, false, sml::inspect::StrayByte::replaced);
    json.open('{');
    json.member("counts");
    json.open('{');
    auto const of = counts();
    for (std::string const& one : diff_states()) {
        json.member(one);
        sml::inspect::append_json_integer(json.text, of.at(one));
    }
    json.close('}');
    json.member("records");
    json.open('{');
    Statement records(store_.connection().get(),
                      "SELECT name, new - both, old - both, both FROM records ORDER BY rowid");
    while (records.step()) {
        json.member(records.text(0));
        json.open('{');
        add_number(json, "new", records, 1);
        add_number(json, "absent", records, 2);
        add_number(json, "unchanged", records, 3);
        json.close('}');
    }
    json.close('}');
    json.member("findings");
    json.open('[');
    Changes changes(store_);
    auto    rows = findings();
    while (rows.step()) {
        json.next();
        json.text += '\n';
        add_finding(json, rows, changes);
    }
    json.close(']');
    json.close('}');
    json.end_line();
    json.flush();
}

void DiffOutput::print_lines() {
    JsonWriter json(streams_.out, false, sml::inspect::StrayByte::replaced);
    Changes    changes(store_);
    auto       rows = findings();
    while (rows.step()) {
        add_finding(json, rows, changes);
        json.end_line();
    }
    json.flush();
}

// Hosts of code take comments of up to 65,536 characters.
void DiffOutput::print_markdown() {
    constexpr std::size_t most_bytes = 60000;
    auto&                 out = streams_.out;
    std::string           text = "### " + summary() + '\n';
    Changes               changes(store_);
    std::uint64_t         left = 0;
    bool                  has_table = false;
    auto                  rows = findings();
    while (rows.step()) {
        std::string row;
        if (!has_table)
            row = "\n| state | place | level | finding | rule |\n|---|---|---|---|---|\n";
        row += "| " + std::string(rows.text(state)) + " | " + markdown_text(place_of(rows, uri)) +
               " | " + markdown_text(text_of(rows, level)) + " | " +
               markdown_text(text_of(rows, message));
        changes.for_each(rows.integer(pair), [&](Statement const& change) {
            row += "<br>" + markdown_text(change.text(0)) + ": " + markdown_text(shown(change, 1)) +
                   " → " + markdown_text(shown(change, 2));
        });
        row += (rows.integer(suppressed) != 0 ? " (suppressed) | " : " | ") +
               markdown_text(text_of(rows, rule)) + " |\n";
        if (text.size() + row.size() > most_bytes) {
            ++left;
            continue;
        }
        text += row;
        has_table = true;
    }
    out << text;
    if (left > 0) out << "\n" << left << " more are not listed.\n";
}

void DiffOutput::explain(std::vector<std::string> const& keys) {
    for (std::string const& key : keys) explain(key);
}

void DiffOutput::explain(std::string const& key) {
    constexpr std::array compared = {"tool",     "rule",     "level",     "kind",       "message",
                                     "category", "payload",  "class",     "suppressed", "uri",
                                     "line",     "function", "result_set"};
    std::string          columns;
    for (char const* const name : compared) columns += std::string(", o.") + name + ", n." + name;
    Statement rows(store_.connection().get(),
                   "SELECT p.state, p.stage, o.\"key\", n.\"key\", p.pair" + columns +
                       " FROM pairs AS p LEFT JOIN findings AS o ON o.id = p.old"
                       " LEFT JOIN findings AS n ON n.id = p.new"
                       " WHERE o.\"key\" = ?1 OR n.\"key\" = ?1 ORDER BY n.\"key\" IS ?1 DESC,"
                       " n.result_set, o.result_set");
    rows.bind(1, std::string_view(key));
    Changes changes(store_);
    auto&   out = streams_.out;
    bool    is_found = false;
    while (rows.step()) {
        is_found = true;
        auto const stage_of = [&] {
            for (int i = 0;; ++i) {
                auto const        one = static_cast<sml::results::Stage>(i);
                auto const* const name = name_of(one);
                if (i == 0 ? is_null(rows, 1) : name == text_of(rows, 1)) return one;
            }
        };
        out << (is_null(rows, 2) ? "(none)" : printable(rows.text(2))) << " -> "
            << (is_null(rows, 3) ? "(none)" : printable(rows.text(3))) << ": " << rows.text(0)
            << '\n';
        out << "  stage " << (is_null(rows, 1) ? "none" : rows.text(1)) << ": "
            << meaning_of(stage_of()) << '\n';
        for (std::size_t i = 0; i < compared.size(); ++i) {
            int const of_old = 5 + 2 * static_cast<int>(i);
            if (is_null(rows, of_old) && is_null(rows, of_old + 1)) continue;
            bool const is_equal = text_of(rows, of_old) == text_of(rows, of_old + 1);
            out << "  " << compared[i] << ": " << shown(rows, of_old);
            if (!is_equal) out << " -> " << shown(rows, of_old + 1);
            out << '\n';
        }
        changes.for_each(rows.integer(4), [&](Statement const& change) {
            out << "  differs: " << printable(change.text(0)) << ": " << shown(change, 1) << " -> "
                << shown(change, 2) << '\n';
        });
    }
    if (!is_found) throw DamagedInput("no finding has the key " + key);
}

}  // namespace bradep
