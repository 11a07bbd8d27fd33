#include <sml/results/series_store.hpp>

#include <sml/results/paths.hpp>
#include <sml/tables/schema_sql.hpp>

#include <array>
#include <cstddef>
#include <utility>

namespace sml::results {

using tables::Connection;
using tables::Statement;

namespace {

// Tells these databases from others.
constexpr int application_id = 0x62645431;
// Changes with the tables, and with what the hashes in `identities` are made of: findings could
// not be found again by hashes that were made otherwise.
constexpr int version = 2;

using Columns = std::vector<std::string>;

// Of a finding: what matching needs and no other column says.
Columns const& own_columns() {
    static Columns const names = {"file", "flow", "code", "fingerprints", "trace"};
    return names;
}

/// A column of a finding that is kept as it is.
struct KeptColumn {
    char const* name;
    char const* type;
};

constexpr KeptColumn kept_columns[] = {{"tool", "TEXT"},
                                       {"tool_version", "TEXT"},
                                       {"rule", "TEXT"},
                                       {"level", "TEXT"},
                                       {"kind", "TEXT"},
                                       {"message", "TEXT"},
                                       {"category", "TEXT"},
                                       {"uri", "TEXT"},
                                       {"line", "INTEGER"},
                                       {"column", "INTEGER"},
                                       {"function", "TEXT"},
                                       {"class", "TEXT"},
                                       {"suppressed", "INTEGER NOT NULL"},
                                       {"payload", "TEXT"}};

// With a comma before each.
std::string kept_columns_with_types() {
    std::string text;
    for (KeptColumn const& one : kept_columns)
        text += ", " + tables::quoted_name(one.name) + ' ' + one.type;
    return text;
}

Columns columns_of_sighting() {
    Columns all = own_columns();
    all.insert(all.end(), SeriesStore::columns().begin(), SeriesStore::columns().end());
    return all;
}

// ?1, ?2 and so on.
std::string parameters(std::size_t count) {
    std::string all;
    for (std::size_t i = 1; i <= count; ++i) all += (i == 1 ? "?" : ", ?") + std::to_string(i);
    return all;
}

int parameter_behind_sighting() { return static_cast<int>(columns_of_sighting().size()) + 1; }

std::string tables_sql() {
    return "CREATE TABLE runs (\n"
           "  run INTEGER PRIMARY KEY, name TEXT NOT NULL, digest TEXT NOT NULL,\n"
           "  added TEXT NOT NULL DEFAULT (strftime('%Y-%m-%dT%H:%M:%SZ', 'now')),\n"
           "  open INTEGER NOT NULL, new INTEGER NOT NULL, returned INTEGER NOT NULL,\n"
           "  fixed INTEGER NOT NULL, suppressed INTEGER NOT NULL);\n"
           "CREATE INDEX runs_by_digest ON runs (digest);\n"
           "CREATE TABLE files (file INTEGER PRIMARY KEY, path TEXT NOT NULL);\n"
           "CREATE INDEX files_by_path ON files (path);\n"
           "CREATE TABLE tools (tool TEXT PRIMARY KEY) WITHOUT ROWID;\n"
           "CREATE TABLE identities (\n"
           "  id INTEGER PRIMARY KEY, first_run INTEGER NOT NULL, gone_run INTEGER,\n"
           "  file INTEGER NOT NULL, flow BLOB, code BLOB, fingerprints BLOB,\n"
           "  trace BLOB NOT NULL" +
           kept_columns_with_types() +
           ");\n"
           "CREATE INDEX identities_open ON identities (gone_run) WHERE gone_run IS NULL;\n"
           "CREATE INDEX identities_gone_file ON identities (file, ifnull(rule, ''))\n"
           "  WHERE gone_run IS NOT NULL;\n"
           "CREATE INDEX identities_gone_function ON identities (function, ifnull(rule, ''))\n"
           "  WHERE gone_run IS NOT NULL;\n"
           "CREATE INDEX identities_gone_trace ON identities (trace, file)\n"
           "  WHERE gone_run IS NOT NULL;\n"
           "CREATE TABLE gaps (\n"
           "  id INTEGER NOT NULL, gone_run INTEGER NOT NULL, back_run INTEGER NOT NULL,\n"
           "  PRIMARY KEY (id, gone_run)) WITHOUT ROWID;\n"
           "CREATE VIEW findings AS SELECT id,\n"
           "  CASE WHEN gone_run IS NULL THEN 'open' ELSE 'gone' END AS state, first_run,\n"
           "  coalesce(gone_run - 1, (SELECT max(run) FROM runs)) AS last_run, gone_run,\n"
           "  (SELECT max(back_run) FROM gaps WHERE gaps.id = identities.id) AS back_run,\n  " +
           SeriesStore::columns_sql() +
           "\nFROM identities;\nPRAGMA application_id = " + std::to_string(application_id) +
           ";\nPRAGMA user_version = " + std::to_string(version);
}

std::string load_sql(char const* condition) {
    return "SELECT id, path, fingerprints, flow, code, tool, rule, message, level, kind, class,"
           " function, suppressed, payload, line, \"column\""
           " FROM identities JOIN files USING (file) WHERE " +
           std::string(condition) + " ORDER BY id";
}

// Of the findings that are gone and have one trace. What is in very many files says nothing.
constexpr std::size_t most_looked_at = 1000;
constexpr std::size_t most_files = 16;

// Hashes as bytes, the same on every machine.
constexpr std::size_t bytes_of_hash = 16;

std::string bytes_of(std::vector<Hash> const& hashes) {
    std::string bytes;
    for (Hash const& hash : hashes)
        for (std::uint64_t const half : {hash.high, hash.low})
            for (int shift = 56; shift >= 0; shift -= 8)
                bytes += static_cast<char>(half >> shift & 0xFF);
    return bytes;
}

std::vector<Hash> hashes_of(Statement const& row, int column) {
    auto const* const bytes =
        static_cast<unsigned char const*>(sqlite3_column_blob(row.get(), column));
    auto const        size = static_cast<std::size_t>(sqlite3_column_bytes(row.get(), column));
    std::vector<Hash> hashes(size / bytes_of_hash);
    for (std::size_t i = 0; i < hashes.size() * bytes_of_hash; ++i) {
        Hash& hash = hashes[i / bytes_of_hash];
        auto& half = i % bytes_of_hash < bytes_of_hash / 2 ? hash.high : hash.low;
        half = half << 8 | bytes[i];
    }
    return hashes;
}

std::int64_t number_of(Connection& connection, char const* sql) {
    Statement statement(connection.get(), sql);
    return statement.step() ? statement.integer(0) : 0;
}

std::vector<std::string> texts_of(Connection& connection, char const* sql) {
    std::vector<std::string> texts;
    Statement                rows(connection.get(), sql);
    while (rows.step()) texts.emplace_back(rows.text(0));
    return texts;
}

void run(Statement& statement) {
    statement.step();
    statement.reset();
}

// The columns of `load_sql`.
enum Column : int {
    id,
    path,
    fingerprints,
    flow,
    code,
    tool,
    rule,
    message,
    level,
    kind,
    class_,
    function,
    suppressed,
    payload,
    line,
    column
};

void add_to_side(Statement const& row, StoredSide& side) {
    auto const index = static_cast<std::uint32_t>(side.findings.size());
    Finding&   one = side.findings.emplace_back();
    set_texts(one, {row.text(message), row.text(level), row.text(kind), row.text(class_),
                    row.text(function), row.integer(suppressed) != 0});
    if (!row.is_null(payload)) set_payload(one, row.text(payload));
    if (auto const hashes = hashes_of(row, flow); !hashes.empty()) one.flow = hashes[0];
    if (auto const hashes = hashes_of(row, code); hashes.size() == 2) {
        one.text = hashes[0];
        one.surroundings = hashes[1];
    }
    one.rule = side.number_of_rule(row.text(tool), row.text(rule));
    one.file = side.paths.number_of(row.text(path));
    one.line = static_cast<std::int32_t>(row.integer(line));
    one.column = static_cast<std::int32_t>(row.integer(column));
    one.ordinal = index;
    for (Hash const& print : hashes_of(row, fingerprints))
        side.fingerprints.push_back({print, index});
    side.ids.push_back(row.integer(id));
    side.is_suppressed.push_back(row.integer(suppressed) != 0);
}

void add_all_to_side(Statement& rows, StoredSide& side) {
    while (rows.step()) add_to_side(rows, side);
    rows.reset();
}

void add_ids(Statement& rows, std::string_view place, std::string_view rule_id,
             std::set<std::int64_t>& ids) {
    rows.bind(1, place);
    rows.bind(2, rule_id);
    while (rows.step()) ids.insert(rows.integer(0));
    rows.reset();
}

}  // namespace

struct SeriesStore::Statements {
    explicit Statements(sqlite3* connection)
        : add(connection, "INSERT INTO identities (" + tables::quoted_names(columns_of_sighting()) +
                              ", first_run) VALUES (" +
                              parameters(columns_of_sighting().size() + 1) + ')'),
          see(connection, see_sql()),
          gone(connection, "UPDATE identities SET gone_run = ? WHERE id = ?"),
          gap(connection, "INSERT INTO gaps SELECT id, gone_run, ? FROM identities WHERE id = ?"),
          back(connection, "UPDATE identities SET gone_run = NULL WHERE id = ?"),
          move(connection,
               "UPDATE identities SET file = ?1 WHERE gone_run IS NOT NULL AND (function, file) ="
               " (SELECT function, file FROM identities WHERE id = ?2)"),
          find_file(connection, "SELECT min(file) FROM files WHERE path = ?"),
          add_file(connection, "INSERT INTO files (path) VALUES (?) RETURNING file"),
          gone_in_file(connection, gone_sql("file IN (SELECT file FROM files WHERE path = ?)")),
          gone_in_function(connection, gone_sql("function = ?")),
          gone_files(connection,
                     "SELECT DISTINCT path FROM (SELECT file FROM identities WHERE trace = ?"
                     " AND gone_run IS NOT NULL LIMIT " +
                         std::to_string(most_looked_at) + ") JOIN files USING (file)"),
          load_one(connection, load_sql("id = ?")) {}

