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

std::string alternatives(std::string const& condition, std::size_t count) {
    std::string sql;
    for (std::size_t i = 0; i < count; ++i) sql += (i == 0 ? "" : " OR ") + condition;
    return count == 0 ? "" : " AND (" + sql + ')';
}

// "src/a.c:12:3"
std::string place_of(Statement const& row, int of_uri) {
    std::string place(row.is_null(of_uri) ? "-" : row.text(of_uri));
    if (row.is_null(of_uri + 1)) return place;
    place += ':' + std::string(row.text(of_uri + 1));
    if (!row.is_null(of_uri + 2)) place += ':' + std::string(row.text(of_uri + 2));
    return place;
}

/// A value of a change on a line of its own: short, without line breaks.
std::string shown(Statement const& row, int column) {
    return row.is_null(column) ? "(none)" : sml::inspect::quoted(row.text(column), 200);
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
    if (row.is_null(column))
        json.text += "null";
    else
        json.string(row.text(column));
}

void add_number(JsonWriter& json, char const* name, Statement const& row, int column) {
    json.member(name);
    if (row.is_null(column))
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

// "level: "note" -> "error""
std::string change_text(Statement const& change) {
    return printable(change.text(0)) + ": " + shown(change, 1) + " -> " + shown(change, 2);
}

/// What `--explain` prints of both findings.
constexpr std::array compared = {"tool",     "rule",     "level",     "kind",       "message",
                                 "category", "payload",  "class",     "suppressed", "uri",
                                 "line",     "function", "result_set"};

// The old value and, if it is another one, the new value, which follows it in the row.
void put_compared(std::ostream& out, char const* name, Statement const& row, int of_old) {
    if (row.is_null(of_old) && row.is_null(of_old + 1)) return;
    out << "  " << name << ": " << shown(row, of_old);
    if (row.text(of_old) != row.text(of_old + 1)) out << " -> " << shown(row, of_old + 1);
    out << '\n';
}

// Prints what is counted of other records, if any differ.
void put_records(std::ostream& out, Statement& records) {
    std::string line;
    while (records.step())
        line += (line.empty() ? "" : ", ") + std::string(records.text(0)) + ": " +
                std::to_string(records.integer(1)) + " new, " + std::to_string(records.integer(2)) +
                " absent";
    if (!line.empty()) out << line << '\n';
}

// As compilers print theirs.
std::string line_of(Statement const& row) {
    std::string text = printable(place_of(row, uri)) + ':';
    if (!row.is_null(level)) text += ' ' + printable(row.text(level)) + ':';
    if (!row.is_null(message)) text += ' ' + printable(row.text(message));
    if (!row.is_null(rule)) text += " [" + printable(row.text(rule)) + ']';
    if (row.integer(suppressed) != 0) text += " (suppressed)";
    return text;
}

std::string markdown_row(Statement const& row, Changes& changes) {
    std::string text = "| " + std::string(row.text(state)) + " | " +
                       markdown_text(place_of(row, uri)) + " | " + markdown_text(row.text(level)) +
                       " | " + markdown_text(row.text(message));
    changes.for_each(row.integer(pair), [&](Statement const& change) {
        text += "<br>" + markdown_text(change.text(0)) + ": " + markdown_text(shown(change, 1)) +
                " → " + markdown_text(shown(change, 2));
    });
    return text + (row.integer(suppressed) != 0 ? " (suppressed) | " : " | ") +
           markdown_text(row.text(rule)) + " |\n";
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
        case DiffFormat::sarif: break;
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

std::map<std::string, StatesByKey> DiffOutput::states(sml::results::Side side) {
    bool const                         is_new = side == sml::results::Side::new_side;
    auto                               rows = is_new
                                                  ? selection("new_result_set, new_key, state", " AND new_key IS NOT NULL", true)
                                                  : selection("old_result_set, old_key, state", " AND state = 'absent'", true);
    std::map<std::string, StatesByKey> all;
    while (rows.step()) {
        auto const name = std::ranges::find(diff_states(), rows.text(2));
        all[std::string(rows.text(0))].emplace(rows.text(1), *name);
    }
    return all;
}

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
    Statement records(store_.connection().get(),
                      "SELECT name, new - both, old - both FROM records"
                      " WHERE new > both OR old > both ORDER BY rowid");
    put_records(out, records);
    Changes     changes(store_);
    std::string last_state;
    auto        rows = findings();
    while (rows.step()) {
        if (rows.text(state) != last_state) {
            last_state = rows.text(state);
            out << '\n' << last_state << ":\n";
        }
        out << line_of(rows) << '\n';
        changes.for_each(rows.integer(pair), [&](Statement const& change) {
            out << "    " << change_text(change) << '\n';
        });
    }
}

void DiffOutput::add_records(JsonWriter& json) {
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
    add_records(json);
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
    constexpr std::size_t      most_bytes = 60000;
    constexpr std::string_view head =
        "\n| state | place | level | finding | rule |\n|---|---|---|---|---|\n";
    auto&         out = streams_.out;
    std::size_t   size = 0;
    std::uint64_t left = 0;
    Changes       changes(store_);
    auto          rows = findings();
    out << "### " << summary() << '\n';
    while (rows.step()) {
        std::string const row = markdown_row(rows, changes);
        if (size + row.size() > most_bytes) {
            ++left;
            continue;
        }
        if (size == 0) out << head;
        out << row;
        size += row.size();
    }
    if (left > 0) out << "\n" << left << " more are not listed.\n";
}

void DiffOutput::explain(std::vector<std::string> const& keys) {
    for (std::string const& key : keys) explain(key);
}

void DiffOutput::explain(std::string const& key) {
    enum : int { of_state, of_stage, of_old, of_new, of_pair, first_compared };
    std::string columns;
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
    auto    either = [&](int column) {
        return rows.is_null(column) ? "(none)" : printable(rows.text(column));
    };
    while (rows.step()) {
        is_found = true;
        out << either(of_old) << " -> " << either(of_new) << ": " << rows.text(of_state) << '\n';
        out << "  stage " << (rows.is_null(of_stage) ? "none" : rows.text(of_stage)) << ": "
            << sml::results::meaning_of(sml::results::stage_named(rows.text(of_stage))) << '\n';
        for (std::size_t i = 0; i < compared.size(); ++i)
            put_compared(out, compared[i], rows, first_compared + 2 * static_cast<int>(i));
        changes.for_each(rows.integer(of_pair), [&](Statement const& change) {
            out << "  differs: " << change_text(change) << '\n';
        });
    }
    if (!is_found) throw DamagedInput("no finding has the key " + key);
}

}  // namespace bradep
