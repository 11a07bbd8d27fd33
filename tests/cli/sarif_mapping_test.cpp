#include "sarif/mapping.hpp"

#include <sml/bindings/bindings.hpp>
#include "cli_support.hpp"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using namespace cli_test;
using bradep::NumberedKey;
using bradep::ResultSet;
using bradep::sarif::Result;
using sml::Strings_T;

ResultSet set_of(std::vector<Result> const& results) {
    ResultSet           set;
    bradep::Comparisons comparisons;
    for (auto const& result : results) bradep::sarif::add_result(result, set, comparisons);
    return set;
}

ResultSet set_of_fixture(std::string const& name) {
    return set_of(results_of(bytes_of(fixture(name))));
}

void send_through_bytes(ResultSet const& set, ResultSet& back) {
    std::stringstream stream;
    sml::Base_Gui_Internal_Form_Datas_Aggregated_Results_T_toStream(set, stream);
    sml::Base_Gui_Internal_Form_Datas_Aggregated_Results_T_fromStream(back, stream);
    EXPECT_EQ(stream.tellg(), static_cast<std::streamoff>(stream.str().size()));
}

std::vector<Result> restored(ResultSet const& set) {
    std::vector<Result> results;
    for (auto const& [id, form] : set.check_data)
        results.push_back(bradep::sarif::restored_result(form, set));
    return results;
}

std::vector<std::pair<std::string, std::int32_t>> check_keys(ResultSet const& set) {
    std::vector<std::pair<std::string, std::int32_t>> keys;
    for (auto const& [id, form] : set.check_data)
        keys.emplace_back(form.first_numbered_name.value().first.str(),
                          form.first_numbered_name->second);
    return keys;
}

NumberedKey key(char const* uri, std::int32_t ordinal) {
    return {Strings_T(std::string(uri)), ordinal};
}

TEST(ResultMapping, EveryFixtureIsReadBackWhole) {
    auto const logs = sound_logs();
    ASSERT_GE(logs.size(), 12U);
    for (auto const& log : logs) {
        auto const results = results_of(bytes_of(log));
        auto const set = set_of(results);
        ResultSet  back;
        send_through_bytes(set, back);
        EXPECT_TRUE(back == set) << log;
        auto const again = restored(back);
        ASSERT_EQ(again.size(), results.size()) << log;
        for (std::size_t i = 0; i < results.size(); ++i)
            EXPECT_TRUE(again[i] == results[i]) << log << " result " << i;
    }
}

