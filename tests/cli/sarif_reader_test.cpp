#include "sarif/reader.hpp"

#include "cli_support.hpp"
#include "errors.hpp"

#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace cli_test;
using bradep::sarif::Suppression;
using Texts = std::vector<std::optional<std::string>>;

std::string complaint_about(std::string const& log) {
    try {
        results_of(log);
    } catch (bradep::DamagedInput const& error) {
        return error.what();
    }
    return "nothing";
}

std::optional<std::string> plain(std::optional<bradep::sarif::Text> const& text) {
    if (!text) return std::nullopt;
    return text->str();
}

template <class Member>
Texts each(std::vector<bradep::sarif::Result> const& results, Member member) {
    Texts texts;
    for (auto const& result : results) texts.push_back(plain(result.*member));
    return texts;
}

bradep::sarif::Text text(std::string const& bytes) { return bytes; }

using bradep::sarif::Result;

TEST(SarifReader, LevelIsTheResultsThenTheRulesThenWarning) {
    auto const results = results_of(bytes_of(fixture("rules.sarif")));
    auto const level = [&](std::string const& message) {
        for (auto const& result : results)
            if (result.message == message) return result.level.str();
        return "no such result: " + message;
    };
    EXPECT_EQ(level("own level"), "note");
    EXPECT_EQ(level("index alone"), "error");
    EXPECT_EQ(level("the rule has no level"), "warning");
    EXPECT_EQ(level("no rule at all"), "warning");
    EXPECT_EQ(level("passed"), "none");
    EXPECT_EQ(level("informational"), "none");
    EXPECT_EQ(level("open, with a level"), "note");
    EXPECT_EQ(level("kind given as fail"), "error");
    EXPECT_EQ(level("a level of its own making"), "fatal");
}

TEST(SarifReader, RulesAreFoundByIndexIdAndGuidInDriverAndExtensions) {
    auto const results = results_of(bytes_of(fixture("rules.sarif")));
    auto const rule = [&](std::string const& message) {
        for (auto const& result : results)
            if (result.message == message)
                return plain(result.rule).value_or("none") + " " + result.level.str();
        return "no such result: " + message;
    };
    EXPECT_EQ(rule("index alone"), "R0 error");
    EXPECT_EQ(rule("index -1 is none"), "none warning");
    EXPECT_EQ(rule("id alone"), "R1 note");
    EXPECT_EQ(rule("the rule has no id"), "none error");
    EXPECT_EQ(rule("finer id than the rule's"), "R1/fine/finer note");
    EXPECT_EQ(rule("an id with a slash"), "scope/name/x note");
    EXPECT_EQ(rule("index wins over another rule's id"), "R1 error");
    EXPECT_EQ(rule("index outside, id known"), "R0 error");
    EXPECT_EQ(rule("empty id"), " warning");
    EXPECT_EQ(rule("rule.guid"), "R1 note");
    EXPECT_EQ(rule("extension by index"), "A0 error");
    EXPECT_EQ(rule("same id, another rule in the extension"), "R0 none");
    EXPECT_EQ(rule("extension by guid"), "B1 note");
    EXPECT_EQ(rule("extension by name"), "B1 note");
    EXPECT_EQ(rule("guid in an extension"), "B1 note");
    EXPECT_EQ(rule("id known to an extension only"), "A0 error");
    EXPECT_EQ(rule("an extension without rules"), "R0 error");
}

TEST(SarifReader, AbsentMessageIsNotAnEmptyOne) {
    auto const results = results_of(
        log_with(R"({}, {"message": {}}, {"message": {"text": ""}}, {"message": null})"));
    EXPECT_EQ(each(results, &Result::message),
              (Texts{std::nullopt, std::nullopt, "", std::nullopt}));
}

