// Result sets as SARIF: what the command does, and what it makes of sets that no import has
// written.

#include <sml/bindings/bindings.hpp>
#include "cli_support.hpp"
#include "gzip.hpp"
#include "input_bytes.hpp"
#include "json_input.hpp"
#include "result_set.hpp"

#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace cli_test;
namespace json = boost::json;
using bradep::ResultSet;
using sml::Strings_T;

void import_to(fs::path const& set, std::string const& log) {
    ASSERT_EQ(run_command({"import", "-", "-o", set.string()}, log).code, 0);
}

/// The log that the command prints for these files.
Outcome exported(std::vector<fs::path> const& files, std::vector<std::string> const& options = {}) {
    std::vector<std::string> args = {"export", "--sarif", "-"};
    for (auto const& file : files) args.push_back(file.string());
    args.insert(args.end(), options.begin(), options.end());
    return run_command(args);
}

json::value parsed(std::string const& log) {
    return bradep::json_input::Document(log, "log").root();
}

std::string text_of(json::value const& log, std::string const& pointer) {
    return json::serialize(log.at_pointer(pointer));
}

/// A set that an import of this log makes, changed, and exported.
template <class Change>
Outcome exported_after(std::string const& log, Change const& change) {
    Scratch const scratch;
    import_to(scratch / "set", log);
    auto const bytes = bytes_of(scratch / "set");
    ResultSet  set;
    sml::Base_Gui_Internal_Form_Datas_Aggregated_Results_T_toCxx(set, bytes.data());
    change(set);
    write_bytes(scratch / "set",
                sml::Base_Gui_Internal_Form_Datas_Aggregated_Results_T_fromCxx(set));
    return exported({scratch / "set"});
}

Strings_T text(char const* characters) { return Strings_T(std::string(characters)); }

auto& kept(ResultSet& set, char const* key) {
    return set.application_results.signatures[text(key)].first.qualified_name;
}

std::string const one_result = log_with(R"({"ruleId": "R", "message": {"text": "m"}})");

TEST(ExportSarif, RunsOfSeveralFilesStandInTheirOrder) {
    Scratch const scratch;
    import_to(scratch / "a", bytes_of(fixture("many_runs.sarif")));
    import_to(scratch / "b", one_result);
    auto const log = parsed(exported({scratch / "b", scratch / "a", scratch / "b"}).out);
    ASSERT_EQ(log.at("runs").as_array().size(), 11U);
    EXPECT_EQ(text_of(log, "/runs/0/tool/driver/name"), "\"Tool\"");
    EXPECT_EQ(text_of(log, "/runs/1/tool/driver/name"), "\"First\"");
    EXPECT_EQ(text_of(log, "/runs/10/tool/driver/name"), "\"Tool\"");
}

TEST(ExportSarif, AFileIsWrittenAsStandardOutputIs) {
    Scratch const scratch;
    import_to(scratch / "set", one_result);
    auto const whole = exported({scratch / "set"}).out;
    for (std::string const name : {"log.sarif", "log.sarif.gz"}) {
        auto const file = scratch / name;
        auto const done =
            run_command({"export", (scratch / "set").string(), "--sarif", file.string()});
        EXPECT_EQ(done.code, 0) << done.err;
        EXPECT_EQ(done.out + done.err, "");
        std::istringstream none;
        bradep::InputBytes bytes(file.string(), bradep::default_max_size, none);
        EXPECT_EQ(bradep::is_gzip(bytes.view()), name.ends_with(".gz"));
        bytes.unpack();
        EXPECT_EQ(bytes.view(), whole);
    }
}

TEST(ExportSarif, ALargeLogIsPackedWhole) {
    Scratch     scratch;
    std::string results = R"({"message": {"text": "m0"}})";
    for (int i = 1; i < 20'000; ++i)
        results += R"(,{"message": {"text": "m)" + std::to_string(i) + "\"}}";
    import_to(scratch / "set", log_with(results));
    auto const file = (scratch / "log.gz").string();
    ASSERT_EQ(run_command({"export", (scratch / "set").string(), "--sarif", file}).code, 0);
    std::istringstream none;
    bradep::InputBytes bytes(file, bradep::default_max_size, none);
    bytes.unpack();
    EXPECT_EQ(bytes.view(), exported({scratch / "set"}).out);
}

