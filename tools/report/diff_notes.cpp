#include "report/diff_notes.hpp"

#include "diff/diff_output.hpp"

#include <algorithm>

namespace bradep {

using sml::results::Side;
using sml::tables::Statement;

namespace {

constexpr std::string_view updated = "updated";
constexpr std::string_view absent = "absent";

// The store numbers the findings of a side in the order of their sets and rows.
std::int64_t first_of_side(sml::results::DiffStore& store, char const* side) {
    Statement first(store.connection().get(), "SELECT min(id) FROM findings WHERE side = ?");
    first.bind(1, std::string_view(side));
    return first.step() ? first.integer(0) : 0;
}

}  // namespace

DiffNotes::DiffNotes(sml::results::DiffStore& store, Side side)
    : is_old_(side == Side::old_side),
      changes_(store.connection().get(),
               "SELECT path, old, new FROM changes WHERE pair = ? ORDER BY position") {
    std::string const column = is_old_ ? "old" : "new";
    auto const        first = first_of_side(store, column.c_str());
    Statement         rows(
                store.connection().get(),
                "SELECT " + column + ", pair, state FROM pairs WHERE " + column + " IS NOT NULL");
    auto const& states = diff_states();
    while (rows.step()) {
        auto const finding = static_cast<std::size_t>(rows.integer(0) - first);
        if (finding >= pairs_.size()) pairs_.resize(finding + 1);
        auto const state = std::ranges::find(states, rows.text(2)) - states.begin();
        pairs_[finding] = {rows.integer(1), static_cast<std::uint8_t>(state)};
    }
}

bool DiffNotes::is_reported(std::size_t finding) const {
    return !is_old_ || state(finding) == absent;
}

std::string_view DiffNotes::state(std::size_t finding) const {
    return diff_states().at(pairs_.at(finding).state);
}

void DiffNotes::add(std::size_t               finding, report::FindingColumns&,
                    sml::inspect::JsonWriter& details) const {
    if (state(finding) != updated) return;
    details.member("changes");
    details.open('[');
    changes_.bind(1, pairs_[finding].number);
    while (changes_.step()) {
        details.next();
        details.open('{');
        int column = 0;
        for (char const* const name : {"path", "old", "new"}) {
            if (!changes_.is_null(column)) details.string_member(name, changes_.text(column));
            ++column;
        }
        details.close('}');
    }
    changes_.reset();
    details.close(']');
}

}  // namespace bradep