TEST(SarifReader, BracesStayWhereThereAreNoArguments) {
    auto const results = results_of(log_with(R"j({"message": {"text": "{0} {{ [x](1)"}})j"));
    EXPECT_EQ(plain(results.at(0).message), "{0} {{ [x](1)");
}

TEST(SarifReader, AStoredMessageIsItsTextOrElseItsMarkdown) {
    auto const results = results_of(R"({"version": "2.1.0", "runs": [{
        "tool": {"driver": {"name": "Tool", "globalMessageStrings": {
            "both": {"text": "text", "markdown": "*text*"}, "rich": {"markdown": "*rich*"}}}},
        "results": [{"message": {"id": "both"}}, {"message": {"id": "rich"}}]}]})");
    EXPECT_EQ(each(results, &Result::message), (Texts{"text", "*rich*"}));
}

TEST(SarifReader, ToolVersionIsTheVersionOrElseTheSemanticOne) {
    EXPECT_EQ(plain(results_of(bytes_of(fixture("rules.sarif"))).at(0).tool_version), "3.1");
    EXPECT_EQ(plain(results_of(bytes_of(fixture("review.sarif"))).at(0).tool_version),
              "1.2.3-beta");
    EXPECT_EQ(plain(results_of(bytes_of(fixture("flows.sarif"))).at(0).tool_version), std::nullopt);
}

TEST(SarifReader, LogicalLocationsAreResolved) {
    Texts names;
    for (auto const& result : results_of(bytes_of(fixture("logical.sarif"))))
        names.push_back(plain(result.locations.at(0).logical));
    EXPECT_EQ(names, (Texts{"ns::f(int)", "g", "ns::f(int)", "own::full", "mine", "one",
                            std::nullopt, std::nullopt, std::nullopt}));
    auto const last = results_of(bytes_of(fixture("logical.sarif"))).back();
    EXPECT_EQ(plain(last.locations.at(1).logical), "ns::f(int)");
    EXPECT_EQ(plain(last.related.at(0).place.logical), "g");
    EXPECT_EQ(plain(last.flows.at(0).at(0).at(0).place.value().logical), "ns::f(int)");
}

TEST(SarifReader, ALocationsOwnLogicalNameIsPreferredToASharedOne) {
    auto const results = results_of(R"({"version": "2.1.0", "runs": [{
        "tool": {"driver": {"name": "Tool"}}, "logicalLocations": [{"name": "shared"}],
        "results": [{"message": {"text": "m"},
            "locations": [{"logicalLocations": [{"index": 0, "name": "own"}]}]}]}]})");
    EXPECT_EQ(plain(results.at(0).locations.at(0).logical), "own");
}

TEST(SarifReader, SuppressionsKeepKindStatusOrderAndRepetition) {
    auto const results = results_of(bytes_of(fixture("review.sarif")));
    using List = std::vector<Suppression>;
    EXPECT_EQ(results.at(0).suppressions,
              (List{{text("inSource"), std::nullopt}, {text("external"), text("underReview")}}));
    EXPECT_EQ(results.at(1).suppressions, (List{{text("external"), text("rejected")},
                                                {text("external"), text("rejected")},
                                                {std::nullopt, std::nullopt},
                                                {std::nullopt, text("accepted")}}));
    EXPECT_EQ(plain(results.at(0).baseline_state), "unchanged");
    EXPECT_EQ(plain(results.at(2).baseline_state), std::nullopt);
}

TEST(SarifReader, TheTwoFamiliesOfFingerprintsStayApart) {
    auto const result = results_of(bytes_of(fixture("review.sarif"))).at(4);
    EXPECT_EQ(result.fingerprints,
              (bradep::sarif::Fingerprints{{text("hash/v1"), text("complete")}}));
    EXPECT_EQ(result.partial_fingerprints,
              (bradep::sarif::Fingerprints{{text("hash/v1"), text("partial")},
                                           {text("other"), text("abc")}}));
}

