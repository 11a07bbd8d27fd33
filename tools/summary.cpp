#include "summary.hpp"

#include <sml/inspect/text/quote.hpp>
#include "sarif/fields.hpp"
#include "set_checks.hpp"

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

namespace bradep {

namespace {

using sml::inspect::printable;
namespace fields = sarif::fields;
using Counts = std::map<std::string, std::size_t>;
using Rows = std::vector<std::pair<std::string, std::size_t>>;

std::string counted(std::size_t count, std::string const& noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

// The counts stand in one column before the names, which may hold characters of any width.
void write_rows(std::ostream& out, Rows const& rows, std::size_t limit) {
    auto const  shown = std::min(limit, rows.size());
    std::size_t width = 0;
    for (std::size_t i = 0; i < shown; ++i)
        width = std::max(width, std::to_string(rows[i].second).size());
    for (std::size_t i = 0; i < shown; ++i) {
        auto const digits = std::to_string(rows[i].second);
        out << "  " << std::string(width - digits.size(), ' ') << digits << "  " << rows[i].first
            << '\n';
    }
}

void write_ranking(std::ostream& out, std::string const& title, std::string const& noun,
                   Counts const& counts, std::size_t limit) {
    if (counts.empty()) return;
    Rows rows(counts.begin(), counts.end());
    std::stable_sort(rows.begin(), rows.end(),
                     [](auto const& a, auto const& b) { return a.second > b.second; });
    out << '\n' << title << '\n';
    write_rows(out, rows, limit);
    if (rows.size() > limit)
        out << "  and " << counted(rows.size() - limit, "more " + noun) << '\n';
}

void write_tables(std::ostream& out, ResultSet const& set) {
    auto const& tables = set.application_results;
    Rows const  all = {
         {"checks", tables.checks.size()},
         {"check_numbers", tables.check_numbers.size()},
         {"check_data", set.check_data.size()},
         {"events", tables.events.size()},
         {"event_numbers", tables.event_numbers.size()},
         {"infos", tables.infos.size()},
         {"info_numbers", tables.info_numbers.size()},
         {"info_definitions", set.info_definitions.size()},
         {"kernel_to_gui_info_ids", set.kernel_to_gui_info_ids.size()},
         {"first_key_sets", tables.first_key_sets.size()},
         {"second_key_sets", tables.second_key_sets.size()},
         {"blocks", tables.blocks.size()},
         {"block_numbers", tables.block_numbers.size()},
         {"functions", tables.functions.size()},
         {"integer_sets", tables.integer_sets.size()},
         {"signatures", tables.signatures.size()},
    };
    Rows        filled;
    std::string empty;
    for (auto const& [name, size] : all) {
        if (size)
            filled.emplace_back(name, size);
        else
            empty += (empty.empty() ? "" : ", ") + name;
    }
    out << "\nTables\n";
    write_rows(out, filled, filled.size());
    if (!empty.empty()) out << "  empty: " << empty << '\n';
}

std::string category_name(Category const& category) {
    if (category.tag < 0) return "(none)";  // toString would give the name of arm 0
    auto const* name = category.toString();
    return name ? name : "(tag " + std::to_string(category.tag) + ")";
}

std::string or_blank(std::string const& text, char const* blank) {
    return text.empty() ? blank : printable(text);
}

using Tool = std::pair<sml::Strings_T, sml::Strings_T>;  // name and version

std::string tool_text(Tool const& tool) {
    auto const& version = tool.second.str();
    return or_blank(tool.first.str(), "(no tool)") +
           (version.empty() ? "" : " " + printable(version));
}

// Counts by text. Each shared value is converted to text only once, since texts may be long.
template <class Shared, class Spell>
Counts spelled(std::map<Shared, std::size_t> const& shared_counts, Spell const& spell) {
    Counts counts;
    for (auto const& [shared, count] : shared_counts) counts[spell(shared)] += count;
    return counts;
}

auto or_blank(char const* blank) {
    return [blank](sml::Strings_T const& text) { return or_blank(text.str(), blank); };
}

struct CheckCounts {
    Counts by_category, by_rule, by_level, by_tool, by_kind, by_baseline_state, by_file;
};

CheckCounts counts_of(ResultSet const& set, Review const& review) {
    using TextCounts = std::map<sml::Strings_T, std::size_t>;
    Counts                      categories;
    std::map<Tool, std::size_t> tools;
    TextCounts                  rules, levels, kinds, states, files;
    for (auto const& [key, check] : set.application_results.checks) {
        if (!review.is_open(key, check)) continue;
        sarif::CheckAlone const record{check};
        ++categories[category_name(check.category)];
        ++tools[{fields::tool.held(record), fields::tool_version.held(record)}];
        ++rules[fields::rule.held(record).value_or(sml::Strings_T())];
        ++levels[fields::level.held(record)];
        ++kinds[fields::kind.held(record)];
        ++states[fields::baseline_state.held(record)];
        ++files[key.first];
    }
    return {.by_category = std::move(categories),
            .by_rule = spelled(rules, or_blank("(no rule)")),
            .by_level = spelled(levels, or_blank("(no level)")),
            .by_tool = spelled(tools, tool_text),
            .by_kind = spelled(kinds, or_blank("(no kind)")),
            .by_baseline_state = spelled(states, or_blank("(no state)")),
            .by_file = spelled(files, or_blank("(no file)"))};
}

std::string place_text(sarif::Place const& place) {
    std::string text = place.uri ? printable(place.uri->str()) : "(no file)";
    if (place.line) text += ":" + std::to_string(*place.line);
    if (place.line && place.column) text += ":" + std::to_string(*place.column);
    return text;
}

std::string check_text(sarif::Result const& result) {
    std::string text =
        result.locations.empty() ? "(no place)" : place_text(result.locations.front());
    text += ": " + printable(result.level.str()) + ": ";
    text += result.message ? printable(result.message->str()) : "(no message)";
    if (result.rule) text += " [" + printable(result.rule->str()) + "]";
    std::size_t steps = 0;
    for (auto const& flow : result.flows)
        for (auto const& thread : flow) steps += thread.size();
    if (!result.flows.empty())
        text += ", " + counted(result.flows.size(), "flow") + " of " + counted(steps, "step");
    return text;
}

std::string native_text(SetCheck const& check) {
    auto const& file = check.key ? check.key->first : check.form->localization.file;
    auto const  text = or_blank(file.str(), "(no file)") + ": " + category_name(check.category());
    return check.key ? text + ", check " + std::to_string(check.key->second) : text;
}

std::string check_text(SetCheck const& check, ResultSet const& set, Review const& review) {
    auto const result = imported_result(check, set);
    auto       text = result ? check_text(*result) : native_text(check);
    if (check.check == nullptr) return text;
    if (review.is_suppressed(*check.key)) return text + " (suppressed)";
    return review.is_absent(*check.check) ? text + " (absent)" : text;
}

// Suppressed and absent checks are counted separately, because nobody has to look at them.
void write_checks_not_open(std::ostream& out, ResultSet const& set, Review const& review) {
    std::size_t suppressed = 0;
    std::size_t absent = 0;
    for (auto const& [key, check] : set.application_results.checks) {
        if (review.is_suppressed(key))
            ++suppressed;
        else if (review.is_absent(check))
            ++absent;
    }
    if (suppressed + absent == 0) return;
    if (suppressed > 0) out << ", " << suppressed << " suppressed";
    if (absent > 0) out << ", " << absent << " absent";
    out << " (not counted below)";
}

void write_first_checks(std::ostream& out, ResultSet const& set, Review const& review,
                        std::size_t limit) {
    auto const checks = checks_of(set, limit);
    if (checks.empty()) return;
    out << "\nFirst checks\n";
    for (auto const& check : checks) out << "  " << check_text(check, set, review) << '\n';
    auto const more = count_checks(set) - checks.size();
    if (more > 0) out << "  and " << counted(more, "more check") << '\n';
}

std::string milliseconds(std::chrono::microseconds time) {
    auto const tenths = (time.count() + 50) / 100;
    return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " ms";
}

}  // namespace

void write_summary(std::ostream& out, ResultSet const& set, SummaryFacts const& facts) {
    auto const runs =
        static_cast<std::size_t>(std::max(fields::runs.held(sarif::SetRecord{set}), 0));
    out << printable(facts.name) << ": " << counted(count_checks(set), "check") << " from "
        << counted(runs, "run");
    Review const review(set);
    write_checks_not_open(out, set, review);
    out << '\n';
    out << counted(facts.bytes, "byte") << ", read in " << milliseconds(facts.read_time) << '\n';
    write_tables(out, set);

    auto const counts = counts_of(set, review);
    write_ranking(out, "Checks by tool", "tool", counts.by_tool, facts.rows);
    write_ranking(out, "Checks by category", "category", counts.by_category,
                  counts.by_category.size());
    write_ranking(out, "Checks by level", "level", counts.by_level, counts.by_level.size());
    if (counts.by_kind.size() > 1)
        write_ranking(out, "Checks by kind", "kind", counts.by_kind, facts.rows);
    if (counts.by_baseline_state.size() > 1)
        write_ranking(out, "Checks by baseline state", "state", counts.by_baseline_state,
                      facts.rows);
    write_ranking(out, "Checks by rule", "rule", counts.by_rule, facts.rows);
    write_ranking(out, "Files with most checks", "file", counts.by_file, facts.rows);
    write_first_checks(out, set, review, facts.rows);
}

}  // namespace bradep
