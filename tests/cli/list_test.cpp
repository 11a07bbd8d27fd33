#include "cli_support.hpp"
#include "tests/hex.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace cli_test;

// Five results: with all that a line shows, suppressed, absent, without place, with control
// characters.
constexpr char const* results = R"(
    {"ruleId": "net/leak", "level": "error", "message": {"text": "Leaks a\nsocket"},
     "baselineState": "new", "locations": [{"physicalLocation": {
        "artifactLocation": {"uri": "src/net/b.c"}, "region": {"startLine": 10, "startColumn": 3}}}]},
    {"ruleId": "net/leak", "level": "note", "message": {"text": "Leaks memory"},
     "suppressions": [{"kind": "external"}], "locations": [{"physicalLocation": {
        "artifactLocation": {"uri": "src/net/b.c"}, "region": {"startLine": 9}}}]},
    {"ruleId": "style", "level": "note", "message": {"text": "Too long"},
     "baselineState": "absent", "locations": [{"physicalLocation": {
        "artifactLocation": {"uri": "src/a.c"}, "region": {"startColumn": 3}}}]},
    {"level": "warning", "message": {}},
    {"ruleId": "\u001b[31m' OR 1=1 --", "level": "none", "message": {"text": "\u0007"},
     "locations": [{"physicalLocation": {"artifactLocation": {"uri": "z\r.c"}}}]})";

class List : public testing::Test {
protected:
    List() { import("set", log_with(results)); }

    void import(std::string const& name, std::string const& log) {
        write_bytes(scratch_ / "log", log);
        run_command({"import", scratch_ / "log", "-o", file(name), "--force"});
    }

    std::string file(std::string const& name = "set") const { return scratch_ / name; }

    Outcome list(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"list", file()});
        return run_command(arguments);
    }
    std::string count(std::vector<std::string> arguments) const {
        arguments.push_back("--count");
        auto const listed = list(arguments);
        EXPECT_EQ(listed.err, "");
        return listed.out;
    }

    Scratch scratch_;
};

TEST_F(List, PrintsALineForEachFindingInTheOrderOfPlaces) {
    auto const listed = list({});
    EXPECT_EQ(listed.out,
              "-: warning:\n"
              "src/a.c: note: Too long [style] (absent)\n"
              "src/net/b.c:9: note: Leaks memory [net/leak] (suppressed)\n"
              "src/net/b.c:10:3: error: Leaks a socket [net/leak]\n"
              "z .c: none: \\u{7} [\\u{1b}[31m' OR 1=1 --]\n");
    EXPECT_EQ(listed.err, "");
    EXPECT_EQ(listed.code, 0);
}

TEST_F(List, CanBeLimitedByEachColumn) {
    EXPECT_EQ(count({}), "5\n");
    EXPECT_EQ(count({"--level", "note"}), "2\n");
    EXPECT_EQ(count({"--level", "note,error"}), "3\n");
    EXPECT_EQ(count({"--rule", "net/*"}), "2\n");
    EXPECT_EQ(count({"--rule", "net"}), "0\n");
    EXPECT_EQ(count({"--rule", "net/*", "--rule", "styl?"}), "3\n");
    EXPECT_EQ(count({"--file", "src/*.c"}), "3\n");
    EXPECT_EQ(count({"--file", "*.c", "--level", "none"}), "1\n");
    EXPECT_EQ(count({"--category", "BF_CHECKER_WITH_PRECOMPUTED_MESSAGE"}), "5\n");
    EXPECT_EQ(count({"--category", "ZDV,OVFL"}), "0\n");
    EXPECT_EQ(count({"--message", "^Leaks"}), "2\n");
    EXPECT_EQ(count({"--message", "^leaks"}), "0\n");
    EXPECT_EQ(count({"--key", "src/net/b.c:2"}), "1\n");
    EXPECT_EQ(count({"--suppressed", "yes"}), "1\n");
    EXPECT_EQ(count({"--suppressed", "no"}), "4\n");
    EXPECT_EQ(count({"--state", "new,absent"}), "2\n");
    EXPECT_EQ(count({"--suppressed", "no", "--state", "absent", "--rule", "style"}), "1\n");
}

TEST_F(List, TakesValuesAsTextNotAsSql) {
    EXPECT_EQ(count({"--rule", "' OR 1=1 --"}), "0\n");
    EXPECT_EQ(count({"--rule", "*' OR 1=1 --"}), "1\n");
    EXPECT_EQ(count({"--key", "x' OR 'a' = 'a"}), "0\n");
}

