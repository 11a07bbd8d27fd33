#include <sml/tables/sqlite/virtual_table.hpp>

#include <sml/tables/schema_sql.hpp>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <new>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace sml::tables {

namespace {

constexpr int result_set_column = 0;

/// How a table is scanned: which columns are wanted, and by which columns rows are looked for. The
/// result set is neither, since the cursor knows it.
struct Plan {
    std::vector<bool>        is_wanted;
    std::vector<std::size_t> key;  // rising
    bool                     has_set = false;

    /// The text in which SQLite keeps it: a character for each column.
    std::string text() const {
        std::string text(is_wanted.size(), '-');
        for (std::size_t i = 0; i < text.size(); ++i)
            if (is_wanted[i]) text[i] = '+';
        for (std::size_t const column : key) text[column] = '=';
        if (has_set) text[result_set_column] = '=';
        return text;
    }

    Plan without_key() const {
        Plan plan = *this;
        plan.key.clear();
        return plan;
    }

    explicit Plan(std::size_t columns) : is_wanted(columns) {}
    explicit Plan(std::string_view text) : is_wanted(text.size()) {
        for (std::size_t i = 0; i < text.size(); ++i) {
            if (i == result_set_column) continue;
            is_wanted[i] = text[i] != '-';
            if (text[i] == '=') key.push_back(i);
        }
        has_set = text[result_set_column] == '=';
    }
};

struct ScannedTable {
    VirtualTables&                shared;
    std::unique_ptr<Source const> source;
};

struct VirtualTable : sqlite3_vtab {
    ScannedTable* table;
};

/// The result sets of a scan.
struct Sets {
    std::int64_t next = 1;
    std::int64_t last = 0;
};

Sets all_sets(Source const& source) { return {1, source.sets()}; }

/// The result set whose number equals a value, as SQL compares an integer with it.
Sets sets_of(Source const& source, sqlite3_value* value) {
    constexpr Sets none;
    auto const     one = [&](std::int64_t set) {
        return set >= 1 && set <= source.sets() ? Sets{set, set} : none;
    };
    switch (sqlite3_value_numeric_type(value)) {
        case SQLITE_INTEGER: return one(sqlite3_value_int64(value));
        case SQLITE_FLOAT: {
            double const number = sqlite3_value_double(value);
            bool const   is_number = number >= 1 && number <= static_cast<double>(source.sets());
            if (!is_number || number != std::floor(number)) return none;
            return one(static_cast<std::int64_t>(number));
        }
        default: return none;
    }
}

class Cursor : public sqlite3_vtab_cursor {
public:
    explicit Cursor(ScannedTable& table) : sqlite3_vtab_cursor{}, table_(table) {}

    void filter(std::string_view plan_text, std::span<sqlite3_value*> values) {
        if (plan_text != plan_text_) {
            plan_.emplace(plan_text);
            plan_text_ = plan_text;
        }
        direct_.reset();
        look_.reset();
        can_look_up_ = true;
        sets_ = all_sets(*table_.source);
        key_.clear();
        if (plan_->has_set) {
            sets_ = sets_of(*table_.source, values.front());
            values = values.subspan(1);
        }
        for (std::size_t i = 0; i < values.size(); ++i) add_key(plan_->key[i], values[i]);
        next();
    }

    void next() {
        if (table_.shared.is_interrupted)
            throw SqlError("interrupted", SQLITE_INTERRUPT, SqlError::nowhere);
        while (!(direct_ != nullptr ? direct_->next() : look_ && look_->statement().step())) {
            if (sets_.next > sets_.last) {
                is_over_ = true;
                return;
            }
            open(sets_.next++);
        }
    }

    bool is_over() const { return is_over_; }

    std::int64_t rowid() const {
        constexpr int row_bits = 40;
        auto const    row = direct_ != nullptr ? direct_->row() : look_->statement().integer(0);
        return set_ << row_bits | row;
    }

