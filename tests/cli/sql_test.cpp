#include "cli_support.hpp"
#include "tests/hex.hpp"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <csignal>
#include <cstdlib>

namespace {

using namespace cli_test;
using namespace std::string_literals;

/// The bytes of {"b": {"z", "a"}, "a": {}}, a String_To_StringSet_T.
std::string two_sets() {
    return hex::bytes(
        "02 00 00 00  FF FF FF FF 01 00 00 00 'b'  02 00 00 00"
        "FE FF FF FF 01 00 00 00 'z'  FD FF FF FF 01 00 00 00 'a'  03 00 00 00  00 00 00 00");
}

class Sql : public testing::Test {
protected:
    Sql() { write_bytes(scratch_ / "sets", two_sets()); }

    std::string file(std::string const& name = "sets") const { return scratch_ / name; }

    Outcome sql(std::vector<std::string> arguments, std::string const& in = {}) const {
        arguments.insert(arguments.begin(), {"sql", "--root", "String_To_StringSet_T"});
        return run_command(arguments, in);
    }

    std::string import(std::string const& name) const {
        auto const made = scratch_ / (name + ".set");
        run_command({"import", fixture(name).string(), "-o", made.string()});
        return made;
    }

    Scratch scratch_;
};

TEST_F(Sql, PrintsAlignedColumns) {
    auto const asked = sql({file(), "SELECT key, row FROM value"});
    EXPECT_EQ(asked.out, "key  row\n---  ---\nb      0\na      1\n");
    EXPECT_EQ(asked.err, "");
    EXPECT_EQ(asked.code, 0);
}

TEST_F(Sql, PrintsInEachFormat) {
    auto const with = [&](std::string const& format) {
        return sql({"--format", format, "--null", "-", file(),
                    "SELECT row AS n, CASE row WHEN 0 THEN 'a,\"b' END AS t FROM value"})
            .out;
    };
    EXPECT_EQ(with("text"), "n  t\n-  ----\n0  a,\"b\n1  -\n");
    EXPECT_EQ(with("csv"), "n,t\n0,\"a,\"\"b\"\n1,-\n");
    EXPECT_EQ(with("json"), "[\n{\"n\":0,\"t\":\"a,\\\"b\"},\n{\"n\":1,\"t\":null}\n]\n");
    EXPECT_EQ(with("ndjson"), "{\"n\":0,\"t\":\"a,\\\"b\"}\n{\"n\":1,\"t\":null}\n");
    EXPECT_EQ(with("markdown"), "| n | t    |\n|--:|------|\n| 0 | a,\"b |\n| 1 | -    |\n");
    EXPECT_EQ(
        with("box"),
        "┌───┬──────┐\n│ n │ t    │\n├───┼──────┤\n│ 0 │ a,\"b │\n│ 1 │ -    │\n└───┴──────┘\n");
}

TEST_F(Sql, TellsAnEmptyTextFromNullInCsv) {
    EXPECT_EQ(sql({"--format", "csv", "--no-header", file(), "VALUES ('', NULL, 'x')"}).out,
              "\"\",,x\n");
}

TEST_F(Sql, PrintsNoRowsInEachFormat) {
    char const* const nothing = "SELECT key FROM value WHERE 0";
    EXPECT_EQ(sql({file(), nothing}).out, "key\n---\n");
    EXPECT_EQ(sql({"--format", "json", file(), nothing}).out, "[]\n");
    EXPECT_EQ(sql({"--format", "ndjson", file(), nothing}).out, "");
    EXPECT_EQ(sql({"--format", "csv", file(), nothing}).out, "key\n");
}

TEST_F(Sql, KeepsControlCharactersAwayFromTheTerminal) {
    std::string const ask = "SELECT 'a' || char(27) || '[31m' || char(10) || 'b' AS t";
    EXPECT_EQ(sql({"--no-header", file(), ask}).out, "a\\u{1b}[31m b\n");
    EXPECT_EQ(sql({"--no-header", "--format", "markdown", file(), "SELECT 'a|<b>' AS t"}).out,
              "| t        |\n|----------|\n| a\\|\\<b\\> |\n");
}

TEST_F(Sql, TakesTheStatementFromAFileOrStandardInput) {
    write_bytes(scratch_ / "ask.sql", "SELECT 1 AS a;\n-- and\nSELECT 2 AS b;\n");
    std::string const both = "a\n1\nb\n2\n";
    EXPECT_EQ(sql({"--format", "csv", file(), "-f", file("ask.sql")}).out, both);
    EXPECT_EQ(sql({"--format", "csv", file(), "-"}, "SELECT 1 AS a; SELECT 2 AS b").out, both);
    EXPECT_EQ(sql({"--format", "csv", file(), "-f", "-"}, "SELECT 1 AS a; SELECT 2 AS b").out,
              both);
}

TEST_F(Sql, TellsWhereAStatementIsWrong) {
    auto const asked = sql({file(), "SELECT 1;\nSELECT missing FROM value"});
    EXPECT_EQ(asked.code, 1);
    EXPECT_EQ(asked.err, "bradep: statement:2:8: no such column: missing\n");
    write_bytes(scratch_ / "ask.sql", "SELEC 1");
    EXPECT_EQ(sql({file(), "-f", file("ask.sql")}).err,
              "bradep: " + file("ask.sql") + ":1:1: near \"SELEC\": syntax error\n");
    EXPECT_EQ(sql({file(), "SELECT 1 REGEXP '('"}).code, 1);
}

TEST_F(Sql, RefusesANulInAStatement) {
    auto const asked = sql({file(), "-"}, "SELECT 1;\n\0SELECT 2"s);
    EXPECT_EQ(asked.code, 1);
    EXPECT_EQ(asked.err, "bradep: standard input:2:1: a statement can't hold a NUL\n");
}

TEST_F(Sql, AlignsUpToALimit) {
    auto const asked =
        sql({file(), "SELECT 'a' AS t, 1 AS n UNION ALL SELECT printf('%.500c', 'x'), 2"});
    EXPECT_LT(asked.out.size(), 1500u);
}

TEST_F(Sql, QuotesEveryFieldOfCsvThatNeedsIt) {
    EXPECT_EQ(
        sql({"--format", "csv", "--no-header", "--null", "\"", file(), "VALUES ('\"', NULL)"}).out,
        "\"\"\"\",\"\"\"\"\n");
}

TEST_F(Sql, RefusesWhatWrites) {
    for (char const* const statement :
         {"CREATE TABLE t(x)", "ATTACH 'x' AS x", "PRAGMA user_version = 1", "VACUUM INTO 'x'"}) {
        auto const asked = sql({file(), statement});
        EXPECT_EQ(asked.code, 1);
        EXPECT_EQ(asked.err,
                  "bradep: statement:1:1: only SELECT, WITH, VALUES and EXPLAIN are allowed\n");
    }
    EXPECT_EQ(scratch_.names(), (std::vector<std::string>{"sets"}));
}

TEST_F(Sql, NumbersTheFiles) {
    write_bytes(scratch_ / "none", hex::bytes("00 00 00 00"));
    auto const asked = sql({"--format", "csv", "--no-header", file("none"), file(),
                            "SELECT result_set, name, size, (SELECT count(*) FROM value AS v WHERE"
                            " v.result_set = s.result_set) FROM result_sets AS s"});
    EXPECT_EQ(asked.out, "1," + file("none") + ",4,0\n2," + file() + ",43,2\n");
}

TEST_F(Sql, RefusesAFileThatIsNotSafe) {
    write_bytes(scratch_ / "cut", two_sets().substr(0, 20));
    write_bytes(scratch_ / "empty", "");
    auto const cut = sql({file(), file("cut"), "SELECT 1"});
    EXPECT_EQ(cut.code, 1);
    EXPECT_EQ(cut.out, "");
    EXPECT_EQ(cut.err.find("bradep: " + file("cut") + ": can't be read as String_To_StringSet_T: "),
              0u);
    EXPECT_EQ(sql({file("empty"), "SELECT 1"}).err,
              "bradep: " + file("empty") + ": the file is empty\n");
    EXPECT_EQ(sql({file("missing"), "SELECT 1"}).code, 2);
    EXPECT_EQ(sql({scratch_.path().string(), "SELECT 1"}).code, 2);
    EXPECT_EQ(sql({"--max-size", "10", file(), "SELECT 1"}).code, 2);
}

TEST_F(Sql, RefusesFilesOfTwoRoots) {
    auto const asked = run_command({"sql", import("flows.sarif"), file(), "SELECT 1"});
    EXPECT_EQ(asked.code, 1);
    EXPECT_EQ(
        asked.err,
        "bradep: " + file() +
            ": holds the root String_To_StringSet_T, the files before it "
            "Base_Gui_Internal_Form_Datas_Aggregated_Results_T; only files of one root can be "
            "asked together\n");
}

TEST_F(Sql, FindsTheRootOfTheFirstFile) {
    EXPECT_EQ(run_command({"sql", "--format", "csv", "--no-header", import("flows.sarif"),
                           "SELECT root FROM result_sets"})
                  .out,
              "Base_Gui_Internal_Form_Datas_Aggregated_Results_T\n");
    EXPECT_EQ(run_command({"sql", "--format", "csv", "--no-header", file(),
                           "SELECT count(*) FROM value__value"})
                  .out,
              "2\n");
    write_bytes(scratch_ / "text", "{\"version\": \"2.1.0\"}");
    auto const text = run_command({"sql", file("text"), "SELECT 1"});
    EXPECT_EQ(text.code, 1);
    EXPECT_NE(text.err.find("is JSON text"), std::string::npos);
}

TEST_F(Sql, ShowsWhatAReaderKeepsOfAnOddFile) {
    // "b" comes twice.
    write_bytes(scratch_ / "odd", hex::bytes("02 00 00 00  FF FF FF FF 01 00 00 00 'b'  00 00 00 00"
                                             "01 00 00 00  00 00 00 00"));
    auto const asked = sql({"--format", "csv", file("odd"), "SELECT * FROM value"});
    EXPECT_EQ(asked.out, "result_set,row,key\n1,0,b\n");
    EXPECT_EQ(asked.code, 0);
}

TEST_F(Sql, NeedsAFileAndAStatement) {
    EXPECT_EQ(sql({}).code, 2);
    auto const asked = sql({"SELECT 1"});
    EXPECT_EQ(asked.code, 2);
    EXPECT_EQ(asked.err, "bradep: FILE, before the statement, is required (see bradep --help)\n");
}

TEST_F(Sql, AnswersAtAPromptUntilTheEnd) {
    auto const asked =
        sql({"-i", file()},
            "\n-- a comment\n.tables\nSELECT key\nFROM value;\n.format csv\nSELECT 1 AS a; "
            "SELECT 2 AS b;\n.nonsense\nSELECT wrong;\n.schema root\nSELECT 3 AS c");
    EXPECT_EQ(asked.out,
              "result_sets\nroot\nvalue\nvalue__value\nsizes\nkey\n---\nb\na\na\n1\nb\n2\n"
              "CREATE TABLE \"root\" (\n  \"result_set\" INTEGER NOT NULL\n);\nc\n3\n");
    EXPECT_EQ(asked.err,
              "bradep: no such command: .nonsense (.help lists them)\n"
              "bradep: statement:1:8: no such column: wrong\n");
    EXPECT_EQ(asked.code, 0);
}

/// Whether a process has a handler for SIGINT.
bool handles_interrupts(pid_t process) {
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    for (std::string name, value; status >> name && std::getline(status, value);)
        if (name == "SigCgt:") return (std::stoull(value, nullptr, 16) >> (SIGINT - 1) & 1) != 0;
    return false;
}

TEST_F(Sql, EndsAStatementOnCtrlC) {
    std::string const endless =
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n)"
        " SELECT count(*) FROM n";
    auto const  err = file("err");
    pid_t const child = ::fork();
    if (child == 0) {
        if (std::freopen(err.c_str(), "w", stderr) != nullptr)
            ::execl(BRADEP_COMMAND, "bradep", "sql", file().c_str(), endless.c_str(), nullptr);
        std::_Exit(99);
    }
    for (int tries = 0; !handles_interrupts(child); ++tries) {
        ASSERT_LT(tries, 60'000);
        ::usleep(1000);
    }
    ::kill(child, SIGINT);
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 2);
    EXPECT_EQ(bytes_of(err), "bradep: interrupted\n");
}

TEST(Tables, ArePrintedAsStatementsThatSqliteTakes) {
    auto const printed = run_command({"tables"});
    EXPECT_EQ(printed.code, 0);
    EXPECT_NE(printed.out.find("CREATE TABLE \"checks__failure__steps\" ("), std::string::npos);
    EXPECT_NE(printed.out.find("CREATE VIEW"), std::string::npos);
    EXPECT_EQ(run_command({"tables", "--root", "Integers64_T"}).out.substr(0, 5), "CREAT");
    EXPECT_EQ(run_command({"tables", "--root", "nonsense"}).code, 2);
}

}  // namespace
