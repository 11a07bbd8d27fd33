#include <sml/tables/rows.hpp>

#include <sml/inspect/text/number_text.hpp>

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace sml::tables;

std::string valid(std::string_view text) {
    std::string made;
    append_valid_text(made, text);
    return made;
}

TEST(CellText, IsTheTextIfThatIsValid) {
    for (std::string_view const text : {"", "a", "abcdefgh", "0123456789abcdef!", "größer", "€😀"}) {
        EXPECT_TRUE(is_valid_text(text)) << text;
        EXPECT_EQ(valid(text), text);
    }
}

TEST(CellText, SpellsOutBytesThatAreNoCharacters) {
    using namespace std::string_view_literals;
    EXPECT_FALSE(is_valid_text("abc\x80"));
    EXPECT_FALSE(is_valid_text("abcdefgh\0"sv));
    EXPECT_FALSE(is_valid_text("\xED\xA0\x80"));  // a surrogate
    EXPECT_EQ(valid("a\x80z"), "a\\udc80z");
    EXPECT_EQ(valid("a\0z"sv), "a\\u0000z");
    EXPECT_EQ(valid("\xE2\x82"), "\\udce2\\udc82");
}

TEST(CellText, IsCheckedAtEveryPlace) {
    for (std::size_t size = 1; size < 40; ++size)
        for (std::size_t at = 0; at < size; ++at)
            for (char const byte : {'\0', '\x80', '\xFF'}) {
                std::string text(size, 'a');
                text[at] = byte;
                EXPECT_FALSE(is_valid_text(text)) << size << ' ' << at;
            }
}

std::string ordered(std::string_view digits) {
    std::string text;
    append_ordered(text, digits);
    return text;
}

TEST(OrderedInteger, IsATextInTheOrderOfTheIntegers) {
    std::vector<std::string> const rising = {"-1" + std::string(20, '0'),
                                             "-100000000",
                                             "-ff",
                                             "-10",
                                             "-f",
                                             "-2",
                                             "-1",
                                             "0",
                                             "1",
                                             "9",
                                             "a",
                                             "f",
                                             "10",
                                             "1f",
                                             "20",
                                             "ff",
                                             "100",
                                             "fffffffff",
                                             "1" + std::string(20, '0'),
                                             "2" + std::string(20, '0')};
    for (std::size_t i = 0; i + 1 < rising.size(); ++i)
        EXPECT_LT(ordered(rising[i]), ordered(rising[i + 1])) << rising[i];
}

}  // namespace
