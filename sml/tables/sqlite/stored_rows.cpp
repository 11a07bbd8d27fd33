#include <sml/tables/sqlite/stored_rows.hpp>

#include <sml/tables/schema_sql.hpp>
#include <sml/tables/sqlite/bind_cell.hpp>

#include <utility>

namespace sml::tables {

StoredRows::StoredRows(Connection& connection, std::string table, Source const& source,
                       std::vector<bool> const& is_wanted, std::vector<std::size_t> key)
    : connection_(connection),
      table_(std::move(table)),
      source_(source),
      is_wanted_(is_wanted),
      key_(std::move(key)),
      places_(is_wanted.size()) {
    int place = 0;
    for (std::size_t i = 0; i < is_wanted_.size(); ++i)
        if (is_wanted_[i]) places_[i] = ++place;
    create();
}

void StoredRows::create() const {
    std::string columns = "result_set INTEGER, number INTEGER";
    for (std::size_t i = 0; i < is_wanted_.size(); ++i)
        if (is_wanted_[i])
            columns +=
                ", " + name_of(i) + ' ' + std::string(type_name(source_.columns()[i].storage));
    connection_.run("CREATE TABLE " + table_ + '(' + columns + ')');
}

void StoredRows::add(std::int64_t set) {
    if (sets_.contains(set)) return;
    bool const is_first = sets_.empty();
    connection_.run("BEGIN");
    fill(set);
    // An index on rows that are there is made faster than one that rows are added to.
    if (is_first) add_index();
    connection_.run("COMMIT");
    sets_.insert(set);
}

void StoredRows::fill(std::int64_t set) const {
    std::string values = "?, ?";
    for (bool const wanted : is_wanted_)
        if (wanted) values += ", ?";
    Statement insert(connection_.get(), "INSERT INTO " + table_ + " VALUES(" + values + ')');
    insert.bind(1, set);
    auto const rows = source_.rows(set, is_wanted_);
    while (rows->next()) {
        insert.bind(2, rows->row());
        for (std::size_t i = 0; i < is_wanted_.size(); ++i)
            if (is_wanted_[i]) bind_cell(insert, places_[i] + 2, rows->cell(i));
        insert.step();
        insert.reset();
    }
}

void StoredRows::add_index() const {
    std::string columns = "result_set";
    for (std::size_t const column : key_) columns += ", " + name_of(column);
    connection_.run("CREATE INDEX " + table_ + "_key ON " + table_ + '(' + columns + ')');
}

Statement StoredRows::take_statement() {
    if (!idle_.empty()) {
        Statement statement = std::move(idle_.back());
        idle_.pop_back();
        return statement;
    }
    std::string columns = "number";
    for (std::size_t i = 0; i < is_wanted_.size(); ++i)
        if (is_wanted_[i]) columns += ", " + name_of(i);
    std::string condition = "result_set = ?";
    for (std::size_t const column : key_) condition += " AND " + name_of(column) + " = ?";
    return {connection_.get(),
            "SELECT " + columns + " FROM " + table_ + " WHERE " + condition + " ORDER BY rowid"};
}

void StoredRows::give_back(Statement statement) {
    statement.reset();
    idle_.push_back(std::move(statement));
}

RowStore::RowStore(std::atomic<bool> const& is_interrupted) : is_interrupted_(is_interrupted) {
    open();
}

void RowStore::open() {
    connection_.emplace("");
    // The rows need not survive anything; pages beyond the cache go to the disk.
    connection_->run(
        "PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF; PRAGMA temp_store = FILE;"
        "PRAGMA cache_size = -8192; PRAGMA locking_mode = EXCLUSIVE;");
    connection_->interrupt_by(is_interrupted_);
}

bool RowStore::is_large() const {
    constexpr std::int64_t most = std::int64_t{1} << 30;
    Statement              size(connection_->get(),
                                "SELECT page_count * page_size FROM pragma_page_count, pragma_page_size");
    return size.step() && size.integer(0) > most;
}

void RowStore::start_statement() {
    ++statement_;
    if (!has_failed_ && (tables_ == 0 || !is_large())) return;
    // Without a journal, a failure leaves the database in an unknown state.
    scans_.clear();
    tables_ = 0;
    open();
    has_failed_ = false;
}

StoredRows* RowStore::rows(Source const& source, std::string const& plan, std::int64_t set,
                           std::vector<bool> const&        is_wanted,
                           std::vector<std::size_t> const& key) {
    Scans&     scans = scans_[{&source, plan}];
    bool const was_scanned = std::exchange(scans.statements[set], statement_) == statement_;
    if (!was_scanned && !(scans.stored && scans.stored->has(set))) return nullptr;
    try {
        if (!scans.stored)
            scans.stored.emplace(*connection_, "stored" + std::to_string(++tables_), source,
                                 is_wanted, key);
        scans.stored->add(set);
    } catch (...) {
        has_failed_ = true;
        throw;
    }
    return &*scans.stored;
}

}  // namespace sml::tables