TEST_F(List, PrintsAllColumnsInOtherFormats) {
    // The number of the finding is that of the check, in the order of the set.
    auto const number =
        run_command({"sql", file(), "--format", "csv", "--no-header",
                     "SELECT row FROM checks WHERE key0 = 'src/net/b.c' AND key1 = 1"});
    auto const csv = list({"--format", "csv", "--key", "src/net/b.c:1"});
    EXPECT_EQ(
        csv.out,
        "result_set,finding,run,tool,tool_version,rule,level,kind,message,category,uri,base,"
        "line,column,end_line,end_column,function,suppressed,baseline_state,colour,class,key\n"
        "1," +
            number.out.substr(0, number.out.size() - 1) +
            ",0,Tool,,net/leak,error,fail,\"Leaks a\nsocket\","
            "BF_CHECKER_WITH_PRECOMPUTED_MESSAGE,src/net/b.c,,10,3,,,,0,new,,UNCLASSIFIED,"
            "src/net/b.c:1\n");
    EXPECT_EQ(list({"--format", "json", "--key", "none"}).out, "[]\n");
    EXPECT_NE(list({"--format", "ndjson"}).out.find(R"("rule":"\u001b[31m' OR 1=1 --")"),
              std::string::npos);
}

TEST_F(List, TellsByItsCodeWhetherThereAreAny) {
    EXPECT_EQ(list({"--exit-code"}).code, 3);
    EXPECT_EQ(list({"--exit-code", "--level", "error", "--count"}).code, 3);
    EXPECT_EQ(list({"--exit-code", "--rule", "none"}).code, 0);
    EXPECT_EQ(list({"--exit-code", "--rule", "none", "--count"}).code, 0);
    EXPECT_EQ(list({"--exit-code", "--format", "json"}).code, 3);
    EXPECT_EQ(list({"--level", "error"}).code, 0);
}

TEST_F(List, RefusesWrongValues) {
    for (auto const& wrong : std::vector<std::vector<std::string>>{
             {"--level", "eror"}, {"--state", "old"}, {"--suppressed", "maybe"}, {"--rule"}})
        EXPECT_EQ(list(wrong).code, 2) << wrong.front();
    auto const listed = list({"--message", "("});
    EXPECT_EQ(listed.code, 1);
    EXPECT_EQ(listed.err, "bradep: REGEXP: missing ): (\n");
}

TEST_F(List, TakesSeveralFiles) {
    import("none", log_with(""));
    import("one", log_with(R"({"message": {"text": "t"}})"));
    auto const listed = run_command({"list", file("one"), file("none"), file("set"), "--format",
                                     "csv", "--no-header", "--level", "warning"});
    EXPECT_TRUE(listed.out.starts_with("1,0,")) << listed.out;
    EXPECT_NE(listed.out.find("\n3,"), std::string::npos) << listed.out;
    EXPECT_EQ(run_command({"list", file("none")}).out, "");
}

TEST_F(List, RefusesWhatHoldsNoChecks) {
    write_bytes(scratch_ / "texts", hex::bytes("02 00 00 00  FF FF FF FF 01 00 00 00 'b'"
                                               "02 00 00 00  FE FF FF FF 01 00 00 00 'z'"
                                               "FD FF FF FF 01 00 00 00 'a'"
                                               "03 00 00 00  00 00 00 00"));
    auto const refused = run_command({"list", file("texts")});
    EXPECT_EQ(refused.code, 1);
    EXPECT_EQ(refused.err,
              "bradep: " + file("texts") + ": is a String_To_StringSet_T, which holds no checks\n");
    write_bytes(scratch_ / "cut", bytes_of(file()).substr(0, 100));
    write_bytes(scratch_ / "empty", "");
    for (auto const& [name, code] : {std::pair{"cut", 1}, {"empty", 1}, {"missing", 2}}) {
        auto const listed = run_command({"list", file(name), "--exit-code"});
        EXPECT_EQ(listed.code, code) << name;
        EXPECT_EQ(listed.out, "");
        EXPECT_TRUE(listed.err.starts_with("bradep: ")) << listed.err;
        EXPECT_EQ(listed.err.find('\n'), listed.err.size() - 1) << listed.err;
    }
}

}  // namespace
