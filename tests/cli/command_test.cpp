#include "cli_support.hpp"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <algorithm>

namespace {

using namespace cli_test;

std::size_t line_count(std::string const& text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

bool contains(std::string const& text, std::string const& part) {
    return text.find(part) != std::string::npos;
}

// Expects one line on standard error and nothing on standard output.
void expect_refused(Outcome const& outcome, int code, std::string const& line) {
    EXPECT_EQ(outcome.code, code);
    EXPECT_EQ(outcome.err, "bradep: " + line + "\n");
    EXPECT_EQ(outcome.out, "");
}

std::string imported(Scratch const& scratch, fs::path const& log) {
    auto const set = (scratch / "set").string();
    auto const outcome = run_command({"import", log.string(), "-o", set});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "");
    return set;
}

TEST(Command, HelpListsTheCommandsAndTheExitCodes) {
    auto const help = run_command({"--help"});
    EXPECT_EQ(help.code, 0);
    EXPECT_EQ(help.err, "");
    for (char const* part :
         {"import", "show", "verify", "dump", "encode", "identify", "canon", "digest", "schema",
          "roots", "--version", "Exit codes: 0 done, 1 the input is damaged or refused, 2 "})
        EXPECT_TRUE(contains(help.out, part)) << part;
    EXPECT_TRUE(contains(run_command({"import", "--help"}).out, "--output"));
    EXPECT_TRUE(contains(run_command({"show", "--help"}).out, "--json"));
}

TEST(Command, ShowSaysThatItVerifiesFirst) {
    EXPECT_TRUE(contains(run_command({"show", "--help"}).out, "The file is verified"));
}

TEST(Command, VersionIsOneLine) {
    auto const version = run_command({"--version"});
    EXPECT_EQ(version.code, 0);
    EXPECT_EQ(version.out, "bradep " BRADEP_VERSION "\n");
    EXPECT_EQ(version.err, "");
}

TEST(Command, WrongUsageIsOneLineAndCodeTwo) {
    std::string const more = " (see bradep --help)";
    expect_refused(run_command({}), 2, "A command is required" + more);
    expect_refused(run_command({"frob"}), 2, "no such command: frob" + more);
    expect_refused(run_command({"shw", "set"}), 2, "no such command: shw (show?)" + more);
    expect_refused(run_command({"import", "log"}), 2, "--output is required" + more);
    expect_refused(run_command({"import", "-o", "set"}), 2, "RESULTS.sarif is required" + more);
    expect_refused(run_command({"show"}), 2, "FILE is required" + more);
    for (auto const& args : std::vector<std::vector<std::string>>{{"show", "a", "b"},
                                                                  {"show", "--rows", "x", "a"},
                                                                  {"show", "--none", "a"},
                                                                  {"--none"},
                                                                  {"import", "-x"}}) {
        auto const outcome = run_command(args);
        EXPECT_EQ(outcome.code, 2);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(line_count(outcome.err), 1U) << outcome.err;
    }
}

TEST(Import, DamagedLogIsOneLineAndCodeOneAndLeavesNoFile) {
    for (auto const& entry : fs::directory_iterator(BRADEP_FIXTURES)) {
        if (!entry.path().filename().string().starts_with("bad-")) continue;
        Scratch const scratch;
        auto const    outcome =
            run_command({"import", entry.path().string(), "-o", (scratch / "set").string()});
        EXPECT_EQ(outcome.code, 1);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(line_count(outcome.err), 1U);
        EXPECT_TRUE(outcome.err.starts_with("bradep: " + entry.path().string() + ":"))
            << outcome.err;
        EXPECT_TRUE(scratch.names().empty()) << entry.path();
    }
}

TEST(Import, DamagedLogLeavesTheOldFile) {
    Scratch const scratch;
    write_bytes(scratch / "set", "old");
    auto const sound = fixture("flows.sarif").string();
    auto const damaged = fixture("bad-rule-index.sarif").string();
    EXPECT_EQ(run_command({"import", sound, damaged, "-o", (scratch / "set").string()}).code, 1);
    EXPECT_EQ(bytes_of(scratch / "set"), "old");
    EXPECT_EQ(scratch.names().size(), 1U);
}

TEST(Import, MissingInputIsCodeTwo) {
    Scratch const scratch;
    auto const    set = (scratch / "set").string();
    expect_refused(run_command({"import", "/no/such.sarif", "-o", set}), 2,
                   "cannot read /no/such.sarif: No such file or directory");
    expect_refused(run_command({"import", scratch.path().string(), "-o", set}), 2,
                   "cannot read " + scratch.path().string() + ": Is a directory");
    EXPECT_TRUE(scratch.names().empty());
}

TEST(Import, OutputThatCannotBeWrittenIsCodeTwo) {
    Scratch const scratch;
    auto const    log = fixture("flows.sarif").string();
    expect_refused(run_command({"import", log, "-o", "/dev/full"}), 2,
                   "cannot write /dev/full: No space left on device");
    expect_refused(run_command({"import", log, "-o", scratch.path().string()}), 2,
                   "cannot write " + scratch.path().string() + ": Is a directory");
    auto const long_name = (scratch / std::string(300, 'x')).string();
    expect_refused(run_command({"import", log, "-o", long_name}), 2,
                   "cannot write " + long_name + ": File name too long");
    auto const beyond = (scratch / "none/set").string();
    expect_refused(run_command({"import", log, "-o", beyond}), 2,
                   "cannot write " + beyond + ": No such file or directory");
    EXPECT_TRUE(scratch.names().empty());
}

TEST(Import, FullDiskLeavesTheOldFileInTheRealCommand) {
    Scratch const scratch;
    write_bytes(scratch / "set", "old");
    auto const command = "ulimit -f 1; '" BRADEP_COMMAND "' import '" +
                         fixture("flows.sarif").string() + "' -o '" + (scratch / "set").string() +
                         "' 2> '" + (scratch / "err").string() + "'";
    int const status = std::system(("bash -c \"" + command + "\"").c_str());
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 2);
    EXPECT_EQ(bytes_of(scratch / "err"),
              "bradep: cannot write " + (scratch / "set").string() + ": File too large\n");
    EXPECT_EQ(bytes_of(scratch / "set"), "old");
    EXPECT_EQ(scratch.names().size(), 2U);
}

