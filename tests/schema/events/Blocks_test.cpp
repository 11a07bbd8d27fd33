#include <sml/schema/Blocks.hpp>
#include "tests/order.hpp"
#include "tests/schema/tables.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

using sml::Blocks::T_BlockAttribute;
using sml::Blocks::T_BlockLocalization;
using sml::Blocks::T_BlockUnreachable;
using std::string_literals::operator""s;

T_BlockAttribute then_block() {
    T_BlockAttribute block;
    block.kind.choose<"B_THEN">();
    return block;
}

TEST(BlockUnreachable, PrintsItsNames) {
    tables::expect_enumerators<T_BlockUnreachable>(
        {"COMPLETELY_UNREACHABLE", "NOT_UNREACHABLE", "PARTIALLY_UNREACHABLE"});
}

TEST(BlockLocalization, WritesStartThenEnd) {
    wire::expect(T_BlockLocalization{{1, {2, "f"s, 3}, 4}, {5, {6, "g"s, 7}, -1}},
                 "01000000  02000000 FFFFFFFF 01000000 'f' 03000000  0400000000000000"
                 "  05000000  06000000 FEFFFFFF 01000000 'g' 07000000  FFFFFFFFFFFFFFFF");
}

TEST(BlockAttribute, DefaultHasNoKind) {
    T_BlockAttribute const block;
    EXPECT_EQ(block.kind.tag, -1);
    wire::expect(block,
                 "'F'  'F'  FFFFFFFF 00000000  00000000  01000000  00000000  'F'  FFFFFFFF"
                 "  00000000 00000000 01000000 00000000 0000000000000000"
                 "  00000000 00000000 01000000 00000000 0000000000000000"
                 "  01000000  00000000  00000000");
    order::expect_unordered(block, block);
}

TEST(BlockAttribute, WritesItsTwelveFieldsInOrder) {
    T_BlockAttribute block;
    block.function_ref.emplace("f"s, -1);
    block.source_ref = {1, {2, "s"s, 3}, 4};
    block.first_text = "a";
    block.first_number = 5;
    block.second_text = "b";
    block.second_number = 6;
    block.flag = true;
    block.kind.choose<"B_SWITCH_CASE">() = 3;
    block.localization.block_start.kind = 7;
    block.localization.block_end.kind = 8;
    block.third_text = "c";
    block.third_number = 9;
    block.last_number = 10;
    wire::expect(block,
                 "'T' FFFFFFFF 01000000 'f' FFFFFFFF"
                 "  'T' 01000000 02000000 FEFFFFFF 01000000 's' 03000000 0400000000000000"
                 "  FDFFFFFF 01000000 'a'  05000000  FCFFFFFF 01000000 'b'  06000000  'T'"
                 "  05000000 03000000 '3' 00 00"
                 "  07000000 00000000 FBFFFFFF 00000000 00000000 0000000000000000"
                 "  08000000 00000000 05000000 00000000 0000000000000000"
                 "  FAFFFFFF 01000000 'c'  09000000  0A000000");
}

TEST(BlockAttribute, EqualOnesOfKindThenAreEachLessThanTheOther) {
    auto const a = then_block();
    auto const b = then_block();
    order::expect_equal_and_each_less(a, b);
    order::expect_equal_and_each_less(a, a);
}

TEST(BlockAttribute, AKindWithoutPayloadEndsTheOrderBeforeThePlace) {
    auto const a = then_block();
    for (int field = 0; field < 4; ++field) {
        auto b = a;
        if (field == 0) b.localization.block_start.kind = 1;
        if (field == 1) b.third_text = "t";
        if (field == 2) b.third_number = 1;
        if (field == 3) b.last_number = 1;
        order::expect_unequal_and_each_less(a, b);
    }
    auto ahead = a;
    ahead.flag = true;
    order::expect_less(a, ahead);
}

TEST(BlockAttribute, AnOrderedSetKeepsAllOfOneKind) {
    std::set<T_BlockAttribute> blocks;
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(blocks.insert(then_block()).second);
    EXPECT_EQ(blocks.size(), 3u);
}

}  // namespace
