#include <sml/bindings/bindings.hpp>
#include <sml/tables/sqlite/connection.hpp>
#include "cli_support.hpp"
#include "result_set.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace cli_test;

std::string finding(std::string const& rule, std::string const& message, int line,
                    std::string const& more = "") {
    return R"({"ruleId": ")" + rule + R"(", "message": {"text": ")" + message +
           R"("}, "locations": [{"physicalLocation": {"artifactLocation": {"uri": "src/a.c"},)"
           R"( "region": {"startLine": )" +
           std::to_string(line) + "}}}]" + more + "}";
}

class Track : public testing::Test {
protected:
    std::string log(std::string const& name, std::string const& results) {
        write_bytes(scratch_ / name, log_with(results));
        return scratch_ / name;
    }

    Outcome track(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"track", series_});
        return run_command(arguments);
    }
    std::string printed(std::vector<std::string> const& arguments) const {
        auto const done = track(arguments);
        EXPECT_EQ(done.err, "");
        EXPECT_EQ(done.code, 0);
        return done.out;
    }
    Outcome stats(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"stats", series_});
        return run_command(arguments);
    }
    std::string counts() const { return printed({"--format", "csv", "--no-header"}); }
    std::string ids(std::string const& state) const {
        std::istringstream lines(printed({"--list", state, "--format", "csv", "--no-header"}));
        std::string        all;
        for (std::string line; std::getline(lines, line);)
            all += line.substr(0, line.find(',')) + ' ';
        return all;
    }
    std::string database() const { return series_ + "/track.db"; }
    void        change_database(std::string const& sql) const {
               sml::tables::Connection(database()).run(sql);
    }

    Scratch     scratch_;
    std::string series_ = scratch_ / "series";
};

// "a" is always there, "b" is in the first and the third run, "c" in the second one.
class TrackOfThreeRuns : public Track {
protected:
    TrackOfThreeRuns() {
        lines_ = printed({log("one", a(3) + "," + b(8)), log("two", a(5) + "," + c(9)),
                          log("three", a(6) + "," + b(12))});
    }
    static std::string a(int line) { return finding("leak", "p leaks", line); }
    static std::string b(int line) { return finding("zero", "n is 0", line); }
    static std::string c(int line) { return finding("shadow", "q is hidden", line); }

    std::string lines_;
};

TEST_F(TrackOfThreeRuns, EachRunIsPrintedOnALine) {
    EXPECT_EQ(lines_, "run 1: 2 open, 2 new, 0 returned, 0 fixed, 0 suppressed (" +
                          std::string(scratch_ / "one") + ")\n" +
                          "run 2: 2 open, 1 new, 0 returned, 1 fixed, 0 suppressed (" +
                          std::string(scratch_ / "two") + ")\n" +
                          "run 3: 2 open, 0 new, 1 returned, 1 fixed, 0 suppressed (" +
                          std::string(scratch_ / "three") + ")\n");
    EXPECT_EQ(counts(), "1,2,2,0,0,0," + std::string(scratch_ / "one") + "\n2,2,1,0,1,0," +
                            std::string(scratch_ / "two") + "\n3,2,0,1,1,0," +
                            std::string(scratch_ / "three") + "\n");
}

TEST_F(TrackOfThreeRuns, IdentitiesStay) {
    EXPECT_EQ(ids("all"), "1 2 3 ");
    EXPECT_EQ(ids("open"), "1 2 ");
    EXPECT_EQ(ids("gone"), "3 ");
    EXPECT_EQ(ids("fixed"), "3 ");
    EXPECT_EQ(ids("returned"), "2 ");
    EXPECT_EQ(ids("new"), "");
    EXPECT_EQ(printed({"--list", "all"}),
              "id  state  first_run  last_run  level    rule    uri      line  message\n"
              "--  -----  ---------  --------  -------  ------  -------  ----  -----------\n"
              " 1  open           1         3  warning  leak    src/a.c     6  p leaks\n"
              " 2  open           1         3  warning  zero    src/a.c    12  n is 0\n"
              " 3  gone           2         2  warning  shadow  src/a.c     9  q is hidden\n");
    EXPECT_NE(printed({"--list", "returned", "--format", "json"})
                  .find(R"("id":2,"state":"open","first_run":1,"last_run":3,"gone_run":null,)"
                        R"("back_run":3,)"),
              std::string::npos);
}