    static std::string gone_sql(std::string const& condition) {
        return "SELECT id FROM identities WHERE gone_run IS NOT NULL AND " + condition +
               " AND ifnull(rule, '') = ?";
    }

    // What is as it was need not be written.
    static std::string see_sql() {
        auto const        names = columns_of_sighting();
        std::string const before = '(' + tables::quoted_names(names) + ')';
        std::string const after = '(' + parameters(names.size()) + ')';
        return "UPDATE identities SET " + before + " = " + after + " WHERE id = ?" +
               std::to_string(parameter_behind_sighting()) + " AND " + before + " IS NOT " + after;
    }

    Statement add, see, gone, gap, back, move, find_file, add_file, gone_in_file, gone_in_function,
        gone_files, load_one;

    // The texts must live until the statement has run.
    static void bind_blob(Statement& statement, int parameter, std::string const& bytes) {
        if (bytes.empty())
            statement.bind_null(parameter);
        else
            sqlite3_bind_blob64(statement.get(), parameter, bytes.data(), bytes.size(),
                                SQLITE_STATIC);
    }

    static void run_for(Statement& statement, std::int64_t file, Sighting const& sighting,
                        std::int64_t last) {
        auto const hashes = [](Hash const& one, std::vector<Hash> const& all) {
            return one.is_none() ? std::string() : bytes_of(all);
        };
        Flagged const&   code = sighting.code;
        std::array const blobs = {hashes(sighting.finding.flow, {sighting.finding.flow}),
                                  hashes(code.text, {code.text, code.surroundings}),
                                  bytes_of(sighting.fingerprints), bytes_of({sighting.trace})};
        int              parameter = 0;
        statement.bind(++parameter, file);
        for (std::string const& blob : blobs) bind_blob(statement, ++parameter, blob);
        for (std::size_t i = 0; i < columns().size(); ++i)
            statement.bind(++parameter,
                           sqlite3_column_value(sighting.columns, static_cast<int>(i)));
        statement.bind(++parameter, last);
        run(statement);
    }
};

SeriesStore::SeriesStore(std::string const& file, For purpose,
                         std::atomic<bool> const& is_interrupted)
    : connection_(file, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX |
                            (purpose == For::adding ? SQLITE_OPEN_CREATE : 0)) {
    connection_.interrupt_by(is_interrupted);
    if (purpose == For::reading && is_empty()) {
        connection_ = Connection(":memory:");
        connection_.run(tables_sql());
    }
    connection_.run("PRAGMA cache_size = -65536; PRAGMA temp_store = FILE");
    if (purpose == For::adding) return;
    if (auto const why = problem(); !why.empty()) throw NoSeries(why);
}

SeriesStore::~SeriesStore() = default;

std::vector<std::string> const& SeriesStore::columns() {
    static Columns const names = [] {
        Columns all;
        for (KeptColumn const& one : kept_columns) all.emplace_back(one.name);
        return all;
    }();
    return names;
}

std::string SeriesStore::columns_sql() { return tables::quoted_names(columns()); }

// An interrupted first run leaves such a file.
bool SeriesStore::is_empty() {
    return number_of(connection_, "PRAGMA application_id") == 0 &&
           number_of(connection_, "SELECT count(*) FROM sqlite_schema") == 0;
}

// Why the database is no series of this version; empty if it is one.
std::string SeriesStore::problem() {
    if (number_of(connection_, "PRAGMA application_id") != application_id)
        return "is no series of runs";
    auto const found = number_of(connection_, "PRAGMA user_version");
    if (found == version) return {};
    return "is a series of version " + std::to_string(found) + ", not of version " +
           std::to_string(version);
}

void SeriesStore::begin() {
    connection_.run("BEGIN IMMEDIATE");
    if (is_empty()) connection_.run(tables_sql());
    if (auto const why = problem(); !why.empty()) throw NoSeries(why);
    statements_ = std::make_unique<Statements>(connection_.get());
}

void SeriesStore::commit() {
    statements_.reset();
    files_.clear();
    connection_.run("COMMIT");
}

std::optional<std::int64_t> SeriesStore::run_with(std::string_view digest) {
    Statement found(connection_.get(), "SELECT max(run) FROM runs WHERE digest = ?");
    found.bind(1, digest);
    if (!found.step() || found.is_null(0)) return std::nullopt;
    return found.integer(0);
}

std::int64_t SeriesStore::last_run() { return number_of(connection_, "SELECT max(run) FROM runs"); }

void SeriesStore::load_open(StoredSide& side) {
    Statement rows(connection_.get(), load_sql("gone_run IS NULL"));
    add_all_to_side(rows, side);
}

std::vector<std::string> SeriesStore::paths() {
    return texts_of(connection_, "SELECT DISTINCT path FROM files");
}

std::vector<std::string> SeriesStore::tools() {
    return texts_of(connection_, "SELECT tool FROM tools");
}

bool SeriesStore::has_gone() {
    return number_of(connection_,
                     "SELECT EXISTS (SELECT 1 FROM identities WHERE gone_run IS NOT NULL)") != 0;
}

void SeriesStore::add_gone_in_file(std::string_view path_of_file, std::string_view rule_id,
                                   std::set<std::int64_t>& ids) {
    add_ids(statements_->gone_in_file, path_of_file, rule_id, ids);
}

void SeriesStore::add_gone_in_function(std::string_view name, std::string_view rule_id,
                                       std::set<std::int64_t>& ids) {
    add_ids(statements_->gone_in_function, name, rule_id, ids);
}

std::vector<std::string> SeriesStore::gone_files(Hash const& trace) {
    auto&             rows = statements_->gone_files;
    std::string const bytes = bytes_of({trace});
    Statements::bind_blob(rows, 1, bytes);
    std::vector<std::string> paths;
    while (rows.step()) paths.emplace_back(rows.text(0));
    rows.reset();
    if (paths.size() > most_files) paths.clear();
    return paths;
}

void SeriesStore::load(std::set<std::int64_t> const& ids, StoredSide& side) {
    for (std::int64_t const one : ids) {
        statements_->load_one.bind(1, one);
        add_all_to_side(statements_->load_one, side);
    }
}

std::int64_t SeriesStore::file_of(std::string_view path_of_file) {
    auto const [known, is_new] = files_.try_emplace(std::string(path_of_file), 0);
    if (!is_new) return known->second;
    for (Statement* const statement : {&statements_->find_file, &statements_->add_file}) {
        statement->bind(1, path_of_file);
        statement->step();
        known->second = statement->integer(0);
        // A statement that adds is over with its last step.
        while (statement->step()) continue;
        statement->reset();
        if (known->second != 0) break;
    }
    return known->second;
}

void SeriesStore::add_tools(std::vector<std::string> const& names) {
    Statement add_one(connection_.get(), "INSERT OR IGNORE INTO tools VALUES (?)");
    for (std::string const& name : names) {
        add_one.bind(1, std::string_view(name));
        run(add_one);
    }
}

void SeriesStore::add(std::int64_t first_run, Sighting const& sighting) {
    Statements::run_for(statements_->add, file_of(sighting.path), sighting, first_run);
}

void SeriesStore::see(std::int64_t finding, Sighting const& sighting) {
    Statements::run_for(statements_->see, file_of(sighting.path), sighting, finding);
}

void SeriesStore::note_gone(std::int64_t finding, std::int64_t in_run) {
    statements_->gone.bind(1, in_run);
    statements_->gone.bind(2, finding);
    run(statements_->gone);
}

void SeriesStore::note_back(std::int64_t finding, std::int64_t in_run) {
    statements_->gap.bind(1, in_run);
    statements_->gap.bind(2, finding);
    run(statements_->gap);
    statements_->back.bind(1, finding);
    run(statements_->back);
}

void SeriesStore::add_run(std::int64_t number, std::string_view name, std::string_view digest,
                          RunCounts const& counts) {
    Statement add(connection_.get(),
                  "INSERT INTO runs (run, name, digest, open, new, returned, fixed, suppressed)"
                  " VALUES (?, ?, ?, ?, ?, ?, ?, ?)");
    add.bind(1, number);
    add.bind(2, name);
    add.bind(3, digest);
    int parameter = 3;
    for (std::uint64_t const count :
         {counts.open, counts.added, counts.returned, counts.fixed, counts.suppressed})
        add.bind(++parameter, static_cast<std::int64_t>(count));
    add.step();
}

void SeriesStore::move_function(std::int64_t finding, std::string_view path_now) {
    statements_->move.bind(1, file_of(path_now));
    statements_->move.bind(2, finding);
    run(statements_->move);
}

void SeriesStore::rename_files(std::function<std::string(std::string const&)> const& path_now) {
    std::vector<std::pair<std::int64_t, std::string>> changed;
    Statement rows(connection_.get(), "SELECT file, path FROM files");
    while (rows.step()) {
        std::string const before(rows.text(1));
        auto              now = path_now(before);
        if (now != before) changed.emplace_back(rows.integer(0), std::move(now));
    }
    Statement change(connection_.get(), "UPDATE files SET path = ? WHERE file = ?");
    for (auto const& [file, now] : changed) {
        change.bind(1, std::string_view(now));
        change.bind(2, file);
        run(change);
    }
    files_.clear();
}

}  // namespace sml::results
