#pragma once
// Reads the findings of result sets, each text once.

#include <sml/results/diff_store.hpp>
#include <sml/results/matching.hpp>
#include <sml/results/source_lines.hpp>
#include <sml/tables/sqlite/database.hpp>

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace sml::results {

/// Texts with numbers, from 0 in the order of their addition.
class Names {
public:
    /// Names with the empty one, whose number is 0.
    static Names with_empty() {
        Names names;
        names.number_of("");
        return names;
    }

    std::uint32_t number_of(std::string_view name);

    std::vector<std::string> const& all() const { return names_; }

private:
    std::vector<std::string>                       names_;
    std::unordered_map<std::string, std::uint32_t> numbers_;
};

/// What stands at the place of each check form of a result set, by its number in the list
/// `check_data`, as the log says that it was made from.
using FlaggedByForm = std::vector<Flagged>;

/// The findings of one side.
struct SideData : Matched {
    Side          side = Side::old_side;
    std::uint64_t first_id = 0;  ///< of the first finding in the store

    Names paths;  ///< `Finding::file` is a number in it, until names are joined
    Names tools;
    Names rules;  ///< `Finding::rule` is a number in it, until then; with the number of the tool
    std::vector<std::uint32_t> firsts;  ///< by result set: the index of its first finding

    std::uint32_t number_of_rule(std::string_view tool, std::string_view rule) {
        return rules.number_of(std::to_string(tools.number_of(tool)) + ' ' + std::string(rule));
    }
    // The parts of a rule, by its number in `rules`.
    std::string const& tool_of_rule(std::uint32_t number) const {
        return tools.all()[std::stoul(rules.all()[number])];
    }
    std::string_view id_of_rule(std::uint32_t number) const {
        std::string_view const rule = rules.all()[number];
        return rule.substr(rule.find(' ') + 1);
    }
    std::uint32_t index_of(std::int64_t set, std::int64_t row) const {
        return firsts[static_cast<std::size_t>(set)] + static_cast<std::uint32_t>(row);
    }
};

/// What is compared in a pair, without flows and payload.
struct FindingTexts {
    std::string_view message, level, kind, class_;
    std::string_view function;  ///< not compared
    bool             is_suppressed = false;
};

/// Sets the hashes of these.
void set_texts(Finding& one, FindingTexts const& texts);
/// The payload of a kernel's check is its message. Must follow `set_texts`.
void set_payload(Finding& one, std::string_view payload);

/// Reads all findings of the result sets into `side` and into the store. `flagged` has an element
/// for each result set; it may be empty. Throws what reading the tables throws.
void read_side(tables::ResultSets const& sets, tables::Database& database,
               std::vector<FlaggedByForm> const& flagged, SideData& side, DiffStore& store);

/// Leaves out findings, and the rules, tools and files that only these have. `index_of` has no
/// meaning then.
void erase_findings(SideData& side, std::vector<bool> const& is_erased);

/// Looks for the flagged lines in the sources below a directory.
void read_sources(std::string const& directory, SideData& side);

}  // namespace sml::results
