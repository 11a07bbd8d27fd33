#include <sml/results/read_side.hpp>

#include <sml/results/message.hpp>
#include <sml/results/paths.hpp>

#include <algorithm>
#include <charconv>
#include <numeric>
#include <optional>
#include <stdexcept>
#include <utility>

namespace sml::results {

using tables::Database;
using tables::Statement;

namespace {

/// Goes through the rows of a statement over the tables of result sets.
class Query {
public:
    Query(Database& database, std::string const& sql)
        : database_(database), sql_(sql), statement_(prepared()) {}

    bool          next() { return database_.step(statement_); }
    sqlite3_stmt* get() const { return statement_.get(); }

    bool             is_null(int column) const { return sqlite3_column_type(get(), column) == SQLITE_NULL; }
    std::int64_t     integer(int column) const { return statement_.integer(column); }
    std::string_view text(int column) const {
        return is_null(column) ? std::string_view() : statement_.text(column);
    }

private:
    Statement prepared() {
        std::string_view rest = sql_;
        return database_.prepare(&rest);
    }

    Database&   database_;
    std::string sql_;
    Statement   statement_;
};

// In the order of DiffStore::finding_columns(), behind the result set.
enum Column : int {
    result_set,
    finding,
    run,
    tool,
    tool_version,
    rule,
    level,
    kind,
    message,
    category,
    uri,
    base,
    line,
    column,
    end_line,
    end_column,
    function,
    suppressed,
    baseline_state,
    class_,
    key
};

std::string findings_sql() {
    std::string sql = "SELECT result_set";
    for (std::string const& name : DiffStore::finding_columns()) sql += ", \"" + name + '"';
    return sql + " FROM findings";
}

// The number at the end of a key such as "src/main.c:1".
std::uint32_t ordinal_of(std::string_view key) {
    auto const   digits = key.substr(key.rfind(':') + 1);
    std::int32_t ordinal = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), ordinal);
    return static_cast<std::uint32_t>(ordinal);
}

class Reading {
public:
    Reading(tables::ResultSets const& sets, Database& database, SideData& side, DiffStore& store)
        : sets_(sets), database_(database), side_(side), store_(store) {}

    void run(std::vector<FlaggedByForm> const& flagged) {
        read_findings();
        if (has_native_) read_payloads();
        if (has_native_) read_functions();
        read_steps();
        read_forms(flagged);
    }

private:
    std::uint64_t id_of(std::uint32_t index) const { return side_.first_id + index; }

    std::uint32_t index_of(std::int64_t set, std::int64_t row) const {
        return firsts_[static_cast<std::size_t>(set)] + static_cast<std::uint32_t>(row);
    }

    void read_findings() {
        firsts_.assign(static_cast<std::size_t>(sets_.count()) + 1, 0);
        std::int64_t set = 0;
        Query        rows(database_, findings_sql());
        while (rows.next()) {
            if (side_.findings.size() == Finding::none)
                throw std::length_error("more findings than a diff can have");
            auto const index = static_cast<std::uint32_t>(side_.findings.size());
            if (rows.integer(result_set) != set) {
                set = rows.integer(result_set);
                firsts_[static_cast<std::size_t>(set)] = index;
            }
            if (index_of(set, rows.integer(Column::finding)) != index)
                throw std::logic_error("findings are not in the order of their rows");
            side_.findings.push_back(finding_of(rows));
            store_.add_finding(id_of(index), side_.side, sets_.set(set).name, rows.get(),
                               Column::finding);
        }
    }

