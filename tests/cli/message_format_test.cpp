#include "sarif/message_format.hpp"

#include <gtest/gtest.h>

namespace {

constexpr std::uint64_t plenty = 1000;

std::string formatted_message(std::string_view                     pattern,
                              std::vector<std::string_view> const& arguments) {
    return bradep::sarif::formatted_message(pattern, arguments, plenty).value();
}

TEST(MessageFormat, PlaceholdersTakeTheirArguments) {
    EXPECT_EQ(formatted_message("{1} before {0}, {1} again", {"zero", "one"}),
              "one before zero, one again");
    EXPECT_EQ(formatted_message("{10}", {"0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "ten"}),
              "ten");
    EXPECT_EQ(formatted_message("{0}{0}", {""}), "");
}

TEST(MessageFormat, AnArgumentIsNotFormattedItself) {
    EXPECT_EQ(formatted_message("{0}", {"{1}{{}}", "x"}), "{1}{{}}");
}

TEST(MessageFormat, DoubledBracesAreBraces) {
    EXPECT_EQ(formatted_message("{{0}}", {"x"}), "{0}");
    EXPECT_EQ(formatted_message("{{{0}}}", {"x"}), "{x}");
    EXPECT_EQ(formatted_message("a }} b {{ c", {}), "a } b { c");
}

TEST(MessageFormat, WhatIsNoPlaceholderStays) {
    EXPECT_EQ(formatted_message("{} {x} { 0} {0 } {-0} { } }", {"x"}),
              "{} {x} { 0} {0 } {-0} { } }");
    EXPECT_EQ(formatted_message("{1} {99999999999999999999999}", {"x"}),
              "{1} {99999999999999999999999}");
    EXPECT_EQ(formatted_message("open {0", {"x"}), "open {0");
    EXPECT_EQ(formatted_message("open {", {"x"}), "open {");
    EXPECT_EQ(formatted_message("", {"x"}), "");
}

TEST(MessageFormat, LongerThanTheLimitIsNone) {
    using Arguments = std::vector<std::string_view>;
    auto const fits = [](std::string_view pattern, Arguments const& arguments, std::uint64_t most) {
        return bradep::sarif::formatted_message(pattern, arguments, most).has_value();
    };
    EXPECT_TRUE(fits("a{0}{0}z", {"12345"}, 12));
    EXPECT_FALSE(fits("a{0}{0}z", {"12345"}, 11));
    EXPECT_TRUE(fits("{{{{", {}, 2));
    EXPECT_FALSE(fits("{{{{", {}, 1));
    EXPECT_TRUE(fits("", {}, 0));
    EXPECT_FALSE(fits("x", {}, 0));
    EXPECT_TRUE(fits("{0}{0}", {""}, 0));
}

}  // namespace
