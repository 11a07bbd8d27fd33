// A kernel's own checks as a SARIF log.

#include <sml/bindings/bindings.hpp>
#include "cli_support.hpp"
#include "result_set.hpp"
#include "sarif/category_texts.hpp"

#include <gtest/gtest.h>
#include <boost/json.hpp>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace cli_test;
namespace json = boost::json;
using bradep::Check;
using bradep::ResultSet;
using sml::Strings_T;

Strings_T text(std::string const& characters) { return Strings_T(characters.c_str()); }

class KernelSarif : public testing::Test {
protected:
    Check& check(std::string const& file, std::int32_t number, std::int32_t line) {
        Check& made = set_.application_results.checks[{text(file), number}];
        made.category.choose<"ZDV">();
        made.source_ref.localization = {line, text(file), 5};
        return made;
    }

    json::value exported() const {
        Scratch const scratch;
        write_bytes(scratch / "set",
                    sml::Base_Gui_Internal_Form_Datas_Aggregated_Results_T_fromCxx(set_));
        auto const done = run_command({"export", scratch / "set", "--sarif", "-"});
        EXPECT_EQ(done.err, "");
        EXPECT_EQ(done.code, 0);
        return json::parse(done.out);
    }

    json::array results() const { return exported().at_pointer("/runs/0/results").as_array(); }

    json::value only_result() const {
        auto all = results();
        EXPECT_EQ(all.size(), 1u);
        return all.at(0);
    }

    ResultSet set_;
};

TEST_F(KernelSarif, CategoriesAreRules) {
    check("a.c", 1, 3);
    check("a.c", 2, 4).category.choose<"OVFL">();
    check("a.c", 3, 5);
    auto const log = exported();
    EXPECT_EQ(log.at_pointer("/runs/0/tool"),
              json::parse(R"({"driver": {"name": "kernel", "rules": [
        {"id": "OVFL", "shortDescription": {"text": "An arithmetic operation overflows."}},
        {"id": "ZDV", "shortDescription": {"text": "A division by zero."}}]}})"));
    for (auto const& result : log.at_pointer("/runs/0/results").as_array()) {
        auto const pointer = "/runs/0/tool/driver/rules/" +
                             std::to_string(result.at("ruleIndex").as_int64()) + "/id";
        EXPECT_EQ(log.at_pointer(pointer), result.at("ruleId"));
    }
}

TEST_F(KernelSarif, AFindingHasItsPlaceFunctionAndPayload) {
    Check& made = check("src/a b.c", 7, 3);
    made.category.choose<"OBAI">().first_int = 12;
    auto& names = made.located_names[made.source_ref.localization].second;
    names.qualified_signature.qualified_name.name = text("f");
    auto result = only_result().as_object();
    result.erase("partialFingerprints");
    EXPECT_EQ(result, json::parse(R"({"ruleId": "OBAI", "ruleIndex": 0, "level": "warning",
        "message": {"text": "An index is outside of the bounds of its array."},
        "locations": [{
            "physicalLocation": {"artifactLocation": {"uri": "src/a%20b.c"},
                                 "region": {"startLine": 3, "startColumn": 5}},
            "logicalLocations": [{"name": "f", "kind": "function"}]}],
        "properties": {"key": "src/a b.c:7", "payload": {"first_string": "", "first_int": 12}}})")
                          .as_object());
}

TEST_F(KernelSarif, StepsAreAFlowOfEvents) {
    auto& failure = check("a.c", 1, 3).failure.emplace();
    for (std::int32_t const number : {2, 1}) {
        failure.steps.emplace_back().first = {text("e.c"), number};
        auto& event = set_.application_results.events[{text("e.c"), number}];
        event.kind->choose<"VARIABLE_ACCESS_EVENT">().first_flag = true;
        event.source_ref.localization = {10 * number, text("e.c"), 0};
    }
    failure.steps.emplace_back().first = {text("lost.c"), 1};
    auto const steps = only_result().at_pointer("/codeFlows/0/threadFlows/0/locations").as_array();
    ASSERT_EQ(steps.size(), 3u);
    for (std::size_t const i : {0u, 1u}) {
        auto const& location = steps[i].at("location");
        EXPECT_EQ(location.at_pointer("/message/text"), "variable access event");
        EXPECT_EQ(location.at_pointer("/physicalLocation/region/startLine"), i == 0 ? 20 : 10);
        EXPECT_EQ(steps[i].at_pointer("/properties/payload/first_flag"), true);
    }
    EXPECT_EQ(steps[2].at("location"),
              json::parse(R"({"physicalLocation": {"artifactLocation": {"uri": "lost.c"}}})"));
}