    Finding finding_of(Query const& row) {
        bool const is_native = row.is_null(Column::run);
        is_native_.push_back(is_native);
        has_native_ = has_native_ || is_native;
        Finding one;
        set_message(one, without_places(row.text(message)));
        if (!row.text(function).empty()) one.function = hash_of(row.text(function));
        auto const tool_number = side_.tools.number_of(row.text(tool));
        one.rule = side_.rules.number_of(std::to_string(tool_number) + ' ' +
                                         std::string(row.text(rule)));
        one.file = file_of(row.text(uri));
        one.line = static_cast<std::int32_t>(row.integer(line));
        one.column = static_cast<std::int32_t>(row.integer(Column::column));
        one.ordinal = ordinal_of(row.text(key));
        one.set = static_cast<std::uint16_t>(row.integer(result_set));
        one.content = hash_of({hash_of(row.text(level)), hash_of(row.text(kind)),
                               Hash{static_cast<std::uint64_t>(row.integer(suppressed)), 1},
                               hash_of(row.text(class_)), one.message});
        return one;
    }

    // Most findings have the file of the one before.
    std::uint32_t file_of(std::string_view given) {
        if (given != last_uri_ || !last_file_) {
            last_uri_ = given;
            last_file_ = side_.paths.number_of(path_of(given));
        }
        return *last_file_;
    }

    static void set_message(Finding& one, std::string const& text) {
        one.message = hash_of(text);
        one.loose = hash_of(without_numbers(text));
    }

    // What a kernel's check says is in the payload of its category.
    void read_payloads() {
        Query rows(database_, "SELECT result_set, \"row\", category_args FROM checks");
        while (rows.next()) {
            auto const index = index_of(rows.integer(0), rows.integer(1));
            if (rows.is_null(2) || !is_native_[index]) continue;
            Finding& one = side_.findings[index];
            set_message(one, payload_without_places(rows.text(2)));
            one.content = hash_of({one.content, one.message});
            store_.set_payload(id_of(index), rows.text(2));
        }
    }

    // The least of the signatures that a kernel's check is located in.
    void read_functions() {
        Query rows(database_,
                   "SELECT result_set, parent, min(p1__qualified_signature__qualified_name__name)"
                   " FROM checks__located_names GROUP BY 1, 2");
        while (rows.next()) {
            auto const index = index_of(rows.integer(0), rows.integer(1));
            if (rows.text(2).empty() || !side_.findings[index].function.is_none()) continue;
            side_.findings[index].function = hash_of(rows.text(2));
            store_.set_function(id_of(index), rows.text(2));
        }
    }

    void read_steps() {
        enum Of : int { set, parent, flow, thread, position, file, text = 8 };
        Query rows(database_,
                   "SELECT result_set, finding, flow, thread, position, uri, line, \"column\","
                   " message FROM steps");
        while (rows.next()) {
            side_.has_steps = true;
            auto const index = index_of(rows.integer(set), rows.integer(parent));
            DiffStore::Step const step{id_of(index), rows.integer(flow), rows.integer(thread),
                                       rows.integer(position), file_of(rows.text(file))};
            side_.findings[index].content +=
                hash_of({hash_of(static_cast<std::uint64_t>(step.flow)),
                         hash_of(static_cast<std::uint64_t>(step.thread)),
                         hash_of(static_cast<std::uint64_t>(step.position)),
                         hash_of(without_places(rows.text(text)))});
            store_.add_step(step, rows.get(), file);
        }
    }

    static Hash key_hash(std::int64_t set, std::string_view uri, std::int64_t ordinal) {
        return hash_of({Hash{static_cast<std::uint64_t>(set), static_cast<std::uint64_t>(ordinal)},
                        hash_of(uri)});
    }

    using IndexByKey = std::vector<std::pair<Hash, std::uint32_t>>;

    IndexByKey findings_by_key() {
        IndexByKey all;
        all.reserve(side_.findings.size());
        Query rows(database_, "SELECT result_set, \"row\", key0, key1 FROM checks");
        while (rows.next())
            all.emplace_back(key_hash(rows.integer(0), rows.text(2), rows.integer(3)),
                             index_of(rows.integer(0), rows.integer(1)));
        std::ranges::sort(all);
        return all;
    }

