// Inputs in which a few bytes stand for very many.

#include <sml/bindings/bindings.hpp>
#include "cli_support.hpp"
#include "errors.hpp"
#include "sarif/mapping.hpp"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace cli_test;
using bradep::sarif::Limits;

std::string complaint_about(std::string const& log, Limits const& limits) {
    try {
        bradep::sarif::read_log(
            log, "log", 0, [](auto&&) {}, limits);
    } catch (bradep::DamagedInput const& error) {
        return error.what();
    }
    return "nothing";
}

std::string repeated(std::size_t times, std::string const& element) {
    std::string list;
    for (std::size_t i = 0; i < times; ++i) (list += i == 0 ? "" : ",") += element;
    return list;
}

std::string placeholders(std::size_t times) {
    std::string text;
    for (std::size_t i = 0; i < times; ++i) text += "{0}";
    return text;
}

std::string log_of_long_message() {
    return log_with(R"({}, {"message": {"text": ")" + placeholders(10000) +
                    R"(", "arguments": [")" + std::string(100000, 'a') + "\"]}}");
}

TEST(Expansion, MessageBeyondTheLimitIsDamageWithItsPlace) {
    auto const log = log_with(R"({"message": {"text": "{0}{0}", "arguments": ["12345"]}})");
    EXPECT_EQ(complaint_about(log, {.message = 10}), "nothing");
    EXPECT_EQ(
        complaint_about(log, {.message = 9}),
        "log:/runs/0/results/0/message: the message comes to more than --max-message 9 bytes");
    auto const by_id = R"({"version": "2.1.0", "runs": [{"tool": {"driver": {"rules": [
        {"id": "R", "messageStrings": {"m": {"text": "{0}{0}"}}}]}}, "results": [
        {"ruleId": "R", "relatedLocations": [{"message": {"id": "m", "arguments": ["12345"]}}]}]}]})";
    EXPECT_EQ(complaint_about(by_id, {.message = 10}), "nothing");
    EXPECT_EQ(complaint_about(by_id, {.message = 9}),
              "log:/runs/0/results/0/relatedLocations/0/message: the message comes to more than "
              "--max-message 9 bytes");
}

TEST(Expansion, SharedLogicalLocationsAreCountedBeforeTheyAreCopied) {
    std::string const shared = R"({"fullyQualifiedName": "a", "name": ")" + std::string(100, 'n') +
                               R"(", "kind": "function"})";
    auto const log = [&](std::size_t references) {
        return R"({"version": "2.1.0", "runs": [{"tool": {"driver": {"name": "T"}},)"
               R"( "logicalLocations": [)" +
               shared + R"(], "results": [{"message": {"text": "m"}, "locations": [)" +
               R"({"logicalLocations": [)" + repeated(references, R"({"index": 0})") + "]}]}]}]}";
    };
    EXPECT_EQ(complaint_about(log(3), {.message = 1000}), "nothing");
    EXPECT_TRUE(complaint_about(log(20), {.message = 1000}).ends_with(" bytes"))
        << complaint_about(log(20), {.message = 1000});
}

TEST(Expansion, ATextThatIsNotPutTogetherMayBeLonger) {
    auto const log = log_with(R"({"message": {"text": "{0}{0}"}})");
    EXPECT_EQ(complaint_about(log, {.message = 1}), "nothing");
}

TEST(Expansion, ImportRefusesTheMessageAndLeavesNoFile) {
    Scratch const scratch;
    auto const    outcome =
        run_command({"import", "-", "-o", (scratch / "set").string()}, log_of_long_message());
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(outcome.err,
              "bradep: standard input:/runs/0/results/1/message: the message comes to more than "
              "--max-message 1048576 bytes\n");
    EXPECT_TRUE(scratch.names().empty());
    auto const small = log_with(R"({"message": {"text": "{0}", "arguments": ["12345"]}})");
    EXPECT_EQ(run_command({"import", "--max-message", "5", "-", "-o", "-"}, small).code, 0);
    EXPECT_EQ(run_command({"import", "--max-message", "4", "-", "-o", "-"}, small).code, 1);
}

