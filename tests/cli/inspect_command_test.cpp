#include <sml/bindings/bindings.hpp>
#include <sml/inspect/verify.hpp>
#include "cli_support.hpp"
#include "tests/core/comma_locale.hpp"
#include "tests/hex.hpp"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>

namespace {

using namespace cli_test;
using namespace std::string_literals;

constexpr char const* result_set = "Base_Gui_Internal_Form_Datas_Aggregated_Results_T";
constexpr char const* sets = "String_To_StringSet_T";
constexpr char const* more = " (see bradep --help)";

bool contains(std::string const& text, std::string const& part) {
    return text.find(part) != std::string::npos;
}

std::string word(std::int32_t value) {
    return {reinterpret_cast<char const*>(&value), sizeof value};
}

/// The bytes of {"b": {"z", "a"}, "a": {}}.
std::string two_sets() {
    return hex::bytes(
        "02 00 00 00  FF FF FF FF 01 00 00 00 'b'  02 00 00 00"
        "FE FF FF FF 01 00 00 00 'z'  FD FF FF FF 01 00 00 00 'a'  03 00 00 00  00 00 00 00");
}

std::string imported_flows() {
    return run_command({"import", fixture("flows.sarif").string(), "-o", "-"}).out;
}

void expect_outcome(Outcome const& outcome, int code, std::string const& out,
                    std::string const& err) {
    EXPECT_EQ(outcome.code, code);
    EXPECT_EQ(outcome.out, out);
    EXPECT_EQ(outcome.err, err);
}

TEST(VerifyCommand, GoodBytesAreCodeZeroAndTheirFigures) {
    std::string const bytes = hex::bytes("07 00 00 00");
    expect_outcome(run_command({"verify", "--root", "Interrogators_ClassKey", "-"}, bytes), 0,
                   "standard input: good\n"
                   "  root      Interrogators_ClassKey\n"
                   "  bytes     4 of 4\n"
                   "  odd       0\n"
                   "  strings   0\n"
                   "  elements  0\n"
                   "  heap      estimated at 0 bytes, at its peak in a reader\n"
                   "  work      estimated at 0 comparisons of keys in a reader\n",
                   "");
}

TEST(VerifyCommand, EmptyStemIsNoRoot) {
    auto const outcome = run_command({"verify", "--root", "", "-"}, "x");
    EXPECT_EQ(outcome.code, 2);
    EXPECT_TRUE(contains(outcome.err, "no root is called ")) << outcome.err;
}

TEST(VerifyCommand, OddBytesAreCodeZeroAndCodeOneWhenStrict) {
    auto const odd = run_command({"verify", "--root", "Answers_Context", "-"}, "x");
    EXPECT_EQ(odd.code, 0);
    EXPECT_TRUE(odd.out.starts_with("standard input: odd\n")) << odd.out;
    EXPECT_EQ(odd.err,
              "bradep: standard input: byte 0 at flag: expected T or F, found 'x' (odd)\n");
    auto const strict = run_command({"verify", "--strict", "--root", "Answers_Context", "-"}, "x");
    EXPECT_EQ(strict.code, 1);
    EXPECT_EQ(strict.out, odd.out);
    EXPECT_EQ(strict.err, odd.err);
    EXPECT_EQ(run_command({"verify", "--strict", "--root", "Answers_Context", "-"}, "T").code, 0);
}

TEST(VerifyCommand, UnsafeBytesAreCodeOne) {
    auto const outcome = run_command({"verify", "--root", sets, "-"}, two_sets() + "x");
    EXPECT_EQ(outcome.code, 1);
    EXPECT_TRUE(outcome.out.starts_with("standard input: unsafe\n")) << outcome.out;
    EXPECT_TRUE(contains(outcome.out, "  bytes     43 of 44\n")) << outcome.out;
    EXPECT_EQ(outcome.err,
              "bradep: standard input: byte 43: expected the end of the bytes, "
              "found 1 more bytes (unsafe)\n");
}

constexpr char const* pragmas = "IL_Extras_VVIRZelvanitePragmasTag_PragmaParametersList";

/// The finding about the flag in the element with this index of a list of such parameters.
std::string odd_flag(std::size_t index) {
    return "bradep: standard input: byte " + std::to_string(8 + 5 * index) + " at [" +
           std::to_string(index) + "].BOOL_PRAGMA_PARAMETER: expected T or F, found 'x' (odd)\n";
}

TEST(VerifyCommand, FindingsAreBoundedAndAllAreCounted) {
    std::string bytes = hex::bytes("03 00 00 00");
    for (int i = 0; i < 3; ++i) bytes += hex::bytes("00 00 00 00 'x'");
    auto const verified = [&](char const* most) {
        auto outcome = run_command({"verify", "-n", most, "--root", pragmas, "-"}, bytes);
        EXPECT_EQ(outcome.code, 0);
        EXPECT_TRUE(contains(outcome.out, "  odd       3\n"));
        return outcome.err;
    };
    EXPECT_EQ(verified("0"), "bradep: standard input: 3 more odd findings\n");
    EXPECT_EQ(verified("1"), odd_flag(0) + odd_flag(1) + odd_flag(2));
}

TEST(VerifyCommand, FindingsOfOneShapeAreReportedTogether) {
    std::string bytes = hex::bytes("A1 86 01 00");  // 100,001
    for (int i = 0; i < 100'000; ++i) bytes += hex::bytes("00 00 00 00 'x'");
    bytes += hex::bytes("63 00 00 00 00 00 00 00 00 00 00 00");  // an unknown tag
    auto const outcome = run_command({"verify", "--root", pragmas, "-"}, bytes);
    EXPECT_EQ(outcome.code, 0);
    EXPECT_TRUE(outcome.err.starts_with(
        odd_flag(0) + odd_flag(1) + odd_flag(2) +
        "bradep: standard input: 99997 more at [*].BOOL_PRAGMA_PARAMETER (odd)\n"
        "bradep: standard input: byte 500004 at [100000]: expected a tag "))
        << outcome.err;
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 5) << outcome.err;
    auto const one = run_command({"verify", "-n", "1", "--root", pragmas, "-"}, bytes);
    EXPECT_TRUE(one.err.ends_with("(odd)\nbradep: standard input: 1 more odd findings\n"))
        << one.err;
}

TEST(VerifyCommand, TakesSeveralFiles) {
    Scratch const scratch;
    auto const    good = (scratch / "good").string();
    auto const    unsafe = (scratch / "unsafe").string();
    write_bytes(good, two_sets());
    write_bytes(unsafe, two_sets() + "x");
    auto const outcome = run_command({"verify", "--root", sets, unsafe, "/no/such", good});
    EXPECT_EQ(outcome.code, 2);
    EXPECT_TRUE(outcome.out.starts_with(unsafe + ": unsafe\n")) << outcome.out;
    EXPECT_TRUE(contains(outcome.out, "\n" + good + ": good\n")) << outcome.out;
    EXPECT_TRUE(
        outcome.err.ends_with("\nbradep: cannot read /no/such: No such file or directory\n"))
        << outcome.err;
    EXPECT_EQ(run_command({"verify", "--root", sets, unsafe, good}).code, 1);
    EXPECT_EQ(run_command({"verify", "--root", sets, good, good}).code, 0);
}

TEST(DigestCommand, TakesSeveralFilesAndPrintsTheirNames) {
    Scratch const scratch;
    auto const    first = (scratch / "a").string();
    auto const    second = (scratch / "b\n").string();
    write_bytes(first, two_sets());
    write_bytes(second, two_sets());
    auto const one = run_command({"digest", "--root", sets, "-"}, two_sets()).out;
    auto const sum = one.substr(0, one.find(' '));
    EXPECT_EQ(sum.size(), 64U);
    EXPECT_EQ(one, sum + "  -\n");
    expect_outcome(run_command({"digest", "--root", sets, first, "/no/such", second}), 2,
                   sum + "  " + first + "\n" + sum + "  " + (scratch / "b ").string() + "\n",
                   "bradep: cannot read /no/such: No such file or directory\n");
}

TEST(VerifyCommand, FileIsReadLikeStandardInput) {
    Scratch const scratch;
    auto const    file = (scratch / "bytes").string();
    write_bytes(file, two_sets());
    auto const outcome = run_command({"verify", "--root", sets, file});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_TRUE(outcome.out.starts_with(file + ": good\n")) << outcome.out;
    write_bytes(file, "");
    EXPECT_EQ(run_command({"verify", "--root", sets, file}).code, 1);
}

TEST(VerifyCommand, FindingStaysOneLineWhateverTheBytes) {
    std::string const bytes =
        hex::bytes("01 00 00 00  FF FF FF FF 04 00 00 00 0A 1B 5B FF  01 00 00 00  07 00 00 00");
    auto const outcome = run_command({"verify", "--root", sets, "-"}, bytes);
    EXPECT_EQ(outcome.err, R"(bradep: standard input: byte 20 at ["\x0A\x1B[\xFF"][0]: )"
                           "expected an id that is defined before, found id 7 (odd)\n");
}

TEST(RootOption, IsReportedWithItsNearestWhenThereIsNone) {
    Scratch const scratch;
    auto const    target = (scratch / "out").string();
    for (auto const& args : std::vector<std::vector<std::string>>{{"verify", "-"},
                                                                  {"dump", "-"},
                                                                  {"canon", "-", "-o", target},
                                                                  {"digest", "-"},
                                                                  {"schema"}}) {
        auto with_root = args;
        with_root.insert(with_root.end(), {"--root", "Answers_Contex"});
        expect_outcome(run_command(with_root, "T"), 2, "",
                       "bradep: --root: no root is called Answers_Contex; "
                       "there is Answers_Context"s +
                           more + "\n");
    }
    EXPECT_TRUE(scratch.names().empty());
}

TEST(RootOption, AStemThatEndsWithWhatWasGivenIsNearest) {
    auto const printed = [](std::string const& given) {
        return run_command({"verify", "--root", given, "-"}, "T").err;
    };
    EXPECT_TRUE(contains(printed("Aggregated_Results_T"), "; there is "s + result_set))
        << printed("x");
    EXPECT_TRUE(contains(printed("StringSet"), "; there is String_To_StringSet_T"));
    EXPECT_TRUE(contains(printed("Interrogator"), "; there is Interrogators_Interrogator "));
    EXPECT_TRUE(contains(printed("Sting_To_StringSet_T"), "; there is String_To_StringSet_T"));
}

TEST(VerifyCommand, JsonTextIsCalledSo) {
    std::string const json = R"({"root":"Answers_Context","value":{"flag":true}})";
    std::string const form =
        "bradep: standard input: is JSON text (import reads SARIF, encode "
        "what dump has printed), ";
    auto const chosen = run_command({"verify", "-"}, json);
    EXPECT_EQ(chosen.code, 1);
    EXPECT_TRUE(chosen.err.starts_with(form + "fits no root; read as ")) << chosen.err;
    auto const asked = run_command({"verify", "--root", result_set, "-"}, " [\n{}]");
    EXPECT_EQ(asked.code, 1);
    EXPECT_TRUE(asked.err.starts_with(form + "not " + result_set + "\n")) << asked.err;
    EXPECT_TRUE(run_command({"identify", "-"}, json).err.starts_with(form + "fits no root; "));
    auto const packed = run_command({"verify", "-"}, "\x1F\x8B\x08"s);
    EXPECT_TRUE(
        packed.err.starts_with("bradep: standard input: is compressed by gzip, fits no root"))
        << packed.err;
}

/// More bytes than the stream's buffer holds, so that not only the last flush fails.
TEST(FullStandardOutput, ReportsTheReasonWhateverTheCommand) {
    Scratch const scratch;
    std::string   results = "{}";
    for (int i = 0; i < 2000; ++i) results += R"(,{"message": {"text": "m"}})";
    write_bytes(scratch / "log", log_with(results));
    auto const set = (scratch / "set").string();
    ASSERT_EQ(run_command({"import", (scratch / "log").string(), "-o", set}).code, 0);
    write_bytes(scratch / "json", run_command({"dump", set}).out);
    write_bytes(scratch / "odd", "x");
    std::string const odd = "--root Answers_Answer odd";
    for (std::string const& args :
         {std::string("import log -o -"), std::string("encode json -o -"),
          std::string("canon set -o -"), std::string("dump set"), std::string("show --json set"),
          "dump " + odd, "verify " + odd + " odd"}) {
        std::string const command = "cd '" + scratch.path().string() +
                                    "' && '" BRADEP_COMMAND "' " + args + " > /dev/full 2> err";
        int const status = std::system(command.c_str());
        ASSERT_TRUE(WIFEXITED(status));
        EXPECT_EQ(WEXITSTATUS(status), 2) << args;
        EXPECT_TRUE(
            bytes_of(scratch / "err")
                .ends_with("bradep: cannot write standard output: No space left on device\n"))
            << args << ": " << bytes_of(scratch / "err");
    }
}

TEST(VerifyCommand, AFileThatTakesTooMuchMemoryHindersNoOther) {
    Scratch const          scratch;
    auto const             large = (scratch / "large").string();
    auto const             good = (scratch / "good").string();
    constexpr std::int32_t count = 20'000;
    std::string            bytes = word(count);
    for (std::int32_t id = 1; id <= count; ++id)
        bytes += word(-id) + word(sizeof id) + word(id) + word(0);
    write_bytes(large, bytes);
    write_bytes(good, two_sets());
    auto const outcome =
        run_command({"verify", "--root", sets, "--max-own-memory", "64K", large, good});
    EXPECT_EQ(outcome.code, 2);
    EXPECT_EQ(outcome.err, "bradep: " + large +
                               ": out of memory: more working memory than --max-own-memory "
                               "allows\n");
    EXPECT_TRUE(outcome.out.starts_with(good + ": good\n")) << outcome.out;
}

// The count of a set can look like the start of UTF-16 or UTF-32 text.
TEST(VerifyCommand, ACountIsNoText) {
    for (std::int32_t const count : {123, 123 << 8}) {
        auto const err = run_command({"show", "-"}, word(count) + word(0)).err;
        EXPECT_FALSE(contains(err, "UTF-")) << err;
    }
}

TEST(ChosenRoot, FirstThatFitsIsTakenAndTheOthersAreReported) {
    std::string const printed =
        "bradep: standard input: read as Answers_Answer; it also fits Answers_Context\n";
    auto const verified = run_command({"verify", "-"}, "T");
    EXPECT_EQ(verified.code, 0);
    EXPECT_TRUE(contains(verified.out, "  root      Answers_Answer\n"));
    EXPECT_EQ(verified.err, printed);
    expect_outcome(run_command({"dump", "-"}, "T"), 0,
                   "{\"root\":\"Answers_Answer\",\"value\":{\"flag\":true}}\n", printed);
    EXPECT_EQ(run_command({"digest", "-"}, "T").err, printed);
    EXPECT_EQ(run_command({"canon", "-", "-o", "-"}, "T").err, printed);
}

TEST(ChosenRoot, OnlyOneThatFitsIsNotReported) {
    EXPECT_EQ(run_command({"verify", "-"}, imported_flows()).err, "");
}

TEST(ChosenRoot, IsReportedOnceForAllFilesAndNotWhenQuiet) {
    Scratch const scratch;
    auto const    first = (scratch / "a").string();
    auto const    second = (scratch / "b").string();
    write_bytes(first, "T");
    write_bytes(second, "F");
    auto const printed =
        "bradep: " + first + ": read as Answers_Answer; it also fits Answers_Context\n";
    EXPECT_EQ(run_command({"verify", first, second}).err, printed);
    EXPECT_EQ(run_command({"digest", first, second}).err, printed);
    for (std::string const command : {"verify", "digest", "dump"})
        EXPECT_EQ(run_command({command, "-q", first}).err, "") << command;
}

TEST(ChosenRoot, OfDamagedBytesIsTheOneThatCameFurthest) {
    std::string bytes = imported_flows();
    bytes.pop_back();
    sml::inspect::Candidate const best = sml::inspect::identify(bytes).front();
    ASSERT_EQ(best.root->stem, result_set);
    std::string const printed = "bradep: standard input: fits no root; read as "s + result_set +
                                ", which came furthest, to byte " + std::to_string(best.walked) +
                                " of " + std::to_string(bytes.size()) + "\n";
    for (auto const& args : std::vector<std::vector<std::string>>{
             {"verify", "-"}, {"dump", "-"}, {"digest", "-"}, {"canon", "-", "-o", "-"}}) {
        auto const outcome = run_command(args, bytes);
        EXPECT_EQ(outcome.code, 1) << args.front();
        EXPECT_TRUE(outcome.err.starts_with(printed)) << outcome.err;
    }
}

TEST(DumpCommand, PrintsJson) {
    expect_outcome(run_command({"dump", "--root", sets, "-"}, two_sets()), 0,
                   "{\"root\":\"String_To_StringSet_T\","
                   "\"value\":[[\"b\",[\"z\",\"a\"]],[\"a\",[]]]}\n",
                   "");
    auto const pretty = run_command({"dump", "--pretty", "--root", "Answers_Context", "-"}, "T");
    EXPECT_EQ(pretty.out,
              "{\n  \"root\": \"Answers_Context\",\n  \"value\": {\n    \"flag\": true\n  }\n}\n");
}

TEST(DumpCommand, PrintsAPart) {
    expect_outcome(
        run_command({"dump", "--root", sets, "--select", R"(["b"][1])", "-"}, two_sets()), 0,
        "{\"root\":\"String_To_StringSet_T\",\"path\":\"[\\\"b\\\"][1]\",\"value\":\"a\"}\n", "");
    expect_outcome(
        run_command({"dump", "--root", sets, "--select", R"(["b"][2])", "-"}, two_sets()), 1, "",
        "bradep: standard input: there is no [2] in [\"b\"]\n");
}

TEST(DumpCommand, TakesTheNumberOfAnEntryForItsKey) {
    auto const selected = [](std::string const& path) {
        return run_command({"dump", "--root", sets, "--select", path, "-"}, two_sets());
    };
    EXPECT_EQ(selected("[#0]").out,
              "{\"root\":\"String_To_StringSet_T\",\"path\":\"[#0]\",\"value\":[\"z\",\"a\"]}\n");
    EXPECT_EQ(selected("[#0][1]").out,
              "{\"root\":\"String_To_StringSet_T\",\"path\":\"[#0][1]\",\"value\":\"a\"}\n");
    EXPECT_EQ(selected("[#1].key").out,
              "{\"root\":\"String_To_StringSet_T\",\"path\":\"[#1].key\",\"value\":\"a\"}\n");
    expect_outcome(selected("[#2]"), 1, "",
                   "bradep: standard input: there is no [#2] in the root\n");
    expect_outcome(selected("[#1][0]"), 1, "", "bradep: standard input: there is no [0] in [#1]\n");
    auto const lines = run_command({"dump", "--root", sets, "--ndjson", "[#0]", "-"}, two_sets());
    EXPECT_EQ(lines.out, "\"z\"\n\"a\"\n");
}

TEST(DumpCommand, AKeyInAPathMayHaveQuotesAndBrackets) {
    auto const bytes = hex::bytes("01 00 00 00  FF FF FF FF 03 00 00 00 'a\"]'  00 00 00 00");
    auto const selected =
        run_command({"dump", "--root", sets, "--select", R"(["a\"]"])", "-"}, bytes);
    EXPECT_EQ(
        selected.out,
        "{\"root\":\"String_To_StringSet_T\",\"path\":\"[\\\"a\\\\\\\"]\\\"]\",\"value\":[]}\n")
        << selected.err;
}

TEST(DumpCommand, AnIndexIsAKeyWhereKeysAreNumbers) {
    std::string const stem = "Base_Gui_Internal_Form_Datas_InfoId_To_Info_Definition_Table_T";
    std::string const json = R"({"root":")" + stem + R"(","value":[]})";
    auto const        bytes = run_command({"encode", "-", "-o", "-"}, json).out;
    expect_outcome(run_command({"dump", "--root", stem, "--select", "[3]", "-"}, bytes), 1, "",
                   "bradep: standard input: there is no [3] in the root\n");
}

TEST(DumpCommand, AStepThatDoesNotFitIsReported) {
    auto const printed = [](std::string const& path) {
        auto const outcome = run_command({"dump", "--select", path, "-"}, imported_flows());
        EXPECT_EQ(outcome.code, 1) << path;
        EXPECT_EQ(outcome.out, "") << path;
        auto const line = outcome.err.rfind("bradep: standard input: " + path + ": ");
        return line == std::string::npos ? outcome.err
                                         : outcome.err.substr(line + 24 + path.size() + 2);
    };
    std::string const checks = "application_results.checks";
    EXPECT_EQ(printed("aplication_results"),
              "aplication_results at the start, where a field belongs; the nearest is "
              "application_results\n");
    EXPECT_EQ(printed(checks + "[3]"), "[3] after " + checks +
                                           ", where a key belongs, as [(\"...\",0)], or the number "
                                           "of an entry, as [#0]\n");
    EXPECT_TRUE(printed(checks + "[(\"a.c\",1)").starts_with("[(\"a.c\",1) after " + checks));
    EXPECT_TRUE(printed(checks + ".first").starts_with("first after " + checks + ", where a key"));
    EXPECT_EQ(printed("check_data[0].2"),
              "2 after check_data[0], where a part from .0 to .1 belongs\n");
    EXPECT_EQ(printed("check_data.0"), "0 after check_data, where an index belongs, as [0]\n");
    EXPECT_EQ(printed("check_data[(\"a\",1)]"),
              "[(\"a\",1)] after check_data, where an index belongs, as [0]\n");
    EXPECT_EQ(printed("check_data[0].1.category.OVL"),
              "OVL after check_data[0].1.category, where an arm with a payload belongs; the "
              "nearest is OVFL\n");
    EXPECT_EQ(printed("check_data[0].0.x"),
              "x after check_data[0].0, where nothing more belongs\n");
    EXPECT_EQ(printed("check_data[0]."),
              "nothing after check_data[0], where a part from .0 to .1 belongs\n");
    EXPECT_EQ(printed("check_data[0]1"), "1 after check_data[0], where a dot belongs\n");
    EXPECT_EQ(printed(".check_data"), "check_data at the start, where no dot belongs\n");
}

TEST(DumpCommand, AnotherArmIsReported) {
    auto const outcome = run_command(
        {"dump", "--root", result_set, "--select", "check_data[0].1.category.OVFL.ovfl_data", "-"},
        imported_flows());
    expect_outcome(outcome, 1, "",
                   "bradep: standard input: there is no OVFL in check_data[0].1.category\n");
}

TEST(DumpCommand, PrintsLines) {
    expect_outcome(run_command({"dump", "--root", sets, "--ndjson", "", "-"}, two_sets()), 0,
                   "[\"b\",[\"z\",\"a\"]]\n[\"a\",[]]\n", "");
    expect_outcome(run_command({"dump", "--root", sets, "--ndjson", R"(["b"])", "-"}, two_sets()),
                   0, "\"z\"\n\"a\"\n", "");
    expect_outcome(
        run_command({"dump", "--root", sets, "--ndjson", R"(["b"][0])", "-"}, two_sets()), 1, "",
        "bradep: standard input: [\"b\"][0] is no list, set or map\n");
}

TEST(DumpCommand, FormsExcludeOneAnother) {
    for (auto const& args :
         std::vector<std::vector<std::string>>{{"dump", "--ndjson", "a", "--pretty", "-"},
                                               {"dump", "--ndjson", "a", "--select", "a", "-"}}) {
        auto const outcome = run_command(args, "T");
        EXPECT_EQ(outcome.code, 2);
        EXPECT_EQ(outcome.out, "");
    }
}

TEST(DumpCommand, OddBytesAreCodeZero) {
    expect_outcome(run_command({"dump", "--root", "Answers_Context", "-"}, "x"), 0,
                   "{\"root\":\"Answers_Context\",\"value\":{\"flag\":false}}\n",
                   "bradep: standard input: byte 0 at flag: expected T or F, found 'x' (odd)\n");
}

TEST(DumpCommand, UnsafeBytesAreCodeOneWithAllThatCameBefore) {
    std::string const cut = two_sets().substr(0, 30);
    expect_outcome(
        run_command({"dump", "--root", sets, "-"}, cut), 1,
        "{\"root\":\"String_To_StringSet_T\",\"value\":[[\"b\",[\"z\","
        "{\"unsafe\":{\"offset\":30,\"expected\":\"the length of a string\","
        "\"found\":\"the end of the bytes\"}}]]]}\n",
        "bradep: standard input: byte 30 at [\"b\"][1]: expected the length of a string, "
        "found the end of the bytes (unsafe)\n");
}

TEST(DumpCommand, FullStandardOutputIsCodeTwo) {
    Scratch const scratch;
    write_bytes(scratch / "bytes", two_sets());
    std::string const command = "'" BRADEP_COMMAND "' dump --root String_To_StringSet_T '" +
                                (scratch / "bytes").string() + "' > /dev/full 2> '" +
                                (scratch / "err").string() + "'";
    int const status = std::system(command.c_str());
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 2);
    EXPECT_EQ(bytes_of(scratch / "err"),
              "bradep: cannot write standard output: No space left on device\n");
}

std::string json_of(std::string const& bytes) {
    return run_command({"dump", "--root", sets, "-"}, bytes).out;
}

TEST(EncodeCommand, WritesTheBytesAgain) {
    Scratch const scratch;
    auto const    target = (scratch / "out").string();
    expect_outcome(run_command({"encode", "-", "-o", target}, json_of(two_sets())), 0, "", "");
    EXPECT_EQ(bytes_of(target), two_sets());
    write_bytes(scratch / "in.json", json_of(two_sets()));
    expect_outcome(run_command({"encode", (scratch / "in.json").string(), "-o", "-"}), 0,
                   two_sets(), "");
}

TEST(EncodeCommand, BadJsonIsCodeOneAndLeavesNoFile) {
    Scratch const     scratch;
    auto const        target = (scratch / "out").string();
    std::string const json = "{\"root\":\"Answers_Context\",\n \"value\":{\"flag\":1}}";
    std::string const printed =
        "bradep: standard input:2:18 at flag: expected true or false, found the number 1\n";
    expect_outcome(run_command({"encode", "-", "-o", target}, json), 1, "", printed);
    EXPECT_TRUE(scratch.names().empty());
    write_bytes(target, "old");
    expect_outcome(run_command({"encode", "-", "-o", target}, json), 1, "", printed);
    EXPECT_EQ(bytes_of(target), "old");
    EXPECT_EQ(scratch.names().size(), 1U);
    expect_outcome(run_command({"encode", "-", "-o", "-"}, json), 1, "", printed);
}

TEST(EncodeCommand, FileAndPlaceAreReportedWhereThereIsNoPath) {
    Scratch const scratch;
    auto const    file = (scratch / "in.json").string();
    write_bytes(file, "{}");
    expect_outcome(run_command({"encode", file, "-o", "-"}), 1, "",
                   "bradep: " + file + ":1:2: expected the member \"root\", found the end\n");
}

TEST(EncodeCommand, DepthIsLimited) {
    std::string const json = json_of(two_sets());
    EXPECT_EQ(run_command({"encode", "--max-depth", "2", "-", "-o", "-"}, json).code, 0);
    EXPECT_EQ(run_command({"encode", "--max-depth", "1", "-", "-o", "-"}, json).code, 1);
}

TEST(EncodeCommand, HeapOfAReaderIsLimited) {
    std::string const json = json_of(two_sets());
    EXPECT_EQ(run_command({"encode", "--max-memory", "1M", "-", "-o", "-"}, json).code, 0);
    EXPECT_EQ(run_command({"encode", "--max-memory", "100", "-", "-o", "-"}, json).code, 1);
}

TEST(EncodeCommand, TroubleIsCodeTwo) {
    Scratch const scratch;
    EXPECT_EQ(run_command({"encode", "-"}, "{}").code, 2);
    EXPECT_EQ(run_command({"encode", "/no/such", "-o", "-"}).code, 2);
    auto const full = run_command({"encode", "-", "-o", "/dev/full"}, json_of(two_sets()));
    EXPECT_EQ(full.code, 2);
    EXPECT_EQ(full.err, "bradep: cannot write /dev/full: No space left on device\n");
    EXPECT_EQ(
        run_command({"encode", "-", "-o", (scratch / "no/out").string()}, json_of(two_sets())).code,
        2);
    EXPECT_TRUE(scratch.names().empty());
}

TEST(IdentifyCommand, PrintsTheRootsThatFitGoodOnesFirst) {
    expect_outcome(run_command({"identify", "-"}, "T"), 0, "Answers_Answer\nAnswers_Context\n", "");
    // The bytes are good as a reference and odd as a map, whose root comes first in the list of
    // roots.
    expect_outcome(
        run_command({"identify", "-"}, hex::bytes("01 00 00 00  05 00 00 00  00 00 00 00")), 0,
        "Interrogators_AnswerRef\nInterrogators_ContextRef\nInterrogators_FunctionRef\n"
        "Interrogators_InterrogatorRef\nInterrogators_QuestionRef\nInterrogators_RepositoryRef\n"
        "String_To_StringSet_T\n",
        "");
    EXPECT_EQ(run_command({"identify", "-"}, imported_flows()).out, result_set + "\n"s);
}

TEST(IdentifyCommand, NothingThatFitsIsCodeOneAndTheFurthestIsReported) {
    std::string bytes = imported_flows();
    bytes.pop_back();
    auto const best = sml::inspect::identify(bytes).front();
    ASSERT_EQ(best.root->stem, result_set);
    expect_outcome(run_command({"identify", "-"}, bytes), 1, "",
                   "bradep: standard input: fits no root; "s + result_set +
                       " came furthest, to byte " + std::to_string(best.walked) + " of " +
                       std::to_string(bytes.size()) + "\n");
    auto const empty = run_command({"identify", "-"}, "");
    EXPECT_EQ(empty.code, 1);
    EXPECT_EQ(empty.out, "");
}

TEST(CanonCommand, WritesBytesThatAreGoodAndStay) {
    Scratch const scratch;
    auto const    target = (scratch / "out").string();
    expect_outcome(run_command({"canon", "--root", sets, "-", "-o", target}, two_sets()), 0, "",
                   "");
    std::string const canonical = bytes_of(target);
    EXPECT_EQ(canonical, hex::bytes("02 00 00 00  FF FF FF FF 01 00 00 00 'a'  00 00 00 00"
                                    "FE FF FF FF 01 00 00 00 'b'  02 00 00 00  01 00 00 00"
                                    "FD FF FF FF 01 00 00 00 'z'"));
    EXPECT_EQ(run_command({"verify", "--strict", "--root", sets, target}).code, 0);
    expect_outcome(run_command({"canon", "--root", sets, target, "-o", "-"}), 0, canonical, "");
}

TEST(CanonCommand, UnsafeAndOtherOddBytesAreCodeOneAndLeaveNoFile) {
    Scratch const     scratch;
    auto const        target = (scratch / "out").string();
    std::string const unsafe = two_sets() + "x";
    std::string const no_form = "bradep: standard input: no canonical form: ";
    auto const        canon = [&](std::string const& stem, std::string const& bytes) {
        return run_command({"canon", "--root", stem, "-", "-o", target}, bytes);
    };
    expect_outcome(canon(sets, unsafe), 1, "",
                   no_form + "byte 43: expected the end of the bytes, found 1 more bytes\n");
    expect_outcome(canon("Answers_Context", "x"), 1, "",
                   no_form + "byte 0 at flag: expected T or F, found 'x'\n");
    EXPECT_TRUE(scratch.names().empty());
    write_bytes(target, "old");
    EXPECT_EQ(canon(sets, unsafe).code, 1);
    EXPECT_EQ(bytes_of(target), "old");
    EXPECT_EQ(scratch.names().size(), 1U);
}

TEST(CanonCommand, UnknownTagsAreNoHindrance) {
    std::string const unknown = hex::bytes("09 00 00 00  05 00 00 00 00 00 00 00");
    expect_outcome(
        run_command({"canon", "--root", "Interrogators_QuestionRef", "-", "-o", "-"}, unknown), 0,
        unknown, "");
}

TEST(CanonCommand, TroubleIsCodeTwo) {
    EXPECT_EQ(run_command({"canon", "-"}, "T").code, 2);
    EXPECT_EQ(run_command({"canon", "/no/such", "-o", "-"}).code, 2);
    EXPECT_EQ(run_command({"canon", "--root", sets, "-", "-o", "/dev/full"}, two_sets()).code, 2);
}

TEST(DigestCommand, IsThatOfTheCanonicalBytes) {
    std::string const known =
        "10712251a9cb7e34a1a3c0de5b267077e954319609c0ea063eb69d47c2308195  -\n";
    expect_outcome(run_command({"digest", "--root", sets, "-"}, two_sets()), 0, known, "");
    auto const canonical = run_command({"canon", "--root", sets, "-", "-o", "-"}, two_sets()).out;
    EXPECT_EQ(run_command({"digest", "--root", sets, "-"}, canonical).out, known);
    EXPECT_EQ(run_command({"digest", "--root", sets, "-"}, two_sets() + "x").code, 1);
    EXPECT_EQ(run_command({"digest", "--root", "Answers_Context", "-"}, "x").code, 1);
    EXPECT_EQ(run_command({"digest", "/no/such"}).code, 2);
}

TEST(SchemaCommand, DiffWithItselfFindsNothing) {
    Scratch const scratch;
    auto const    file = (scratch / "old.json").string();
    auto const    printed = run_command({"schema"});
    EXPECT_EQ(printed.code, 0);
    EXPECT_EQ(printed.err, "");
    write_bytes(file, printed.out);
    expect_outcome(run_command({"schema", "--diff", file}), 0, "", "");
    EXPECT_EQ(run_command({"schema", "--diff", ""}).code, 2);
    expect_outcome(run_command({"schema", "--diff", "-"}, printed.out), 0, "", "");
}

TEST(SchemaCommand, DiffListsWhatBreaksAndIsCodeOne) {
    std::string       old = run_command({"schema"}).out;
    std::string const name = "\"MODE_RANDOM\"";
    std::size_t const at = old.find(name);
    ASSERT_NE(at, std::string::npos);
    std::size_t const before = old.rfind(',', at);
    old.erase(before, at + name.size() - before);
    auto const outcome = run_command({"schema", "--diff", "-"}, old);
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out,
              "sml::Variable_Value::T_Init_Mode: with the new enumerator MODE_RANDOM tags move: "
              "MODE_USER_INIT 2 -> 3\n");
}

