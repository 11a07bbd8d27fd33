#include <sml/bindings/bindings.hpp>
#include "cli_support.hpp"
#include "packed.hpp"
#include "result_set.hpp"

#include <gtest/gtest.h>
#include <boost/json.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace {

using namespace cli_test;
using bradep::Check;
using bradep::ResultSet;
using sml::Strings_T;

std::string result(std::string const& rule, std::string const& message, int line,
                   std::string const& more = "", std::string const& uri = "src/a.c") {
    return R"({"ruleId": ")" + rule + R"(", "message": {"text": ")" + message +
           R"("}, "locations": [{"physicalLocation": {"artifactLocation": {"uri": ")" + uri +
           R"("}, "region": {"startLine": )" + std::to_string(line) + "}}}]" + more + "}";
}

class Diff : public testing::Test {
protected:
    std::string log(std::string const& name, std::string const& results) {
        write_bytes(scratch_ / name, log_with(results));
        return scratch_ / name;
    }
    std::string set(std::string const& name, ResultSet const& value) {
        write_bytes(scratch_ / name,
                    sml::Base_Gui_Internal_Form_Datas_Aggregated_Results_T_fromCxx(value));
        return scratch_ / name;
    }

    Outcome diff(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), "diff");
        return run_command(arguments);
    }
    std::string printed(std::vector<std::string> const& arguments) const {
        auto const done = diff(arguments);
        EXPECT_EQ(done.err, "");
        EXPECT_EQ(done.code, 0);
        return done.out;
    }
    std::string counts(std::string const& olds, std::string const& news) const {
        auto const text = printed({olds, news});
        return text.substr(0, text.find('\n'));
    }

    Scratch scratch_;
};

// One of each state.
class DiffOfAll : public Diff {
protected:
    std::string const old_ =
        log("old", result("leak", "p leaks", 3) + "," + result("zero", "n is 0", 8) + "," +
                       result("zero", "m is 0", 9, R"(, "level": "note")"));
    std::string const new_ = log("new", result("leak", "p leaks", 5) + "," +
                                            result("zero", "m is 0", 11, R"(, "level": "error")") +
                                            "," + result("shadow", "q | <b>", 2));
};

TEST_F(DiffOfAll, TextHasCountsAndWhatIsNew) {
    EXPECT_EQ(printed({old_, new_}),
              "1 new, 1 updated, 1 absent, 1 unchanged\n"
              "\nnew:\nsrc/a.c:2: warning: q | <b> [shadow]\n"
              "\nupdated:\nsrc/a.c:11: error: m is 0 [zero]\n"
              "    level: \"note\" -> \"error\"\n"
              "\nabsent:\nsrc/a.c:8: warning: n is 0 [zero]\n");
    EXPECT_EQ(printed({old_, new_, "--state", "unchanged"}),
              "1 new, 1 updated, 1 absent, 1 unchanged\n"
              "\nunchanged:\nsrc/a.c:5: warning: p leaks [leak]\n");
}

TEST_F(DiffOfAll, JsonHasEachFindingOnce) {
    EXPECT_EQ(
        printed({old_, new_, "--format", "json", "--rule", "zero", "--level", "error"}),
        R"({"counts":{"new":0,"updated":1,"absent":0,"unchanged":0},"records":)"
        R"({"infos":{"new":0,"absent":0,"unchanged":0},"events":{"new":0,"absent":0,"unchanged":0},)"
        R"("functions":{"new":0,"absent":0,"unchanged":0},"blocks":{"new":0,"absent":0,"unchanged":0}},)"
        R"("findings":[)"
        "\n"
        R"({"state":"updated","stage":"function","old":"src/a.c:3","new":"src/a.c:2","tool":"Tool",)"
        R"("rule":"zero","level":"error","message":"m is 0","uri":"src/a.c","line":11,"column":null,)"
        R"("function":null,"suppressed":false,"oldUri":"src/a.c","oldLine":9,"oldFile":")" +
            old_ + R"(","newFile":")" + new_ +
            R"(","changes":[{"path":"level","old":"note","new":"error"}]}]})"
            "\n");
}