TEST(Expansion, EveryReferenceToATextIsCounted) {
    auto const log_of = [](std::string const& results) {
        return R"({"version": "2.1.0", "runs": [{
            "tool": {"driver": {"rules": [{"id": "rule of 18 letters"}]}},
            "artifacts": [{"location": {"uri": "a file of 20 letters"}}],
            "logicalLocations": [{"name": "a name of 20 letters"}],
            "threadFlowLocations": [{"location": {"message": {"text": "x", "arguments": ["12345678"]}}}],
            "results": [)" +
               results + "]}]}";
    };
    // An empty result has two texts: "warning" and "fail".
    std::uint64_t const bare = 11;
    struct Case {
        std::string   result;
        std::uint64_t bytes;  // for each reference
    };
    std::string const place = R"({"physicalLocation":{"artifactLocation":{"index":0}}})";
    std::string const name = R"({"logicalLocations":[{"index":0}]})";
    for (auto const& [result, bytes] : {Case{R"({"locations":[)" + repeated(5, place) + "]}", 20},
                                        Case{R"({"locations":[)" + repeated(5, name) + "]}", 20},
                                        // The text, the argument plus one, and the message.
                                        Case{R"({"codeFlows":[{"threadFlows":[{"locations":[)" +
                                                 repeated(5, R"({"index":0})") + "]}]}]}",
                                             1 + 9 + 1}}) {
        auto const log = log_of(result);
        auto const total = bare + 5 * bytes;
        EXPECT_EQ(complaint_about(log, {.expansion = total}), "nothing") << result;
        auto const complaint = complaint_about(log, {.expansion = total - 1});
        EXPECT_TRUE(complaint.starts_with("log:/runs/0/")) << complaint;
        EXPECT_TRUE(
            complaint.ends_with("the texts of the results come to more than "
                                "--max-expansion " +
                                std::to_string(total - 1) + " bytes"))
            << complaint;
    }
    auto const rules = log_of(repeated(5, R"({"ruleIndex":0})"));
    // What is kept of the rule counts once.
    auto const kept = std::string("tool/driver").size() + std::string(R"({"id":""})").size() + 18;
    EXPECT_EQ(complaint_about(rules, {.expansion = 5 * (bare + 18) + kept}), "nothing");
    EXPECT_NE(complaint_about(rules, {.expansion = 5 * (bare + 18) + kept - 1}), "nothing");
}

TEST(Expansion, ItsLimitIsAnOption) {
    auto const log = log_with("{}");
    EXPECT_EQ(run_command({"import", "--max-expansion", "1K", "-", "-o", "-"}, log).code, 0);
    auto const refused = run_command({"import", "--max-expansion", "1", "-", "-o", "-"}, log);
    EXPECT_EQ(refused.code, 1);
    EXPECT_EQ(refused.out, "");
    EXPECT_NE(refused.err.find("--max-expansion 1 bytes"), std::string::npos) << refused.err;
}

bradep::ResultSet set_of(std::string const& log) {
    bradep::ResultSet   set;
    bradep::Comparisons comparisons;
    bradep::sarif::read_log(
        log, "log", 0, [&](auto&& result) { bradep::sarif::add_result(result, set, comparisons); });
    return set;
}