TEST(Import, AnInputIsNotOverwritten) {
    Scratch const scratch;
    auto const    log = (scratch / "log.sarif").string();
    fs::copy_file(fixture("flows.sarif"), log);
    expect_refused(run_command({"import", log, "-o", log}), 2,
                   "the output " + log + " is also an input");
    EXPECT_EQ(bytes_of(log), bytes_of(fixture("flows.sarif")));
}

TEST(Import, SeveralLogsCountTheirRunsOn) {
    Scratch const scratch;
    auto const    set = (scratch / "set").string();
    auto const    log = fixture("many_runs.sarif").string();
    ASSERT_EQ(run_command({"import", log, log, "-o", set}).code, 0);
    auto const lines = run_command({"show", "--json", set}).out;
    EXPECT_EQ(line_count(lines), 18U);
    EXPECT_TRUE(contains(lines, R"({"key":["first.c",3],"run":9,"tool":"First","rule":"one",)"));
    EXPECT_TRUE(contains(run_command({"show", set}).out, ": 18 checks from 18 runs\n"));
}

TEST(Import, DashIsStandardInputAndOutput) {
    auto const made = run_command({"import", "-", "-o", "-"}, bytes_of(fixture("flows.sarif")));
    EXPECT_EQ(made.code, 0);
    EXPECT_EQ(made.err, "");
    Scratch const scratch;
    EXPECT_EQ(made.out, bytes_of(imported(scratch, fixture("flows.sarif"))));
    auto const shown = run_command({"show", "--json", "-"}, made.out);
    EXPECT_EQ(shown.code, 0);
    EXPECT_EQ(line_count(shown.out), 9U);
    auto const damaged = run_command({"import", "-", "-o", "-"}, "{");
    expect_refused(damaged, 1, "standard input:1:2: the JSON text ends too early");
}

TEST(Import, MessageStaysOneLineWhateverTheNames) {
    auto const outcome = run_command({"import", "no\nsuch\x1B[31m.sarif", "-o", "set"});
    expect_refused(outcome, 2, "cannot read no such\\u{1b}[31m.sarif: No such file or directory");
}