    void give(sqlite3_context* context, std::size_t column) {
        if (column == result_set_column) return sqlite3_result_int64(context, set_);
        if (!plan_->is_wanted[column]) return;
        if (direct_ == nullptr)
            return sqlite3_result_value(
                context, sqlite3_column_value(look_->statement().get(), look_->place_of(column)));
        Cell const cell = direct_->cell(column);
        if (auto const* const integer = std::get_if<std::int64_t>(&cell))
            sqlite3_result_int64(context, *integer);
        else if (auto const* const number = std::get_if<double>(&cell))
            sqlite3_result_double(context, *number);
        else if (auto const* const text = std::get_if<Text>(&cell))
            sqlite3_result_text64(context, text->text.data(), text->text.size(),
                                  text->lasts ? SQLITE_STATIC : SQLITE_TRANSIENT, SQLITE_UTF8);
    }

private:
    struct Free {
        void operator()(sqlite3_value* value) const { sqlite3_value_free(value); }
    };
    using Value = std::unique_ptr<sqlite3_value, Free>;

    void add_key(std::size_t column, sqlite3_value* value) {
        int const type = sqlite3_value_type(value);
        if (type == SQLITE_NULL) sets_ = {};  // nothing equals null
        // Whether a text equals a number depends on the other side of the comparison, which is not
        // known here: all rows are scanned, and SQLite compares.
        bool const is_text = table_.source->columns()[column].storage == Storage::text;
        if (is_text && type != SQLITE_TEXT) can_look_up_ = false;
        Value copy(sqlite3_value_dup(value));
        if (copy == nullptr) throw std::bad_alloc();
        key_.push_back(std::move(copy));
    }

    void open(std::int64_t set) {
        is_over_ = false;
        set_ = set;
        direct_.reset();
        look_.reset();
        Plan const        all = plan_->without_key();
        Plan const&       plan = can_look_up_ ? *plan_ : all;
        StoredRows* const stored =
            table_.shared.store.rows(*table_.source, plan.text(), set, plan.is_wanted, plan.key);
        if (stored == nullptr) {
            direct_ = table_.source->rows(set, plan.is_wanted);
            return;
        }
        look_.emplace(*stored);
        look_->statement().bind(1, set);
        for (std::size_t i = 0; i < plan.key.size(); ++i)
            look_->statement().bind(static_cast<int>(i) + 2, key_[i].get());
    }

