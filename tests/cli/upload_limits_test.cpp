// What --limits leaves out of a log.

#include "sarif/upload_limits.hpp"

#include "cli_support.hpp"
#include "packed.hpp"

#include <gtest/gtest.h>
#include <boost/json.hpp>

#include <string>
#include <utility>
#include <vector>

namespace {

using namespace cli_test;
using namespace bradep::sarif;

/// The runs of a log in memory.
class GivenRuns : public LogSource {
public:
    explicit GivenRuns(std::string const& runs) : runs_(json::parse(runs).as_array()) {}

    std::size_t  runs() const override { return runs_.size(); }
    json::object run(std::size_t number) const override {
        auto run = runs_[number].as_object();
        run.erase("results");
        return run;
    }
    void results(std::size_t run, ResultSink const& sink) const override {
        for (auto const& result : runs_[run].at("results").as_array())
            sink("", json::object(result.as_object()));
    }

private:
    json::array runs_;
};

std::string ids_of(LogSource const& source, std::size_t run) {
    std::string ids;
    source.results(run, [&](std::string const&, json::object&& result) {
        ids += std::string(result.at("ruleId").as_string()) + ' ';
    });
    return ids;
}

TEST(UploadLimits, TheMostSevereResultsStay) {
    GivenRuns const                all(R"([{"results": [
        {"ruleId": "note", "level": "note"}, {"ruleId": "first", "level": "warning"},
        {"ruleId": "ranked", "level": "warning", "rank": 2.5}, {"ruleId": "error", "level": "error"},
        {"ruleId": "second"}, {"ruleId": "higher", "level": "warning", "rank": 99}]}])");
    std::vector<std::string> const kept = {"",
                                           "error ",
                                           "error higher ",
                                           "ranked error higher ",
                                           "first ranked error higher ",
                                           "first ranked error second higher ",
                                           "note first ranked error second higher "};
    for (std::size_t most = 0; most < kept.size(); ++most) {
        UploadLimits limits;
        limits.results = most;
        Cut         cut;
        LimitedRuns limited(all, {0}, limits, cut);
        EXPECT_EQ(ids_of(limited, 0), kept[most]);
        EXPECT_EQ(cut.results, 6 - most);
        EXPECT_EQ(cut.most_kept, most);
    }
}

TEST(UploadLimits, RulesThatResultsHaveStay) {
    GivenRuns const all(R"([
        {"tool": {"driver": {"name": "T", "rules": [
             {"id": "a", "properties": {"tags": ["1", "2", "3"]}}, {"id": "b"}, {"id": "c"}]},
         "extensions": [{"name": "E", "rules": [{"id": "d"}, {"id": "e"}, {"id": "f"}]}]},
         "results": [{"ruleId": "c", "ruleIndex": 2, "level": "error"},
                     {"ruleId": "b", "ruleIndex": 1, "level": "note"},
                     {"ruleId": "f", "level": "error",
                      "rule": {"index": 2, "toolComponent": {"index": 0}}},
                     {"ruleId": "a", "ruleIndex": 0, "level": "error"}]}])");
    UploadLimits    limits;
    limits.results = 3;
    limits.rules = 5;
    limits.tags = 1;
    Cut         cut;
    LimitedRuns limited(all, {0}, limits, cut);
    EXPECT_EQ(json::value(limited.run(0)).at("tool"),
              json::parse(R"({"driver": {"name": "T", "rules":
        [{"id": "a", "properties": {"tags": ["1"]}}, {"id": "c"}]},
        "extensions": [{"name": "E", "rules": [{"id": "f"}]}]})"));
    std::vector<std::int64_t> indices;
    limited.results(0, [&](std::string const&, json::object&& result) {
        json::value const value = result;
        auto const        pointer = result.contains("rule") ? "/rule/index" : "/ruleIndex";
        indices.push_back(value.at_pointer(pointer).as_int64());
    });
    EXPECT_EQ(indices, (std::vector<std::int64_t>{1, 0, 0}));
    EXPECT_EQ(cut.in_words(), "1 result, 3 rules, 2 tags");
}