TEST_F(DiffOfAll, MarkdownHasNoMarkupOfMessages) {
    EXPECT_EQ(printed({old_, new_, "--format", "markdown", "--state", "new"}),
              "### 1 new, 1 updated, 1 absent, 1 unchanged\n\n"
              "| state | place | level | finding | rule |\n|---|---|---|---|---|\n"
              "| new | src/a.c:2 | warning | q \\| \\<b\\> | shadow |\n");
}

TEST_F(DiffOfAll, FailsOnWhatIsAskedFor) {
    auto const code = [&](std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {old_, new_, "--fail-on"});
        return diff(arguments).code;
    };
    EXPECT_EQ(code({"new"}), 3);
    EXPECT_EQ(code({"any"}), 3);
    EXPECT_EQ(code({"updated,absent"}), 3);
    EXPECT_EQ(code({"new", "--level", "error"}), 0);
    EXPECT_EQ(code({"updated", "--level", "error"}), 3);
    EXPECT_EQ(code({"absent", "--rule", "z*"}), 3);
    EXPECT_EQ(code({"absent", "--rule", "leak"}), 0);
    EXPECT_EQ(code({"unchanged"}), 2);
    EXPECT_EQ(diff({old_, old_, "--fail-on", "any"}).code, 0);
}

TEST_F(DiffOfAll, ExplainsHowFindingsWereMatched) {
    auto const text = printed({old_, new_, "--explain", "src/a.c:2"});
    EXPECT_NE(text.find("src/a.c:3 -> src/a.c:2: updated\n  stage function: rule, message, file"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("  level: \"note\" -> \"error\"\n"), std::string::npos);
    EXPECT_NE(text.find("src/a.c:2 -> (none): absent\n  stage none: "), std::string::npos);
    auto const unknown = diff({old_, new_, "--explain", "src/a.c:9"});
    EXPECT_EQ(unknown.code, 1);
    EXPECT_EQ(unknown.err, "bradep: no finding has the key src/a.c:9\n");
}

TEST_F(DiffOfAll, DatabaseIsNew) {
    std::string const database = scratch_ / "out.db";
    printed({old_, new_, "--sqlite", database});
    auto const again = diff({old_, new_, "--sqlite", database});
    EXPECT_EQ(again.code, 2);
    EXPECT_EQ(again.err, "bradep: cannot write " + database + ": it exists already\n");
}

TEST_F(DiffOfAll, SidesAreTwo) {
    EXPECT_EQ(diff({}).code, 2);
    EXPECT_EQ(diff({old_}).code, 2);
    EXPECT_EQ(diff({old_, new_, old_}).code, 2);
    EXPECT_EQ(diff({old_, "--new", new_}).code, 2);
    EXPECT_EQ(diff({"--old", old_}).code, 2);
    EXPECT_EQ(diff({old_, new_, "--map", "a"}).code, 2);
    EXPECT_EQ(diff({old_, new_, "--old-source", scratch_ / "none"}).code, 2);
    EXPECT_EQ(diff({old_, scratch_ / "none"}).code, 2);
    EXPECT_EQ(printed({"--old", old_, "--new", new_}), printed({old_, new_}));
}

std::string results_of_run(std::string const& log, std::size_t run) {
    std::string all;
    auto const  value = boost::json::parse(log);
    for (auto const& result : value.at("runs").at(run).at("results").as_array()) {
        all += all.empty() ? "" : ", ";
        all += result.at("baselineState").as_string();
        all += ' ';
        all += result.at_pointer("/message/text").as_string();
    }
    return all;
}

TEST_F(DiffOfAll, SarifHasTheStatesAndTheAbsentFindings) {
    auto const log = printed({old_, new_, "--format", "sarif"});
    EXPECT_EQ(results_of_run(log, 0),
              "unchanged p leaks, updated m is 0, new q | <b>, absent n is 0");
    EXPECT_EQ(boost::json::parse(log).at("runs").as_array().size(), 1u);
    auto const part =
        printed({old_, new_, "--format", "sarif", "--state", "new", "--level", "warning"});
    EXPECT_EQ(results_of_run(part, 0), "new q | <b>");
}

TEST_F(Diff, SarifKeepsRunsOfToolsThatAreGone) {
    auto const of_tools = [&](std::string const& name, std::vector<std::string> const& tools) {
        std::string runs;
        for (auto const& tool : tools) {
            runs += runs.empty() ? "" : ",";
            runs += R"({"tool": {"driver": {"name": ")" + tool + R"(", "rules": [{"id": ")" + name +
                    R"("}]}},)" + R"( "results": [)" +
                    result(name, name + " by " + tool, 3, R"(, "ruleIndex": 0)") + "]}";
        }
        write_bytes(scratch_ / name, R"({"version": "2.1.0", "runs": [)" + runs + "]}");
        return std::string(scratch_ / name);
    };
    auto const log = printed(
        {of_tools("one", {"gone", "kept"}), of_tools("two", {"kept"}), "--format", "sarif"});
    EXPECT_EQ(results_of_run(log, 0), "new two by kept, absent one by kept");
    EXPECT_EQ(results_of_run(log, 1), "absent one by gone");
    auto const value = boost::json::parse(log);
    EXPECT_EQ(value.at("runs").as_array().size(), 2u);
    EXPECT_EQ(value.at_pointer("/runs/0/tool/driver/rules"),
              boost::json::parse(R"([{"id": "two"}, {"id": "one"}])"));
    EXPECT_EQ(value.at_pointer("/runs/0/results/0/ruleIndex"), 0);
    EXPECT_EQ(value.at_pointer("/runs/0/results/1/ruleIndex"), 1);
    EXPECT_EQ(value.at_pointer("/runs/1/results/0/ruleIndex"), 0);
}