TEST_F(TrackOfThreeRuns, RunThatIsThereAlreadyChangesNothing) {
    auto const before = bytes_of(database());
    auto const again = track({scratch_ / "two"});
    EXPECT_EQ(again.code, 0);
    EXPECT_EQ(again.out, "");
    EXPECT_EQ(again.err, "bradep: " + std::string(scratch_ / "two") + ": is in " + series_ +
                             " already, as run 2; not added (--again adds it)\n");
    EXPECT_EQ(bytes_of(database()), before);
    run_command({"import", scratch_ / "two", "-o", scratch_ / "set"});
    EXPECT_NE(track({scratch_ / "set"}).err.find("as run 2"), std::string::npos);
    EXPECT_EQ(track({scratch_ / "set", "--format", "csv", "--no-header"}).out, "");
    EXPECT_EQ(bytes_of(database()), before);
}

TEST_F(TrackOfThreeRuns, RunCanBeAddedAgain) {
    EXPECT_EQ(printed({scratch_ / "two", "--again", "--format", "csv"}),
              "run,open,new,returned,fixed,suppressed,name\n4,2,0,1,1,0," +
                  std::string(scratch_ / "two") + "\n");
    EXPECT_EQ(ids("open"), "1 3 ");
    EXPECT_NE(track({scratch_ / "two"}).err.find("as run 4"), std::string::npos);
}

TEST_F(TrackOfThreeRuns, ListOfAnAddedRunTakesThePlaceOfItsLine) {
    EXPECT_EQ(printed({log("four", b(1)), "--list", "fixed", "--format", "csv", "--no-header"})
                  .substr(0, 12),
              "1,gone,1,3,4");
}

TEST_F(TrackOfThreeRuns, DamagedRunChangesNothing) {
    auto const before = bytes_of(database());
    write_bytes(scratch_ / "bad", R"({"version": "2.1.0", "runs": [)");
    auto const refused = track({scratch_ / "bad"});
    EXPECT_EQ(refused.code, 1);
    EXPECT_EQ(refused.out, "");
    EXPECT_NE(refused.err.find("bad:1:"), std::string::npos) << refused.err;
    EXPECT_EQ(bytes_of(database()), before);
    EXPECT_EQ(track({scratch_ / "missing"}).code, 2);
    EXPECT_EQ(bytes_of(database()), before);
}

TEST_F(TrackOfThreeRuns, RunsBeforeADamagedOneStay) {
    write_bytes(scratch_ / "bad", R"({"version": "2.1.0", "runs": [)");
    auto const refused = track({log("four", b(1)), scratch_ / "bad", log("five", c(1))});
    EXPECT_EQ(refused.code, 1);
    EXPECT_EQ(refused.out.substr(0, 6), "run 4:");
    EXPECT_EQ(ids("open"), "2 ");
}

TEST_F(TrackOfThreeRuns, SeriesOfAnotherVersionIsRefused) {
    change_database("PRAGMA user_version = 7");
    auto const before = bytes_of(database());
    for (auto const& arguments : {std::vector<std::string>{}, {scratch_ / "one"}}) {
        auto const refused = track(arguments);
        EXPECT_EQ(refused.code, 1);
        EXPECT_EQ(refused.err,
                  "bradep: " + database() + ": is a series of version 7, not of version 2\n");
    }
    EXPECT_EQ(stats({}).code, 1);
    EXPECT_EQ(bytes_of(database()), before);
}