TEST(UploadLimits, TheHeaviestRunsStay) {
    auto const run = [](std::vector<std::string> const& levels) {
        std::string results;
        for (auto const& level : levels)
            results += (results.empty() ? "" : ",") + (R"({"level": ")" + level + "\"}");
        return R"({"results": [)" + results + "]}";
    };
    GivenRuns const all("[" + run({}) + "," + run({"note", "note"}) + "," + run({"error"}) + "," +
                        run({"note", "warning"}) + "," + run({"none", "error"}) + "," + run({}) +
                        "]");
    auto const      weights = weights_of(all);
    EXPECT_EQ(weights.at(3), (RunWeight{0, 1, 1, 0}));
    std::vector<std::vector<bool>> const kept = {
        {0, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 1, 0}, {0, 0, 1, 0, 1, 0}, {0, 0, 1, 1, 1, 0},
        {0, 1, 1, 1, 1, 0}, {1, 1, 1, 1, 1, 0}, {1, 1, 1, 1, 1, 1}, {1, 1, 1, 1, 1, 1}};
    for (std::size_t most = 0; most < kept.size(); ++most)
        EXPECT_EQ(heaviest(weights, most), kept[most]) << most;
}

TEST(UploadLimits, LocationsAreCut) {
    GivenRuns const all(R"([{"results": [{"ruleId": "r", "locations": [{}, {}, {}],
        "codeFlows": [{"threadFlows": [{"locations": [{}, {}]}, {"locations": [{}, {}]}]},
                      {"threadFlows": [{"locations": [{}, {}]}]}]}]}])");
    UploadLimits    limits;
    limits.locations = 2;
    limits.flow_locations = 3;
    Cut         cut;
    LimitedRuns limited(all, {0}, limits, cut);
    limited.results(0, [&](std::string const&, json::object&& result) {
        EXPECT_EQ(json::value(result), json::parse(R"({"ruleId": "r", "locations": [{}, {}],
            "codeFlows": [{"threadFlows": [{"locations": [{}, {}]}, {"locations": [{}]}]}]})"));
    });
    EXPECT_EQ(cut.in_words(), "1 location, 3 flow locations");
}

// Random texts, so that they can't be compressed.
TEST(UploadLimits, TheCompressedLogIsSmallEnough) {
    Scratch const scratch;
    std::string   results;
    std::uint32_t state = 1;
    for (int i = 0; i < 3000; ++i) {
        std::string text;
        for (int k = 0; k < 8000; ++k) {
            state = state * 1664525 + 1013904223;
            text += static_cast<char>('0' + (state >> 24) % 64);
        }
        std::erase(text, '\\');
        results += std::string(i == 0 ? "" : ",") + R"({"level": ")" +
                   (i % 3 == 0 ? "error" : "note") + R"(", "message": {"text": ")" + text + "\"}}";
    }
    auto const set = (scratch / "set").string();
    ASSERT_EQ(run_command({"import", "-", "-o", set}, log_with(results)).code, 0);
    auto const log = (scratch / "log.sarif.gz").string();
    auto const done = run_command({"export", set, "--sarif", log, "--limits", "github"});
    EXPECT_EQ(done.code, 0);
    EXPECT_TRUE(done.err.starts_with("bradep: " + log + ": left out what is beyond the limits: "))
        << done.err;
    EXPECT_LE(bytes_of(log).size(), 10'000'000u);
    EXPECT_GE(bytes_of(log).size(), 9'000'000u);
    auto const list = run_command({"import", log, "-o", set});
    EXPECT_EQ(list.code, 0) << list.err;
    auto const stats = run_command({"list", "--level", "error", "--count", set});
    EXPECT_EQ(stats.out, "1000\n");
}

}  // namespace