TEST_F(Diff, SarifRefersToRulesByTheirIds) {
    auto const with_rule = [&](std::string const& name, std::string const& rules, int index) {
        write_bytes(scratch_ / name,
                    R"({"version": "2.1.0", "runs": [{"tool": {"driver": {"name": )"
                    R"("T", "rules": [)" +
                        rules + R"(]}}, "results": [)" +
                        result(name, name, 3, R"(, "ruleIndex": )" + std::to_string(index)) +
                        "]}]}");
        return std::string(scratch_ / name);
    };
    auto const news = with_rule("new", R"({"id": "new"})", 0);
    auto const log = boost::json::parse(
        diff({with_rule("old", R"({"id": "old"})", 0), news, "--format", "sarif"}).out);
    auto const& rules = log.at_pointer("/runs/0/tool/driver/rules").as_array();
    for (auto const& one : log.at_pointer("/runs/0/results").as_array()) {
        auto const index = static_cast<std::size_t>(one.at("ruleIndex").as_int64());
        EXPECT_EQ(rules.at(index).at("id"), one.at("ruleId"));
    }
    auto const nameless =
        boost::json::parse(diff({with_rule("old", R"({"name": "a"})", 0),
                                 with_rule("new", R"({"name": "b"})", 0), "--format", "sarif"})
                               .out);
    EXPECT_TRUE(nameless.at_pointer("/runs/0/results/0").as_object().contains("ruleIndex"));
    EXPECT_FALSE(nameless.at_pointer("/runs/0/results/1").as_object().contains("ruleIndex"));
}

TEST_F(DiffOfAll, SarifHasKernelChecks) {
    ResultSet olds;
    ResultSet news;
    for (auto* const set : {&olds, &news}) {
        Check& check = set->application_results.checks[{Strings_T("a.c"), set == &olds ? 1 : 2}];
        check.category.choose<"ZDV">();
        check.source_ref.localization = {3, Strings_T("a.c"), 1};
    }
    auto const log = printed({set("olds", olds), set("news", news), "--format", "sarif"});
    EXPECT_EQ(results_of_run(log, 0), "unchanged A division by zero.");
}

TEST_F(Diff, LogThatIsDamagedIsRefused) {
    auto const good = log("good", "");
    write_bytes(scratch_ / "bad", R"({"version": "2.1.0", "runs": [)");
    auto const refused = diff({good, scratch_ / "bad"});
    EXPECT_EQ(refused.code, 1);
    EXPECT_NE(refused.err.find("bad:1:"), std::string::npos) << refused.err;
    write_bytes(scratch_ / "empty", "");
    EXPECT_EQ(diff({good, scratch_ / "empty"}).code, 1);
}

TEST_F(Diff, SuppressedFindingsDoNotFail) {
    auto const none = log("none", "");
    auto const one =
        log("one", result("leak", "p leaks", 3, R"(, "suppressions": [{"kind": "x"}])"));
    auto const done = diff({none, one, "--fail-on", "new"});
    EXPECT_EQ(done.code, 0);
    EXPECT_NE(done.out.find("[leak] (suppressed)\n"), std::string::npos);
}