TEST(SarifReader, FlowsKeepTheirBoundsEvenWhenEmpty) {
    auto const flows = results_of(bytes_of(fixture("flows.sarif"))).at(6).flows;
    ASSERT_EQ(flows.size(), 4U);
    EXPECT_TRUE(flows[0].empty());
    EXPECT_TRUE(flows[1].empty());
    ASSERT_EQ(flows[2].size(), 4U);
    EXPECT_TRUE(flows[2][0].empty());
    EXPECT_TRUE(flows[2][1].empty());
    EXPECT_EQ(flows[2][2].size(), 1U);
    EXPECT_TRUE(flows[2][3].empty());
    EXPECT_TRUE(flows[3].empty());
}

TEST(SarifReader, EachRunResolvesWithinItself) {
    auto const results = results_of(bytes_of(fixture("many_runs.sarif")));
    ASSERT_EQ(results.size(), 9U);
    EXPECT_EQ(plain(results[0].locations.at(0).uri), "first.c");
    EXPECT_EQ(plain(results[3].locations.at(0).uri), "common.c");
    EXPECT_EQ(plain(results[3].rule), "five");
    EXPECT_EQ(results[3].run, 4);
    EXPECT_EQ(results[8].run, 7);
    EXPECT_EQ(plain(results[6].tool), std::nullopt);
}

TEST(SarifReader, RunsAreCountedOnFromTheFirstNumber) {
    std::vector<std::int32_t> runs;
    auto const count = bradep::sarif::read_log(bytes_of(fixture("many_runs.sarif")), "log", 100,
                                               [&](auto&& result) { runs.push_back(result.run); });
    EXPECT_EQ(count, 9);
    EXPECT_EQ(runs.front(), 100);
    EXPECT_EQ(runs.back(), 107);
}

TEST(SarifReader, RunsAreNumberedWithin32Bits) {
    auto const complaint_from = [](std::int32_t first) -> std::string {
        try {
            bradep::sarif::read_log(R"({"version": "2.1.0", "runs": [{}, {}]})", "log", first,
                                    [](auto&&) {});
        } catch (bradep::DamagedInput const& error) {
            return error.what();
        }
        return "nothing";
    };
    auto const most = std::numeric_limits<std::int32_t>::max();
    EXPECT_EQ(complaint_from(most - 2), "nothing");
    EXPECT_EQ(complaint_from(most - 1), "log:/runs/1: there are more than 2147483647 runs");
}

TEST(SarifReader, GuidsBehindTheOneThatIsWantedAreNotJudged) {
    auto const log = [](std::string const& guid) {
        return R"({"version": "2.1.0", "runs": [{"tool": {"driver": {"rules": [
            {"guid": "g0", "id": "R0"}, {"guid": "g1", "id": "R1"}, {"guid": "g1", "id": "R2"}, {"guid": 5}]}},
            "results": [{"rule": {"guid": "g1"}}, {"rule": {"guid": ")" +
               guid + R"("}}]}]})";
    };
    EXPECT_EQ(plain(results_of(log("g0")).at(1).rule), "R0");
    EXPECT_EQ(plain(results_of(log("g1")).at(1).rule), "R1");
    EXPECT_EQ(complaint_about(log("g2")),
              "log:/runs/0/tool/driver/rules/3/guid: expected a string, found a number");
}

struct Damage {
    char const* fixture;
    char const* complaint;
};

