#include <sml/results/read_side.hpp>

#include <sml/results/message.hpp>
#include <sml/results/paths.hpp>
#include <sml/results/query.hpp>
#include <sml/results/steps.hpp>

#include <algorithm>
#include <charconv>
#include <numeric>
#include <optional>
#include <stdexcept>
#include <utility>

namespace sml::results {

using tables::Database;

namespace {

// In the order of DiffStore::plain_columns(), behind the result set.
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
    baseline_state,
    key
};

std::string findings_sql() {
    std::string sql = "SELECT result_set";
    for (std::string const& name : DiffStore::plain_columns()) sql += ", \"" + name + '"';
    return sql + " FROM findings";
}

// The number at the end of a key such as "src/main.c:1".
std::uint32_t ordinal_of(std::string_view key) {
    auto const   digits = key.substr(key.rfind(':') + 1);
    std::int32_t ordinal = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), ordinal);
    return static_cast<std::uint32_t>(ordinal);
}

// What a column of the view `findings` has that looks for other records, as the view does it, is
// read from these records in their order. Where few findings have such records, the view is asked.
class Reading {
public:
    Reading(tables::ResultSets const& sets, Database& database, SideData& side, DiffStore& store)
        : sets_(sets), database_(database), side_(side), store_(store) {}

    void run(std::vector<FlaggedByForm> const& flagged) {
        read_keys();
        read_forms(flagged);
        read_classifications();
        read_suppressions();
        read_functions();
        read_findings();
        if (has_native_) read_payloads();
    }

private:
    /// What is known of a finding before its row is read.
    struct Joined {
        std::uint32_t function = 0;  // number in `texts_`
        std::uint32_t class_ = 0;
        bool          names_function = false;  // its source reference says so
        bool          has_form = false;
        bool          is_suppressed = false;
    };

    std::uint64_t id_of(std::uint32_t index) const { return side_.first_id + index; }

    void read_keys() {
        side_.firsts.assign(static_cast<std::size_t>(sets_.count()) + 1, 0);
        std::int64_t set = 0;
        Query        rows(database_,
                          "SELECT result_set, \"row\", key0, key1, source_ref__kind & 128 FROM checks");
        while (rows.next()) {
            auto const index = static_cast<std::uint32_t>(joined_.size());
            if (index == Finding::none)
                throw std::length_error("more findings than a diff can have");
            if (rows.integer(0) != set) {
                set = rows.integer(0);
                side_.firsts[static_cast<std::size_t>(set)] = index;
            }
            keys_.emplace_back(hash_of_key(set, rows.text(2), rows.integer(3)), index);
            joined_.push_back({.names_function = rows.integer(4) != 0});
        }
        std::ranges::sort(keys_);
        side_.findings.resize(joined_.size());
    }

    // The index of the finding that a form names.
    std::optional<std::uint32_t> named(Query const& form) const {
        auto const wanted = hash_of_key(form.integer(0), form.text(3), form.integer(4));
        auto const found =
            std::ranges::lower_bound(keys_, wanted, {}, &IndexByKey::value_type::first);
        if (form.is_null(3) || found == keys_.end() || found->first != wanted) return std::nullopt;
        return found->second;
    }