TEST_F(KernelSarif, InformationRecordsAreRelatedLocations) {
    check("a.c", 1, 3);
    auto& info = set_.application_results.infos[{text("i.c"), 4}];
    info.category.choose<"TOOLTIP_INFO">().tooltip = text("x is 0");
    info.location.localization = {9, text("i.c"), 2};
    set_.application_results.first_key_sets[{text("a.c"), 1}].insert({text("i.c"), 4});
    EXPECT_EQ(only_result().at("relatedLocations"), json::parse(R"([{
        "physicalLocation": {"artifactLocation": {"uri": "i.c"},
                             "region": {"startLine": 9, "startColumn": 2}},
        "message": {"text": "tooltip info"}, "properties": {"payload": {"tooltip": "x is 0"}}}])"));
}

TEST_F(KernelSarif, NumbersAreExact) {
    auto&      failure = check("a.c", 1, 3).failure.emplace();
    auto const number = sml::BigInteger("123456789012345678901234567890");
    failure.steps.emplace_back().second.emplace().choose<"LoopIteration">() = number;
    EXPECT_EQ(only_result().at_pointer("/codeFlows/0/threadFlows/0/locations/0/properties/value"),
              json::parse(R"({"arm": "LoopIteration", "args": "123456789012345678901234567890"})"));
}

TEST_F(KernelSarif, ClassTellsTheLevel) {
    sml::Check_Classification::T_Check_Classification critical;
    critical.choose<"CRITICAL_CHK">();
    check("a.c", 1, 3).classifications.insert(critical);
    auto const result = only_result();
    EXPECT_EQ(result.at("level"), "error");
    EXPECT_EQ(result.at_pointer("/properties/class"), "CRITICAL_CHK");

    sml::Check_Classification::T_Check_Classification other;
    other.choose<"INPUT_IMPACT">();
    check("a.c", 1, 3).classifications.insert(other);
    auto const with_both = only_result();
    EXPECT_EQ(with_both.at("level"), "error");
    EXPECT_EQ(with_both.at_pointer("/properties/class"), "CRITICAL_CHK,INPUT_IMPACT");
}

std::vector<std::string> fingerprints(json::array const& results) {
    std::vector<std::string> all;
    for (auto const& result : results)
        all.emplace_back(result.at_pointer("/partialFingerprints/finding~1v1").as_string());
    std::ranges::sort(all);
    return all;
}

TEST_F(KernelSarif, FingerprintsStayThoughLinesRootsAndOrdinalsMove) {
    check("/a/x.c", 1, 3);
    check("/a/x.c", 2, 9);
    check("/a/y.c", 1, 9).category.choose<"OVFL">();
    auto const before = fingerprints(results());
    set_ = {};
    check("/a/x.c", 5, 30);
    check("/a/x.c", 4, 90);
    check("/a/y.c", 8, 1).category.choose<"OVFL">();
    EXPECT_EQ(fingerprints(results()), before);
    EXPECT_EQ(std::ranges::adjacent_find(before), before.end());
    EXPECT_TRUE(before[0].ends_with(":1") || before[0].ends_with(":2"));
}

TEST_F(KernelSarif, PathsAreUris) {
    std::vector<std::pair<std::string, std::string>> const uris = {
        {"C:\\src\\a b.c", "file:///C:/src/a%20b.c"},
        {"/src/a%b.c", "file:///src/a%25b.c"},
        {"file:///src/a.c", "file:///src/a.c"},
        {"a:b.c", "a%3Ab.c"},
        {"src/\xC3\xA4.c", "src/%C3%A4.c"}};
    for (auto const& [path, uri] : uris) {
        set_ = {};
        check(path, 1, 1);
        auto const result = only_result();
        EXPECT_EQ(result.at_pointer("/locations/0/physicalLocation/artifactLocation/uri"),
                  json::string(uri));
    }
}

// What the texts leave out, so that a misspelled category is found.
TEST(CategoryTexts, AreOfCategories) {
    std::vector<std::string> without;
    for (std::string const name : sml::Checks::T_Check_Category::arms::names)
        if (bradep::sarif::description_of_category(name).empty()) without.push_back(name);
    EXPECT_EQ(without, (std::vector<std::string>{
                           "ACER", "ADA_FE", "CC",  "CPP_Vor", "CTR",   "DCTp", "DCTr", "DV_ASSERT",
                           "EEXU", "EXD",    "FAP", "IDR",     "LSHFP", "NNR",  "NTA",  "PAS",
                           "PCF",  "PMF",    "SEH", "THD",     "THR",   "TID"}));
}

}  // namespace