TEST_F(TrackOfThreeRuns, DamagedSeriesIsCalledSo) {
    auto bytes = bytes_of(database());
    std::fill(bytes.begin() + 4096, bytes.end(), '\x55');
    write_bytes(database(), bytes);
    for (auto const& arguments : {std::vector<std::string>{}, {log("four", b(1))}}) {
        auto const refused = track(arguments);
        EXPECT_EQ(refused.code, 1);
        EXPECT_EQ(refused.err,
                  "bradep: " + database() + ": is damaged (database disk image is malformed)\n");
    }
}

TEST_F(Track, OtherFileIsRefused) {
    fs::create_directory(series_);
    auto const set = log("set", "");
    change_database("CREATE TABLE t (a)");
    EXPECT_EQ(track({set}).err, "bradep: " + database() + ": is no series of runs\n");
    EXPECT_EQ(track({set}).code, 1);
    EXPECT_EQ(track({}).code, 1);
    write_bytes(database(), "some other file that is no database");
    EXPECT_EQ(track({set}).code, 1);
    EXPECT_EQ(track({}).err,
              "bradep: " + database() + ": is no series of runs (file is not a database)\n");
    EXPECT_EQ(bytes_of(database()), "some other file that is no database");
}

TEST_F(Track, SeriesThatIsMissingIsMadeByTheFirstRunAlone) {
    auto const missing = track({});
    EXPECT_EQ(missing.code, 2);
    EXPECT_EQ(missing.err, "bradep: cannot read " + database() + ": no such file; `bradep track " +
                               series_ + " SET...` makes it\n");
    write_bytes(scratch_ / "bad", "");
    EXPECT_EQ(track({scratch_ / "bad"}).code, 1);
    EXPECT_FALSE(fs::exists(series_));
    write_bytes(series_, "");
    EXPECT_EQ(track({log("set", "")}).code, 2);
}

TEST_F(Track, EmptyFileBecomesASeries) {
    fs::create_directory(series_);
    write_bytes(database(), "");
    EXPECT_EQ(printed({"--format", "csv"}), "run,open,new,returned,fixed,suppressed,name\n");
    EXPECT_EQ(stats({"--format", "csv"}).out, "run,open,new,returned,fixed,suppressed,name\n");
    EXPECT_EQ(printed({"--list", "all", "--format", "csv", "--no-header"}), "");
    EXPECT_EQ(stats({"--svg", "-"}).err, "bradep: " + database() + ": there are no runs\n");
    EXPECT_EQ(bytes_of(database()), "");
    EXPECT_EQ(printed({log("none", "")}).substr(0, 44),
              "run 1: 0 open, 0 new, 0 returned, 0 fixed, 0");
    printed({log("one", finding("r", "m", 1))});
    EXPECT_EQ(ids("new"), "1 ");
}

TEST_F(Track, SuppressedFindingsAreCountedApart) {
    std::string const suppressed = R"(, "suppressions": [{"kind": "x"}])";
    printed({log("1", finding("r", "m", 1) + "," + finding("s", "m", 2, suppressed)),
             log("2", finding("r", "m", 1, suppressed) + "," + finding("s", "m", 2)),
             log("3", finding("s", "m", 2)), log("4", finding("t", "m", 2, suppressed)),
             log("5", "")});
    std::istringstream lines(counts());
    std::string        columns;
    for (std::string line; std::getline(lines, line);) columns += line.substr(0, 11) + '\n';
    EXPECT_EQ(columns, "1,1,1,0,0,1\n2,1,0,0,0,1\n3,1,0,0,0,0\n4,0,0,0,1,1\n5,0,0,0,0,0\n");
    EXPECT_EQ(ids("gone"), "1 2 3 ");
}