TEST(ResultMapping, ASetFilledAtOnceHasTheSameBytes) {
    std::vector<Result> results;
    for (int i = 0; i < 300; ++i)
        for (auto const& log : sound_logs())
            for (auto& result : results_of(bytes_of(log))) results.push_back(std::move(result));
    ASSERT_GT(results.size(), 20'000U);
    ResultSet                filled;
    bradep::Comparisons      comparisons;
    bradep::sarif::SetFiller filler(filled, comparisons);
    for (auto const& result : results) filler.add(result);
    filler.finish();
    auto const bytes = std::string(
        sml::Base_Gui_Internal_Form_Datas_Aggregated_Results_T_fromCxx(set_of(results)));
    EXPECT_EQ(sml::Base_Gui_Internal_Form_Datas_Aggregated_Results_T_fromCxx(filled), bytes);
}

TEST(ResultMapping, OrdinalsCountWithinAUriAndOnAcrossRuns) {
    auto const set = set_of_fixture("many_runs.sarif");
    using Keys = std::vector<std::pair<std::string, std::int32_t>>;
    EXPECT_EQ(check_keys(set), (Keys{{"first.c", 1},
                                     {"common.c", 1},
                                     {"", 1},
                                     {"common.c", 2},
                                     {"first.c", 2},
                                     {"", 2},
                                     {"", 3},
                                     {"", 4},
                                     {"", 5}}));
    auto const& tables = set.application_results;
    EXPECT_EQ(tables.check_numbers.size(), 3U);
    EXPECT_EQ(tables.check_numbers.at(Strings_T(std::string("first.c"))), 2);
    EXPECT_EQ(tables.check_numbers.at(Strings_T(std::string("common.c"))), 2);
    EXPECT_EQ(tables.check_numbers.at(Strings_T()), 5);
    EXPECT_EQ(tables.checks.size(), 9U);
    EXPECT_EQ(tables.event_numbers.at(Strings_T(std::string("step.c"))), 2);
}

TEST(ResultMapping, CheckDataIsInTheOrderOfTheLog) {
    auto const   set = set_of_fixture("many_runs.sarif");
    std::int32_t expected = 0;
    for (auto const& [id, form] : set.check_data) EXPECT_EQ(id, expected++);
    EXPECT_EQ(expected, 9);
}

TEST(ResultMapping, ACheckHoldsWhatItsResultSays) {
    auto const  set = set_of(results_of(
         R"j({"version": "2.1.0", "runs": [{}, {"tool": {"driver": {"name": "Tool", "version": "7"}}, "results": [
            {"ruleId": "R", "level": "note", "kind": "open", "message": {"text": "see [x](1)"}, "baselineState": "new",
             "locations": [{"logicalLocations": [{"name": "f"}],
                            "physicalLocation": {"artifactLocation": {"uri": "a%20b.c", "uriBaseId": "SRC"},
                            "region": {"startLine": 1, "startColumn": 2, "endLine": 3, "endColumn": 4}}}]}]}]})j"));
    auto const& check = set.application_results.checks.at(key("a%20b.c", 1));
    EXPECT_EQ(check.first_string.str(), "Tool");
    EXPECT_EQ(check.first_int, 1);
    EXPECT_EQ(check.category.arm<"BF_CHECKER_WITH_PRECOMPUTED_MESSAGE">().message.str(),
              "see [x](1)");
    EXPECT_EQ(check.second_int, 1 + 2 + 4 + 8);
    EXPECT_EQ(check.optional_string.value().str(), "R");
    EXPECT_EQ(check.second_string.str(), "7");
    EXPECT_EQ(check.third_string.str(), "note");
    EXPECT_EQ(check.fourth_string.str(), "open");
    EXPECT_EQ(check.fifth_string.str(), "SRC");
    EXPECT_EQ(check.sixth_string.str(), "new");
    EXPECT_EQ(check.source_ref.kind, 511U);
    EXPECT_EQ(check.source_ref.localization.first_position, 1);
    EXPECT_EQ(check.source_ref.localization.file.str(), "a%20b.c");
    EXPECT_EQ(check.source_ref.localization.second_position, 2);
    EXPECT_EQ(check.source_ref.reference, (std::int64_t{3} << 32) + 4);
    EXPECT_FALSE(check.failure.has_value());

    auto const& form = set.check_data.front().second;
    EXPECT_EQ(form.first_optional_int, 1);
    EXPECT_EQ(form.second_optional_int, 2);
    EXPECT_EQ(form.third_optional_int, 3);
    EXPECT_EQ(form.fourth_optional_int, 4);
    EXPECT_EQ(form.first_optional_name.value().str(), "R");
    EXPECT_EQ(form.second_optional_name.value().str(), "f");
    EXPECT_EQ(form.name.str(), "note");
    EXPECT_TRUE(form.first_numbered_name == key("a%20b.c", 1));
    EXPECT_EQ(form.localization.file.str(), "a%20b.c");
    EXPECT_EQ(form.category.arm<"BF_CHECKER_WITH_PRECOMPUTED_MESSAGE">().message.str(),
              "see [x](1)");
    EXPECT_EQ(form.classification.classification_class,
              sml::Results_API_base::GUI_Check_Classification_base::UNCLASSIFIED);
}

