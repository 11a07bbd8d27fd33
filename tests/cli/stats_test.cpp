#include "cli_support.hpp"
#include "tests/hex.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace cli_test;

std::string result(std::string const& uri, std::string const& members) {
    return R"({"locations": [{"physicalLocation": {"artifactLocation": {"uri": ")" + uri +
           R"("}}}], "message": {"text": "t"}, )" + members + "}";
}

class Stats : public testing::Test {
protected:
    Stats() {
        import("set", result("a/b/x.c", R"("ruleId": "R1", "level": "error")") + "," +
                          result("a/b/x.c", R"("ruleId": "R1", "level": "note")") + "," +
                          result("a/y.c", R"("ruleId": "R1", "level": "error",
                                 "suppressions": [{"kind": "inSource"}])") +
                          "," + result("z.c", R"("ruleId": "R2", "level": "note",
                                 "baselineState": "absent")") +
                          "," + result("z.c", R"("ruleId": "R2\u001b", "level": "note",
                                 "baselineState": "new")"));
    }

    void import(std::string const& name, std::string const& results) {
        write_bytes(scratch_ / "log", log_with(results));
        run_command({"import", scratch_ / "log", "-o", file(name)});
    }

    std::string file(std::string const& name = "set") const { return scratch_ / name; }

    Outcome stats(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), "stats");
        return run_command(arguments);
    }
    std::string by(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(),
                         {file(), "--format", "csv", "--no-header", "--null", "-", "--by"});
        auto const counted = stats(arguments);
        EXPECT_EQ(counted.err, "");
        return counted.out;
    }

    Scratch scratch_;
};

TEST_F(Stats, CountOpenFindingsByEachProperty) {
    EXPECT_EQ(by({"level"}), "note,2\nerror,1\n");
    EXPECT_EQ(by({"rule"}), "R1,2\nR2\033,1\n");
    EXPECT_EQ(by({"category"}), "BF_CHECKER_WITH_PRECOMPUTED_MESSAGE,3\n");
    EXPECT_EQ(by({"tool"}), "Tool,-,3\n");
    EXPECT_EQ(by({"file"}), "a/b/x.c,2\nz.c,1\n");
    EXPECT_EQ(by({"directory"}), "a/b/,2\n,1\n");
    EXPECT_EQ(by({"function"}), "-,3\n");
    EXPECT_EQ(by({"kind"}), "fail,3\n");
    EXPECT_EQ(by({"class"}), "UNCLASSIFIED,3\n");
    EXPECT_EQ(by({"set"}), "1,3\n");
}

TEST_F(Stats, CountBySeveralProperties) {
    EXPECT_EQ(by({"rule,level"}), "R1,error,1\nR1,note,1\nR2\033,note,1\n");
    EXPECT_EQ(by({"level", "--by", "directory"}), "error,a/b/,1\nnote,,1\nnote,a/b/,1\n");
    EXPECT_EQ(by({"rule,level", "--top", "1"}), "R1,error,1\n");
}

TEST_F(Stats, LeaveOutSuppressedAndAbsentFindingsUnlessAskedForThem) {
    EXPECT_EQ(by({"suppression"}), "0,3\n1,1\n");
    EXPECT_EQ(by({"state"}), "-,2\nabsent,1\nnew,1\n");
    EXPECT_EQ(by({"suppression,state"}), "0,-,2\n0,absent,1\n0,new,1\n1,-,1\n");
    EXPECT_EQ(by({"level", "--all"}), "note,3\nerror,2\n");
}

TEST_F(Stats, GiveAnOverview) {
    auto const counted = stats({file(), "--top", "1"});
    EXPECT_EQ(counted.out,
              "findings  suppressed  absent\n--------  ----------  ------\n"
              "       5           1       1\n\n"
              "tool  tool_version  findings\n----  ------------  --------\nTool                    "
              "   3\n\n"
              "level  findings\n-----  --------\nnote          2\n\n"
              "rule  findings\n----  --------\nR1           2\n\n"
              "directory  findings\n---------  --------\na/b/              2\n\n"
              "uri      findings\n-------  --------\na/b/x.c         2\n");
    EXPECT_EQ(counted.code, 0);
    EXPECT_NE(stats({file()}).out.find("R2\\u{1b}"), std::string::npos);
}

TEST_F(Stats, PrintTheStatementsThatTheyRun) {
    auto const printed = stats({"--sql", "--by", "rule,directory", "--top", "2"});
    EXPECT_EQ(printed.out,
              "SELECT rule, rtrim(uri, replace(uri, '/', '')) AS directory, count(*) AS findings\n"
              "FROM findings\n"
              "WHERE NOT suppressed AND baseline_state IS NOT 'absent'\n"
              "GROUP BY 1, 2\n"
              "ORDER BY findings DESC, 1, 2\n"
              "LIMIT 2;\n");
    for (auto const& arguments :
         std::vector<std::vector<std::string>>{{},
                                               {"--by", "rule,directory", "--top", "2"},
                                               {"--sizes"},
                                               {"--all", "--by", "tool"}}) {
        auto asked = arguments;
        asked.insert(asked.end(), {file(), "--format", "csv"});
        auto sql = arguments;
        sql.push_back("--sql");
        EXPECT_EQ(run_command({"sql", file(), "--format", "csv", stats(sql).out}).out,
                  stats(asked).out);
    }
}

TEST_F(Stats, TellSizesOfAnyRoot) {
    write_bytes(scratch_ / "texts", hex::bytes("02 00 00 00  FF FF FF FF 01 00 00 00 'b'"
                                               "02 00 00 00  FE FF FF FF 01 00 00 00 'z'"
                                               "FD FF FF FF 01 00 00 00 'a'"
                                               "03 00 00 00  00 00 00 00"));
    EXPECT_EQ(stats({file("texts"), "--sizes", "--format", "csv"}).out,
              "result_set,name,rows,bytes,largest,largest_row,depth\n"
              "1,root,1,43,43,0,2\n1,value,2,39,31,0,1\n1,(strings),3,27,9,,\n"
              "1,value__value,2,18,9,0,0\n");
    auto const refused = stats({file("texts")});
    EXPECT_EQ(refused.code, 1);
    EXPECT_EQ(refused.err,
              "bradep: " + file("texts") + ": is a String_To_StringSet_T, which holds no checks\n");
}

TEST_F(Stats, CountSeveralFilesTogether) {
    import("other", result("z.c", R"("ruleId": "R2", "level": "error")"));
    import("none", "");
    EXPECT_EQ(stats({file(), file("none"), file("other"), "--by", "set,level", "--format", "csv",
                     "--no-header"})
                  .out,
              "1,note,2\n1,error,1\n3,error,1\n");
    EXPECT_EQ(stats({file("none"), "--by", "rule", "--format", "csv"}).out, "rule,findings\n");
}

TEST_F(Stats, RefuseWrongUsageAndDamagedFiles) {
    EXPECT_EQ(stats({}).code, 2);
    EXPECT_EQ(stats({file(), "--by", "rules"}).code, 2);
    EXPECT_EQ(stats({file(), "--top", "-1"}).code, 2);
    EXPECT_EQ(stats({file("missing")}).code, 2);
    write_bytes(scratch_ / "cut", bytes_of(file()).substr(0, 100));
    auto const refused = stats({file("cut"), "--sizes"});
    EXPECT_EQ(refused.code, 1);
    EXPECT_EQ(refused.out, "");
}

}  // namespace
