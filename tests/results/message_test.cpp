#include <sml/results/message.hpp>

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

using namespace sml::results;

TEST(Message, PlacesAreNoPartOfIt) {
    std::vector<std::pair<std::string, std::string>> const equal = {
        {"declared at line 12", "declared at line 7"},
        {"Lines 3-7 and column 4.", "Lines 13-17 and column 40."},
        {"see main.c:12:3 for it", "see src/other.c:9:41 for it"},
        {"see file:///a/main.c", "see /b/c/main.c"},
        {"at C:\\work\\src\\main.c(12)", "at d:/ci/src/main.c(9)"},
        {"/home/a/x/main.c:1: freed", "/build/x/main.c:200: freed"},
        {"see CMakeLists.txt:10", "see CMakeLists.txt:11"},
        {"main.adb:10 or build.gradle:4:1", "main.adb:11 or build.gradle:5:1"},
        {"in Foo.xaml(10)", "in Foo.xaml(11)"},
        {"[allocated here](1)", "[allocated here](2)"},
        {"object at 0x7ffe1234abcd", "object at 0x55551234"},
        {"temporary %tmp12 is lost", "temporary %tmp7 is lost"},
        {"file /tmp/cc81Xa.o is left", "file /tmp/ccQ7.o is left"},
        {"run 123e4567-e89b-12d3-a456-426614174000", "run 00000000-aaaa-bbbb-cccc-426614174000"},
    };
    for (auto const& [one, other] : equal)
        EXPECT_EQ(without_places(one), without_places(other)) << one;
}

TEST(Message, ValuesAndNamesArePartOfIt) {
    std::vector<std::pair<std::string, std::string>> const different = {
        {"index 5 of 4", "index 6 of 4"},
        {"'a1' is unused", "'a2' is unused"},
        {"mask 0xFF", "mask 0xFE"},
        {"see main.c", "see other.c"},
        {"the ratio 1:2", "the ratio 1:3"},
        {"f(12) is called", "f(13) is called"},
        {"line of 80 characters", "line of 81 characters"},
        {"temperature 3", "temperature 4"},
        {"'temperature_tail2' is unused", "'template_head1' is unused"},
        {"list.get(0) is null", "list.get(1) is null"},
        {"map.remove(7)", "map.remove(8)"},
        {"connects to 10.0.0.1:80", "connects to 10.0.0.1:8080"},
        {"example.com:8443", "example.com:443"},
    };
    for (auto const& [one, other] : different)
        EXPECT_NE(without_places(one), without_places(other)) << one;
}

TEST(Message, WithoutPlacesItStaysReadable) {
    EXPECT_EQ(without_places("'p' is freed at /a/b/main.c:3:4 (line 3, column 4)."),
              "'p' is freed at #:# (line #, column #).");
    EXPECT_EQ(without_places(""), "");
    EXPECT_EQ(without_places("Größe über 3 – n"), "Größe über 3 – n");
}

TEST(Message, WithoutNumbersRunsOfDigitsAreEqual) {
    EXPECT_EQ(without_numbers("index 5 of 1234"), "index # of #");
}

TEST(Message, PositionsInAPayloadAreNoPartOfIt) {
    EXPECT_EQ(payload_without_places(R"({"first_position":12,"file":"a.c","second_position":3})"),
              payload_without_places(R"({"first_position":9,"file":"a.c","second_position":41})"));
    EXPECT_EQ(payload_without_places(R"({"file":"C:\\old\\a.c","text":"at line 3 of \"x\""})"),
              payload_without_places(R"({"file":"/new/a.c","text":"at line 14 of \"x\""})"));
    EXPECT_NE(payload_without_places(R"({"text":"a\nb"})"),
              payload_without_places(R"({"text":"c\nb"})"));
    EXPECT_NE(payload_without_places(R"({"first_int":12})"),
              payload_without_places(R"({"first_int":13})"));
}

}  // namespace
