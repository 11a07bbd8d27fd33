// Logs whose texts are made to collide in the hash tables that an import fills.

#include "comparisons.hpp"
#include <sml/inspect/reader/reader_model.hpp>
#include "cli_support.hpp"
#include "errors.hpp"
#include "sarif/mapping.hpp"
#include "tests/hash_of_16.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <functional>
#include <string_view>

namespace {

using namespace cli_test;
using bradep::Comparisons;
using bradep::sarif::Place;
using bradep::sarif::Result;
using sml::Strings_T;
using sml::inspect::ReaderModel;
using Texts = std::vector<std::string>;

constexpr std::uint64_t unlimited = ~std::uint64_t{0};

bool is_plain(char c) { return c > ' ' && c < '\x7f' && c != '"' && c != '\\' && c != '/'; }

using Half = std::array<char, 8>;

/// Counts up by one; the first digit is the lowest.
void count_up(Half& digits) {
    for (char& digit : digits) {
        if (digit++ < '9') return;
        digit = '0';
    }
}

/// `count` texts with this hash, in characters that JSON needs no escapes for.
Texts texts_of_hash(std::size_t count, std::uint64_t hash) {
    Texts               texts;
    std::uint64_t const wanted = HashOf16::unfinished(hash);
    // Most second halves have a byte that isn't plain, so nothing is allocated before that is
    // known.
    for (Half first{'0', '0', '0', '0', '0', '0', '0', '0'}; texts.size() < count;
         count_up(first)) {
        auto const second =
            std::bit_cast<Half>(HashOf16::second_half(std::bit_cast<std::uint64_t>(first), wanted));
        if (!std::ranges::all_of(second, is_plain)) continue;
        std::string text(first.begin(), first.end());
        text.append(second.begin(), second.end());
        if (ReaderModel::text_hash(text) != hash) throw std::logic_error("another hash: " + text);
        texts.push_back(std::move(text));
    }
    return texts;
}

/// Texts with one hash, a different one in each call, because earlier texts are still in the string
/// table.
Texts colliding(std::size_t count) {
    static std::uint64_t hash = 0x123456789abcdef0;
    return texts_of_hash(count, ++hash);
}

/// Texts of the same length and number with different hashes.
Texts ordinary(std::size_t count) {
    Texts texts;
    for (std::uint64_t i = 0; i < count; ++i)
        texts.push_back(std::to_string(1'000'000'000'000'000 + i));
    return texts;
}

/// A list of copies of the pattern, each with a text in place of TEXT.
std::string filled(std::string const& pattern, Texts const& texts) {
    std::string list;
    for (auto const& text : texts) {
        std::string one = pattern;
        one.replace(one.find("TEXT"), 4, text);
        (list += list.empty() ? "" : ",") += one;
    }
    return list;
}

std::string const located =
    R"({"locations":[{"physicalLocation":{"artifactLocation":{"uri":"TEXT"}}}]})";

std::string log_of_uris(Texts const& texts) { return log_with(filled(located, texts)); }

std::uint64_t count_of(std::string const& log) {
    Comparisons       comparisons(unlimited);
    bradep::ResultSet set;
    bradep::sarif::read_log(
        log, "log", 0, [&](auto&& result) { bradep::sarif::add_result(result, set, comparisons); },
        {}, comparisons);
    return comparisons.counted();
}

TEST(Comparisons, GrowWithTheSquareOfUrisThatFallTogether) {
    auto const some = static_cast<double>(count_of(log_of_uris(colliding(1000))));
    auto const twice = static_cast<double>(count_of(log_of_uris(colliding(2000))));
    EXPECT_GT(some, 1000 * 1000 / 2);
    EXPECT_GT(twice / some, 3.5);
    EXPECT_LT(twice / some, 4.5);
}

TEST(Comparisons, OfOrdinaryTextsAreNotCounted) {
    // A few may share a bucket with texts of another test by chance.
    EXPECT_LT(count_of(log_of_uris(ordinary(20'000))), 20'000U);
    EXPECT_LT(count_of(log_of_uris(Texts(20'000, "same"))), 20'000U);
}

TEST(Comparisons, BeyondMaxWorkImportNamesThePlaceAndWritesNothing) {
    Scratch const scratch;
    auto const    target = (scratch / "set").string();
    write_bytes(target, "old");
    auto const import = [&](Texts const& texts) {
        return run_command({"import", "--max-work", "100000", "-", "-o", target},
                           log_of_uris(texts));
    };
    auto const refused = import(colliding(2000));
    EXPECT_EQ(refused.code, 1);
    std::string const place = "bradep: standard input:/runs/0/results/";
    ASSERT_TRUE(refused.err.starts_with(place)) << refused.err;
    // Each of three hash tables compares a text with all earlier ones.
    EXPECT_NEAR(std::stod(refused.err.substr(place.size())), 258, 3);
    EXPECT_TRUE(
        refused.err.ends_with(": keys collide in the hash tables, which takes more "
                              "than --max-work 100000 comparisons\n"))
        << refused.err;
    EXPECT_EQ(std::ranges::count(refused.err, '\n'), 1);
    EXPECT_EQ(bytes_of(target), "old");
    EXPECT_EQ(scratch.names().size(), 1U);
    EXPECT_EQ(import(ordinary(2000)).code, 0);
}

TEST(Comparisons, OfSeveralLogsAreCountedTogether) {
    Scratch const scratch;
    auto const    texts = colliding(400);
    auto const    half = texts.begin() + 200;
    write_bytes(scratch / "a", log_of_uris(Texts(texts.begin(), half)));
    write_bytes(scratch / "b", log_of_uris(Texts(half, texts.end())));
    auto const import = [&](std::vector<std::string> const& names) {
        std::vector<std::string> args = {"import", "--max-work", "150000", "-o", "-"};
        for (auto const& name : names) args.push_back((scratch / name).string());
        return run_command(args);
    };
    EXPECT_EQ(import({"a"}).code, 0);
    EXPECT_EQ(import({"b"}).code, 0);
    auto const refused = import({"a", "b"});
    EXPECT_EQ(refused.code, 1);
    EXPECT_TRUE(refused.err.starts_with("bradep: " + (scratch / "b").string() + ":/runs/0/"))
        << refused.err;
}

/// Every text of a log that is interned, wherever it is in the log.
TEST(Comparisons, AreCountedForEachKindOfText) {
    using LogOf = std::function<std::string(Texts const&)>;
    auto const result_with = [](std::string const& before, std::string const& element,
                                std::string const& behind) -> LogOf {
        return
            [=](Texts const& texts) { return log_with(before + filled(element, texts) + behind); };
    };
    auto const tools = [](Texts const& texts) {
        return R"({"version":"2.1.0","runs":[)" +
               filled(R"({"tool":{"driver":{"name":"TEXT"}},"results":[{}]})", texts) + "]}";
    };
    auto const results = [&](std::string const& pattern) { return result_with("", pattern, ""); };
    std::string const steps = R"({"codeFlows":[{"threadFlows":[{"locations":[)";
    for (auto const& log_of :
         {results(R"({"ruleId":"TEXT"})"), results(R"({"level":"TEXT"})"),
          results(R"({"kind":"TEXT"})"), results(R"({"message":{"text":"TEXT"}})"),
          results(R"({"message":{"text":"{0}","arguments":["TEXT"]}})"),
          results(R"({"baselineState":"TEXT"})"),
          results(
              R"({"locations":[{"physicalLocation":{"artifactLocation":{"uriBaseId":"TEXT"}}}]})"),
          results(R"({"locations":[{"logicalLocations":[{"name":"TEXT"}]}]})"),
          result_with(R"({"fingerprints":{)", R"("TEXT":"f")", "}}"),
          results(R"({"partialFingerprints":{"f":"TEXT"}})"),
          result_with(R"({"suppressions":[)", R"({"kind":"TEXT"})", "]}"),
          result_with(R"({"suppressions":[)", R"({"status":"TEXT"})", "]}"),
          result_with(R"({"relatedLocations":[)", R"({"message":{"text":"TEXT"}})", "]}"),
          result_with(steps, R"({"location":{"message":{"text":"TEXT"}}})", "]}]}]}"),
          LogOf(tools)}) {
        auto const log = log_of(colliding(500));
        EXPECT_GT(count_of(log), 500U * 500 / 2 - 100) << log.substr(0, 200);
        EXPECT_LT(count_of(log_of(ordinary(500))), 500U * 10) << log.substr(0, 200);
    }
}

/// Adds results with `count` colliding keys, whose texts are already interned. Returns the number
/// of hash tables that compare each key with all earlier ones.
template <class Fill>
double tables_compared(std::size_t count, Fill const& fill) {
    std::vector<Strings_T> const texts = [&] {
        auto const given = colliding(count);
        return std::vector<Strings_T>(given.begin(), given.end());
    }();
    bradep::ResultSet set;
    Comparisons       comparisons(unlimited);
    for (auto const& result : fill(texts)) bradep::sarif::add_result(result, set, comparisons);
    auto const squared = static_cast<double>(count * count);
    return static_cast<double>(comparisons.counted()) / (squared / 2);
}

Place place_at(Strings_T const& uri) {
    Place place;
    place.uri = uri;
    return place;
}

TEST(Comparisons, AreCountedForEachTableOfTheSet) {
    constexpr std::size_t count = 1000;
    auto const            results = [](auto const& make) {
        return [=](std::vector<Strings_T> const& texts) {
            std::vector<Result> all;
            for (auto const& text : texts) make(all.emplace_back(), text);
            return all;
        };
    };
    // The hash tables check_numbers and checks.
    EXPECT_NEAR(tables_compared(count, results([](Result& result, Strings_T const& text) {
                                    result.locations = {place_at(text)};
                                })),
                2, 0.1);
    // Also first_key_sets.
    EXPECT_NEAR(tables_compared(count, results([](Result& result, Strings_T const& text) {
                                    result.locations = {place_at(text), Place()};
                                })),
                3, 0.1);
    // The hash tables info_numbers and infos.
    EXPECT_NEAR(tables_compared(count, results([](Result& result, Strings_T const& text) {
                                    result.related.push_back({place_at(text), {}, {}});
                                })),
                2, 0.1);
    // The hash tables event_numbers and events.
    EXPECT_NEAR(tables_compared(count, results([](Result& result, Strings_T const& text) {
                                    result.flows = {{{{place_at(text), {}}}}};
                                })),
                2, 0.1);
}

/// Texts that the import adds itself are looked up among those of the log.
TEST(Comparisons, AreCountedForTextsThatTheLogDoesNotGive) {
    constexpr std::size_t count = 200;
    struct Case {
        std::string own;
        std::string result;
    };
    for (auto const& [own, result] :
         {Case{"relatedLocation", R"({"relatedLocations":[{}]})"},
          Case{"id", R"({"relatedLocations":[{"id":1}]})"},
          Case{"location", R"({"locations":[{},{}]})"},
          Case{"suppression", R"({"suppressions":[{}]})"},
          Case{"fingerprints", R"({"fingerprints":{"":""}})"},
          Case{"codeFlows/0/threadFlows", R"({"codeFlows":[{}]})"}, Case{"warning", "{}"}}) {
        auto const                   texts = texts_of_hash(count, ReaderModel::text_hash(own));
        std::vector<Strings_T> const held(texts.begin(), texts.end());
        std::string                  results = result;
        for (std::size_t i = 1; i < 50; ++i) results += "," + result;
        EXPECT_GE(count_of(log_with(results)), 50 * count) << own;
    }
}

/// Texts that share a bucket only after the string table has grown were not compared when they were
/// added. Releasing them would compare them.
TEST(Comparisons, OfGivingUpTextsAreNotMade) {
    auto const& all = Strings_T::fAllStrings;
    auto const  before = all.size();
    auto const  text_of = [](std::size_t i) { return "kept " + std::to_string(i); };
    Texts       texts;
    for (std::size_t i = 0; i < 1000; ++i) texts.push_back(text_of(i));
    auto const good = log_with(R"({"relatedLocations":[)" +
                               filled(R"({"message":{"text":"TEXT"}})", texts) + "]}");
    // The damage comes after all texts of the only result.
    auto const bad =
        log_with(R"({"relatedLocations":[)" + filled(R"({"message":{"text":"bad TEXT"}})", texts) +
                 R"(],"codeFlows":[{"threadFlows":[{"locations":[{"index":1}]}]}]})");
    EXPECT_EQ(run_command({"import", "-", "-o", "-"}, good).code, 0);
    EXPECT_GE(all.size(), before + 1000);
    EXPECT_EQ(run_command({"import", "-", "-o", "-"}, bad).code, 1);
    EXPECT_GE(all.size(), before + 2000);
}

TEST(Comparisons, UpToTheLimitAreAllowed) {
    auto const log = log_of_uris(colliding(300));
    count_of(log);  // interns the texts
    auto const work = count_of(log);
    auto const import = [&](std::uint64_t most) {
        Comparisons       comparisons(most);
        bradep::ResultSet set;
        bradep::sarif::read_log(
            log, "log", 0,
            [&](auto&& result) { bradep::sarif::add_result(result, set, comparisons); }, {},
            comparisons);
    };
    EXPECT_NO_THROW(import(work));
    EXPECT_THROW(import(work - 1), bradep::DamagedInput);
}

}  // namespace