TEST_F(Diff, BaselineStateIsNotCompared) {
    auto const olds = log("old", result("leak", "p", 3, R"(, "baselineState": "new")"));
    auto const news = log("new", result("leak", "p", 3, R"(, "baselineState": "absent")"));
    EXPECT_EQ(counts(olds, news), "0 new, 0 updated, 0 absent, 1 unchanged");
}

TEST_F(Diff, KindsAreCompared) {
    auto const olds = log("old", result("r", "m", 3, R"(, "kind": "open")"));
    auto const news = log("new", result("r", "m", 3, R"(, "kind": "pass")"));
    EXPECT_EQ(printed({olds, news}),
              "0 new, 1 updated, 0 absent, 0 unchanged\n"
              "\nupdated:\nsrc/a.c:3: none: m [r]\n    kind: \"open\" -> \"pass\"\n");
}

TEST_F(Diff, PlacesInAMessageAreNoDifference) {
    auto const olds = log("old", result("r", "taken at line 3", 5, R"(, "level": "note")"));
    auto const news = log("new", result("r", "taken at line 7", 9, R"(, "level": "error")"));
    EXPECT_EQ(printed({olds, news}),
              "0 new, 1 updated, 0 absent, 0 unchanged\n"
              "\nupdated:\nsrc/a.c:9: error: taken at line 7 [r]\n"
              "    level: \"note\" -> \"error\"\n");
}

TEST_F(Diff, RootThatHasMovedIsFoundOrGiven) {
    auto const olds = log("old", result("r", "a", 1, "", "file:///C:/my%20work/src/x.c") + "," +
                                     result("r", "a", 1, "", "file:///C:/my%20work/y.c"));
    auto const news = log("new", result("r", "a", 1, "", "/home/ci/src/x.c") + "," +
                                     result("r", "a", 1, "", "/home/ci/y.c"));
    EXPECT_EQ(counts(olds, news), "0 new, 0 updated, 0 absent, 2 unchanged");
    auto const single = log("single", result("r", "a", 1, "", "/a/x.c"));
    auto const other = log("other", result("r", "a", 1, "", "/b/z.c"));
    EXPECT_EQ(counts(single, other), "1 new, 0 updated, 1 absent, 0 unchanged");
    auto const given = printed({single, other, "--map", "/a/x.c=/b/z.c"});
    EXPECT_EQ(given.substr(0, 5), "1 new");  // a file is no root
}

TEST_F(Diff, OfSeveralRootsTheGivenOneIsTaken) {
    auto const olds = log("old", result("r", "a", 1, "", "/a/x.c"));
    auto const news =
        log("new", result("r", "a", 1, "", "/b/x.c") + "," + result("r", "a", 1, "", "/c/x.c"));
    for (std::string const root : {"/b", "/c"}) {
        auto const text = printed({olds, news, "--map", "/a=" + root});
        auto const other = root == "/b" ? "/c" : "/b";
        EXPECT_TRUE(text.starts_with("1 new, 0 updated, 0 absent, 1 unchanged\n")) << text;
        EXPECT_NE(text.find(std::string(other) + "/x.c:1"), std::string::npos) << text;
    }
}

TEST_F(Diff, CompressedLogsAreComparedAsTheyAre) {
    auto const flagged = [](std::string const& text) {
        return log_with(R"({"ruleId": "r", "message": {"text": "m"}, "locations": [{)"
                        R"("physicalLocation": {"artifactLocation": {"uri": "a.c"}, "region": )"
                        R"({"startLine": 3, "snippet": {"text": ")" +
                        text + R"("}}}}]})");
    };
    for (std::string const name : {"read", "write"})
        write_bytes(scratch_ / name, packed(flagged(name)));
    write_bytes(scratch_ / "plain", flagged("read"));
    EXPECT_EQ(counts(scratch_ / "read", scratch_ / "plain"),
              "0 new, 0 updated, 0 absent, 1 unchanged");
    // The snippets tell them apart.
    EXPECT_EQ(counts(scratch_ / "read", scratch_ / "write"),
              "1 new, 0 updated, 1 absent, 0 unchanged");
}