TEST(SchemaCommand, DiffWithNoSchemaIsCodeOne) {
    EXPECT_EQ(run_command({"schema", "--diff", "-"}, "{").code, 1);
    expect_outcome(run_command({"schema", "--diff", "-"}, "{}"), 1, "",
                   "bradep: standard input: not a schema: the member \"types\" is missing\n");
    EXPECT_EQ(run_command({"schema", "--diff", "/no/such"}).code, 2);
    EXPECT_EQ(run_command({"schema", "--diff", "-", "--root", sets}, "{}").code, 2);
}

/// The outcome of `schema --diff` with an old schema that has one more root, whose type is deeply
/// nested.
Outcome diff_with_nested_type(std::string const& kind, std::string const& innermost) {
    constexpr int depth = 990;  // of the 1000 that the parser allows
    std::string   type;
    for (int i = 0; i < depth; ++i) type += "{\"" + kind + "\":";
    type += innermost + std::string(depth, '}');
    std::string       old = run_command({"schema"}).out;
    std::string const roots = R"("roots": [)";
    auto const        at = old.find(roots);
    EXPECT_NE(at, std::string::npos) << old.substr(0, 200);
    old.insert(at + roots.size(),
               R"({"stem": "Integers64_T", "type": )" + type + R"(, "digest": "d"},)");
    return run_command({"schema", "--diff", "-"}, old);
}