TEST(Show, JsonLinesHaveTheDocumentedForm) {
    Scratch const scratch;
    write_bytes(scratch / "log", log_with(R"j(
        {"ruleId": "R", "message": {"text": "m [x](1)"},
         "locations": [{"physicalLocation": {"artifactLocation": {"uri": "a.c", "uriBaseId": "SRC"},
                        "region": {"startLine": 1, "startColumn": 2, "endLine": 3, "endColumn": 4}}}],
         "relatedLocations": [{"id": 1, "message": {"text": "x"}, "physicalLocation": {"artifactLocation": {"uri": "b.c"}}}],
         "codeFlows": [{"threadFlows": [{"locations": [{"location": {"message": {"text": ""},
                        "physicalLocation": {"artifactLocation": {"uri": "c.c", "uriBaseId": "SRC"},
                        "region": {"startLine": 5, "startColumn": 6, "endLine": 7}}}}]}]}],
         "partialFingerprints": {"p": "1"}, "fingerprints": {"f": "2"}},
        {})j"));
    auto const shown = run_command({"show", "--json", imported(scratch, scratch / "log")});
    EXPECT_EQ(shown.code, 0);
    EXPECT_EQ(shown.err, "");
    EXPECT_EQ(
        shown.out,
        R"j({"key":["a.c",1],"run":0,"tool":"Tool","rule":"R","level":"warning","kind":"fail",)j"
        R"j("message":"m [x](1)",)j"
        R"("locations":[{"uri":"a.c","base":"SRC","line":1,"column":2,"endLine":3,"endColumn":4}],)"
        R"("related":[{"id":1,"uri":"b.c","message":"x"}],)"
        R"("flows":[[[{"uri":"c.c","line":5,"column":6,"message":""}]]],)"
        R"("fingerprints":{"f":"2","p":"1"}})"
        "\n"
        R"({"key":["",1],"run":0,"tool":"Tool","level":"warning","kind":"fail"})"
        "\n");
}

TEST(Show, SummaryHasTablesRankingsAndFirstChecks) {
    Scratch const scratch;
    auto const    set = imported(scratch, fixture("flows.sarif"));
    auto const    shown = run_command({"show", set});
    EXPECT_EQ(shown.code, 0);
    EXPECT_EQ(shown.err, "");
    EXPECT_TRUE(shown.out.starts_with(set + ": 9 checks from 1 run\n" +
                                      std::to_string(fs::file_size(set)) + " bytes, read in "))
        << shown.out;
    for (char const* part :
         {"\nTables\n   9  checks\n   2  check_numbers\n   9  check_data\n  26  events\n   3  "
          "event_numbers\n",
          "  empty: infos, info_numbers, ", "\nChecks by tool\n  9  Flows\n",
          "\nChecks by category\n  9  BF_CHECKER_WITH_PRECOMPUTED_MESSAGE\n",
          "\nChecks by level\n  9  warning\n", "\nChecks by rule\n  9  (no rule)\n",
          "\nFiles with most checks\n  8  (no file)\n  1  a.c\n",
          "\nFirst checks\n  a.c: warning: several flows, 2 flows of 8 steps\n  (no place): "
          "warning: one flow only, "
          "1 flow of 1 step\n"})
        EXPECT_TRUE(contains(shown.out, part)) << part << "\nis not in\n" << shown.out;
    EXPECT_FALSE(contains(shown.out, "Checks by kind")) << shown.out;  // there is one alone
}

TEST(Show, SuppressedAndAbsentChecksAreCountedApart) {
    Scratch const scratch;
    auto const    set = imported(scratch, fixture("review.sarif"));
    auto const    shown = run_command({"show", set}).out;
    for (char const* part :
         {": 9 checks from 1 run, 2 suppressed, 1 absent (not counted below)\n",
          "\nChecks by tool\n  6  Review 1.2.3-beta\n", "\nChecks by level\n  6  warning\n",
          "suppressed twice (suppressed)\n", "absent state (absent)\n", ": not suppressed\n"})
        EXPECT_TRUE(contains(shown, part)) << part << "\nis not in\n" << shown;
}

TEST(Show, ASuppressionHoldsWhenOneIsAccepted) {
    Scratch const scratch;
    auto const    count = [&](std::string const& suppressions) {
        write_bytes(scratch / "log",
                       log_with(R"({"level": "error", "suppressions": [)" + suppressions + "]}"));
        auto const shown = run_command({"show", imported(scratch, scratch / "log")}).out;
        return contains(shown, ", 1 suppressed (not counted below)\n");
    };
    EXPECT_TRUE(count(R"({"kind": "inSource"})"));
    EXPECT_TRUE(count(R"({"status": "rejected"}, {"status": "accepted"})"));
    EXPECT_FALSE(count(R"({"status": "rejected"}, {"status": "underReview"})"));
    EXPECT_FALSE(count(""));
}

TEST(Show, JsonHasKindBaselineStateAndSuppressions) {
    Scratch const scratch;
    write_bytes(scratch / "log", log_with(R"({"kind": "review", "baselineState": "absent",
        "suppressions": [{"kind": "external", "status": "underReview"}, {"kind": "inSource"}, {}]})"));
    auto const shown = run_command({"show", "--json", imported(scratch, scratch / "log")});
    EXPECT_EQ(
        shown.out,
        R"({"key":["",1],"run":0,"tool":"Tool","level":"none","kind":"review",)"
        R"("baselineState":"absent","suppressions":[{"kind":"external","status":"underReview"},)"
        R"({"kind":"inSource"},{}]})"
        "\n");
}

TEST(Show, RankingsAreCutAndSaySo) {
    Scratch const scratch;
    std::string   results;
    for (int i = 0; i < 1234; ++i)
        results += (i ? "," : "") +
                   (R"({"message": {"text": "m"}, "ruleId": "R)" + std::to_string(i % 7)) + "\"}";
    write_bytes(scratch / "log", log_with(results));
    auto const set = imported(scratch, scratch / "log");
    auto const shown = run_command({"show", "-n", "2", set}).out;
    EXPECT_TRUE(contains(shown, ": 1234 checks from 1 run\n"));
    EXPECT_TRUE(contains(shown, "\nChecks by rule\n  177  R0\n  177  R1\n  and 5 more rules\n"))
        << shown;
    EXPECT_TRUE(contains(shown, "  and 1232 more checks\n")) << shown;
    auto const whole = run_command({"show", "-n", "7", set}).out;
    EXPECT_TRUE(contains(whole, "  176  R6\n")) << whole;
    EXPECT_FALSE(contains(whole, "more rules")) << whole;
    auto const nothing = run_command({"show", "-n", "0", set}).out;
    EXPECT_FALSE(contains(nothing, "First checks"));
}

TEST(Show, AColumnWithoutALineIsNotShown) {
    Scratch const scratch;
    write_bytes(scratch / "log", log_with(R"({"message": {"text": "m"}, "locations": [{
        "physicalLocation": {"artifactLocation": {"uri": "a.c"}, "region": {"startColumn": 7}}}]})"));
    auto const shown = run_command({"show", imported(scratch, scratch / "log")}).out;
    EXPECT_TRUE(contains(shown, "\n  a.c: warning: m\n")) << shown;
}