TEST_F(Track, ListsAreAsLongAsTheCountsSay) {
    std::string const suppressed = R"(, "suppressions": [{"kind": "x"}])";
    auto const        all = [&](std::vector<std::string> const& rules, std::string const& hidden) {
        std::string text;
        for (std::string const& rule : rules)
            text += (text.empty() ? "" : ", ") +
                    finding(rule, "m", 1, hidden.find(rule) == std::string::npos ? "" : suppressed);
        return text;
    };
    std::string counted;
    std::string listed;
    int         number = 0;
    for (auto const& results : {all({"a", "b", "c", "d"}, "b"), all({"a", "d"}, "d"),
                                all({"b", "c", "d", "e", "f"}, "ceb"), all({"f"}, "")}) {
        auto const name = log(std::to_string(++number), results);
        counted += printed({name, "--format", "csv", "--no-header"});
        listed += std::to_string(number);
        for (char const* const state : {"open", "new", "returned", "fixed", "suppressed"})
            listed += ',' + std::to_string(std::ranges::count(ids(state), ' '));
        listed += ',' + name + '\n';
    }
    EXPECT_EQ(counted, listed);
    EXPECT_NE(counted.find("\n3,2,1,0,1,3,"), std::string::npos) << counted;
}

TEST_F(Track, AbsentFindingsAreNotThere) {
    std::string const absent = R"(, "baselineState": "absent")";
    printed({log("1", finding("r", "m", 1) + "," + finding("s", "m", 2, absent)),
             log("2", finding("r", "m", 1, absent) + "," + finding("s", "m", 2))});
    EXPECT_EQ(ids("all"), "1 2 ");
    EXPECT_EQ(ids("fixed"), "1 ");
    EXPECT_EQ(ids("new"), "2 ");
}

// Its file and its root are not there either.
TEST_F(Track, AbsentFindingsHaveNoPartInWhatHasMoved) {
    auto const three = [](std::string const& uri, std::string const& more) {
        std::string all;
        for (char const* const rule : {"r", "s", "t"}) {
            all += (all.empty() ? "" : ", ") + finding(rule, "m", 5, more);
            all.replace(all.rfind("src/a.c"), 7, uri);
        }
        return all;
    };
    int        number = 0;
    auto const add = [&](std::vector<std::string> const& before,
                         std::vector<std::string> const& now) {
        std::string all;
        for (std::string const& uri : now) all += (all.empty() ? "" : ", ") + three(uri, "");
        for (std::string const& uri : before)
            all += ", " + three(uri, R"(, "baselineState": "absent")");
        return printed({log(std::to_string(++number), all)}).substr(7, 43);
    };
    EXPECT_EQ(add({}, {"a.c"}), "3 open, 3 new, 0 returned, 0 fixed, 0 suppr");
    EXPECT_EQ(add({"a.c"}, {"b.c"}), "3 open, 0 new, 0 returned, 0 fixed, 0 suppr");
    fs::remove_all(series_);
    add({}, {"/old/a.c", "/old/b.c"});
    EXPECT_EQ(add({"/old/a.c", "/old/b.c"}, {"/new/a.c", "/new/b.c"}),
              "6 open, 0 new, 0 returned, 0 fixed, 0 suppr");
}

TEST_F(Track, DirectoryIsOneRun) {
    fs::create_directory(scratch_ / "night");
    log("night/a", finding("r", "a", 1));
    log("night/b", finding("r", "b", 1));
    EXPECT_EQ(printed({scratch_ / "night"}).substr(0, 21), "run 1: 2 open, 2 new,");
    EXPECT_EQ(track({scratch_ / "night"}).out, "");
    fs::create_directory(scratch_ / "other");
    fs::rename(scratch_ / "night/a", scratch_ / "other/z");
    fs::rename(scratch_ / "night/b", scratch_ / "other/c");
    EXPECT_NE(track({scratch_ / "other"}).err.find("as run 1"), std::string::npos);
}