    // The forms have functions, classes and fingerprints.
    void read_forms(std::vector<FlaggedByForm> const& flagged) {
        Query prints(database_,
                     "SELECT result_set, parent, p1__p0__package,"
                     " p1__p0__qualified_signature__qualified_name__name, p1__p1"
                     " FROM check_data__p1__signature_locations");
        Query forms(database_,
                    "SELECT result_set, \"row\", p0, p1__first_numbered_name__p0,"
                    " p1__first_numbered_name__p1, p1__second_optional_name,"
                    " p1__classification__classification_class FROM check_data");
        bool  has_print = prints.next();
        while (forms.next()) {
            auto const index = named(forms);
            auto const is_of_form = [&] {
                return has_print && prints.integer(0) == forms.integer(0) &&
                       prints.integer(1) == forms.integer(1);
            };
            for (; is_of_form(); has_print = prints.next())
                if (index) add_fingerprint(prints, *index);
            if (!index) continue;
            set_flagged(flagged, forms.integer(0), forms.integer(2), *index);
            Joined& joined = joined_[*index];
            if (std::exchange(joined.has_form, true)) continue;
            if (joined.names_function) joined.function = texts_.number_of(forms.text(5));
            joined.class_ = texts_.number_of(forms.text(6));
        }
        keys_ = {};
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

    bool has_rows(std::string const& sql) { return Query(database_, sql + " LIMIT 1").next(); }

    // Without a form, the class consists of the classifications.
    void read_classifications() {
        bool const have_forms =
            std::ranges::all_of(joined_, [](Joined const& one) { return one.has_form; });
        if (have_forms || !has_rows("SELECT 1 FROM checks__classifications")) return;
        Query rows(database_, "SELECT result_set, finding, class FROM findings");
        while (rows.next())
            joined_[side_.index_of(rows.integer(0), rows.integer(1))].class_ =
                texts_.number_of(rows.text(2));
    }

    void read_suppressions() {
        if (!has_rows("SELECT 1 FROM infos WHERE first_string = 'suppression'")) return;
        Query rows(database_, "SELECT result_set, finding FROM findings WHERE suppressed");
        while (rows.next())
            joined_[side_.index_of(rows.integer(0), rows.integer(1))].is_suppressed = true;
    }

    // Of a kernel's check, the least name of the functions in which it is located.
    void read_functions() {
        Query rows(database_,
                   "SELECT result_set, parent, p1__qualified_signature__qualified_name__name"
                   " FROM checks__located_names");
        while (rows.next()) {
            Joined&    joined = joined_[side_.index_of(rows.integer(0), rows.integer(1))];
            bool const is_less =
                joined.function == 0 || rows.text(2) < texts_.all()[joined.function];
            if (is_less && !rows.text(2).empty()) joined.function = texts_.number_of(rows.text(2));
        }
    }

    void read_findings() {
        is_native_.assign(joined_.size(), false);
        Query rows(database_, findings_sql());
        while (rows.next()) {
            auto const set = rows.integer(result_set);
            auto const index = side_.index_of(set, rows.integer(Column::finding));
            fill(side_.findings[index], rows, joined_[index]);
            is_native_[index] = rows.is_null(Column::run);
            has_native_ = has_native_ || is_native_[index];
            DiffStore::Joined const joined{
                sets_.set(set).name, texts_.all()[joined_[index].function],
                texts_.all()[joined_[index].class_], joined_[index].is_suppressed};
            store_.add_finding(id_of(index), side_.side, joined, rows.get(), Column::finding);
        }
    }

    void fill(Finding& one, Query const& row, Joined const& joined) {
        set_texts(one,
                  {row.text(message), row.text(level), row.text(kind), texts_.all()[joined.class_],
                   texts_.all()[joined.function], joined.is_suppressed});
        one.rule = side_.number_of_rule(row.text(tool), row.text(rule));
        one.file = file_of(row.text(uri));
        one.line = static_cast<std::int32_t>(row.integer(line));
        one.column = static_cast<std::int32_t>(row.integer(Column::column));
        one.ordinal = ordinal_of(row.text(key));
        one.set = static_cast<std::uint16_t>(row.integer(result_set));
    }

    // Many findings have the file of the one before.
    std::uint32_t file_of(std::string_view given) {
        if (given != last_uri_ || !last_file_) {
            last_uri_ = given;
            last_file_ = side_.paths.number_of(path_of(given));
        }
        return *last_file_;
    }

    // What a kernel's check says is in the payload of its category.
    void read_payloads() {
        Query rows(database_, "SELECT result_set, \"row\", category_args FROM checks");
        while (rows.next()) {
            auto const index = side_.index_of(rows.integer(0), rows.integer(1));
            if (rows.is_null(2) || !is_native_[index]) continue;
            set_payload(side_.findings[index], rows.text(2));
            store_.set_payload(id_of(index), rows.text(2));
        }
    }

    using IndexByKey = std::vector<std::pair<Hash, std::uint32_t>>;

    tables::ResultSets const&    sets_;
    Database&                    database_;
    SideData&                    side_;
    DiffStore&                   store_;
    IndexByKey                   keys_;    // sorted
    std::vector<Joined>          joined_;  // by index
    Names                        texts_ = Names::with_empty();
    std::vector<bool>            is_native_;  // by index: a kernel's own check
    bool                         has_native_ = false;
    std::string                  last_uri_;
    std::optional<std::uint32_t> last_file_;
};

void set_message(Finding& one, std::string const& text) {
    one.message = hash_of(text);
    one.loose = hash_of(without_numbers(text));
}

}  // namespace

std::uint32_t Names::number_of(std::string_view name) {
    auto const [found, is_new] =
        numbers_.try_emplace(std::string(name), static_cast<std::uint32_t>(names_.size()));
    if (is_new) names_.emplace_back(name);
    return found->second;
}

void set_texts(Finding& one, FindingTexts const& texts) {
    set_message(one, without_places(texts.message));
    if (!texts.function.empty()) one.function = hash_of(texts.function);
    one.content = hash_of({hash_of(texts.level), hash_of(texts.kind), Hash{texts.is_suppressed, 1},
                           hash_of(texts.class_), one.message});
}

void set_payload(Finding& one, std::string_view payload) {
    set_message(one, payload_without_places(payload));
    one.content = hash_of({one.content, one.message});
}

void read_side(tables::ResultSets const& sets, Database& database,
               std::vector<FlaggedByForm> const& flagged, SideData& side, DiffStore& store) {
    Reading(sets, database, side, store).run(flagged);
}

void erase_findings(SideData& side, std::vector<bool> const& is_erased) {
    SideData                   kept;
    std::vector<std::uint32_t> indices(side.findings.size(), Finding::none);
    kept.side = side.side;
    kept.first_id = side.first_id;
    for (std::size_t i = 0; i < side.findings.size(); ++i) {
        if (is_erased[i]) continue;
        indices[i] = static_cast<std::uint32_t>(kept.findings.size());
        Finding& one = kept.findings.emplace_back(side.findings[i]);
        one.rule = kept.number_of_rule(side.tool_of_rule(one.rule), side.id_of_rule(one.rule));
        one.file = kept.paths.number_of(side.paths.all()[one.file]);
    }
    for (Fingerprint const& print : side.fingerprints)
        if (auto const index = indices[print.finding]; index != Finding::none)
            kept.fingerprints.push_back({print.value, index});
    side = std::move(kept);
}

void read_sources(std::string const& directory, SideData& side) {
    std::vector<std::uint32_t> by_file(side.findings.size());
    std::iota(by_file.begin(), by_file.end(), 0);
    std::ranges::sort(by_file, {}, [&](std::uint32_t index) { return side.findings[index].file; });
    std::optional<SourceLines>   lines;
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