TEST(Show, TerminalIsSafeFromTheTexts) {
    Scratch const scratch;
    write_bytes(
        scratch / "log",
        log_with(R"({"ruleId": "\u001b[2J", "message": {"text": "a\u001b]0;x\u0007\nb\u009b"},
        "locations": [{"physicalLocation": {"artifactLocation": {"uri": "\u001b[31m.c"}}}]})"));
    auto const set = imported(scratch, scratch / "log");
    for (auto const& args : {std::vector<std::string>{"show", set}, {"show", "--json", set}}) {
        auto const shown = run_command(args);
        EXPECT_EQ(shown.code, 0);
        EXPECT_FALSE(contains(shown.out, "\x1B"));
        EXPECT_FALSE(contains(shown.out, "\x07"));
        EXPECT_FALSE(contains(shown.out, "\xC2\x9B"));
    }
    EXPECT_TRUE(contains(run_command({"show", set}).out,
                         "  \\u{1b}[31m.c: warning: a\\u{1b}]0;x\\u{7} b\\u{9b} [\\u{1b}[2J]\n"));
}

TEST(Show, MissingFileIsCodeTwo) {
    expect_refused(run_command({"show", "/no/such"}), 2,
                   "cannot read /no/such: No such file or directory");
}

TEST(Show, EmptyShortAndLongFilesAreDamaged) {
    Scratch const scratch;
    auto const    bytes = bytes_of(imported(scratch, fixture("flows.sarif")));
    auto const    file = (scratch / "broken").string();
    auto const    refused = [&](std::string const& broken, std::string const& what) {
        write_bytes(file, broken);
        expect_refused(run_command({"show", file}), 1, file + ": " + what);
    };
    auto const size = bytes.size();
    refused("", "not a result set: the file is empty");
    refused(bytes.substr(0, size - 1),
            "can't be read as a result set: byte " + std::to_string(size - 4) +
                " at check_data[8].1.category.BF_CHECKER_WITH_PRECOMPUTED_MESSAGE.message: "
                "expected at least 4 bytes, found 3");
    refused(bytes + "x", "can't be read as a result set: byte " + std::to_string(size) +
                             ": expected the end of the bytes, found 1 more bytes");
    // The order of hash tables determines which count exceeds the bytes.
    write_bytes(file, bytes.substr(0, size / 2));
    auto const half = run_command({"show", file});
    EXPECT_EQ(half.code, 1);
    EXPECT_EQ(half.out, "");
    EXPECT_TRUE(half.err.starts_with("bradep: " + file + ": can't be read as a result set: byte "))
        << half.err;
    EXPECT_EQ(line_count(half.err), 1U);
}