TEST_F(Track, FindingThatIsGoneMovesWithItsFile) {
    auto const at = [](std::string const& uri, std::string const& rule) {
        return R"({"ruleId": ")" + rule +
               R"(", "message": {"text": "m"}, "locations": [{"physicalLocation":)"
               R"( {"artifactLocation": {"uri": ")" +
               uri + R"("}}}]})";
    };
    auto const three = [&](std::string const& uri) {
        return at(uri, "r") + "," + at(uri, "s") + "," + at(uri, "t");
    };
    printed({log("1", three("/a/x.c") + "," + at("/a/x.c", "u") + "," + three("/a/y.c")),
             log("2", three("/a/x.c") + "," + three("/a/y.c")),
             log("3", three("c:/b/x.c") + "," + three("c:/b/y.c")),  // another root
             log("4", three("c:/b/z.c") + "," + three("c:/b/y.c")),  // another name
             log("5", three("c:/b/z.c") + "," + at("c:/b/z.c", "u") + "," + three("c:/b/y.c"))});
    EXPECT_EQ(printed({"--list", "all", "--format", "csv", "--no-header"}).find(",gone,"),
              std::string::npos);
    EXPECT_EQ(ids("returned").size(), 2u);
}

TEST_F(Track, FindingThatIsGoneMovesWithItsFunction) {
    auto const at = [](std::string const& uri, std::string const& message,
                       std::string const& function) {
        return R"({"ruleId": "r", "message": {"text": ")" + message +
               R"("}, "locations": [{"physicalLocation": {"artifactLocation": {"uri": ")" + uri +
               R"("}}, "logicalLocations": [{"fullyQualifiedName": ")" + function + R"("}]}]})";
    };
    std::string const stays = at("a.c", "c", "g()") + "," + at("b.c", "d", "h()") + ",";
    printed({log("1", stays + at("a.c", "a", "f()") + "," + at("a.c", "b", "f()")),
             log("2", stays + at("a.c", "a", "f()")), log("3", stays + at("b.c", "a", "f()")),
             log("4", stays + at("b.c", "a", "f()") + "," + at("b.c", "b", "f()"))});
    EXPECT_EQ(ids("all"), "1 2 3 4 ");
    EXPECT_EQ(ids("returned").size(), 2u);
}

std::string log_of_tools(std::vector<std::string> const& tools) {
    std::string runs;
    for (std::string const& tool : tools)
        runs += (runs.empty() ? "" : ", ") + (R"({"tool": {"driver": {"name": ")" + tool) +
                R"("}}, "results": [)" + finding("r", "m", 5) + "]}";
    return R"({"version": "2.1.0", "runs": [)" + runs + "]}";
}

TEST_F(Track, FindingThatIsGoneBelongsToItsTool) {
    int        number = 0;
    auto const add = [&](std::vector<std::string> const& tools) {
        auto const name = scratch_ / std::to_string(++number);
        write_bytes(name, log_of_tools(tools));
        printed({name, "--again"});
    };
    add({"A", "B"});
    add({});
    add({"B"});
    EXPECT_EQ(ids("open"), "2 ");
    add({});
    add({"C"});  // a new name of either
    EXPECT_EQ(ids("returned").size(), 2u);
}

TEST_F(Track, ToolMayGetItsOldNameBack) {
    for (char const* const tool : {"A", "B", "A "}) {
        std::string const name = scratch_ / tool;
        write_bytes(name, log_of_tools({std::string(tool, 1)}));
        printed({name, "--again"});
    }
    EXPECT_EQ(ids("all"), "1 ");
}

// What is equal to a finding that is gone is that one, not a changed one that is open.
TEST_F(Track, EqualFindingComesBackBeforeChangedOnesAreMatched) {
    auto const with_text = [](std::string const& message, int line) {
        return R"({"ruleId": "r", "message": {"text": ")" + message +
               R"("}, "locations": [{"physicalLocation": {"artifactLocation": {"uri": "a.c"},)"
               R"( "region": {"startLine": )" +
               std::to_string(line) + R"(, "snippet": {"text": "f(x);"}}}}]})";
    };
    printed({log("1", with_text("x is 1", 3) + "," + with_text("x is 2", 9)),
             log("2", with_text("x is 1", 3)), log("3", with_text("x is 2", 3))});
    EXPECT_EQ(ids("returned"), "2 ");
    EXPECT_EQ(ids("gone"), "1 ");
}

