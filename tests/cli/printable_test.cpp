#include <sml/inspect/text/json_text.hpp>
#include <sml/inspect/text/quote.hpp>

#include <gtest/gtest.h>

namespace {

using sml::inspect::byte_text;
using sml::inspect::printable;
using sml::inspect::quoted;
using sml::inspect::StrayByte;
using namespace std::string_literals;

TEST(Quoted, TextOfTheLongestLengthIsWhole) {
    EXPECT_EQ(quoted("abc", 3), "\"abc\"");
    EXPECT_EQ(quoted("abcd", 3), "\"abc\"... (4 bytes)");
}

TEST(ByteText, IsACharacterWherePrintable) {
    EXPECT_EQ(byte_text('~'), "'~'");
    EXPECT_EQ(byte_text('\x7F'), "0x7F");
}

TEST(Printable, TextStays) {
    EXPECT_EQ(printable("größe 文件 😀 \"a\\b\""), "größe 文件 😀 \"a\\b\"");
}

TEST(Printable, LineBreaksAndTabsBecomeBlanks) { EXPECT_EQ(printable("a\nb\tc\r\nd"), "a b c  d"); }

TEST(Printable, WhatATerminalObeysIsEscaped) {
    EXPECT_EQ(printable("\x1B[31m\x07\x7F"), "\\u{1b}[31m\\u{7}\\u{7f}");
    EXPECT_EQ(printable("\0"s), "\\u{0}");
    EXPECT_EQ(printable("\xC2\x9B"
                        "2J"),
              "\\u{9b}2J");
    EXPECT_EQ(printable("\xE2\x80\xAE\xE2\x81\xA6\xE2\x80\xA8"), "\\u{202e}\\u{2066}\\u{2028}");
}

TEST(Printable, BytesThatAreNoUtf8AreEscaped) {
    EXPECT_EQ(printable("caf\xE9"), "caf\\xe9");
    EXPECT_EQ(printable("\xC0\xAF"), "\\xc0\\xaf");                    // overlong form of '/'
    EXPECT_EQ(printable("\xED\xA0\x80"), "\\xed\\xa0\\x80");           // half of a surrogate pair
    EXPECT_EQ(printable("\xF5\x80\x80\x80"), "\\xf5\\x80\\x80\\x80");  // beyond the last character
    EXPECT_EQ(printable("\xE2\x82"), "\\xe2\\x82");                    // cut off
}

std::string json_string(std::string_view text) {
    std::string json;
    sml::inspect::append_json_string(json, text, StrayByte::replaced);
    return json;
}

TEST(JsonString, IsQuotedAndEscaped) {
    EXPECT_EQ(json_string("a\"b\\c/d"), R"("a\"b\\c/d")");
    EXPECT_EQ(json_string("\n\t\r\x01\x7F"), R"("\n\t\r\u0001\u007f")");
    EXPECT_EQ(json_string("\0"s), R"("\u0000")");
    EXPECT_EQ(json_string("größe \xE2\x80\xAE"), "\"größe \\u202e\"");
    EXPECT_EQ(json_string("\xFF"), "\"\\ufffd\"");
    EXPECT_EQ(json_string(""), "\"\"");
}

}  // namespace
