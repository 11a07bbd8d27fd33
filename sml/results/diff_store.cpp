#include <sml/results/diff_store.hpp>

#include <sml/results/stages.hpp>

#include <algorithm>
#include <utility>

namespace sml::results {

using tables::Connection;
using tables::Statement;

namespace {

// `file` is the name of a file on both sides.
constexpr char const* tables_sql = R"(
PRAGMA journal_mode = OFF;
PRAGMA synchronous = OFF;
PRAGMA cache_size = -8192;
PRAGMA temp_store = FILE;
BEGIN;
CREATE TABLE findings (
  id INTEGER PRIMARY KEY, side TEXT NOT NULL, result_set TEXT NOT NULL,
  function TEXT, class TEXT, suppressed INTEGER NOT NULL,
  finding INTEGER NOT NULL, run INTEGER, tool TEXT, tool_version TEXT, rule TEXT, level TEXT,
  kind TEXT, message TEXT, category TEXT, uri TEXT, base TEXT, line INTEGER, "column" INTEGER,
  end_line INTEGER, end_column INTEGER, baseline_state TEXT, "key" TEXT, payload TEXT);
CREATE TABLE steps (
  finding INTEGER NOT NULL, flow INTEGER NOT NULL, thread INTEGER NOT NULL,
  position INTEGER NOT NULL, file TEXT, uri TEXT, message TEXT,
  PRIMARY KEY (finding, flow, thread, position)) WITHOUT ROWID;
CREATE TABLE pairs (
  pair INTEGER PRIMARY KEY, state TEXT NOT NULL, stage TEXT, old INTEGER, new INTEGER);
CREATE TABLE changes (
  pair INTEGER NOT NULL, position INTEGER NOT NULL, path TEXT NOT NULL, old TEXT, new TEXT,
  PRIMARY KEY (pair, position)) WITHOUT ROWID;
CREATE TABLE records (
  name TEXT PRIMARY KEY, old INTEGER NOT NULL, new INTEGER NOT NULL, both INTEGER NOT NULL);
)";

std::string parameters(std::size_t count) {
    std::string all = "(";
    for (std::size_t i = 0; i < count; ++i) all += i == 0 ? "?" : ", ?";
    return all + ')';
}

std::string quoted(std::string const& name) { return '"' + name + '"'; }

// The columns of an absent finding are the old ones, of any other the new ones.
std::string view_sql() {
    std::string sql =
        "CREATE VIEW diff AS SELECT p.pair, p.state, p.stage,\n"
        "  o.result_set AS old_result_set, n.result_set AS new_result_set,\n"
        "  o.\"key\" AS old_key, n.\"key\" AS new_key,\n"
        "  o.uri AS old_uri, o.line AS old_line, o.\"column\" AS old_column";
    auto columns = DiffStore::plain_columns();
    columns.insert(columns.end(), {"function", "class", "suppressed", "payload"});
    for (std::string const& column : columns) {
        auto const name = quoted(column);
        sql +=
            ",\n  CASE WHEN p.new IS NULL THEN o." + name + " ELSE n." + name + " END AS " + name;
    }
    return sql +
           "\nFROM pairs AS p\n"
           "LEFT JOIN findings AS o ON o.id = p.old LEFT JOIN findings AS n ON n.id = p.new;\n";
}

Connection opened(std::string const& file) {
    Connection connection(file);
    connection.run(tables_sql + view_sql());
    return connection;
}

void bind_id(Statement& statement, int parameter, std::uint64_t id) {
    statement.bind(parameter, static_cast<std::int64_t>(id));
}

void bind_columns(Statement& statement, int parameter, sqlite3_stmt* columns, int first,
                  int count) {
    for (int i = 0; i < count; ++i)
        statement.bind(parameter + i, sqlite3_column_value(columns, first + i));
}

void run(Statement& statement) {
    statement.step();
    statement.reset();
}

void bind(Statement& statement, int parameter, std::optional<std::string> const& text) {
    if (text)
        statement.bind(parameter, std::string_view(*text));
    else
        statement.bind_null(parameter);
}

void bind(Statement& statement, int parameter, std::optional<std::uint64_t> id) {
    if (id)
        bind_id(statement, parameter, *id);
    else
        statement.bind_null(parameter);
}

}  // namespace