TEST(ExportSarif, WhatIsNoSarifIsLeftOutAndCounted) {
    auto const done =
        exported_after(log_with(R"({"level": "fatal", "message": {"text": "m"}, "rank": "high"})"),
                       [](ResultSet&) {});
    EXPECT_EQ(done.code, 0);
    EXPECT_EQ(done.err,
              "bradep: standard output: left out 2 values that SARIF does not allow, the first at "
              "/runs/0/results/0/level\n");
    EXPECT_EQ(text_of(parsed(done.out), "/runs/0/results/0"),
              R"({"kind":"fail","message":{"text":"m"}})");
}

TEST(ExportSarif, KeptTextsOfAnyFormMakeASoundLog) {
    auto const done = exported_after(one_result, [](ResultSet& set) {
        auto& check = set.application_results.checks.begin()->second;
        auto& names = check.located_names[{}].first;
        for (auto const& [pointer, value] : {std::pair("rank", "no JSON"),
                                             {"locations/4294967296/id", "1"},
                                             {"locations/-1/id", "1"},
                                             {"message/text/deeper", "1"},
                                             {"nowhere", "1"},
                                             {"", "1"},
                                             {"////////////////////////////////", "1"},
                                             {"guid", "\"\xED\xA0\x80\""},
                                             {"occurrenceCount", "123456789012345678901234567890"},
                                             {"properties", "{\"a\":1e999}"},
                                             {"message/markdown", "\"*m*\""}})
            names.insert({text(pointer), text(value)});
        for (auto const& [key, value] : {std::pair("runs/0/tool/driver", "[]"),
                                         {"runs/0/language", "en"},
                                         {"runs/0/results", "[]"},
                                         {"runs/0/tool/extensions/7", "{}"},
                                         {"runs/x/y", "1"},
                                         {"runs/-1/y", "1"},
                                         {"runs/99999999999999999999/y", "1"},
                                         {"other", "1"}})
            kept(set, key).name = text(value);
    });
    EXPECT_EQ(done.code, 0);
    auto const runs = done.out.substr(done.out.find("\"runs\":"));
    EXPECT_EQ(
        runs,
        "\"runs\":[\n"
        R"({"tool":{"driver":{"name":""}},"language":"en","results":[)"
        "\n"
        R"({"ruleId":"R","level":"warning","kind":"fail","message":{"text":"m","markdown":"*m*"},)"
        R"("properties":{"a":1e999}}]})"
        "\n]}\n");
}

TEST(ExportSarif, RulesThatLeadNowhereAreNone) {
    for (auto const number : {-1, 2, std::numeric_limits<std::int32_t>::max()}) {
        auto const done = exported_after(
            one_result, [&](ResultSet& set) { set.check_data.front().second.second_int = number; });
        EXPECT_EQ(done.code, 0);
        EXPECT_FALSE(
            parsed(done.out).at_pointer("/runs/0/results/0").as_object().contains("ruleIndex"));
    }
    for (std::string const component :
         {"", "tool/extensions/0", "tool/extensions/18446744073709551615"}) {
        auto const done = exported_after(one_result, [&](ResultSet& set) {
            set.check_data.front().second.second_int = 1;
            kept(set, "rules/1") = {component, text(R"({"id":"R"})")};
        });
        EXPECT_EQ(done.code, 0);
        EXPECT_FALSE(
            parsed(done.out).at_pointer("/runs/0/results/0").as_object().contains("ruleIndex"));
    }
}

TEST(ExportSarif, ASetWithoutFactsHasTheToolOfItsChecks) {
    auto const done = exported_after(
        R"({"version":"2.1.0","runs":[{"tool":{"driver":{"name":"T","version":"7"}},"results":[{"message":{"text":"m"}}]}]})",
        [](ResultSet& set) { set.application_results.signatures.clear(); });
    EXPECT_EQ(text_of(parsed(done.out), "/runs/0/tool"),
              R"({"driver":{"name":"T","version":"7"}})");
}

void expect_refused(Outcome const& done, std::string const& reason) {
    EXPECT_EQ(done.code, 1) << reason;
    EXPECT_EQ(std::count(done.err.begin(), done.err.end(), '\n'), 1) << done.err;
    EXPECT_NE(done.err.find(reason), std::string::npos) << done.err;
}

TEST(ExportSarif, SetsThatAnImportLeavesOtherwiseAreRefused) {
    expect_refused(exported_after(one_result, [](ResultSet& set) { set.check_data.clear(); }),
                   "not an imported result set: a check has no form");
    expect_refused(
        exported_after(one_result,
                       [](ResultSet& set) { set.check_data.front().second.first_int = -1; }),
        "not an imported result set: a check is of no run");
}