// Every damaged fixture with its message, which starts with the place.
constexpr Damage damages[] = {
    {"bad-array.sarif", "1:1: not SARIF: the document is no object"},
    {"bad-artifact-index.sarif",
     "/runs/1/results/1/locations/0/physicalLocation/artifactLocation/index: index 0 points "
     "outside the run's "
     "artifacts"},
    {"bad-column-huge.sarif",
     "/runs/1/results/1/locations/0/physicalLocation/region/endColumn: expected an integer from "
     "-2147483648 to "
     "2147483647"},
    {"bad-empty.sarif", "1:1: the JSON text ends too early"},
    {"bad-extension-index.sarif",
     "/runs/1/results/1/rule/toolComponent/index: index 0 points outside the tool's extensions"},
    {"bad-fingerprint-number.sarif",
     "/runs/1/results/1/fingerprints/a~1b: expected a string, found a number"},
    {"bad-flow-null.sarif", "/runs/1/results/1/codeFlows/0: expected an object, found null"},
    {"bad-huge-index.sarif",
     "/runs/1/results/1/ruleIndex: expected an integer from -2147483648 to 2147483647"},
    {"bad-latin-1.sarif", "1:64: not JSON: the byte \\xe9 is not UTF-8, as in Latin-1 text"},
    {"bad-level-number.sarif", "/runs/1/results/1/level: expected a string, found a number"},
    {"bad-line-boolean.sarif",
     "/runs/1/results/1/locations/0/physicalLocation/region/startLine: expected an integer, found "
     "a boolean"},
    {"bad-line-break-in-string.sarif", "1:65: not JSON: syntax error"},
    {"bad-line-fraction.sarif",
     "/runs/1/results/1/locations/0/physicalLocation/region/startLine: expected an integer from "
     "-2147483648 to "
     "2147483647"},
    {"bad-line-huge.sarif",
     "/runs/1/results/1/locations/0/physicalLocation/region/startLine: expected an integer from "
     "-2147483648 to "
     "2147483647"},
    {"bad-line-string.sarif",
     "/runs/1/results/1/locations/0/physicalLocation/region/startLine: expected an integer, found "
     "a string"},
    {"bad-locations-object.sarif",
     "/runs/1/results/1/locations: expected an array, found an object"},
    {"bad-logical-index.sarif",
     "/runs/1/results/1/locations/0/logicalLocations/0/index: index 0 points outside the run's "
     "logicalLocations"},
    {"bad-message-argument.sarif",
     "/runs/1/results/1/message/arguments/0: expected a string, found a number"},
    {"bad-message-id.sarif",
     "/runs/1/results/1/message/id: no message string has the id \"nowhere\""},
    {"bad-message-string.sarif", "/runs/1/results/1/message: expected an object, found a string"},
    {"bad-nan.sarif", "1:30: not JSON: syntax error"},
    {"bad-negative-index.sarif", "/runs/1/results/1/ruleIndex: index -2 is negative"},
    {"bad-no-runs.sarif", "1:1: not SARIF: the member \"runs\" is missing"},
    {"bad-null.sarif", "1:1: not SARIF: the document is no object"},
    {"bad-null-runs.sarif", "1:1: not SARIF: the member \"runs\" is missing"},
    {"bad-other-json.sarif", "1:1: not SARIF: the member \"version\" is missing"},
    {"bad-related-id-string.sarif",
     "/runs/1/results/1/relatedLocations/0/id: expected an integer, found a string"},
    {"bad-result-array.sarif", "/runs/1/results/1: expected an object, found an array"},
    {"bad-result-null.sarif", "/runs/1/results/1: expected an object, found null"},
    {"bad-rule-index.sarif", "/runs/1/results/1/ruleIndex: index 0 points outside the rules"},
    {"bad-rule-reference-index.sarif",
     "/runs/1/results/1/rule/index: index 5 points outside the rules"},
    {"bad-runs-object.sarif", "/runs: expected an array, found an object"},
    {"bad-step-index.sarif",
     "/runs/1/results/1/codeFlows/0/threadFlows/0/locations/0/index: index 3 points outside the "
     "run's "
     "threadFlowLocations"},
    {"bad-surrogate.sarif", "1:72: not JSON: syntax error"},
    {"bad-syntax.sarif", "3:24: not JSON: syntax error"},
    {"bad-trailing-comma.sarif", "1:33: not JSON: syntax error"},
    {"bad-truncated.sarif", "4:1: the JSON text ends too early"},
    {"bad-two-documents.sarif", "2:1: not JSON: more text after the end of the document"},
    {"bad-uri-number.sarif",
     "/runs/1/results/1/locations/0/physicalLocation/artifactLocation/uri: expected a string, "
     "found a number"},
    {"bad-utf-16.sarif", "1:1: not JSON: UTF-16 text, only plain UTF-8 is read"},
    {"bad-version.sarif", "/version: SARIF version \"2.0.0\" is not read, only \"2.1.0\""},
    {"bad-version-number.sarif", "/version: expected a string, found a number"},
    {"bad-xml.sarif", "1:1: not JSON: syntax error"},
};

