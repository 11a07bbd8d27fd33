// The output of `show` for imported and native checks.

#include <sml/bindings/bindings.hpp>
#include "cli_support.hpp"
#include "sarif/mapping.hpp"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace cli_test;
using bradep::ResultSet;
using sml::Strings_T;

bool contains(std::string const& text, std::string const& part) {
    return text.find(part) != std::string::npos;
}

std::string bytes_of_set(ResultSet const& set) {
    return sml::Base_Gui_Internal_Form_Datas_Aggregated_Results_T_fromCxx(set);
}

void add_overflow(ResultSet& set, char const* file, std::int32_t ordinal, bool flag) {
    auto& check = set.application_results.checks[{Strings_T(file), ordinal}];
    auto& args = check.category.choose<"OVFL">();
    args.ovfl_data.choose<"Single_Ovfl">().first_flag = flag;
}

// Two checks without a form, between an imported one and one that has a form.
ResultSet native_set() {
    ResultSet           set;
    bradep::Comparisons comparisons;
    for (auto const& result : results_of(log_with(R"({"message": {"text": "imported"}})")))
        bradep::sarif::add_result(result, set, comparisons);
    add_overflow(set, "b.c", 2, true);
    add_overflow(set, "b.c", 10, false);
    add_overflow(set, "a.c", 1, false);
    auto& form = set.check_data.emplace_back(1, bradep::CheckForm()).second;
    form.first_numbered_name = {Strings_T("b.c"), 10};
    form.category = set.application_results.checks.at({Strings_T("b.c"), 10}).category;
    return set;
}

TEST(ShowNative, JsonHasTheKeyAndTheCategoryAsDumpHasIt) {
    auto const shown = run_command({"show", "--json", "-"}, bytes_of_set(native_set()));
    EXPECT_EQ(shown.code, 0);
    EXPECT_EQ(shown.err, "");
    auto const ovfl = [](std::string const& key, std::string const& flag) {
        return R"({"key":)" + key +
               R"(,"category":{"arm":"OVFL","args":{"first_string":"","first_flag":false,)" +
               R"("ovfl_data":{"arm":"Single_Ovfl","args":{"first_flag":)" + flag +
               "}},\"string_pair\":null,\"second_string\":\"\"}}}\n";
    };
    auto const imported_end = shown.out.find('\n') + 1;
    EXPECT_TRUE(contains(shown.out.substr(0, imported_end), R"("message":"imported")"));
    EXPECT_EQ(shown.out.substr(imported_end), ovfl(R"(["b.c",10])", "false") +
                                                  ovfl(R"(["a.c",1])", "false") +
                                                  ovfl(R"(["b.c",2])", "true"));
}

TEST(ShowNative, ThoseOfOneFileStandInTheOrderOfTheirNumbers) {
    ResultSet set;
    for (std::int32_t ordinal = 30; ordinal > 0; --ordinal) add_overflow(set, "a.c", ordinal, true);
    auto const  shown = run_command({"show", "--json", "-"}, bytes_of_set(set));
    std::size_t at = 0;
    for (int ordinal = 1; ordinal <= 30; ++ordinal) {
        at = shown.out.find(R"({"key":["a.c",)" + std::to_string(ordinal) + "]", at);
        ASSERT_NE(at, std::string::npos) << ordinal << "\n" << shown.out;
    }
}

TEST(ShowNative, TextHasALineForEach) {
    auto const shown = run_command({"show", "-"}, bytes_of_set(native_set()));
    EXPECT_EQ(shown.code, 0);
    EXPECT_TRUE(contains(shown.out,
                         "\nFirst checks\n"
                         "  (no place): warning: imported\n"
                         "  b.c: OVFL, check 10\n"
                         "  a.c: OVFL, check 1\n"
                         "  b.c: OVFL, check 2\n"))
        << shown.out;
}

TEST(ShowNative, ASuppressedOneIsMarked) {
    auto  set = native_set();
    auto& info = set.application_results.infos[{Strings_T("b.c"), 1}];
    info.first_string = Strings_T("suppression");
    info.second_string = Strings_T("b.c");
    info.second_int = 2;
    info.category.choose<"TOOLTIP_INFO">();
    auto const shown = run_command({"show", "-"}, bytes_of_set(set));
    EXPECT_TRUE(contains(shown.out, "  b.c: OVFL, check 2 (suppressed)\n")) << shown.out;
    EXPECT_TRUE(contains(shown.out, "\n  a.c: OVFL, check 1\n")) << shown.out;
}

TEST(ShowNative, AMessageThatNoImportWroteIsACategory) {
    ResultSet set;
    auto&     check = set.application_results.checks[{Strings_T("a.c"), 1}];
    check.category.choose<"BF_CHECKER_WITH_PRECOMPUTED_MESSAGE">().message = Strings_T("given");
    auto const shown = run_command({"show", "--json", "-"}, bytes_of_set(set));
    EXPECT_EQ(shown.out,
              R"({"key":["a.c",1],"category":{"arm":"BF_CHECKER_WITH_PRECOMPUTED_MESSAGE",)"
              R"("args":{"message":"given"}}})"
              "\n");
}

TEST(ShowNative, AFormWithoutACheckIsShownByItsOwnCategory) {
    ResultSet set;
    auto&     form = set.check_data.emplace_back(7, bradep::CheckForm()).second;
    form.category.choose<"OVFL">();
    form.localization.file = Strings_T("a.c");
    auto const shown = run_command({"show", "--json", "-"}, bytes_of_set(set));
    EXPECT_EQ(shown.code, 0);
    EXPECT_TRUE(shown.out.starts_with(R"({"category":{"arm":"OVFL","args":)")) << shown.out;
    auto const summary = run_command({"show", "-"}, bytes_of_set(set)).out;
    EXPECT_TRUE(contains(summary, "\nFirst checks\n  a.c: OVFL\n"));
    EXPECT_TRUE(summary.starts_with("standard input: 1 check from 0 runs")) << summary;
}

TEST(ShowNative, AnUnsetCategoryHasNoName) {
    ResultSet set;
    set.application_results.checks[{Strings_T("a.c"), 1}];
    auto const summary = run_command({"show", "-"}, bytes_of_set(set)).out;
    EXPECT_TRUE(contains(summary, "\nChecks by category\n  1  (none)\n")) << summary;
}

// A category can refer to a text any number of times, so it is printed in pieces, up to the limit.
TEST(ShowNative, MaxOutputHoldsForCategoriesToo) {
    auto const bytes = bytes_of_set(native_set());
    auto const shown = run_command({"show", "--json", "--max-output", "150", "-"}, bytes);
    EXPECT_EQ(shown.code, 1);
    EXPECT_LE(shown.out.size(), 150U);
    EXPECT_EQ(shown.err,
              "bradep: standard input: what is to be printed is larger than --max-output 150\n");
}

}  // namespace
