// The views, of checks that no import made and of odd ones that one did.

#include <sml/bindings/bindings.hpp>
#include "cli_support.hpp"
#include "sarif/mapping.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace {

using namespace cli_test;
using namespace std::string_literals;
using bradep::Check;
using bradep::ResultSet;
using sml::Strings_T;

class Views : public testing::Test {
protected:
    Check& check(char const* file, std::int32_t number) {
        return set_.application_results.checks[{Strings_T(file), number}];
    }
    Check& with_message(std::string const& message) {
        Check& made = check("a.c", 1);
        made.category.choose<"BF_CHECKER_WITH_PRECOMPUTED_MESSAGE">().message = Strings_T(message);
        return made;
    }
    void import(std::string const& results) {
        bradep::Comparisons comparisons;
        for (auto const& result : results_of(log_with(results)))
            bradep::sarif::add_result(result, set_, comparisons);
    }

    /// The rows of a statement as CSV, where `-` is null.
    std::string rows(std::string const& sql) const {
        return rows_of(sml::Base_Gui_Internal_Form_Datas_Aggregated_Results_T_fromCxx(set_), sql);
    }
    std::string rows_of(std::string const& bytes, std::string const& sql) const {
        std::string const file = scratch_ / "set";
        write_bytes(file, bytes);
        auto const asked =
            run_command({"sql", "--format", "csv", "--no-header", "--null", "-", file, sql});
        EXPECT_EQ(asked.err, "");
        return asked.out;
    }

    Scratch   scratch_;
    ResultSet set_;
};

TEST_F(Views, AreEmptyForAnEmptySet) {
    for (char const* const view : {"findings", "steps", "places", "rules", "files", "tools"})
        EXPECT_EQ(rows(std::string("SELECT * FROM ") + view), "") << view;
}

TEST_F(Views, ACheckOfAKernelHasItsCategoryAsRule) {
    Check& one = check("a.c", 7);
    one.category.choose<"ZDV">();
    one.first_string = one.third_string = one.fourth_string = Strings_T("unknown");
    one.source_ref.kind = 0xFF;
    one.source_ref.reference = -1;
    one.second_int = 15;
    EXPECT_EQ(rows("SELECT * FROM findings"),
              "1,0,-,-,-,ZDV,warning,-,-,ZDV,a.c,-,-,-,-,-,-,0,-,-,-,a.c:7\n");
}

TEST_F(Views, ACheckWithoutCategoryHasNoRule) {
    check("a.c", 1);
    EXPECT_EQ(rows("SELECT rule, category, level, key FROM findings"), "-,-,warning,a.c:1\n");
}

TEST_F(Views, APlaceIsThatOfTheSourceReferenceElseOfTheKey) {
    auto& place = check("a.c", 1).source_ref.localization;
    EXPECT_EQ(rows("SELECT uri, line, column FROM findings"), "a.c,-,-\n");
    place = {.first_position = 3, .file = Strings_T("a.h"), .second_position = -4};
    EXPECT_EQ(rows("SELECT uri, line, column FROM findings"), "a.h,3,-4\n");
    EXPECT_EQ(rows("SELECT kind, position, uri, line FROM places"), "location,0,a.h,3\n");
}

TEST_F(Views, ACheckWithoutPlaceHasNoRowInPlaces) {
    check("", 1);
    EXPECT_EQ(rows("SELECT uri, key FROM findings"), "-,:1\n");
    EXPECT_EQ(rows("SELECT * FROM places"), "");
}

TEST_F(Views, AMessageIsKnownWithoutAnImport) {
    with_message("given");
    EXPECT_EQ(rows("SELECT rule, level, message FROM findings"),
              "BF_CHECKER_WITH_PRECOMPUTED_MESSAGE,warning,given\n");
}

TEST_F(Views, ACheckWithMoreThanAnImportWritesIsNotImported) {
    Check& one = with_message("given");
    one.third_string = Strings_T("error");
    one.optional_string = Strings_T("R1");
    EXPECT_EQ(rows("SELECT rule, level FROM findings"), "R1,error\n");
    for (std::int32_t* const word : {&one.third_int, &one.fourth_int, &one.fifth_int,
                                     &one.sixth_int, &one.seventh_int, &one.eighth_int}) {
        *word = 1;
        EXPECT_EQ(rows("SELECT rule, level FROM findings"),
                  "BF_CHECKER_WITH_PRECOMPUTED_MESSAGE,warning\n");
        *word = 0;
    }
    one.second_int = 16;
    EXPECT_EQ(rows("SELECT level FROM findings"), "warning\n");
}