TEST(SarifReader, DamageIsReportedWithItsPlace) {
    for (auto const& [name, complaint] : damages)
        EXPECT_EQ(complaint_about(bytes_of(fixture(name))), std::string("log:") + complaint)
            << name;
}

TEST(SarifReader, EveryDamagedFixtureIsInTheTable) {
    std::size_t damaged = 0;
    for (auto const& entry : fs::directory_iterator(BRADEP_FIXTURES))
        damaged += entry.path().filename().string().starts_with("bad-");
    EXPECT_EQ(damaged, std::size(damages));
}

TEST(SarifReader, NestingHasALimitAndNoEffectOnTheStack) {
    auto const nested = [](std::size_t depth) {
        return R"({"version": "2.1.0", "runs": [], "properties": )" + std::string(depth, '[') +
               std::string(depth, ']') + "}";
    };
    EXPECT_EQ(complaint_about(nested(999)), "nothing");
    EXPECT_EQ(complaint_about(nested(1000)), "log:1:1047: not JSON: too deep");
    EXPECT_EQ(complaint_about(nested(1000000)), "log:1:1047: not JSON: too deep");
}

TEST(SarifReader, OtherEncodingsAreNamedWhereTheyAreEasyToSee) {
    using namespace std::string_literals;
    auto const complaint = [](std::string const& form) {
        return "log:1:1: not JSON: " + form + ", only plain UTF-8 is read";
    };
    EXPECT_EQ(complaint_about("{\0}\0"s), complaint("UTF-16 text"));
    EXPECT_EQ(complaint_about("\0{\0}"s), complaint("UTF-16 text"));
    EXPECT_EQ(complaint_about("\xFF\xFE\0\0{\0\0\0"s), complaint("UTF-32 text"));
    EXPECT_EQ(complaint_about("\x1F\x8B\x08\0"s), complaint("compressed by gzip"));
    EXPECT_EQ(complaint_about("PK\x03\x04"), complaint("a zip archive"));
    EXPECT_EQ(complaint_about("{\"a\":\n \"\xE4 text\"}"),
              "log:2:3: not JSON: the byte \\xe4 is not UTF-8, as in Latin-1 text");
    EXPECT_EQ(complaint_about("{\"a\": x \"\xE4\""), "log:1:7: not JSON: syntax error");
}

// Longer than the pieces that the parser gets.
TEST(SarifReader, LongLogsAreReadLikeShortOnes) {
    std::string const blanks(3 << 20, ' ');
    auto const log = log_with(R"({"message": {"text": ")" + std::string(3 << 20, 'm') + "\"}}");
    EXPECT_EQ(results_of(blanks + log + blanks).size(), 1U);
    EXPECT_EQ(complaint_about(blanks + "\n{\"a\": }"), "log:2:7: not JSON: syntax error");
    EXPECT_EQ(complaint_about(log + blanks + "\nx"),
              "log:2:1: not JSON: more text after the end of the document");
    EXPECT_EQ(complaint_about("[" + blanks),
              "log:1:" + std::to_string(blanks.size() + 2) + ": the JSON text ends too early");
}

TEST(SarifReader, ColumnsCountCharacters) {
    EXPECT_EQ(complaint_about("{\"größe\": }"), "log:1:11: not JSON: syntax error");
    EXPECT_EQ(complaint_about("\xEF\xBB\xBF{\"a\": }"), "log:1:7: not JSON: syntax error");
}

}  // namespace