    ScannedTable&                   table_;
    std::optional<Plan>             plan_;
    std::string                     plan_text_;
    std::vector<Value>              key_;
    bool                            can_look_up_ = true;
    Sets                            sets_;  // still to be scanned
    std::int64_t                    set_ = 0;
    std::unique_ptr<RowStream>      direct_;  // while the source is read
    std::optional<StoredRows::Look> look_;    // while stored rows are
    bool                            is_over_ = true;
};

VirtualTable&  of(sqlite3_vtab* table) { return *static_cast<VirtualTable*>(table); }
Cursor&        of(sqlite3_vtab_cursor* cursor) { return *static_cast<Cursor*>(cursor); }
VirtualTables& shared_by(sqlite3_vtab* table) { return of(table).table->shared; }

// The library that calls these functions is written in C: no exception may pass it.
template <class Act>
int guarded(sqlite3_vtab* table, Act const& act) noexcept {
    try {
        act();
        return SQLITE_OK;
    } catch (SqlError const& error) {
        sqlite3_free(table->zErrMsg);
        table->zErrMsg = sqlite3_mprintf("%s", error.what());
        return error.code;
    } catch (inspect::BudgetExceeded const&) {
        shared_by(table).failure = std::current_exception();
        return SQLITE_ERROR;
    } catch (std::bad_alloc const&) {
        return SQLITE_NOMEM;
    } catch (...) {
        shared_by(table).failure = std::current_exception();
        return SQLITE_ERROR;
    }
}

int connect(sqlite3* connection, void* data, int, char const* const*, sqlite3_vtab** made,
            char**) noexcept {
    try {
        auto&         table = *static_cast<ScannedTable*>(data);
        Source const& source = *table.source;
        auto const    statement = create_table(source.name(), source.columns());
        table.shared.is_declaring = true;
        int const code = sqlite3_declare_vtab(connection, statement.c_str());
        table.shared.is_declaring = false;
        if (code != SQLITE_OK) return code;
        *made = new VirtualTable{{}, &table};
        return SQLITE_OK;
    } catch (std::bad_alloc const&) {
        return SQLITE_NOMEM;
    }
}

int disconnect(sqlite3_vtab* table) noexcept {
    delete &of(table);
    return SQLITE_OK;
}

// The bit of this column stands for all columns from it on.
constexpr std::size_t last_bit = 63;

void want_used_columns(Plan& plan, sqlite3_uint64 used) {
    for (std::size_t i = 0; i < plan.is_wanted.size(); ++i)
        plan.is_wanted[i] = (used >> std::min(i, last_bit) & 1) != 0;
}

bool is_equality(sqlite3_index_info& info, int index) {
    auto const& constraint = info.aConstraint[index];
    return constraint.usable != 0 && constraint.op == SQLITE_INDEX_CONSTRAINT_EQ &&
           constraint.iColumn >= 0 &&
           std::strcmp(sqlite3_vtab_collation(&info, index), "BINARY") == 0;
}

int best_index(sqlite3_vtab* table, sqlite3_index_info* info) noexcept {
    return guarded(table, [&] {
        Source const&              source = *of(table).table->source;
        Plan                       plan(source.columns().size());
        std::map<std::size_t, int> equalities;  // by column: index of the first constraint
        want_used_columns(plan, info->colUsed);
        for (int i = 0; i < info->nConstraint; ++i)
            if (is_equality(*info, i))
                equalities.emplace(static_cast<std::size_t>(info->aConstraint[i].iColumn), i);
        int values = 0;
        for (auto const& [column, index] : equalities) {
            info->aConstraintUsage[index].argvIndex = ++values;
            plan.is_wanted[column] = true;
            if (column == result_set_column)
                plan.has_set = true;
            else
                plan.key.push_back(column);
        }
        auto rows = static_cast<double>(source.expected_rows());
        if (plan.has_set) rows /= static_cast<double>(std::max<std::int64_t>(source.sets(), 1));
        // A look into an index finds few rows. Without a key, all of them are read.
        constexpr double rows_of_key = 4;
        constexpr double cost_of_look = 20;
        bool const       is_look = !plan.key.empty();
        info->estimatedRows =
            static_cast<sqlite3_int64>(std::max(1.0, is_look ? std::min(rows, rows_of_key) : rows));
        info->estimatedCost = is_look ? cost_of_look : std::max(1.0, rows) * 4;
        info->idxStr = sqlite3_mprintf("%s", plan.text().c_str());
        if (info->idxStr == nullptr) throw std::bad_alloc();
        info->needToFreeIdxStr = 1;
    });
}

int open(sqlite3_vtab* table, sqlite3_vtab_cursor** cursor) noexcept {
    return guarded(table, [&] { *cursor = new Cursor(*of(table).table); });
}

int close(sqlite3_vtab_cursor* cursor) noexcept {
    delete &of(cursor);
    return SQLITE_OK;
}

int filter(sqlite3_vtab_cursor* cursor, int, char const* plan, int count,
           sqlite3_value** values) noexcept {
    return guarded(cursor->pVtab, [&] {
        of(cursor).filter(plan, {values, static_cast<std::size_t>(count)});
    });
}

int next(sqlite3_vtab_cursor* cursor) noexcept {
    return guarded(cursor->pVtab, [&] { of(cursor).next(); });
}

int is_over(sqlite3_vtab_cursor* cursor) noexcept { return of(cursor).is_over(); }

int give_column(sqlite3_vtab_cursor* cursor, sqlite3_context* context, int column) noexcept {
    return guarded(cursor->pVtab,
                   [&] { of(cursor).give(context, static_cast<std::size_t>(column)); });
}

int give_rowid(sqlite3_vtab_cursor* cursor, sqlite3_int64* rowid) noexcept {
    *rowid = of(cursor).rowid();
    return SQLITE_OK;
}

// Without xCreate, a table is there from the start, with the name of its module.
constexpr sqlite3_module module = [] {
    sqlite3_module functions{};
    functions.xConnect = connect;
    functions.xBestIndex = best_index;
    functions.xDisconnect = disconnect;
    functions.xDestroy = disconnect;
    functions.xOpen = open;
    functions.xClose = close;
    functions.xFilter = filter;
    functions.xNext = next;
    functions.xEof = is_over;
    functions.xColumn = give_column;
    functions.xRowid = give_rowid;
    return functions;
}();

}  // namespace

void add_virtual_table(Connection& connection, VirtualTables& shared,
                       std::unique_ptr<Source const> source) {
    std::string const name = source->name();
    auto* const       table = new ScannedTable{shared, std::move(source)};
    auto const        destroy = [](void* data) { delete static_cast<ScannedTable*>(data); };
    // It calls `destroy` also when it fails.
    int const code =
        sqlite3_create_module_v2(connection.get(), name.c_str(), &module, table, destroy);
    if (code != SQLITE_OK) throw_error(connection.get());
}

}  // namespace sml::tables