TEST(ResultMapping, AbsentNumbersAreNotZeros) {
    auto const  set = set_of(results_of(log_with(
         R"({"locations": [{"physicalLocation": {"artifactLocation": {"uri": "a"}, "region": {"startLine": 0}}}]},
           {"locations": [{"physicalLocation": {"artifactLocation": {"uri": "a"}}}]})")));
    auto const& zero = set.check_data.front().second;
    auto const& absent = set.check_data.back().second;
    EXPECT_EQ(zero.first_optional_int, 0);
    EXPECT_EQ(absent.first_optional_int, std::nullopt);
    EXPECT_EQ(set.application_results.checks.at(key("a", 1)).source_ref.kind, 1U + 2U + 8U);
    EXPECT_EQ(set.application_results.checks.at(key("a", 2)).source_ref.kind, 1U + 2U);
}

TEST(ResultMapping, EachStepIsAnEventAndOneStepOfTheFailure) {
    auto const  set = set_of_fixture("flows.sarif");
    auto const& tables = set.application_results;
    auto const& failure = tables.checks.at(key("a.c", 1)).failure.value();
    std::vector<std::pair<std::string, std::int32_t>> steps;
    for (auto const& [step, value] : failure.steps) {
        EXPECT_FALSE(value.has_value());
        ASSERT_TRUE(tables.events.contains(step));
        steps.emplace_back(step.first.str(), step.second);
    }
    using Steps = decltype(steps);
    EXPECT_EQ(steps, (Steps{{"a.c", 1},
                            {"b.c", 1},
                            {"a.c", 2},
                            {"a.c", 3},
                            {"", 1},
                            {"a.c", 4},
                            {"a.c", 5},
                            {"", 2}}));

    auto const count = [&](char const* name) {
        return failure.named_ints.at(Strings_T(std::string(name)));
    };
    EXPECT_EQ(failure.named_ints.size(), 8U);
    EXPECT_EQ(count("codeFlows"), 2);
    EXPECT_EQ(count("codeFlows/0/threadFlows"), 2);
    EXPECT_EQ(count("codeFlows/0/threadFlows/0/locations"), 3);
    EXPECT_EQ(count("codeFlows/0/threadFlows/1/locations"), 1);
    EXPECT_EQ(count("codeFlows/1/threadFlows"), 3);
    EXPECT_EQ(count("codeFlows/1/threadFlows/0/locations"), 1);
    EXPECT_EQ(count("codeFlows/1/threadFlows/1/locations"), 2);
    EXPECT_EQ(count("codeFlows/1/threadFlows/2/locations"), 1);

    auto const& shared = tables.events.at(key("b.c", 1));
    EXPECT_EQ(shared.optional_string, std::nullopt);
    EXPECT_EQ(shared.first_string.str(), "SRC");
    EXPECT_EQ(shared.source_ref.localization.first_position, 20);
    EXPECT_EQ(shared.source_ref.reference, (std::int64_t{21} << 32) + 3);
    EXPECT_EQ(tables.events.at(key("a.c", 1)).optional_string.value().str(), "shared zero");
    EXPECT_EQ(tables.events.at(key("", 2)).optional_string.value().str(), "");
}

TEST(ResultMapping, EventsAreAsManyAsStepsAndNumberedWithoutGaps) {
    auto const  set = set_of_fixture("flows.sarif");
    auto const& tables = set.application_results;
    std::size_t steps = 0;
    for (auto const& [check_key, check] : tables.checks)
        steps += check.failure ? check.failure->steps.size() : 0;
    EXPECT_EQ(tables.events.size(), steps);
    std::size_t numbered = 0;
    for (auto const& [uri, last] : tables.event_numbers) {
        for (std::int32_t i = 1; i <= last; ++i)
            EXPECT_TRUE(tables.events.contains({uri, i})) << uri.str() << " " << i;
        numbered += static_cast<std::size_t>(last);
    }
    EXPECT_EQ(tables.events.size(), numbered);
}

TEST(ResultMapping, RelatedPlacesAndSuppressionsAreInformationRecords) {
    auto const  set = set_of_fixture("review.sarif");
    auto const& tables = set.application_results;
    auto const& keys = tables.first_key_sets.at(key("a.c", 1));
    EXPECT_EQ(keys.size(), 7U);
    EXPECT_TRUE(keys.contains(key("b.c", 2)));
    auto const& here = tables.infos.at(key("a.c", 1));
    EXPECT_EQ(here.first_string.str(), "relatedLocation");
    EXPECT_EQ(here.first_int, 0);
    EXPECT_EQ(here.second_string.str(), "a.c");
    EXPECT_EQ(here.second_int, 1);
    EXPECT_EQ(here.category.arm<"TOOLTIP_INFO">().tooltip.str(), "here");
    EXPECT_TRUE(here.flag);
    EXPECT_EQ(here.string_and_int.value().first.str(), "id");
    EXPECT_EQ(here.string_and_int->second, 1);
    EXPECT_EQ(here.fourth_string.str(), "SRC");
    EXPECT_EQ(here.location.localization.second_position, 2);

    auto const& external = tables.infos.at(key("", 2));
    EXPECT_EQ(external.first_string.str(), "suppression");
    EXPECT_EQ(external.string_and_int.value().first.str(), "external");
    EXPECT_EQ(external.category.arm<"TOOLTIP_INFO">().tooltip.str(), "underReview");
}

TEST(ResultMapping, FingerprintsStandInTheForm) {
    auto const               set = set_of_fixture("review.sarif");
    auto const               form = std::next(set.check_data.begin(), 4)->second;
    std::vector<std::string> found;
    for (auto const& [place, fingerprint] : form.signature_locations) {
        auto const& signature = fingerprint.first;
        found.push_back(signature.package.str() + " " +
                        signature.qualified_signature.qualified_name.name.str() + " " +
                        fingerprint.second.str());
    }
    std::sort(found.begin(), found.end());
    EXPECT_EQ(found, (std::vector<std::string>{"fingerprints hash/v1 complete",
                                               "partialFingerprints hash/v1 partial",
                                               "partialFingerprints other abc"}));
}

TEST(ResultMapping, EveryVariantIsSet) {
    for (auto const& log : sound_logs()) {
        ResultSet set;
        send_through_bytes(set_of(results_of(bytes_of(log))), set);
        auto const& tables = set.application_results;
        for (auto const& [check_key, check] : tables.checks) {
            EXPECT_TRUE(check.category.holds<"BF_CHECKER_WITH_PRECOMPUTED_MESSAGE">()) << log;
            if (check.failure) {
                EXPECT_TRUE(check.failure->technology.holds<"UNKNOWN">()) << log;
            }
        }
        for (auto const& [event_key, event] : tables.events)
            EXPECT_TRUE(event.kind->holds<"DEFECT_EVENT">()) << log;
        for (auto const& [info_key, info] : tables.infos)
            EXPECT_TRUE(info.category.holds<"TOOLTIP_INFO">()) << log;
        for (auto const& [id, form] : set.check_data)
            EXPECT_TRUE(form.category.holds<"BF_CHECKER_WITH_PRECOMPUTED_MESSAGE">()) << log;
    }
}

}  // namespace