TEST_F(Track, FindingComesBackWithoutTheTextThatItHad) {
    auto const at = [](int line, std::string const& snippet) {
        return R"({"ruleId": "r", "message": {"text": "m)" + std::to_string(line / 6) +
               R"("}, "locations": [{"physicalLocation": {"artifactLocation": {"uri": "a.c"},)"
               R"( "region": {"startLine": )" +
               std::to_string(line) + snippet + "}}}]}";
    };
    std::string const text = R"(, "snippet": {"text": "f(x);"})";
    printed({log("1", at(3, text) + "," + at(7, text)), log("2", at(3, "")),
             log("3", at(3, "") + "," + at(11, ""))});
    EXPECT_EQ(ids("returned"), "2 ");
}

TEST_F(Track, SourceTellsFindingsApart) {
    for (char const* const side : {"old", "new"}) fs::create_directories(scratch_ / side);
    write_bytes(scratch_ / "old" / "a.c", "read(f);\n\nwrite(f);\n");
    write_bytes(scratch_ / "new" / "a.c", "write(f);\n\nclose(f);\n");
    printed({log("1", finding("r", "m", 1) + "," + finding("r", "m", 3)), "--source",
             scratch_ / "old"});
    printed({scratch_ / "1", "--again", "--source", scratch_ / "new"});
    EXPECT_EQ(ids("fixed"), "1 ");
    EXPECT_EQ(ids("open"), "2 3 ");
}

TEST_F(Track, RootThatHasMovedIsGiven) {
    auto const at = [](std::string const& uri) {
        return R"({"message": {"text": "m"}, "locations": [{"physicalLocation":)"
               R"( {"artifactLocation": {"uri": ")" +
               uri + R"("}}}]})";
    };
    printed({log("1", at("/a/x.c"))});
    printed({log("2", at("/b/sub/x.c")), "--map", "/a=/b/sub"});
    EXPECT_EQ(ids("all"), "1 ");
}

TEST_F(Track, RootThatHasMovedCanBeGivenAgain) {
    auto const at = [](std::string const& uri, int line) {
        std::string one = finding("r", "m" + std::to_string(line), line);
        return one.replace(one.find("src/a.c"), 7, uri);
    };
    auto const add = [&](std::string const& name, std::string const& results,
                         std::vector<std::string> const& more) {
        std::vector<std::string> arguments = {log(name, results)};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return printed(arguments).substr(7, 36);
    };
    std::vector<std::string> const moved = {"--again", "--map", "/a=/b/sub"};
    std::string                    news;
    for (int line : {10, 20, 30, 40}) news += ", " + at("/b/sub/x.c", line);
    add("1", at("/a/x.c", 1), {});
    EXPECT_EQ(add("2", at("/b/sub/x.c", 1), moved), "1 open, 0 new, 0 returned, 0 fixed, ");
    EXPECT_EQ(add("3", at("/b/sub/x.c", 1) + news, moved), "5 open, 4 new, 0 returned, 0 fixed, ");
    EXPECT_EQ(add("4", "", moved), "0 open, 0 new, 0 returned, 5 fixed, ");
    EXPECT_EQ(add("5", at("/b/sub/x.c", 1), moved), "1 open, 0 new, 1 returned, 0 fixed, ");
}