TEST_F(Diff, TextOfTheLineTellsFindingsApart) {
    auto const flagged = [](std::string const& text, int line) {
        return R"({"ruleId": "r", "message": {"text": "unchecked"}, "locations": [{"physicalLocation": {)"
               R"("artifactLocation": {"uri": "a.c"}, "region": {"startLine": )" +
               std::to_string(line) + R"(, "snippet": {"text": ")" + text + R"("}}}}]})";
    };
    auto const olds = log("old", flagged("read(f);", 3) + "," + flagged("write(f);", 9));
    auto const news = log("new", flagged("write( f );", 3) + "," + flagged("close(f);", 5));
    EXPECT_EQ(counts(olds, news), "1 new, 0 updated, 1 absent, 1 unchanged");
}

TEST_F(Diff, SourcesTellFindingsApart) {
    for (char const* const side : {"old", "new"}) fs::create_directories(scratch_ / side);
    write_bytes(scratch_ / "old" / "a.c", "read(f);\n\nwrite(f);\n");
    write_bytes(scratch_ / "new" / "a.c", "write(f);\n\nclose(f);\n");
    auto const findings =
        result("r", "unchecked", 1, "", "/x/a.c") + "," + result("r", "unchecked", 3, "", "/x/a.c");
    auto const both = log("log", findings);
    EXPECT_EQ(counts(both, both), "0 new, 0 updated, 0 absent, 2 unchanged");
    auto const text =
        printed({both, both, "--old-source", scratch_ / "old", "--new-source", scratch_ / "new"});
    EXPECT_EQ(text.substr(0, text.find('\n')), "1 new, 0 updated, 1 absent, 1 unchanged");
}

TEST_F(Diff, TextsOfLinesAndOfRegionsAreNotCompared) {
    auto const with = [](std::string const& region, std::string const& more) {
        return R"({"ruleId": "r", "message": {"text": "m"}, "locations": [{"physicalLocation": {)"
               R"("artifactLocation": {"uri": "a.c"}, "region": {"startLine": 3)" +
               region + "}" + more + "}}]}";
    };
    auto const of_region = log("region", with(R"(, "snippet": {"text": "read"})", ""));
    auto const of_line =
        log("line",
            with("", R"(, "contextRegion": {"startLine": 3, "snippet": {"text": "read(f);"}})"));
    EXPECT_EQ(counts(of_region, of_line), "0 new, 0 updated, 0 absent, 1 unchanged");
    EXPECT_EQ(counts(of_line, log("other", with("", R"(, "contextRegion": {"startLine": 3,)"
                                                    R"( "snippet": {"text": "write(f);"}})"))),
              "1 new, 0 updated, 1 absent, 0 unchanged");
}

TEST_F(Diff, FlowIsComparedStepByStep) {
    auto const with_flow = [](std::vector<std::string> const& steps) {
        std::string all;
        for (std::size_t i = 0; i < steps.size(); ++i)
            all += (i == 0 ? "" : ",") +
                   (R"({"location": {"message": {"text": ")" + steps[i] +
                    R"("}, "physicalLocation": {"artifactLocation": {"uri": "a.c"},)"
                    R"("region": {"startLine": 3}}}})");
        return result("r", "m", 3,
                      R"(, "codeFlows": [{"threadFlows": [{"locations": [)" + all + "]}]}]");
    };
    auto const olds = log("old", with_flow({"taken", "passed", "freed"}));
    EXPECT_EQ(counts(olds, log("same", with_flow({"taken", "passed", "freed"}))),
              "0 new, 0 updated, 0 absent, 1 unchanged");
    EXPECT_EQ(printed({olds, log("new", with_flow({"taken", "lost", "freed"}))}),
              "0 new, 1 updated, 0 absent, 0 unchanged\nevents: 1 new, 1 absent\n"
              "\nupdated:\nsrc/a.c:3: warning: m [r]\n"
              "    flows[0][0][1].message: \"passed\" -> \"lost\"\n");
    EXPECT_NE(printed({olds, log("less", with_flow({"taken", "freed"}))})
                  .find("    flows[0][0][1]: \"a.c: passed\" -> (none)\n"),
              std::string::npos);
}

