#include <sml/tables/entry_json.hpp>

#include <sml/inspect/walk/verified_value.hpp>
#include <sml/tables/rows.hpp>

#include <limits>

namespace sml::tables {

EntryJson::EntryJson(inspect::Contents const& contents, Schema const& schema, Table const& table)
    : contents_(contents),
      container_(*table.container),
      budget_(std::numeric_limits<std::uint64_t>::max()),
      json_(text_, inspect::DumpOptions::Form::compact, budget_) {
    Rows rows(contents, schema, table, std::vector<bool>(table.columns.size()));
    while (rows.next()) starts_.push_back(rows.start());
}

void EntryJson::append(std::string& json, std::int64_t row) {
    inspect::VerifiedBytes at(contents_, starts_.at(static_cast<std::size_t>(row)));
    auto const             append_value = [&](inspect::Type const& type) {
        text_.str({});
        inspect::visit_value(type, at, json_);
        json_.flush();
        json += text_.view();
    };
    if (container_.key == nullptr) return append_value(*container_.element);
    json += '[';
    append_value(*container_.key);
    json += ',';
    append_value(*container_.element);
    json += ']';
}

}  // namespace sml::tables