std::vector<std::string> const& DiffStore::plain_columns() {
    static std::vector<std::string> const names = {
        "finding",        "run",  "tool",    "tool_version", "rule",
        "level",          "kind", "message", "category",     "uri",
        "base",           "line", "column",  "end_line",     "end_column",
        "baseline_state", "key"};
    return names;
}

DiffStore::DiffStore(std::string const& file)
    : connection_(opened(file)),
      finding_(connection_.get(),
               "INSERT INTO findings VALUES " + parameters(plain_columns().size() + 7)),
      payload_(connection_.get(), "UPDATE findings SET payload = ? WHERE id = ?"),
      step_(connection_.get(), "INSERT INTO steps VALUES " + parameters(7)),
      pair_(connection_.get(), "INSERT INTO pairs VALUES " + parameters(5)),
      change_(connection_.get(), "INSERT INTO changes VALUES " + parameters(5)),
      records_(connection_.get(), "INSERT INTO records VALUES " + parameters(4)) {}

void DiffStore::add_finding(std::uint64_t id, Side side, Joined const& joined,
                            sqlite3_stmt* columns, int first) {
    auto const bind_known = [&](int parameter, std::string_view text) {
        if (text.empty())
            finding_.bind_null(parameter);
        else
            finding_.bind(parameter, text);
    };
    auto const count = static_cast<int>(plain_columns().size());
    bind_id(finding_, 1, id);
    finding_.bind(2, std::string_view(side == Side::old_side ? "old" : "new"));
    finding_.bind(3, joined.set);
    bind_known(4, joined.function);
    bind_known(5, joined.class_);
    finding_.bind(6, std::int64_t{joined.is_suppressed});
    bind_columns(finding_, 7, columns, first, count);
    finding_.bind_null(7 + count);
    run(finding_);
}

void DiffStore::set_payload(std::uint64_t id, std::string_view payload) {
    payload_.bind(1, payload);
    bind_id(payload_, 2, id);
    run(payload_);
}

void DiffStore::add_step(Step const& step) {
    bind_id(step_, 1, step.finding);
    step_.bind(2, step.flow);
    step_.bind(3, step.thread);
    step_.bind(4, step.position);
    step_.bind(5, step.file);
    for (auto const& [parameter, text] : {std::pair{6, step.uri}, std::pair{7, step.message}})
        if (text)
            step_.bind(parameter, *text);
        else
            step_.bind_null(parameter);
    run(step_);
}

void DiffStore::add_pair(char const* state, Stage stage, std::optional<std::uint64_t> older,
                         std::optional<std::uint64_t> newer, std::vector<Change> const& changes) {
    pair_.bind(1, ++pairs_);
    pair_.bind(2, std::string_view(state));
    if (char const* const name = name_of(stage))
        pair_.bind(3, std::string_view(name));
    else
        pair_.bind_null(3);
    bind(pair_, 4, older);
    bind(pair_, 5, newer);
    run(pair_);
    std::int64_t position = 0;
    for (Change const& change : changes) {
        change_.bind(1, pairs_);
        change_.bind(2, position++);
        change_.bind(3, std::string_view(change.path));
        bind(change_, 4, change.older);
        bind(change_, 5, change.newer);
        run(change_);
    }
}

void DiffStore::add_records(std::string_view table, std::uint64_t olds, std::uint64_t news,
                            std::uint64_t both) {
    records_.bind(1, table);
    bind_id(records_, 2, olds);
    bind_id(records_, 3, news);
    bind_id(records_, 4, both);
    run(records_);
}

void DiffStore::finish() { connection_.run("COMMIT"); }

}  // namespace sml::results