TEST(ExportSarif, AnyNumberOfRunsIsOneLine) {
    constexpr auto most = std::numeric_limits<std::int32_t>::max();
    expect_refused(exported_after(one_result,
                                  [](ResultSet& set) { set.application_results.first_int = most; }),
                   "says that it has 2147483647 runs");
    auto const negative = exported_after(
        one_result, [](ResultSet& set) { set.application_results.first_int = -most; });
    EXPECT_EQ(parsed(negative.out).at("runs").as_array().size(), 1U);
}

TEST(ExportSarif, WhatOneResultTakesIsLimited) {
    Scratch const     scratch;
    std::string const step =
        R"({"location": {"message": {"text": ")" + std::string(10'000, 'm') + "\"}}}";
    std::string steps = step;
    for (int i = 1; i < 110; ++i) steps += "," + step;
    import_to(
        scratch / "set",
        log_with(R"({"message": {"text": "m"}, "codeFlows": [{"threadFlows": [{"locations": [)" +
                 steps + "]}]}]}"));
    EXPECT_EQ(exported({scratch / "set"}, {"--max-result", "2M"}).code, 0);
    expect_refused(exported({scratch / "set"}, {"--max-result", "1M"}),
                   "set: a result has texts of more than --max-result 1048576 bytes");
    expect_refused(exported({scratch / "set"}, {"--max-output", "1M"}),
                   "what is to be printed is larger than --max-output 1048576");
}

TEST(ExportSarif, TheSetIsNotOverwritten) {
    Scratch const scratch;
    auto const    set = (scratch / "set").string();
    import_to(set, log_with(R"({"message": {"text": "m"}})"));
    auto const before = bytes_of(set);
    auto const done = run_command({"export", set, "--sarif", set});
    EXPECT_EQ(done.code, 2);
    EXPECT_EQ(done.err, "bradep: the output " + set + " is also an input\n");
    EXPECT_EQ(bytes_of(set), before);
}

TEST(ExportSarif, WhatIsLeftOutOfRulesIsSaid) {
    Scratch const scratch;
    import_to(scratch / "set", R"({"version": "2.1.0", "runs": [{"tool": {"driver": {"name": "T",
        "rules": [{"id": "A", "helpUri": 7}, {"guid": "nonsense"}]}}, "results": [
        {"ruleIndex": 1, "message": {"text": "m"}}, {"ruleIndex": 0, "message": {"text": "m"}}]}]})");
    auto const done = exported({scratch / "set"});
    EXPECT_EQ(done.code, 0);
    EXPECT_EQ(done.err,
              "bradep: standard output: left out 2 values that SARIF does not allow, the "
              "first at /runs/0/tool/driver/rules/0/guid\n");
    auto const log = parsed(done.out);
    EXPECT_EQ(text_of(log, "/runs/0/tool/driver/rules"), R"([{"id":""},{"id":"A"}])");
    EXPECT_EQ(text_of(log, "/runs/0/results/1/ruleIndex"), "1");
}

TEST(ExportSarif, LimitsGoWithALog) {
    auto const done = run_command({"export", "set", "--sqlite", "db", "--limits", "github"});
    EXPECT_EQ(done.code, 2);
    EXPECT_NE(done.err.find("--limits requires --sarif"), std::string::npos) << done.err;
}

TEST(ExportSarif, AFailureLeavesNoFile) {
    Scratch const scratch;
    write_bytes(scratch / "set", "no set");
    auto const done =
        run_command({"export", (scratch / "set").string(), "--sarif", (scratch / "log").string()});
    EXPECT_EQ(done.code, 1);
    EXPECT_EQ(scratch.names(), std::vector<std::string>{"set"});
}

TEST(ExportSarif, NumbersComeBackAsTheNearestDoubles) {
    for (std::string const number : {"0.12345678901234567", "1e23", "9007199254740993.5", "5e-324",
                                     "1.7976931348623157e+308", "0.1", "2.2250738585072011e-308"}) {
        auto const done = exported_after(
            log_with(R"({"message": {"text": "m"}, "properties": {"n": )" + number + "}}"),
            [](ResultSet&) {});
        auto const at = done.out.find("\"n\":") + 4;
        EXPECT_EQ(std::strtod(done.out.c_str() + at, nullptr), std::strtod(number.c_str(), nullptr))
            << done.out.substr(at, 30);
    }
}

}  // namespace
