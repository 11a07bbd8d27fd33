#include <sml/schema/BlockKind.hpp>
#include "tests/order.hpp"
#include "tests/schema/tables.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

using sml::BigInteger;
using sml::Strings_T;
using sml::BlockKind::T_BlockKind;
using sml::BlockKind::T_ControlFlowPoint;
using std::string_literals::operator""s;

T_BlockKind switch_case(BigInteger const& value) {
    T_BlockKind kind;
    kind.choose<"B_SWITCH_CASE">() = value;
    return kind;
}

TEST(BlockKind, EveryArmHasItsTagItsNameAndItsDefaultPayload) {
    tables::expect_arms<T_BlockKind>({{"B_ELSE"},
                                      {"B_FOR_LOOP"},
                                      {"B_FUNCTION"},
                                      {"B_IMPLICIT_ELSE"},
                                      {"B_LABEL"},
                                      {"B_SWITCH_CASE", "03000000 '0' 00 00"},
                                      {"B_SWITCH_DEFAULT"},
                                      {"B_SWITCH_IMPLICIT_DEFAULT"},
                                      {"B_THEN"},
                                      {"B_UNREACHABLE"},
                                      {"B_WHILE_LOOP"}});
}

TEST(BlockKind, SwitchCaseWritesItsValueAsText) {
    wire::expect(switch_case(3), "05000000  03000000 '3' 00 00");
    wire::expect(switch_case(-3), "05000000  03000000 '-3' 00");
}

TEST(BlockKind, ThenIsItsTagAlone) { wire::expect(tables::with_tag<T_BlockKind>(8), "08000000"); }

TEST(BlockKind, OrdersByTagAndIsLessThanItselfWithoutPayload) {
    tables::expect_order_by_tag<T_BlockKind>();
}

TEST(BlockKind, SwitchCasesCompareNumerically) {
    order::expect_less(switch_case(9), switch_case(16));
    order::expect_less(switch_case(-16), switch_case(-9));
    order::expect_equal(switch_case(9), switch_case(9));
    order::expect_less(tables::with_tag<T_BlockKind>(4), switch_case(-9));
    order::expect_less(switch_case(9), tables::with_tag<T_BlockKind>(6));
}

TEST(ControlFlowPoint, EveryArmHasItsTagItsNameAndItsDefaultPayload) {
    tables::expect_arms<T_ControlFlowPoint>(
        {{"BLOCK", "FFFFFFFF"},
         {"CALLING_ALLOC_FUNCTION", "FFFFFFFF 00000000  00000000  'F'"},
         {"CALLING_FUNCTION", "FFFFFFFF 00000000  01000000 01000000"},
         {"ENTERING_TASK", "FFFFFFFF 00000000  01000000 01000000"},
         {"LOOP_ITERATION"},
         {"NOT_BLOCK", "FFFFFFFF"},
         {"RETURNING_FROM_FUNCTION", "FFFFFFFF 00000000  01000000 01000000"},
         {"UNIT_FRONTIER"}});
}

TEST(ControlFlowPoint, WritesTheKindOfABlockWithItsOwnTag) {
    T_ControlFlowPoint point;
    point.choose<"NOT_BLOCK">() = switch_case(3);
    wire::expect(point, "05000000  05000000 03000000 '3' 00 00");
}

TEST(ControlFlowPoint, WritesAllocatorAllocatedNamesAndFlag) {
    T_ControlFlowPoint point;
    point.choose<"CALLING_ALLOC_FUNCTION">() = {"a"s, {"b"s, "a"s}, true};
    wire::expect(point,
                 "01000000  FFFFFFFF 01000000 'a'  02000000 FEFFFFFF 01000000 'b' 01000000  'T'");
}

TEST(ControlFlowPoint, WritesSignatures) {
    T_ControlFlowPoint point;
    point.choose<"CALLING_FUNCTION">() = {"s"s, {"q"s, "n"s}};
    wire::expect(point,
                 "02000000  FFFFFFFF 01000000 's'  FEFFFFFF 01000000 'q'  FDFFFFFF 01000000 'n'");
}

TEST(ControlFlowPoint, OrdersByTagAndIsLessThanItselfWithoutPayload) {
    tables::expect_order_by_tag<T_ControlFlowPoint>();
}

TEST(ControlFlowPoint, OfABlockWithoutPayloadIsLessThanItself) {
    T_ControlFlowPoint block;
    block.choose<"BLOCK">().choose<"B_THEN">();
    order::expect_equal_and_each_less(block, block);
}

TEST(ControlFlowPoint, AllocationsOrderByAllocatorNamesAndFlag) {
    order::Handles const names;
    auto point = [](Strings_T const& allocator, std::list<Strings_T> allocated, bool flag) {
        T_ControlFlowPoint value;
        value.choose<"CALLING_ALLOC_FUNCTION">() = {allocator, std::move(allocated), flag};
        return value;
    };
    auto const& low = names.lesser;
    auto const& high = names.greater;
    order::expect_less(point(low, {high, high}, true), point(high, {}, false));
    order::expect_less(point(low, {high}, true), point(low, {low, low}, false));
    order::expect_less(point(low, {low, high}, true), point(low, {high, low}, false));
    order::expect_less(point(low, {low}, false), point(low, {low}, true));
    order::expect_equal(point(low, {low}, true), point(low, {low}, true));
}

TEST(ControlFlowPoint, ReadingAnEqualTagAddsToTheHeldNames) {
    T_ControlFlowPoint point;
    auto&              allocation = point.choose<"CALLING_ALLOC_FUNCTION">();
    allocation.allocated_names = {"kept"s};
    auto const* const payload = &allocation;
    wire::read_over(point, hex::bytes("01000000  FFFFFFFF 00000000  01000000 01000000  'T'"));
    EXPECT_EQ(&point.arm<"CALLING_ALLOC_FUNCTION">(), payload);
    EXPECT_EQ(allocation.allocated_names, (std::list<Strings_T>{"kept"s, ""s}));
}

}  // namespace