/// The bytes of a set with one check, whose steps are all the same event with a long message.
std::string shared_step(std::size_t steps, std::size_t length) {
    auto const log =
        R"({"version": "2.1.0", "runs": [{"results": [{"codeFlows": [{"threadFlows": [{"locations": [
        {"location": {"message": {"text": ")" +
        std::string(length, 'm') + "\"}}}]}]}]}]}]}";
    auto       set = set_of(log);
    auto&      failure = set.application_results.checks.begin()->second.failure.value();
    auto const step = failure.steps.front();
    failure.steps.assign(steps, step);
    failure.named_ints[sml::Strings_T(std::string("codeFlows/0/threadFlows/0/locations"))] =
        static_cast<std::int32_t>(steps);
    return sml::Base_Gui_Internal_Form_Datas_Aggregated_Results_T_fromCxx(set);
}

std::string complaint_of_adding(std::string const& log, bradep::sarif::SetLimits const& limits) {
    bradep::ResultSet   set;
    bradep::Comparisons comparisons;
    try {
        bradep::sarif::read_log(log, "log", 0, [&](auto&& result) {
            bradep::sarif::add_result(result, set, comparisons, limits);
        });
    } catch (bradep::DamagedInput const& error) {
        return error.what();
    }
    return "nothing";
}

TEST(SetLimits, TextsLongerThanTheWireHoldsAreRefused) {
    std::string const text = "a text of 20 letters";
    for (
        std::string const result :
        {R"({"level":"TEXT"})", R"({"kind":"TEXT"})", R"({"ruleId":"TEXT"})",
         R"({"message":{"text":"TEXT"}})", R"({"baselineState":"TEXT"})",
         R"({"fingerprints":{"TEXT":""}})", R"({"partialFingerprints":{"":"TEXT"}})",
         R"({"suppressions":[{"kind":"TEXT"}]})", R"({"suppressions":[{"status":"TEXT"}]})",
         R"({"locations":[{"physicalLocation":{"artifactLocation":{"uri":"TEXT"}}}]})",
         R"({"locations":[{"physicalLocation":{"artifactLocation":{"uriBaseId":"TEXT"}}}]})",
         R"({"locations":[{"logicalLocations":[{"name":"TEXT"}]}]})",
         R"({"relatedLocations":[{"message":{"text":"TEXT"}}]})",
         R"({"codeFlows":[{"threadFlows":[{"locations":[{"location":{"message":{"text":"TEXT"}}}]}]}]})"}) {
        auto log = log_with(result);
        log.replace(log.find("TEXT"), 4, text);
        EXPECT_EQ(complaint_of_adding(log, {.text_bytes = 20}), "nothing");
        EXPECT_EQ(complaint_of_adding(log, {.text_bytes = 19}),
                  "log:/runs/0/results/0: a result set has no room for a text of this many bytes: "
                  "20, only for 19");
    }
}

TEST(SetLimits, MoreEntriesThanTheWireHoldsAreRefused) {
    auto const refusal = [](std::string const& place, std::size_t found) {
        return "log:/runs/0/results/" + place +
               ": a result set has no room for this many entries of a map: " +
               std::to_string(found) + ", only for " + std::to_string(found - 1);
    };
    auto const checks = log_with(repeated(10, "{}"));
    EXPECT_EQ(complaint_of_adding(checks, {.entries = 10}), "nothing");
    EXPECT_EQ(complaint_of_adding(checks, {.entries = 9}), refusal("9", 10));
    struct Case {
        std::string result;
        std::size_t entries;  // for two such results
    };
    auto const flow =
        R"({"codeFlows":[{"threadFlows":[{"locations":[)" + repeated(6, "{}") + "]}]}]}";
    for (auto const& [result, entries] :
         {Case{R"({"relatedLocations":[)" + repeated(6, "{}") + "]}", 12}, Case{flow, 12},
          Case{R"({"suppressions":[)" + repeated(6, "{}") + "]}", 12}}) {
        auto const log = log_with(result + "," + result);
        EXPECT_EQ(complaint_of_adding(log, {.entries = entries}), "nothing") << result;
        EXPECT_EQ(complaint_of_adding(log, {.entries = entries - 1}), refusal("1", entries));
    }
    auto const flows =
        log_with(R"({"codeFlows":[)" + repeated(7, R"({"threadFlows":[{}]})") + "]}");
    EXPECT_EQ(complaint_of_adding(flows, {.entries = 15}), "nothing");
    EXPECT_EQ(complaint_of_adding(flows, {.entries = 14}), refusal("0", 15));
    auto const prints =
        log_with(R"({"fingerprints":{"a":"","b":""},"partialFingerprints":{"a":""}})");
    EXPECT_EQ(complaint_of_adding(prints, {.entries = 3}), "nothing");
    EXPECT_EQ(complaint_of_adding(prints, {.entries = 2}), refusal("0", 3));
}

TEST(SetLimits, MoreStringsThanTheWireHoldsAreRefused) {
    EXPECT_EQ(complaint_of_adding(log_with("{}"), {}), "nothing");  // tool, level and kind
    auto const before = sml::Strings_T::fAllStrings.size();
    auto const log = log_with(R"({"ruleId":"a string of its own"},{"ruleId":"and another one"})");
    // Both texts and the empty one.
    EXPECT_EQ(complaint_of_adding(log, {.strings = before + 3}), "nothing");
    auto const others = log_with(R"({"ruleId":"a third string"},{"ruleId":"a fourth string"})");
    auto const complaint = complaint_of_adding(others, {.strings = before + 4});
    EXPECT_EQ(complaint, "log:/runs/0/results/1: a result set has no room for this many strings: " +
                             std::to_string(before + 5) + ", only for " +
                             std::to_string(before + 4));
}

TEST(Import, WhatWouldNotBeGoodIsNotWritten) {
    Scratch const scratch;
    auto const    target = (scratch / "set").string();
    auto const    log = log_with(R"({"message":{"text":"a text of 20 letters"}})");
    auto const    import = [&](std::string const& output, std::string const& most) {
        return run_command({"import", "--max-text", most, "-", "-o", output}, log);
    };
    EXPECT_EQ(import(target, "20").code, 0);
    EXPECT_EQ(import("-", "20").code, 0);
    write_bytes(target, "old");
    for (std::string const& output : {target, std::string("-")}) {
        auto const refused = import(output, "19");
        EXPECT_EQ(refused.code, 1);
        EXPECT_EQ(refused.out, "");
        EXPECT_TRUE(
            refused.err.starts_with("bradep: " + (output == "-" ? "standard output" : output) +
                                    ": not written, as it would be no good result set: byte "))
            << refused.err;
        EXPECT_EQ(std::count(refused.err.begin(), refused.err.end(), '\n'), 1);
    }
    EXPECT_EQ(bytes_of(target), "old");
    EXPECT_EQ(scratch.names().size(), 1U);
}

TEST(MaxOutput, StopsShowInTheMidstOfALine) {
    auto const bytes = shared_step(20000, 20000);
    ASSERT_LT(bytes.size(), 500000U);
    auto const shown = run_command({"show", "--json", "--max-output", "1M", "-"}, bytes);
    EXPECT_EQ(shown.code, 1);
    EXPECT_EQ(
        shown.err,
        "bradep: standard input: what is to be printed is larger than --max-output 1048576\n");
    EXPECT_LE(shown.out.size(), 1048576U);
    EXPECT_GE(shown.out.size(), 900000U);
}

TEST(MaxOutput, IsTheVeryNumberOfBytes) {
    auto const bytes = shared_step(3, 10);
    auto const whole = run_command({"show", "--json", "-"}, bytes);
    ASSERT_EQ(whole.code, 0);
    auto const size = whole.out.size();
    auto const with = [&](std::size_t most) {
        return run_command({"show", "--json", "--max-output", std::to_string(most), "-"}, bytes);
    };
    EXPECT_EQ(with(size).code, 0);
    EXPECT_EQ(with(size).out, whole.out);
    EXPECT_EQ(with(size - 1).code, 1);
    EXPECT_EQ(with(0).code, 1);
}

TEST(MaxOutput, StopsDump) {
    auto const bytes = shared_step(10, 100000);
    auto const whole = run_command({"dump", "-"}, bytes);
    ASSERT_EQ(whole.code, 0);
    auto const size = std::to_string(whole.out.size());
    EXPECT_EQ(run_command({"dump", "--max-output", size, "-"}, bytes).out, whole.out);
    auto const less = std::to_string(whole.out.size() - 1);
    for (std::string const form : {"", "--pretty"}) {
        std::vector<std::string> args = {"dump", "--max-output", less, "-"};
        if (!form.empty()) args.push_back(form);
        auto const cut = run_command(args, bytes);
        EXPECT_EQ(cut.code, 1);
        EXPECT_LT(cut.out.size(), whole.out.size());
        EXPECT_TRUE(cut.err.ends_with(
            "bradep: standard input: what is to be printed is larger than --max-output " + less +
            "\n"))
            << cut.err;
    }
}

/// Many forms of one check would otherwise print it as many times.
TEST(Show, ACheckWithSeveralFormsIsShownOnce) {
    auto set = set_of(log_with("{}"));
    set.check_data.push_back(set.check_data.front());
    auto const bytes = sml::Base_Gui_Internal_Form_Datas_Aggregated_Results_T_fromCxx(set);
    auto const shown = run_command({"show", "--json", "-"}, bytes);
    EXPECT_EQ(shown.code, 0);
    EXPECT_EQ(shown.err, "");
    EXPECT_EQ(std::count(shown.out.begin(), shown.out.end(), '\n'), 1) << shown.out;
    EXPECT_EQ(run_command({"show", "-"}, bytes).code, 0);
}

}  // namespace
