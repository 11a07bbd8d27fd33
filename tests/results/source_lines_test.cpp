#include <sml/results/source_lines.hpp>

#include <gtest/gtest.h>

namespace {

using namespace sml::results;

TEST(SourceLines, BlanksDoNotMatter) {
    SourceLines const one("int f()\n{\n\n    return  g( 1 );\r\n}\n");
    SourceLines const other("int f()\n{\n\treturn g( 1 );\n\n}\n");
    EXPECT_EQ(one.at(4).text, other.at(3).text);
    EXPECT_EQ(one.at(4).surroundings, other.at(3).surroundings);
    EXPECT_NE(one.at(1).text, one.at(4).text);
}

TEST(SourceLines, LineThatIsNotThereHasNoText) {
    SourceLines const lines("a\n\nb");
    for (int const line : {-1, 0, 2, 4}) EXPECT_TRUE(lines.at(line).text.is_none()) << line;
    EXPECT_FALSE(lines.at(3).text.is_none());
    EXPECT_TRUE(SourceLines("").at(1).text.is_none());
}

TEST(SourceLines, SurroundingsAreTwoLinesOnEachSide) {
    SourceLines const lines("1\n2\n3\nx\n4\n5\n6\n");
    SourceLines const far("0\n2\n3\nx\n4\n5\n7\n");
    SourceLines const near("1\n2\n3\nx\n4\n0\n6\n");
    EXPECT_EQ(lines.at(4).surroundings, far.at(4).surroundings);
    EXPECT_NE(lines.at(4).surroundings, near.at(4).surroundings);
}

}  // namespace
