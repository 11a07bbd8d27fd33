#include "report/reported_findings.hpp"

#include <sml/results/hash.hpp>
#include <sml/results/query.hpp>
#include <sml/tables/entry_json.hpp>
#include <sml/tables/rows.hpp>
#include <sml/tables/sqlite/database.hpp>
#include "errors.hpp"
#include "json_input.hpp"
#include "sarif/json_members.hpp"
#include "sarif/log_writer.hpp"
#include "sarif/set_runs.hpp"
#include "signals.hpp"

#include <algorithm>
#include <limits>
#include <optional>
#include <sstream>
#include <string>
#include <utility>

namespace bradep {

using report::FindingColumns;
using report::TextColumn;
using sml::inspect::append_json_integer;
using sml::inspect::JsonWriter;
using sml::inspect::StrayByte;
using sml::results::Hash;
using sml::results::hash_of;
using sml::results::Query;
namespace json = sarif::json;

namespace {

// The columns of the view, in the order of the statement below.
enum Column : int {
    finding,
    first_text,
    run = first_text + static_cast<int>(report::text_columns),
    line,
    column,
    suppressed,
    key
};

std::string columns_sql(std::int64_t set) {
    return "SELECT finding, tool, rule, level, kind, category, class, message, uri, function,"
           " baseline_state, run, line, \"column\", suppressed, \"key\" FROM findings WHERE "
           "result_set = " +
           std::to_string(set);
}

// Lines and columns that no text has count as none.
std::uint32_t place(std::int64_t number) {
    bool const is_one = number > 0 && number <= std::numeric_limits<std::uint32_t>::max();
    return is_one ? static_cast<std::uint32_t>(number) : 0;
}

// The name of the first logical location of a result.
std::optional<std::string_view> function_of(json::value const& result) {
    using namespace json_input;
    auto const* const location = element(found_list(&result, "locations"), 0);
    return found_text(element(found_list(location, "logicalLocations"), 0), "name");
}

// A text as the tables have it.
std::string valid(std::string_view text) {
    std::string all;
    sml::tables::append_valid_text(all, text);
    return all;
}

}  // namespace

/// The findings of one result set.
class ReportedFindings::OfSet {
public:
    OfSet(ReportedFindings& all, sml::tables::Database& database, std::int64_t number)
        : all_(all),
          set_(all.sets_.set(number)),
          number_(number),
          database_(database),
          records_(set_.contents, all.sets_.schema(), *all.sets_.schema().find("checks")),
          json_(text_, false, StrayByte::replaced) {}

    /// Returns how many findings there are.
    std::size_t add(ResultSink const& sink) {
        read_columns();
        auto const source =
            sarif::runs_of_set(all_.sets_, number_, all_.options_.walk, all_.options_.max_result);
        for (std::size_t i = 0; i < source->runs(); ++i) add_run(*source, i, sink);
        add_without_results();
        return rows_.size();
    }

private:
    struct Row {
        FindingColumns columns;
        bool           is_native = false;
        bool           is_added = false;
    };

    void read_columns() {
        Query view(database_, columns_sql(number_));
        while (view.next()) {
            Interruption::check();
            auto const row = static_cast<std::size_t>(view.integer(Column::finding));
            if (row >= rows_.size()) rows_.resize(row + 1);
            rows_[row].is_native = view.is_null(Column::run);
            set_columns(rows_[row].columns, view);
            keys_.emplace_back(hash_of(view.text(Column::key)), static_cast<std::uint32_t>(row));
        }
        std::ranges::sort(keys_);
    }

    void set_columns(FindingColumns& columns, Query const& view) {
        for (int i = 0; i < Column::run - Column::first_text; ++i) {
            auto const which = static_cast<TextColumn>(i);
            columns.of(which) = all_.writer_.number_of(which, view.text(Column::first_text + i));
        }
        columns.line = place(view.integer(Column::line));
        columns.column = place(view.integer(Column::column));
        columns.is_suppressed = view.integer(Column::suppressed) != 0;
    }

    void add_run(sarif::LogSource const& source, std::size_t number, ResultSink const& sink) {
        auto const  pointer = "/runs/" + std::to_string(number);
        json::value run = source.run(number);
        make_fit(run, sarif::schema::run, pointer, all_.left_out_);
        std::optional<std::uint32_t> reported;
        auto const                   add_once = [&] {
            if (!reported) reported = all_.writer_.add_run(written(run));
            last_run_ = *reported;
        };
        if (!all_.options_.is_old) add_once();
        std::size_t results = 0;
        source.results(number, [&](std::string const& key, json::object&& object) {
            Interruption::check();
            auto const row = row_of(valid(key));
            if (!row) return;
            add_once();
            json::value result = std::move(object);
            if (auto const state = state_of(*row); !state.empty())
                result.get_object()["baselineState"] = state;
            bool const fits =
                make_fit(result, sarif::schema::result,
                         pointer + "/results/" + std::to_string(results++), all_.left_out_);
            add_finding(*row, valid(key), fits ? &result : nullptr);
            if (fits) sink(run.get_object(), result.get_object());
        });
    }

