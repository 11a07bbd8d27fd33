#include <sml/tables/sizes.hpp>

#include <sml/inspect/contents.hpp>
#include <sml/inspect/verify.hpp>

#include "tests/hex.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <variant>
#include <vector>

namespace {

using namespace sml;
using namespace sml::tables;

std::string text_of(Cell const& cell) {
    if (auto const* const number = std::get_if<std::int64_t>(&cell)) return std::to_string(*number);
    if (auto const* const text = std::get_if<Text>(&cell)) return std::string(text->text);
    return "-";
}

/// The rows of `sizes`, with blanks between cells.
std::vector<std::string> sizes(inspect::Root const& root, std::string const& bytes) {
    ResultSets sets(root, {});
    sets.add({"set", bytes, inspect::Contents(root, bytes)});
    auto const               source = sizes_of(sets);
    auto const               columns = source->columns().size();
    auto const               rows = source->rows(1, std::vector<bool>(columns, true));
    std::vector<std::string> all;
    while (rows->next()) {
        std::string& row = all.emplace_back();
        for (std::size_t column = 1; column < columns; ++column)
            row += (column > 1 ? " " : "") + text_of(rows->cell(column));
    }
    return all;
}

inspect::Root const& sets_by_name() { return *inspect::find_root("String_To_StringSet_T"); }

TEST(Sizes, CountEntriesWithThoseOfTheirChildren) {
    // {"b": {"z", "a"}, "a": {}}
    auto const bytes = hex::bytes(
        "02 00 00 00  FF FF FF FF 01 00 00 00 'b'  02 00 00 00"
        "FE FF FF FF 01 00 00 00 'z'  FD FF FF FF 01 00 00 00 'a'  03 00 00 00  00 00 00 00");
    EXPECT_EQ(sizes(sets_by_name(), bytes),
              (std::vector<std::string>{"root 1 43 43 0 2", "value 2 39 31 0 1",
                                        "value__value 2 18 9 0 0", "(strings) 3 27 9 - -"}));
}

TEST(Sizes, AreNullWhereThereIsNoRow) {
    EXPECT_EQ(sizes(sets_by_name(), hex::bytes("00 00 00 00")),
              (std::vector<std::string>{"root 1 4 4 0 1", "value 0 0 - - -",
                                        "value__value 0 0 - - -", "(strings) 0 0 - - -"}));
}

TEST(Sizes, AreThoseOfTheValueThatAReaderKeeps) {
    // "b" comes twice.
    auto const bytes = hex::bytes(
        "02 00 00 00  FF FF FF FF 01 00 00 00 'b'  00 00 00 00  01 00 00 00  00 00 00 00");
    EXPECT_EQ(sizes(sets_by_name(), bytes).at(1), "value 1 13 13 0 1");
}

bool is_safe(inspect::Root const& root, std::string const& bytes, std::int64_t depth) {
    inspect::VerifyOptions options;
    options.limits.depth = static_cast<std::uint32_t>(depth);
    return verify(root, bytes, options).answer != inspect::Answer::unsafe;
}

TEST(Sizes, HaveTheLeastDepthThatIsSafe) {
    std::size_t compared = 0;
    for (auto const& entry : std::filesystem::directory_iterator(BRADEP_GOLDENS)) {
        if (entry.path().extension() != ".bin") continue;
        std::ifstream     file(entry.path(), std::ios::binary);
        std::string const bytes{std::istreambuf_iterator<char>(file), {}};
        auto const        name = entry.path().filename().string();
        auto const&       root = *inspect::find_root(name.substr(0, name.find('.')));
        auto const        row = sizes(root, bytes).front();
        auto const        depth = std::stoll(row.substr(row.rfind(' ')));
        EXPECT_TRUE(is_safe(root, bytes, depth)) << name << ": " << row;
        if (depth > 0) {
            EXPECT_FALSE(is_safe(root, bytes, depth - 1)) << name << ": " << row;
        }
        ++compared;
    }
    EXPECT_GT(compared, 40u);
}

}  // namespace