TEST_F(Views, AMessageIsSpelledAsOtherTexts) {
    // Bytes that are no UTF-8, a NUL, and the same escapes as text.
    auto const message = "\xFF \0 \\udcff \\\xFE \\\\u0000 \n\"\xC3\xA9"s;
    with_message(message).third_string = Strings_T(message);
    std::string const expected = "\"\\udcff \\u0000 \\udcff \\\\udcfe \\\\u0000 \n\"\"\xC3\xA9\"\n";
    EXPECT_EQ(rows("SELECT message FROM findings"), expected);
    EXPECT_EQ(rows("SELECT third_string FROM checks"), expected);
}

TEST_F(Views, EmptyTextsThatALogGivesAreNotNull) {
    import(R"({"ruleId": "", "message": {"text": ""}, "baselineState": "", "locations":
        [{"physicalLocation": {"artifactLocation": {"uri": "", "uriBaseId": ""}}}]})");
    EXPECT_EQ(rows("SELECT rule, message, baseline_state, uri, base FROM findings"), ",,,,\n");
}

TEST_F(Views, PositionsCanBeZeroOrNegative) {
    import(R"({"message": {"text": "t"}, "locations": [{"physicalLocation": {"region":
        {"startLine": 0, "startColumn": -1, "endLine": -2, "endColumn": -3}}}]})");
    char const* const expected = "0,-1,-2,-3\n";
    EXPECT_EQ(rows("SELECT line, column, end_line, end_column FROM findings"), expected);
    EXPECT_EQ(rows("SELECT line, column, end_line, end_column FROM places"), expected);
}

TEST_F(Views, AFunctionIsTheNameOfTheFirstLogicalLocation) {
    import(R"({"message": {"text": "t"}, "locations": [{"logicalLocations":
        [{"name": "f", "fullyQualifiedName": "N::f"}, {"name": "g"}]}]}, {"message": {}})");
    EXPECT_EQ(rows("SELECT function FROM findings ORDER BY key"), "N::f\n-\n");
}

TEST_F(Views, AClassIsThatOfTheFormElseTheClassifications) {
    using Class =
        sml::Results_API_base::GUI_Check_Classification_base::T_GUI_Check_Classification_Class;
    auto& all = check("a.c", 1).classifications;
    EXPECT_EQ(rows("SELECT class FROM findings"), "-\n");
    sml::Check_Classification::T_Check_Classification one;
    one.choose<"INPUT_IMPACT">().first_int = 1;
    all.insert(one);
    one.choose<"INPUT_IMPACT">().first_int = 2;
    all.insert(one);
    one.choose<"CRITICAL_CHK">();
    all.insert(one);
    EXPECT_EQ(rows("SELECT class FROM findings"), "\"CRITICAL_CHK,INPUT_IMPACT\"\n");
    auto& form = set_.check_data.emplace_back(1, bradep::CheckForm()).second;
    form.first_numbered_name = {Strings_T("a.c"), 1};
    form.classification.classification_class = Class::PROVEN;
    EXPECT_EQ(rows("SELECT class FROM findings"), "PROVEN\n");
}

TEST_F(Views, ACheckOfAKernelCanBeSuppressed) {
    check("a.c", 1);
    check("a.c", 2);
    auto& info = set_.application_results.infos[{Strings_T("x"), 1}];
    info.first_string = Strings_T("suppression");
    info.second_string = Strings_T("a.c");
    info.second_int = 2;
    auto&             tooltip = info.category.choose<"TOOLTIP_INFO">().tooltip;
    char const* const ask = "SELECT suppressed FROM findings ORDER BY key";
    EXPECT_EQ(rows(ask), "0\n1\n");
    info.flag = true;
    EXPECT_EQ(rows(ask), "0\n0\n");
    tooltip = Strings_T("accepted");
    EXPECT_EQ(rows(ask), "0\n1\n");
}

TEST_F(Views, StepsOfAKernelAreInOneThread) {
    auto& steps = check("a.c", 1).failure.emplace().steps;
    steps.emplace_back(bradep::NumberedKey(Strings_T("b.c"), 5), std::nullopt);
    steps.emplace_back(bradep::NumberedKey(Strings_T("none"), 1), std::nullopt);
    auto& event = set_.application_results.events[{Strings_T("b.c"), 5}];
    event.source_ref.localization.first_position = 9;
    event.optional_string = Strings_T("here");
    EXPECT_EQ(rows("SELECT * FROM steps"), "1,0,0,0,0,b.c,9,-,here\n1,0,0,0,1,-,-,-,-\n");
}

TEST_F(Views, AreThereForTheRootOfAKernelsResults) {
    import(R"({"ruleId": "R1", "message": {"text": "t"}})");
    check("a.c", 1).category.choose<"ZDV">();
    auto const bytes =
        sml::Application_Results_Application_Results_fromCxx(set_.application_results);
    EXPECT_EQ(rows_of(bytes, "SELECT rule, level, message, class FROM findings ORDER BY rule"),
              "R1,warning,t,-\nZDV,warning,-,-\n");
}

}  // namespace