    // The findings of the check forms. They have the fingerprints.
    void read_forms(std::vector<FlaggedByForm> const& flagged) {
        Query prints(database_,
                     "SELECT result_set, parent, p1__p0__package,"
                     " p1__p0__qualified_signature__qualified_name__name, p1__p1"
                     " FROM check_data__p1__signature_locations");
        bool has_print = prints.next();
        bool const has_flagged =
            std::ranges::any_of(flagged, [](auto const& of_set) { return !of_set.empty(); });
        if (!has_print && !has_flagged) return;
        IndexByKey const keys = findings_by_key();
        Query            forms(database_,
                               "SELECT result_set, \"row\", p0, p1__first_numbered_name__p0,"
                               " p1__first_numbered_name__p1 FROM check_data");
        while (forms.next()) {
            auto const set = forms.integer(0);
            auto const wanted = key_hash(set, forms.text(3), forms.integer(4));
            auto const found =
                std::ranges::lower_bound(keys, wanted, {}, &IndexByKey::value_type::first);
            bool const is_known = found != keys.end() && found->first == wanted;
            if (is_known) set_flagged(flagged, set, forms.integer(2), found->second);
            auto const is_of_form = [&] {
                return has_print && prints.integer(0) == set && prints.integer(1) == forms.integer(1);
            };
            for (; is_of_form(); has_print = prints.next())
                if (is_known) add_fingerprint(prints, found->second);
        }
    }

    void set_flagged(std::vector<FlaggedByForm> const& flagged, std::int64_t set, std::int64_t id,
                     std::uint32_t index) {
        auto const number = static_cast<std::size_t>(set) - 1;
        if (number >= flagged.size() || id < 0) return;
        auto const& of_set = flagged[number];
        if (static_cast<std::size_t>(id) >= of_set.size()) return;
        side_.findings[index].text = of_set[static_cast<std::size_t>(id)].text;
        side_.findings[index].surroundings = of_set[static_cast<std::size_t>(id)].surroundings;
    }

    void add_fingerprint(Query const& print, std::uint32_t index) {
        auto const family = print.text(2);
        if (family != "fingerprints" && family != "partialFingerprints") return;
        side_.fingerprints.push_back(
            {hash_of({hash_of(family), hash_of(print.text(3)), hash_of(print.text(4))}), index});
    }

    tables::ResultSets const&    sets_;
    Database&                    database_;
    SideData&                    side_;
    DiffStore&                   store_;
    std::vector<std::uint32_t>   firsts_;  // by result set: the index of its first finding
    std::vector<bool>            is_native_;  // by index: a kernel's own check
    bool                         has_native_ = false;
    std::string                  last_uri_;
    std::optional<std::uint32_t> last_file_;
};

}  // namespace

std::uint32_t Names::number_of(std::string_view name) {
    auto const [found, is_new] =
        numbers_.try_emplace(std::string(name), static_cast<std::uint32_t>(names_.size()));
    if (is_new) names_.emplace_back(name);
    return found->second;
}

void read_side(tables::ResultSets const& sets, Database& database,
               std::vector<FlaggedByForm> const& flagged, SideData& side, DiffStore& store) {
    Reading(sets, database, side, store).run(flagged);
}

void read_sources(std::string const& directory, SideData& side) {
    std::vector<std::uint32_t> by_file(side.findings.size());
    std::iota(by_file.begin(), by_file.end(), 0);
    std::ranges::sort(by_file, {}, [&](std::uint32_t index) { return side.findings[index].file; });
    std::optional<SourceLines> lines;
    std::optional<std::uint32_t> file;
    for (std::uint32_t const index : by_file) {
        Finding& one = side.findings[index];
        if (one.file != file) {
            file = one.file;
            lines.reset();
            if (auto text = source_text(directory, side.paths.all()[one.file]))
                lines.emplace(std::move(*text));
        }
        if (!lines) continue;
        auto const flagged = lines->at(one.line);
        one.text = flagged.text;
        one.surroundings = flagged.surroundings;
    }
}

}  // namespace sml::results
