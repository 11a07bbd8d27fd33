#include <sml/results/record_counts.hpp>

#include <sml/results/hash.hpp>

#include <algorithm>
#include <iterator>
#include <memory>
#include <string_view>
#include <variant>

namespace sml::results {

namespace {

using tables::Column;
using tables::ResultSets;
using tables::Table;

// Whether a column says where something is, or counts. Records that differ in these alone are the
// same. Of an information record of an import, `second_int` is the number of its check, and
// `first_int` of an event that of its run.
bool is_of_place(Table const& table, Column const& column) {
    std::string_view const name = column.name;
    if (column.is_of_row() || name == "key1") return true;
    if (table.name == "infos" && name == "second_int") return true;
    return name.ends_with("_position") || name.ends_with("__reference");
}

// Whether a column names a file. Of that, only the last part counts: the root can have moved. Of an
// information record of an import, `second_string` is the file of its check.
bool is_of_file(Table const& table, Column const& column) {
    std::string_view const name = column.name;
    return name == "key0" || name.ends_with("__file") ||
           (table.name == "infos" && name == "second_string");
}

tables::Cell last_part(tables::Cell const& cell) {
    auto const* const held = std::get_if<tables::Text>(&cell);
    if (held == nullptr) return cell;
    auto const slash = held->text.find_last_of("/\\");  // npos + 1 is 0
    return tables::Text{held->text.substr(slash + 1), held->lasts};
}

void append(std::string& text, tables::Cell const& cell) {
    text += static_cast<char>('0' + cell.index());
    if (auto const* const number = std::get_if<std::int64_t>(&cell))
        text.append(reinterpret_cast<char const*>(number), sizeof *number);
    else if (auto const* const real = std::get_if<double>(&cell))
        text.append(reinterpret_cast<char const*>(real), sizeof *real);
    else if (auto const* const held = std::get_if<tables::Text>(&cell)) {
        std::uint64_t const size = held->text.size();
        text.append(reinterpret_cast<char const*>(&size), sizeof size);
        text += held->text;
    }
}

// The hashes of all rows, sorted.
std::vector<Hash> contents(ResultSets const& sets, Table const& table) {
    std::vector<bool> is_wanted;
    std::vector<bool> has_file;
    for (Column const& column : table.columns) {
        is_wanted.push_back(!is_of_place(table, column));
        has_file.push_back(is_of_file(table, column));
    }
    auto const        source = source_of(sets, table);
    std::vector<Hash> hashes;
    std::string       text;
    for (std::int64_t set = 1; set <= sets.count(); ++set) {
        auto const rows = source->rows(set, is_wanted);
        while (rows->next()) {
            text.clear();
            for (std::size_t i = 0; i < is_wanted.size(); ++i)
                if (is_wanted[i])
                    append(text, has_file[i] ? last_part(rows->cell(i)) : rows->cell(i));
            hashes.push_back(hash_of(text));
        }
    }
    std::ranges::sort(hashes);
    return hashes;
}

std::vector<Hash> contents(ResultSets const& sets, std::string const& name) {
    Table const* const table = sets.schema().find(name);
    return table == nullptr ? std::vector<Hash>() : contents(sets, *table);
}

/// Counts what is added to it.
struct Counter {
    using value_type = Hash;
    void          push_back(Hash const&) { ++count; }
    std::uint64_t count = 0;
};

}  // namespace

std::vector<RecordCount> count_records(ResultSets const& olds, ResultSets const& news) {
    std::vector<RecordCount> counts;
    for (char const* const name : {"infos", "events", "functions", "blocks"}) {
        auto const of_old = contents(olds, name);
        auto const of_new = contents(news, name);
        Counter    both;
        std::set_intersection(of_old.begin(), of_old.end(), of_new.begin(), of_new.end(),
                              std::back_inserter(both));
        counts.push_back({name, of_old.size(), of_new.size(), both.count});
    }
    return counts;
}

}  // namespace sml::results