TEST(SchemaCommand, DeeplyNestedTypesAreNoHindrance) {
    auto const printed = diff_with_nested_type("list", R"("int64")");
    EXPECT_EQ(printed.code, 1);
    EXPECT_EQ(printed.err, "");
    EXPECT_TRUE(printed.out.starts_with("the root Integers64_T: was list<list<")) << printed.out;
    EXPECT_TRUE(contains(printed.out, "<int64>>>"));
    auto const wrong = diff_with_nested_type("boxed", R"({"none": 5})");
    EXPECT_EQ(wrong.code, 1);
    EXPECT_EQ(wrong.out, "");
    EXPECT_TRUE(wrong.err.starts_with("bradep: standard input: /roots/0/type/boxed/boxed/"))
        << wrong.err;
    EXPECT_TRUE(wrong.err.ends_with("/boxed/boxed: not a schema: no type\n")) << wrong.err;
}

TEST(SchemaCommand, OneRootHasItsClosure) {
    auto const outcome = run_command({"schema", "--root", "Answers_Context"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_TRUE(contains(outcome.out, "\"stem\": \"Answers_Context\"")) << outcome.out;
    EXPECT_FALSE(contains(outcome.out, "T_Question")) << outcome.out;
}

TEST(RootsCommand, ListsAllStemsWithTheirTypes) {
    auto const outcome = run_command({"roots"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(std::count(outcome.out.begin(), outcome.out.end(), '\n'),
              std::ssize(sml::inspect::roots()));
    EXPECT_TRUE(outcome.out.starts_with("Integers64_T ")) << outcome.out;
    std::istringstream lines(outcome.out);
    for (sml::inspect::Root const& root : sml::inspect::roots()) {
        std::string line;
        std::getline(lines, line);
        EXPECT_TRUE(line.starts_with(std::string(root.stem) + " ")) << line;
    }
    EXPECT_TRUE(contains(outcome.out, "  sml::Interrogators::T_RepositoryRef\n"));
}

TEST(Limits, EachMakesBytesUnsafe) {
    auto const code = [](std::string const& option, std::string const& value) {
        return run_command({"verify", "--root", sets, option, value, "-"}, two_sets()).code;
    };
    EXPECT_EQ(code("--max-depth", "2"), 0);
    EXPECT_EQ(code("--max-depth", "1"), 1);
    EXPECT_EQ(code("--max-elements", "4"), 0);
    EXPECT_EQ(code("--max-elements", "3"), 1);
    EXPECT_EQ(code("--max-text", "1"), 0);
    EXPECT_EQ(code("--max-text", "0"), 1);
    EXPECT_EQ(code("--max-memory", "1M"), 0);
    EXPECT_EQ(code("--max-memory", "100"), 1);
    EXPECT_EQ(code("--max-depth", "1000"), 0);
    EXPECT_EQ(code("--max-depth", "1001"), 2);
    EXPECT_EQ(code("--max-depth", "0"), 2);
    EXPECT_EQ(code("--max-text", "x"), 2);
    for (char const* const amount : {"-1", "99999999999999999999", ""})
        for (char const* const option :
             {"--max-elements", "--max-text", "--max-memory", "--findings"})
            EXPECT_EQ(code(option, amount), 2) << option << ' ' << amount;
    EXPECT_EQ(code("--max-elements", "999999999999999999"),
              0);  // 18 digits fit into 64 bits; there is no suffix
    EXPECT_EQ(code("--max-elements", "1000000000000000000"), 2);
}

TEST(Limits, AreThereForEveryCommand) {
    for (auto const& args :
         std::vector<std::vector<std::string>>{{"dump", "--root", sets, "-"},
                                               {"canon", "--root", sets, "-", "-o", "-"},
                                               {"digest", "--root", sets, "-"}}) {
        auto limited = args;
        limited.insert(limited.end(), {"--max-depth", "1"});
        EXPECT_EQ(run_command(args, two_sets()).code, 0) << args.front();
        EXPECT_EQ(run_command(limited, two_sets()).code, 1) << args.front();
    }
    EXPECT_EQ(run_command({"identify", "--max-depth", "1", "-"}, two_sets()).code, 1);
    EXPECT_EQ(run_command({"show", "--max-depth", "1", "-"}, imported_flows()).code, 1);
}

TEST(InspectCommand, MissingFileIsCodeTwo) {
    for (char const* const command : {"verify", "dump", "identify", "digest", "show"})
        expect_outcome(run_command({command, "/no/such"}), 2, "",
                       "bradep: cannot read /no/such: No such file or directory\n");
}

TEST(InspectCommand, MissingArgumentIsCodeTwo) {
    for (char const* const command : {"verify", "dump", "identify", "digest", "canon", "encode"}) {
        auto const outcome = run_command({command});
        EXPECT_EQ(outcome.code, 2) << command;
        EXPECT_EQ(outcome.out, "");
    }
}

TEST(InspectCommand, HelpListsTheOptionsAndExitCodes) {
    struct Help {
        char const* command;
        char const* part;
    };
    for (Help const& help :
         {Help{"verify", "--strict"}, Help{"dump", "--ndjson"}, Help{"dump", "--select"},
          Help{"encode", "--output"}, Help{"identify", "--max-depth"}, Help{"canon", "--output"},
          Help{"digest", "--root"}, Help{"schema", "--diff"},
          Help{"roots", "List the root types"}}) {
        auto const outcome = run_command({help.command, "--help"});
        // Printed once, on a line of its own.
        std::size_t const codes = outcome.out.find("\nExit codes: 0 done");
        EXPECT_NE(codes, std::string::npos) << outcome.out;
        EXPECT_EQ(outcome.out.find("Exit codes:"), codes + 1) << outcome.out;
        EXPECT_EQ(outcome.out.rfind("Exit codes:"), codes + 1) << outcome.out;
        EXPECT_EQ(outcome.code, 0);
        EXPECT_TRUE(contains(outcome.out, help.part)) << outcome.out;
        EXPECT_TRUE(contains(outcome.out, "Exit codes: 0 done, 1 ")) << outcome.out;
    }
}

/// The logs that the tests of import can read: the fixtures and those in BRADEP_SARIF_DIRS.
std::vector<fs::path> logs_in_reach() {
    std::vector<fs::path> logs = sound_logs();
    char const* const     directories = std::getenv("BRADEP_SARIF_DIRS");
    std::istringstream    names(directories == nullptr ? "" : directories);
    for (std::string name; std::getline(names, name, ':');)
        if (!name.empty())
            for (auto const& entry : fs::directory_iterator(name))
                if (entry.path().extension() == ".sarif") logs.push_back(entry.path());
    return logs;
}

TEST(Import, WhatItWritesIsGood) {
    std::size_t good = 0;
    for (fs::path const& log : logs_in_reach()) {
        SCOPED_TRACE(log);
        auto const made = run_command({"import", log.string(), "-o", "-"});
        if (made.code != 0 && log.filename().string().starts_with("bad-")) continue;
        ASSERT_EQ(made.code, 0) << made.err;
        auto const verified =
            run_command({"verify", "--strict", "--root", result_set, "-"}, made.out);
        EXPECT_EQ(verified.code, 0);
        EXPECT_EQ(verified.err, "");
        EXPECT_TRUE(verified.out.starts_with("standard input: good\n")) << verified.out;
        ++good;
    }
    EXPECT_GE(good, sound_logs().size());
    EXPECT_GT(good, 5U);
}

/// A result set with a double and with a float.
std::string numbers() {
    sml::Application_Results::T_Application_Results results;
    auto& fields = results.infos[{sml::Strings_T("k"), 1}].category.choose<"VORS">().fields;
    auto& value = fields[sml::Strings_T("f")].second.choose<"Field_Scalar">();
    value.type.choose<"Inf_Type_Ada_Float">().first_double = 0.5;
    auto& interval = value.range.choose<"Value_Range">().intervals.emplace_back();
    auto& real = interval.choose<"Real_Interval">();
    mpfr_set_d(real.lower.number(), 1.5, MPFR_RNDN);
    mpfr_set_d(real.upper.number(), 1.5, MPFR_RNDN);
    return sml::Application_Results_Application_Results_fromCxx(results);
}

TEST(CommaLocale, ChangesNoVerdictNoDumpAndNoEncoding) {
    std::string const stem = "Application_Results_Application_Results";
    std::string const bytes = numbers();
    auto const        verified = run_command({"verify", "--root", stem, "-"}, bytes);
    auto const        dumped = run_command({"dump", "--root", stem, "-"}, bytes);
    EXPECT_TRUE(contains(dumped.out, "\"first_double\":0.5,")) << dumped.out;
    EXPECT_TRUE(contains(dumped.out, R"({"width":64,"hex":"0X1.8P+0"})")) << dumped.out;
    CommaLocale const comma;
    ASSERT_COMMA_LOCALE(comma);
    auto const again = run_command({"verify", "--root", stem, "-"}, bytes);
    EXPECT_EQ(again.out, verified.out);
    EXPECT_EQ(again.err, verified.err);
    EXPECT_EQ(run_command({"dump", "--root", stem, "-"}, bytes).out, dumped.out);
    EXPECT_EQ(run_command({"encode", "-", "-o", "-"}, dumped.out).out, bytes);
    std::string odd = bytes;
    odd[odd.find("0.500000") + 1] = ',';
    auto const with_comma = run_command({"verify", "--root", stem, "-"}, odd);
    EXPECT_TRUE(
        contains(with_comma.err,
                 R"(found "0,500000", as a writer spells it where the decimal point is "," (odd))"))
        << with_comma.err;
}

// Bytes of a process with a decimal comma are read, shown and made canonical if --decimal-point
// says so.
TEST(CommaLocale, BytesOfACommaProcessAreTakenWithTheirDecimalPoint) {
    std::string const stem = "Application_Results_Application_Results";
    std::string const with_dot = numbers();
    std::string       with_comma;
    {
        CommaLocale const comma;
        ASSERT_COMMA_LOCALE(comma);
        with_comma = numbers();
    }
    ASSERT_NE(with_comma, with_dot);
    std::vector<std::string> const as_comma = {"--decimal-point", ",", "--root", stem, "-"};
    auto const                     run = [&](std::string const& command, std::string const& bytes) {
        std::vector<std::string> args{command};
        args.insert(args.end(), as_comma.begin(), as_comma.end());
        return run_command(args, bytes);
    };
    auto const verified = run_command({"verify", "--root", stem, "-"}, with_dot);
    EXPECT_EQ(run("verify", with_comma).out, verified.out);
    EXPECT_EQ(run("verify", with_comma).err, verified.err);
    EXPECT_EQ(run("dump", with_comma).out,
              run_command({"dump", "--root", stem, "-"}, with_dot).out);
    auto const digest = run_command({"digest", "--root", stem, "-"}, with_dot);
    EXPECT_EQ(run("digest", with_comma).out, digest.out);
    EXPECT_EQ(digest.code, 0) << digest.err;
    // Without the right --decimal-point, the bytes are odd or have no canonical form.
    EXPECT_TRUE(contains(run_command({"verify", "--root", stem, "-"}, with_comma).err, "(odd)"));
    EXPECT_EQ(run_command({"digest", "--root", stem, "-"}, with_comma).code, 1);
    EXPECT_TRUE(contains(run("verify", with_dot).err, R"(where the decimal point is ".")"));
}

TEST(CommaLocale, ShowTakesTheDecimalPoint) {
    auto const set_of = [] {
        sml::Base_Gui_Internal_Form_Datas::T_Aggregated_Results set;
        sml::Application_Results_Application_Results_toCxx(set.application_results,
                                                           std::string(numbers()).data());
        return sml::Base_Gui_Internal_Form_Datas_Aggregated_Results_T_fromCxx(set);
    };
    std::string const with_dot = set_of();
    std::string       with_comma;
    {
        CommaLocale const comma;
        ASSERT_COMMA_LOCALE(comma);
        with_comma = set_of();
    }
    ASSERT_NE(with_comma, with_dot);
    auto const plain = run_command({"show", "-"}, with_dot);
    auto const shown = run_command({"show", "--decimal-point", ",", "-"}, with_comma);
    EXPECT_EQ(plain.code, 0) << plain.err;
    EXPECT_EQ(shown.code, 0) << shown.err;
    EXPECT_EQ(shown.err, plain.err);
    EXPECT_TRUE(contains(run_command({"show", "-"}, with_comma).err, "0,500000"));
}

TEST(CommaLocale, ADecimalPointIsNoDigitLetterOrSign) {
    for (char const* point : {"", "1", "e", "-", " ", ".5"})
        EXPECT_EQ(run_command({"verify", "--decimal-point", point, "-"}, "").code, 2) << point;
}

/// A map with a set of strings for one key: 20,000 back-references to ids without a definition.
std::string unknown_ids() {
    std::string bytes = hex::bytes("01 00 00 00  FF FF FF FF 01 00 00 00 'k'");
    auto const  put = [&](std::int32_t word) {
        bytes.append(reinterpret_cast<char const*>(&word), sizeof word);
    };
    put(20'000);
    for (std::int32_t i = 2; i < 20'002; ++i) put(i * 20753);
    return bytes;
}

TEST(Limits, WorkBeyondTheLimitIsUnsafe) {
    auto const verified = [](char const* most) {
        return run_command({"verify", "--root", "String_To_StringSet_T", "--max-work", most, "-"},
                           unknown_ids());
    };
    EXPECT_EQ(verified("1000000000").code, 0);
    auto const refused = verified("1000000");
    EXPECT_EQ(refused.code, 1);
    EXPECT_TRUE(contains(refused.err, "at most 1000000 comparisons of keys by a reader"))
        << refused.err;
    EXPECT_TRUE(contains(refused.out, "unsafe")) << refused.out;
}

TEST(Limits, OwnMemoryBeyondTheLimitIsCodeTwoAndOneLine) {
    for (std::string const command : {"verify", "dump", "digest", "identify"}) {
        SCOPED_TRACE(command);
        std::vector<std::string> args{command, "--max-own-memory", "64K", "-"};
        if (command != "identify") args.insert(args.end(), {"--root", "String_To_StringSet_T"});
        auto const refused = run_command(args, unknown_ids());
        EXPECT_EQ(refused.code, 2);
        bool const takes_several = command == "verify" || command == "digest";
        EXPECT_EQ(refused.err,
                  std::string("bradep: ") + (takes_several ? "standard input: " : "") +
                      "out of memory: more working memory than --max-own-memory allows\n");
    }
}

}  // namespace