    // What the results do not name: checks without a form, which no import makes.
    void add_without_results() {
        if (added_ == rows_.size()) return;
        Query view(database_, "SELECT finding, \"key\" FROM findings WHERE result_set = " +
                                  std::to_string(number_));
        while (view.next()) {
            auto const row = static_cast<std::uint32_t>(view.integer(0));
            if (is_wanted(row)) add_finding(row, view.text(1), nullptr);
        }
    }

    bool is_wanted(std::uint32_t row) const {
        return !rows_[row].is_added && std::ranges::all_of(all_.notes_, [&](auto const* notes) {
            return notes->is_reported(all_.first_ + row);
        });
    }

    std::string_view state_of(std::uint32_t row) const {
        for (auto const* const notes : all_.notes_)
            if (auto const state = notes->state(all_.first_ + row); !state.empty()) return state;
        return {};
    }

    // None for a key that no finding has, or one that is in the report already or is not to be.
    std::optional<std::uint32_t> row_of(std::string const& key) const {
        auto const wanted = hash_of(key);
        auto const found =
            std::ranges::lower_bound(keys_, wanted, {}, &IndexByKey::value_type::first);
        if (found == keys_.end() || found->first != wanted || !is_wanted(found->second))
            return std::nullopt;
        return found->second;
    }

    void add_finding(std::uint32_t row, std::string_view key, json::value const* result) {
        auto& [columns, is_native, is_added] = rows_[row];
        is_added = true;
        ++added_;
        columns.run = last_run_;
        if (auto const state = state_of(row); !state.empty())
            columns.of(TextColumn::state) = all_.writer_.number_of(TextColumn::state, state);
        if (result != nullptr) take_from_result(columns, is_native, *result);
        json_.open('{');
        if (result != nullptr) {
            json_.member("result");
            sarif::write_value(json_, *result);
        }
        json_.member("record");
        records_.append(json_.text, row);
        json_.string_member("key", key);
        json_.member("set");
        append_json_integer(json_.text, number_ - 1);
        if (all_.options_.is_old) {
            json_.member("old");
            json_.text += "true";
        }
        for (auto const* const notes : all_.notes_) notes->add(all_.first_ + row, columns, json_);
        json_.close('}');
        json_.flush();
        all_.writer_.add(columns, text_.view());
        text_.str({});
    }

    // The list says what the result says.
    void take_from_result(FindingColumns& columns, bool is_native, json::value const& result) {
        using json_input::found;
        using json_input::found_text;
        auto const set = [&](TextColumn which, std::optional<std::string_view> text) {
            if (text) columns.of(which) = all_.writer_.number_of(which, valid(*text));
        };
        set(TextColumn::level, found_text(&result, "level"));
        if (!is_native) return;
        set(TextColumn::message, found_text(found(&result, "message"), "text"));
        set(TextColumn::function, function_of(result));
    }

    std::string written(json::value const& value) {
        sarif::write_value(json_, value);
        json_.flush();
        return std::exchange(text_, std::ostringstream()).str();
    }

    using IndexByKey = std::vector<std::pair<Hash, std::uint32_t>>;

    ReportedFindings&             all_;
    sml::tables::ResultSet const& set_;
    std::int64_t                  number_;  // of the set
    sml::tables::Database&        database_;
    sml::tables::EntryJson        records_;
    std::vector<Row>              rows_;
    IndexByKey                    keys_;  // sorted
    std::size_t                   added_ = 0;
    std::uint32_t                 last_run_ = 0;
    std::ostringstream            text_;
    JsonWriter                    json_;
};

void ReportedFindings::add(ResultSink const& sink) {
    try {
        sml::tables::Database database(sets_, Interruption::has_come());
        for (std::int64_t set = 1; set <= sets_.count(); ++set)
            first_ += OfSet(*this, database, set).add(sink);
    } catch (sml::tables::SqlError const& error) {
        Interruption::check();
        throw IoFailure(std::string("cannot write a temporary table: ") + error.what());
    }
}

}  // namespace bradep
