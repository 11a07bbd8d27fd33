#include "report/series_notes.hpp"

#include <sml/results/query.hpp>
#include <sml/tables/sqlite/database.hpp>
#include "signals.hpp"

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace bradep {

using sml::results::Hash;
using sml::results::hash_of;
using sml::results::Query;
using sml::results::SeriesStore;
using sml::tables::ResultSets;
using sml::tables::Statement;

namespace {

// What a series keeps of a finding as it is, and the view of a result set has, too.
constexpr char const* common_columns =
    "tool, tool_version, rule, level, kind, message, category, uri, line, \"column\", class,"
    " suppressed";
constexpr int count_of_common = 12;

void append_value(std::string& values, sqlite3_stmt* row, int column) {
    if (sqlite3_column_type(row, column) != SQLITE_NULL)
        values.append(reinterpret_cast<char const*>(sqlite3_column_text(row, column)),
                      static_cast<std::size_t>(sqlite3_column_bytes(row, column)));
    values += '\0';  // is in no text of either
}

std::string common_values(sqlite3_stmt* row, int first) {
    std::string values;
    for (int i = 0; i < count_of_common; ++i) append_value(values, row, first + i);
    return values;
}

/// Open findings of a series by what they have in common with those of their last run.
class OpenFindings {
public:
    explicit OpenFindings(SeriesStore& store) {
        Statement rows(store.connection().get(), "SELECT id, first_run, payload, " +
                                                     std::string(common_columns) +
                                                     " FROM findings WHERE state = 'open'"
                                                     " ORDER BY id");
        while (rows.step()) {
            auto values = common_values(rows.get(), 3);
            append_value(values, rows.get(), 2);
            all_.push_back({hash_of(values), rows.integer(0), rows.integer(1)});
        }
        std::ranges::stable_sort(all_, {}, &Open::values);
        next_.resize(all_.size());
    }

    struct Open {
        Hash         values;
        std::int64_t id, first_run;
    };
    /// The next one of those with equal values; null if there is none.
    Open const* take(Hash const& values) {
        auto const first = std::ranges::lower_bound(all_, values, {}, &Open::values) - all_.begin();
        if (first == std::ssize(all_)) return nullptr;
        auto const at = static_cast<std::size_t>(first) + next_[static_cast<std::size_t>(first)]++;
        return at < all_.size() && all_[at].values == values ? &all_[at] : nullptr;
    }

private:
    std::vector<Open>          all_;   // by values, then by id
    std::vector<std::uint32_t> next_;  // of the first one with equal values: how many are taken
};

}  // namespace

SeriesNotes::SeriesNotes(SeriesFile& series, ResultSets const& sets) {
    series.use([&](SeriesStore& store) {
        Statement runs(store.connection().get(),
                       "SELECT run, name, open, new, returned, fixed, suppressed FROM runs"
                       " ORDER BY run");
        while (runs.step())
            history_.push_back({runs.integer(0), std::string(runs.text(1)),
                                runs.integer(2) + runs.integer(6), runs.integer(2), runs.integer(3),
                                runs.integer(4), runs.integer(5)});
        auto const run = store.run_with(digest_of(sets));
        if (run && run == store.last_run()) read_identities(store, sets);
    });
}

// Of findings that are equal in all that is compared, each has the number of one of them.
void SeriesNotes::read_identities(SeriesStore& store, ResultSets const& sets) {
    OpenFindings          open(store);
    sml::tables::Database database(sets, Interruption::has_come());
    Query                 rows(database,
                               "SELECT run, baseline_state, " + std::string(common_columns) + " FROM findings");
    Query                 payloads(database, "SELECT category_args FROM checks");
    while (rows.next() && payloads.next()) {
        bool const is_native = rows.is_null(0);
        auto       values = common_values(rows.get(), 2);
        if (is_native)
            append_value(values, payloads.get(), 0);
        else
            values += '\0';
        auto const* const found = rows.text(1) == "absent" ? nullptr : open.take(hash_of(values));
        Identity&         one = identities_.emplace_back();
        if (found) one = {static_cast<std::uint32_t>(found->id), found->first_run};
    }
}

void SeriesNotes::add(std::size_t finding, report::FindingColumns& columns,
                      sml::inspect::JsonWriter& details) const {
    if (finding >= identities_.size() || identities_[finding].number == 0) return;
    columns.identity = identities_[finding].number;
    details.string_member("first_seen", name_of(identities_[finding].first_run));
    details.string_member("last_seen", history_.back().name);
}

// Runs are numbered from 1 without a gap.
std::string const& SeriesNotes::name_of(std::int64_t run) const {
    return history_.at(static_cast<std::size_t>(run - 1)).name;
}

}  // namespace bradep