TEST(Show, OddBytesAreShownAndReported) {
    Scratch const scratch;
    auto          bytes = bytes_of(imported(scratch, fixture("flows.sarif")));
    auto const    at = bytes.find_last_of('F');
    ASSERT_NE(at, std::string::npos);
    auto const sound = run_command({"show", "--json", "-"}, bytes);
    bytes[at] = 'f';
    auto const odd = run_command({"show", "--json", "-"}, bytes);
    EXPECT_EQ(odd.code, 0);
    EXPECT_EQ(odd.out, sound.out);
    EXPECT_TRUE(odd.err.starts_with("bradep: standard input: byte " + std::to_string(at) + " at "))
        << odd.err;
    EXPECT_TRUE(odd.err.ends_with(": expected T or F, found 'f' (odd)\n")) << odd.err;
}

TEST(Show, ALogIsNoResultSet) {
    auto const log = fixture("flows.sarif").string();
    auto const shown = run_command({"show", log});
    EXPECT_EQ(shown.code, 1);
    EXPECT_EQ(shown.out, "");
    EXPECT_EQ(line_count(shown.err), 1U);
    EXPECT_TRUE(shown.err.starts_with("bradep: " + log +
                                      ": is JSON text (import reads SARIF, encode what dump has "
                                      "printed), can't be read as a result set: byte "))
        << shown.err;
}

TEST(Show, ALimitIsNoMatterOfBeingAResultSet) {
    Scratch const scratch;
    auto const    set = imported(scratch, fixture("flows.sarif"));
    auto const    shown = run_command({"show", "--max-memory", "100", set});
    EXPECT_EQ(shown.code, 1);
    EXPECT_TRUE(shown.err.starts_with("bradep: " + set + ": can't be read as a result set: byte "))
        << shown.err;
    EXPECT_TRUE(contains(shown.err, "at most 100 bytes")) << shown.err;
}

TEST(Show, ANegativeNumberOfRowsIsWrongUsage) {
    Scratch const scratch;
    auto const    set = imported(scratch, fixture("flows.sarif"));
    EXPECT_EQ(run_command({"show", "-n", "-1", set}).code, 2);
    EXPECT_EQ(run_command({"show", "-n", "3x", set}).code, 2);
}

TEST(Show, FullStandardOutputIsCodeTwo) {
    Scratch const scratch;
    auto const    set = imported(scratch, fixture("flows.sarif"));
    for (char const* option : {"", "--json"}) {
        auto const command = std::string("'" BRADEP_COMMAND "' show ") + option + " '" + set +
                             "' > /dev/full 2> '" + (scratch / "err").string() + "'";
        int const status = std::system(command.c_str());
        ASSERT_TRUE(WIFEXITED(status));
        EXPECT_EQ(WEXITSTATUS(status), 2);
        EXPECT_EQ(bytes_of(scratch / "err"),
                  "bradep: cannot write standard output: No space left on device\n");
    }
}

}  // namespace
