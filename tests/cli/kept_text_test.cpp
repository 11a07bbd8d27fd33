// What a check keeps as JSON text, as `show --json` prints it.

#include <sml/bindings/bindings.hpp>
#include "cli_support.hpp"
#include "result_set.hpp"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace {

using namespace cli_test;
using bradep::ResultSet;

std::string imported(std::string const& log) {
    auto const done = run_command({"import", "-o", "-", "-"}, log);
    EXPECT_EQ(done.code, 0) << done.err;
    return done.out;
}

/// The object behind "more" in the line of the only check.
std::string more_of(std::string const& set) {
    auto const shown = run_command({"show", "--json", "-"}, set);
    EXPECT_EQ(shown.code, 0) << shown.err;
    std::string_view const name = "\"more\":";
    auto const             start = shown.out.find(name);
    if (start == std::string::npos) return "nothing";
    return shown.out.substr(start + name.size(), shown.out.rfind('}') - start - name.size());
}

std::string more_of_result(std::string const& members) {
    return more_of(imported(log_with(R"({"message": {"text": "m"}, )" + members + "}")));
}

TEST(KeptText, NumbersThatNoDoubleHoldsStayNumbers) {
    EXPECT_EQ(more_of_result(R"("properties": {"a": 1e400, "b": -1e400, "c": 12.0, "d": 0.5})"),
              R"({"properties":{"a":1e999,"b":-1e999,"c":12,"d":0.5}})");
}

TEST(KeptText, MembersMayHaveNoName) {
    EXPECT_EQ(more_of_result(R"("properties": {"": 1, "index": 2}, "fixes": [{"": 3}])"),
              R"({"fixes":[{"":3}],"properties":{"":1,"index":2}})");
}

TEST(KeptText, IndicesMayBeSpelledAsReals) {
    auto const with = [](std::string const& index) {
        return more_of(
            imported(R"({"version": "2.1.0", "runs": [{"tool": {"driver": {"name": "T"}},)"
                     R"( "artifacts": [{"location": {"uri": "a.c"}}], "results": [{"message":)"
                     R"( {"text": "m"}, "analysisTarget": {"index": )" +
                     index + "}}]}]}"));
    };
    EXPECT_EQ(with("0"), R"({"analysisTarget":{"uri":"a.c"}})");
    EXPECT_EQ(with("0.0"), with("0"));
}

// Sets come from elsewhere, too: what is printed is one line of JSON, whatever they hold.
TEST(KeptText, TextThatIsNoJsonIsPrintedAsAString) {
    auto const printed = [](std::string const& text) {
        ResultSet set;
        sml::Base_Gui_Internal_Form_Datas_Aggregated_Results_T_toCxx(
            set, imported(log_with(R"({"message": {"text": "m"}, "rank": 5})")).data());
        auto& located = set.application_results.checks.begin()->second.located_names;
        EXPECT_EQ(located.size(), 1u);
        auto& names = located.begin()->second.first;
        auto  name = *names.begin();
        name.name = text;
        names.clear();
        names.insert(name);
        return more_of(sml::Base_Gui_Internal_Form_Datas_Aggregated_Results_T_fromCxx(set));
    };
    EXPECT_EQ(printed("7"), R"({"rank":7})");
    EXPECT_EQ(printed(R"({"a\"": [" b"]})"), R"({"rank":{"a\"": [" b"]}})");
    EXPECT_EQ(printed(R"({"a": )"), R"({"rank":"{\"a\": "})");
    EXPECT_EQ(printed("7, \"level\": \"none\""), R"({"rank":"7, \"level\": \"none\""})");
    EXPECT_EQ(printed("[\n1]"), R"({"rank":"[\n1]"})");
    EXPECT_EQ(printed(""), R"({"rank":""})");
    EXPECT_EQ(printed("\x80"), R"({"rank":"\ufffd"})");
}

}  // namespace
