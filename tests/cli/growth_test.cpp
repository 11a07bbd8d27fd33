// Tests how time grows with the input. Four times the input may take eight times as long; quadratic
// work takes sixteen times as long.

#include "cli_support.hpp"
#include "sarif/mapping.hpp"
#include "summary.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>

namespace {

using namespace cli_test;

constexpr double most_growth = 8;
constexpr int    repetitions = 3;
constexpr double shortest = 0.02;  // seconds, the least that can be compared

template <class Work>
double seconds_of(Work const& work) {
    auto const start = std::clock();
    work();
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

template <class Work>
double median_seconds(Work const& work) {
    std::vector<double> times;
    for (int i = 0; i < repetitions; ++i) times.push_back(seconds_of(work));
    std::ranges::sort(times);
    return times[repetitions / 2];
}

/// Expects that the time of `work_of(n)()` grows about linearly, from an n that takes long enough
/// to be measured.
template <class Work>
void expect_linear_work(Work const& work_of) {
    std::size_t n = 500;
    double      time = median_seconds(work_of(n));
    while (time < shortest) time = median_seconds(work_of(n *= 2));
    double const longer = median_seconds(work_of(4 * n));
    EXPECT_LT(longer / time, most_growth) << n << ": " << time << " s, then " << longer << " s";
}

/// Expects that the time to import `log_of(n)` grows about linearly.
template <class Log>
void expect_linear(Log const& log_of) {
    expect_linear_work([&](std::size_t n) {
        return [log = log_of(n)] {
            constexpr bradep::sarif::Limits unlimited{.message = std::uint64_t{1} << 40,
                                                      .expansion = std::uint64_t{1} << 40};
            std::size_t                     results = 0;
            bradep::sarif::read_log(
                log, "log", 0, [&](auto&&) { ++results; }, unlimited);
            EXPECT_GT(results, 0U);
        };
    });
}

std::string repeated(std::size_t times, std::string const& element) {
    std::string list;
    for (std::size_t i = 0; i < times; ++i) (list += i == 0 ? "" : ",") += element;
    return list;
}

/// {"NAME": "0"}, {"NAME": "1"} and so on.
std::string numbered(std::size_t times, std::string const& name) {
    std::string list;
    for (std::size_t i = 0; i < times; ++i)
        list += (i == 0 ? "{\"" : ",{\"") + name + "\":\"" + std::to_string(i) + "\"}";
    return list;
}

std::string log_of_tool(std::string const& tool, std::string const& results) {
    return R"({"version":"2.1.0","runs":[{"tool":{)" + tool + R"(},"results":[)" + results + "]}]}";
}

TEST(Growth, IdOfManyPartsAndManyExtensions) {
    expect_linear([](std::size_t n) {
        return log_of_tool(R"("extensions":[)" + repeated(n, R"({"rules":[{"id":"r"}]})") + "]",
                           R"({"ruleId":")" + std::string(n, '/') + "\"}");
    });
}

TEST(Growth, IdOfManyPartsLikeTheRules) {
    expect_linear([](std::size_t n) {
        std::string const id(n, '/');
        return log_of_tool(R"("driver":{"rules":[{"id":")" + id + "x\"}]}",
                           R"({"ruleId":")" + id + "y\"}");
    });
}

TEST(Growth, ManyRulesFoundByGuid) {
    expect_linear([](std::size_t n) {
        return log_of_tool(R"("driver":{"rules":[)" + numbered(n, "guid") + "]}",
                           repeated(n, R"({"rule":{"guid":")" + std::to_string(n - 1) + "\"}}"));
    });
}

TEST(Growth, GuidsThatNoRuleHas) {
    expect_linear([](std::size_t n) {
        return log_of_tool(R"("driver":{"rules":[)" + numbered(n, "guid") + "]}",
                           repeated(n, R"({"rule":{"guid":"none"}})"));
    });
}

TEST(Growth, ManyExtensionsFoundByGuidOrName) {
    for (std::string const name : {"guid", "name"})
        expect_linear([&](std::size_t n) {
            return log_of_tool(R"("extensions":[)" + numbered(n, name) + "]",
                               repeated(n, R"({"rule":{"toolComponent":{")" + name + R"(":")" +
                                               std::to_string(n - 1) + "\"}}}"));
        });
}

TEST(Growth, ARuleInEachOfManyExtensions) {
    expect_linear([](std::size_t n) {
        std::string extensions;
        std::string results;
        for (std::size_t i = 0; i < n; ++i) {
            auto const id = std::to_string(i);
            extensions +=
                (i == 0 ? R"({"rules":[{"id":")" : R"(,{"rules":[{"id":")") + id + "\"}]}";
            results += (i == 0 ? R"({"ruleId":")" : R"(,{"ruleId":")") + id + "\"}";
        }
        return log_of_tool(R"("extensions":[)" + extensions + "]", results);
    });
}

TEST(Growth, IdsThatNoExtensionKnows) {
    expect_linear([](std::size_t n) {
        return log_of_tool(R"("extensions":[)" + repeated(n, R"({"rules":[{"id":"r"}]})") + "]",
                           repeated(n, R"({"ruleId":"none/x"})"));
    });
}

TEST(Growth, MessageOfManyPlaceholders) {
    expect_linear([](std::size_t n) {
        std::string text;
        for (std::size_t i = 0; i < n; ++i) text += "{0}{{}}{9";
        return log_with(R"({"message":{"text":")" + text + R"(","arguments":["a"]}})");
    });
}

TEST(Growth, OneMemberManyTimes) {
    expect_linear([](std::size_t n) {
        return log_with(R"({"fingerprints":{)" + repeated(n, R"("same":"f")") + "}}");
    });
}

TEST(Growth, ManyMembers) {
    expect_linear([](std::size_t n) {
        std::string members;
        for (std::size_t i = 0; i < n; ++i)
            members += (i == 0 ? "\"" : ",\"") + std::to_string(i) + R"(":"f")";
        return log_with(R"({"fingerprints":{)" + members + "}}");
    });
}

TEST(Growth, SummaryOfManyChecksThatShareOneLongText) {
    expect_linear_work([](std::size_t n) {
        bradep::ResultSet     set;
        bradep::sarif::Result result;
        bradep::Comparisons   comparisons;
        result.rule = std::string(40 * n, 'r');
        for (std::size_t i = 0; i < n; ++i) bradep::sarif::add_result(result, set, comparisons);
        return [set] {
            std::ostringstream out;
            bradep::write_summary(out, set, {"set", 0, {}, 0});
            EXPECT_FALSE(out.str().empty());
        };
    });
}

TEST(Growth, ManyStepsThatShareOneLocation) {
    expect_linear([](std::size_t n) {
        return R"({"version":"2.1.0","runs":[{"threadFlowLocations":[{"location":{"message":{"text":"m"}}}],)"
               R"("results":[{"codeFlows":[{"threadFlows":[{"locations":[)" +
               repeated(n, R"({"index":0})") + "]}]}]}]}]}";
    });
}

}  // namespace