// A kernel's checks have no message: a category with a payload.
TEST_F(Track, ChecksOfAKernelAreFoundAgain) {
    using sml::Strings_T;
    auto const set = [&](std::string const& name, std::vector<std::int32_t> const& lines) {
        bradep::ResultSet value;
        std::int32_t      number = 0;
        for (std::int32_t const line : lines) {
            auto& check = value.application_results.checks[{Strings_T("a.c"), ++number}];
            check.category.choose<"OVFL">().first_flag = line % 2 == 0;
            check.source_ref.localization = {line, Strings_T("a.c"), 1};
        }
        write_bytes(scratch_ / name,
                    sml::Base_Gui_Internal_Form_Datas_Aggregated_Results_T_fromCxx(value));
        return std::string(scratch_ / name);
    };
    printed({set("1", {10, 31}), set("2", {43}), set("3", {18, 47})});
    EXPECT_EQ(ids("returned"), "1 ");
    EXPECT_EQ(ids("open"), "1 2 ");
    EXPECT_NE(printed({"--list", "all", "--format", "json"}).find(R"("payload":"{)"),
              std::string::npos);
}

TEST_F(Track, UsageIsChecked) {
    auto const set = log("set", "");
    EXPECT_EQ(run_command({"track"}).code, 2);
    EXPECT_EQ(track({set, "--list", "odd"}).code, 2);
    EXPECT_EQ(track({set, set, "--source", scratch_.path()}).code, 2);
    EXPECT_EQ(track({"--map", "a=b"}).code, 2);
    EXPECT_EQ(track({set, "--map", "a"}).code, 2);
    EXPECT_EQ(track({set, "--source", scratch_ / "none"}).code, 2);
    EXPECT_FALSE(fs::exists(series_));
}

TEST_F(TrackOfThreeRuns, StatsPrintTheSameTable) {
    EXPECT_EQ(stats({"--format", "csv", "--no-header"}).out, counts());
    EXPECT_EQ(stats({"--by", "rule"}).code, 2);
    EXPECT_EQ(stats({"--sizes"}).code, 2);
    EXPECT_EQ(run_command({"stats", scratch_ / "one", "--svg", "-"}).code, 2);
}

TEST_F(TrackOfThreeRuns, PlotHasEachRunAndNoMarkupOfNames) {
    std::string const plot = scratch_ / "plot.svg";
    EXPECT_NE(stats({"--svg", plot}).out.find("  3     2"), std::string::npos);
    auto const svg = bytes_of(plot);
    EXPECT_EQ(svg.substr(0, 4), "<svg");
    EXPECT_NE(svg.find("open 2, new 1, returned 0, fixed 1</title>"), std::string::npos) << svg;
    EXPECT_EQ(svg.find("<script"), std::string::npos);
    printed({log("a<b>&\"c", a(1))});
    auto const odd = stats({"--svg", "-"}).out;
    EXPECT_NE(odd.find(">a&lt;b&gt;&amp;&quot;c</text>"), std::string::npos) << odd;
    EXPECT_EQ(odd.find("a<b"), std::string::npos);
    EXPECT_EQ(odd.substr(odd.size() - 7), "</svg>\n");
}

TEST_F(Track, PlotHasNoCharactersThatXmlRefuses) {
    printed({log("x\xEF\xBF\xBEy\xEF\xBF\xBFz\x01\xFF", "")});
    auto const svg = stats({"--svg", "-"}).out;
    EXPECT_EQ(svg.find("\xEF\xBF\xBE"), std::string::npos);
    EXPECT_EQ(svg.find("\xEF\xBF\xBF"), std::string::npos);
    EXPECT_NE(svg.find(">x\xEF\xBF\xBDy\xEF\xBF\xBDz\\u{1}\\xff</text>"), std::string::npos) << svg;
}

TEST_F(Track, PlotOfOneRun) {
    printed({log("v1.2", "")});
    auto const svg = stats({"--svg", "-"});
    EXPECT_EQ(svg.err, "");
    EXPECT_NE(svg.out.find(">v1.2</text>"), std::string::npos);
    EXPECT_EQ(svg.out.find("nan"), std::string::npos);
    EXPECT_EQ(svg.out.find("inf"), std::string::npos);
}

}  // namespace