TEST_F(Diff, ToolsWithOneRuleAreToldApart) {
    auto const of_tool = [&](std::string const& name, std::string const& tools) {
        write_bytes(scratch_ / name, R"({"version": "2.1.0", "runs": [)" + tools + "]}");
        return std::string(scratch_ / name);
    };
    auto const run = [](std::string const& tool, int line) {
        return R"({"tool": {"driver": {"name": ")" + tool + R"("}}, "results": [)" +
               result("r", "m", line) + "]}";
    };
    auto const both = of_tool("both", run("A", 1) + "," + run("B", 1));
    EXPECT_EQ(counts(both, of_tool("b", run("B", 1))), "0 new, 0 updated, 1 absent, 1 unchanged");
    EXPECT_EQ(counts(of_tool("a", run("A", 1)), of_tool("c", run("C", 1))),
              "0 new, 0 updated, 0 absent, 1 unchanged");
}

// A kernel's checks have no rule and no message: a category with a payload.
class DiffOfKernel : public Diff {
protected:
    Check& check(ResultSet& set, std::int32_t number, std::int32_t line) {
        Check& made = set.application_results.checks[{Strings_T("a.c"), number}];
        made.category.choose<"OVFL">().first_flag = true;
        made.source_ref.localization = {line, Strings_T("a.c"), 1};
        return made;
    }
};

TEST_F(DiffOfKernel, PayloadIsPartOfTheFinding) {
    ResultSet olds;
    ResultSet news;
    check(olds, 1, 10);
    check(olds, 2, 20).category.choose<"ZDV">();
    check(news, 5, 10).category.arm<"OVFL">().first_flag = false;
    check(news, 4, 20).category.choose<"ZDV">();
    EXPECT_EQ(printed({set("old", olds), set("new", news)}),
              "0 new, 1 updated, 0 absent, 1 unchanged\n"
              "\nupdated:\na.c:10:1: warning: [OVFL]\n"
              "    payload.first_flag: \"1\" -> \"0\"\n");
}

TEST_F(DiffOfKernel, PlacesInAPayloadAreNoDifference) {
    ResultSet  olds;
    ResultSet  news;
    auto const says = [&](ResultSet& in, std::string const& message) {
        auto& args = check(in, 1, 10).category.choose<"BF_CHECKER_WITH_PRECOMPUTED_MESSAGE">();
        args.message = Strings_T(message.c_str());
    };
    says(olds, "freed at /a/main.c:3");
    says(news, "freed at /b/c/main.c:14");
    EXPECT_EQ(counts(set("old", olds), set("new", news)),
              "0 new, 0 updated, 0 absent, 1 unchanged");
}

TEST_F(DiffOfKernel, CategoriesAreRules) {
    ResultSet olds;
    ResultSet news;
    check(olds, 1, 10);
    check(news, 1, 10).category.choose<"ZDV">();
    EXPECT_EQ(counts(set("old", olds), set("new", news)),
              "1 new, 0 updated, 1 absent, 0 unchanged");
}

TEST_F(DiffOfKernel, OtherRecordsAreTheSameBelowAnotherRoot) {
    ResultSet olds;
    ResultSet news;
    auto&     older = olds.application_results.events[{Strings_T("/home/a/x.c"), 1}];
    auto&     newer = news.application_results.events[{Strings_T("C:\\b\\x.c"), 2}];
    older.source_ref.localization = {3, Strings_T("/home/a/y.h"), 4};
    newer.source_ref.localization = {5, Strings_T("C:\\b\\y.h"), 6};
    EXPECT_EQ(printed({set("old", olds), set("new", news)}),
              "0 new, 0 updated, 0 absent, 0 unchanged\n");
    newer.source_ref.localization.file = Strings_T("C:\\b\\z.h");
    EXPECT_EQ(printed({set("old", olds), set("new", news)}),
              "0 new, 0 updated, 0 absent, 0 unchanged\nevents: 1 new, 1 absent\n");
}

TEST_F(DiffOfKernel, OtherRecordsAreCounted) {
    ResultSet olds;
    ResultSet news;
    olds.application_results.functions[Strings_T("f")];
    olds.application_results.functions[Strings_T("g")];
    news.application_results.functions[Strings_T("g")];
    news.application_results.events[{Strings_T("a.c"), 1}];
    EXPECT_EQ(printed({set("old", olds), set("new", news)}),
              "0 new, 0 updated, 0 absent, 0 unchanged\n"
              "events: 1 new, 0 absent, functions: 0 new, 1 absent\n");
}

}  // namespace
