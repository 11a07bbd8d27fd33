// Compares the rows that import and restore use with the output of `dump` at their paths.

#include <sml/bindings/bindings.hpp>
#include <sml/inspect/text/json_text.hpp>
#include "cli_support.hpp"
#include "json_line.hpp"
#include "sarif/fields.hpp"
#include "sarif/mapping.hpp"

#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <string>

namespace {

using namespace cli_test;
namespace fields = bradep::sarif::fields;
using bradep::ResultSet;
using bradep::sarif::for_each_row;
using bradep::sarif::Result;
using bradep::sarif::Text;

/// A result with all properties, each with a different value. It has at most one event and one
/// information record.
Result result_with(std::string const& lists) {
    auto const log =
        R"j({"version": "2.1.0", "runs": [{}, {}, {"tool": {"driver": {"name": "Tool", "version": "7", "rules": [{"id": "R"}]}},
        "results": [{"ruleId": "R", "level": "note", "kind": "open", "message": {"text": "m"},
        "baselineState": "new", "rank": 37.5, "fingerprints": {"f": "complete"}, "locations": [{
        "logicalLocations": [{"name": "logic"}], "physicalLocation": {
        "artifactLocation": {"uri": "a.c", "uriBaseId": "SRC"},
        "region": {"startLine": 11, "startColumn": 12, "endLine": 13, "endColumn": 14}}}],
        "codeFlows": [{"threadFlows": [{"locations": [{"kinds": ["call"], "location": {"message": {"text": "step"},
        "logicalLocations": [{"name": "step logic"}], "physicalLocation": {
        "artifactLocation": {"uri": "b.c", "uriBaseId": "STEP"}, "region": {"startLine": 21}}}}]}]}])j" +
        lists + "}]}]}";
    return results_of(log).at(0);
}

ResultSet set_of(Result const& result) {
    ResultSet           set;
    bradep::Comparisons comparisons;
    bradep::sarif::add_result(result, set, comparisons);
    set.application_results.first_int = 3;
    return set;
}

/// A set with one record of each kind, all with default values.
ResultSet empty_records() {
    ResultSet set;
    auto&     tables = set.application_results;
    tables.checks[{}];
    tables.events[{}];
    tables.infos[{}];
    set.check_data.emplace_back();
    return set;
}

/// The output of `dump` for the only entry or element at the path; empty if the path leads nowhere.
std::string value_at(std::string path, ResultSet const& set) {
    auto const put = [&](std::string const& any, std::string const& first) {
        auto const at = path.find(any);
        if (at != std::string::npos) path.replace(at, any.size(), first);
    };
    put("check_data[*]", "check_data[0]");
    put("signature_locations[*]", "signature_locations[0]");
    put("[*]", "[#0]");
    auto const bytes = sml::Base_Gui_Internal_Form_Datas_Aggregated_Results_T_fromCxx(set);
    auto const dumped = run_command(
        {"dump", "--root", bradep::result_set_stem, "--select", path, "-"}, std::string(bytes));
    auto const start = dumped.out.find("\"value\":");
    if (dumped.code != 0 || start == std::string::npos) return "";
    auto const value = dumped.out.substr(start + 8);
    return value.substr(0, value.size() - 2);  // the bracket and the line break
}

std::string json_of(std::int32_t number) { return std::to_string(number); }
std::string json_of(Text const& text) {
    std::string json;
    sml::inspect::append_json_string(json, text.str());
    return json;
}
template <class T>
std::string json_of(std::optional<T> const& value) {
    return value ? json_of(*value) : "null";
}

template <class T>
T const& content_of(std::optional<T> const& value);
template <class T>
T const& content_of(T const& value);

std::string path_of(char const* table, char const* field) {
    return std::string(table) + "." + field;
}

template <class Held>
std::string path_of(Held const& held) {
    return path_of(held.table, held.field);
}

/// Expects that a plain field has this value at its path, and that its bit is set.
template <class Said, class Access, class Bits, class Part>
void expect_row(bradep::sarif::Field<Said, Access, Bits> const& row, Part const& part,
                ResultSet const& set) {
    auto const expected = json_of(std::invoke(row.said, part));
    EXPECT_NE(expected, "null") << row.sarif.text();
    EXPECT_EQ(value_at(path_of(row.held), set), expected) << row.sarif.text();
    if constexpr (!std::is_same_v<Bits, bradep::sarif::NoBits>) {
        auto const word = value_at(path_of(row.given.word), set);
        auto const bits = word == "true" ? 1U : static_cast<std::uint32_t>(std::stoul(word));
        EXPECT_EQ(bits & row.given.bits, row.given.bits) << row.sarif.text();
    }
}

/// Expects that a field written by hand has the value at its path, or something that differs from
/// an empty record.
template <class Said, class Hold, class Restore, class Part>
void expect_row(bradep::sarif::ByHand<Said, Hold, Restore> const& row, Part const& part,
                ResultSet const& set) {
    auto const path = path_of(row.table, row.field);
    auto const value = value_at(path, set);
    using Value = std::decay_t<decltype(std::invoke(row.said, part))>;
    if constexpr (requires(Value one) { json_of(content_of(one)); }) {
        EXPECT_EQ(value, json_of(std::invoke(row.said, part))) << row.sarif.text();
    }
    EXPECT_NE(value, "") << row.sarif.text();
    EXPECT_NE(value, value_at(path, empty_records())) << row.sarif.text();
}

/// Makes the row write its field into a record with default values. Sets `before` to the output at
/// its path before that.
template <class Row, class Part>
void write_alone(Row const& row, Part const& part, ResultSet& set, std::string& before) {
    auto&                            tables = set.application_results;
    bradep::Comparisons              comparisons;
    bradep::sarif::DescriptorNumbers descriptors;
    bradep::sarif::Filling const     filling{set, comparisons, descriptors};
    auto const                       write_into = [&](auto& field, auto const& record) {
        field = {};
        before = value_at(path_of(row.table, row.field), set);
        row.hold(part, record);
    };
    using Make = decltype(row.make);
    if constexpr (std::is_invocable_v<Make, Part const&, bradep::sarif::FilledCheck const&>) {
        auto& [key, check] = *tables.checks.begin();
        auto&                            form = set.check_data.front().second;
        bradep::sarif::FilledCheck const record{check, form, key, filling};
        if (std::string_view(row.table) == bradep::sarif::checks_path)
            write_into(check.category, record);
        else
            write_into(form, record);
    } else if constexpr (std::is_invocable_v<Make, Part const&,
                                             bradep::sarif::FilledEvent const&>) {
        auto& event = tables.events.begin()->second;
        write_into(event, bradep::sarif::FilledEvent{event, event.first_int});
    } else if constexpr (std::is_invocable_v<Make, Part const&, bradep::sarif::FilledInfo const&>) {
        auto& info = tables.infos.begin()->second;
        write_into(info, bradep::sarif::FilledInfo{info, filling});
    } else {
        auto& failure = tables.checks.begin()->second.failure.value();
        write_into(failure.technology, bradep::sarif::FilledFailure{failure});
    }
}

/// The value without the payload, which other rows may have written.
std::string without_payload(std::string const& value) {
    return value.substr(0, value.find(",\"args\""));
}

template <class Make, class Part>
void expect_row(bradep::sarif::Derived<Make> const& row, Part const& part, ResultSet const& set) {
    auto const  path = path_of(row.table, row.field);
    auto        bare = set;
    std::string before;
    write_alone(row, part, bare, before);
    auto const value = value_at(path, set);
    EXPECT_NE(value, before) << row.what.text() << " at " << path;
    EXPECT_EQ(without_payload(value), without_payload(value_at(path, bare)))
        << row.what.text() << " at " << path;
}

template <class Said, class Shown, class Reference, class Base, class Logical, class Part>
void expect_row(fields::PlaceField<Said, Shown, Reference, Base, Logical> const& row,
                Part const& part, ResultSet const& set) {
    auto const& place = *fields::place_in(std::invoke(row.said, part));
    EXPECT_EQ(value_at(path_of(row.base), set), json_of(place.base)) << row.sarif.text();
    EXPECT_EQ(value_at(path_of(row.logical), set), json_of(place.logical)) << row.sarif.text();
    auto const reference = path_of(row.reference) + ".";
    EXPECT_EQ(value_at(reference + fields::uri.held.field, set), json_of(place.uri))
        << row.sarif.text();
    EXPECT_EQ(value_at(reference + fields::line.held.field, set), json_of(place.line))
        << row.sarif.text();
    EXPECT_EQ(value_at(reference + fields::column.held.field, set),
              json_of(place.column.value_or(0)))
        << row.sarif.text();
}

template <class Rows, class Part>
void expect_rows(Rows const& rows, Part const& part, ResultSet const& set) {
    for_each_row(rows, [&](auto const& row) { expect_row(row, part, set); });
}

TEST(SarifFields, EachPathOfAResultLeadsToWhatItsRowHolds) {
    auto const result = result_with("");
    auto const set = set_of(result);
    expect_rows(fields::of_check, result, set);
    expect_rows(fields::of_form, result, set);
    expect_rows(fields::of_form_place, result, set);
    expect_rows(fields::of_step, result.flows.at(0).at(0).at(0), set);
    expect_rows(fields::of_failure, result.flows, set);
    expect_rows(fields::of_logs, fields::Logs{3}, set);
    expect_rows(fields::of_descriptor, result.descriptor.value(), set);
    expect_rows(fields::of_run_fact, result.descriptor->text, set);
    fields::Fingerprint const fingerprint{Text("fingerprints"), Text("f"), Text("complete")};
    expect_rows(fields::of_fingerprint, fingerprint, set);
}

template <class List>
void expect_list(List const& list, std::string const& lists, std::int32_t position) {
    auto const result = result_with(lists);
    auto const set = set_of(result);
    ASSERT_EQ(set.application_results.infos.size(), 1U) << list.sarif.text();
    auto const key = set.check_data.front().second.first_numbered_name.value();
    expect_rows(fields::of_info, fields::InfoHead{Text(list.role), position, key}, set);
    expect_rows(list.rows, std::invoke(list.said, result).back(), set);
}

TEST(SarifFields, EachPathOfAnInformationRecordLeadsToWhatItsRowHolds) {
    std::string const place =
        R"("logicalLocations": [{"name": "l"}], "physicalLocation": {"artifactLocation": {"uri": "d.c",
           "uriBaseId": "D"}, "region": {"startLine": 31, "startColumn": 32}})";
    expect_list(fields::related_locations,
                R"(, "relatedLocations": [{"id": 9, "message": {"text": "see"}, )" + place + "}]",
                0);
    expect_list(fields::suppressions,
                R"(, "suppressions": [{"kind": "external", "status": "accepted"}])", 0);
    // If two members have one name, the last one is used.
    expect_list(fields::further_locations, R"(, "locations": [{}, {)" + place + "}]", 1);
}

TEST(SarifFields, EveryNameIsInTheLineOfAResultThatGivesEverything) {
    auto const result = result_with(
        R"(, "relatedLocations": [{"id": 9, "message": {"text": "see"}}],
           "suppressions": [{"kind": "external", "status": "accepted"}])");
    std::ostringstream line;
    bradep::write_json_line(line, {Text("a.c"), 1}, result);
    auto const expect_shown = [&](auto const& row) {
        if constexpr (requires { row.shown; }) {
            if (row.shown == nullptr) return;
            EXPECT_NE(line.str().find("\"" + std::string(row.shown) + "\":"), std::string::npos)
                << row.shown << " in " << line.str();
        }
    };
    for_each_row(fields::of_check, expect_shown);
    for_each_row(fields::of_form, expect_shown);
    for_each_row(fields::of_place, expect_shown);
    for_each_row(fields::of_step, expect_shown);
    for_each_row(fields::info_lists, [&](auto const& list) {
        expect_shown(list);
        for_each_row(list.rows, expect_shown);
    });
}

}  // namespace
