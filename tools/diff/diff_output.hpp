#pragma once
// Prints a diff.

#include <sml/inspect/text/json_writer.hpp>
#include <sml/results/diff_store.hpp>
#include "command.hpp"
#include "diff/baseline_runs.hpp"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace bradep {

enum class DiffFormat { text, json, ndjson, markdown, sarif };

/// Which findings are printed and counted.
struct DiffFilter {
    std::vector<std::string> levels;
    std::vector<std::string> rules;   ///< shell patterns
    std::vector<std::string> states;  ///< not for counts
};

/// The states, in the order in which findings are printed.
std::vector<std::string> const& diff_states();

class DiffOutput {
public:
    /// All arguments must outlive this object.
    DiffOutput(sml::results::DiffStore& store, DiffFilter const& filter, Streams& streams);

    /// Requires another format than SARIF.
    void print(DiffFormat format);

    /// Prints how findings with these keys were matched. Throws DamagedInput for a key that no
    /// finding has.
    void explain(std::vector<std::string> const& keys);

    /// The states of the findings of the new side, or of those of the old side that are absent, by
    /// the name of their result set and by key.
    std::map<std::string, StatesByKey> states(sml::results::Side side);

    /// How many findings have one of these states and are not suppressed.
    std::uint64_t count(std::vector<std::string> const& states);

private:
    using Counts = std::map<std::string, std::int64_t>;

    Counts                 counts();
    std::string            condition(bool by_state) const;
    sml::tables::Statement selection(std::string const& columns, std::string const& rest,
                                     bool by_state);
    sml::tables::Statement findings();
    std::string            summary();
    void                   print_text();
    void                   add_records(sml::inspect::JsonWriter& json);
    void                   print_json();
    void                   print_lines();
    void                   print_markdown();
    void                   explain(std::string const& key);

    sml::results::DiffStore& store_;
    DiffFilter const&        filter_;
    Streams&                 streams_;
};

}  // namespace bradep
