#include <sml/schema/Atomicity_Condition.hpp>
#include "tests/order.hpp"
#include "tests/schema/tables.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

using sml::Atomicity_Condition::T_Atomicity_Condition;
using std::string_literals::operator""s;

TEST(AtomicityCondition, EveryArmHasItsTagItsNameAndItsDefaultPayload) {
    tables::expect_arms<T_Atomicity_Condition>({{"ARCH_SIZE", "00000000  03000000 '0' 00 00"},
                                                {"ATOMIC"},
                                                {"FUNCTION_CALL", "FFFFFFFF 00000000"},
                                                {"MULTI_INSTR", "'F'"},
                                                {"UNKNOWN"}});
}

TEST(AtomicityCondition, AtomicIsItsTagAlone) {
    wire::expect(tables::with_tag<T_Atomicity_Condition>(1), "01000000");
}

TEST(AtomicityCondition, MultiInstrWithoutInstructionIsATagAndAFlag) {
    T_Atomicity_Condition condition;
    auto&                 several = condition.choose<"MULTI_INSTR">();
    wire::expect(condition, "03000000 'F'");
    several.instruction = "mov";
    wire::expect(condition, "03000000 'T'  FFFFFFFF 03000000 'mov'");
}

TEST(AtomicityCondition, WritesSizeAndFunction) {
    T_Atomicity_Condition condition;
    condition.choose<"ARCH_SIZE">() = {-2, 64};
    wire::expect(condition, "00000000  FEFFFFFF  04000000 '40' 00 00");
    condition.choose<"FUNCTION_CALL">() = {"f"s};
    wire::expect(condition, "02000000  FFFFFFFF 01000000 'f'");
}

TEST(AtomicityCondition, SizesOrderNumerically) {
    using Size = T_Atomicity_Condition::ARCH_SIZE_args;
    order::expect_less(Size{-1, 16}, Size{0, 9});
    order::expect_less(Size{0, 9}, Size{0, 16});
    order::expect_less(Size{0, -16}, Size{0, -9});
}

TEST(AtomicityCondition, FunctionsAndInstructionsOrderByHandle) {
    order::Handles const names;
    using Call = T_Atomicity_Condition::FUNCTION_CALL_args;
    order::expect_less(Call{names.lesser}, Call{names.greater});
    order::expect_equal(Call{names.lesser}, Call{names.lesser});

    using Several = T_Atomicity_Condition::MULTI_INSTR_args;
    order::expect_less(Several{}, Several{names.lesser});
    order::expect_less(Several{}, Several{""s});
    order::expect_less(Several{names.lesser}, Several{names.greater});
    order::expect_equal(Several{}, Several{});
    order::expect_equal(Several{names.lesser}, Several{names.lesser});
}

TEST(AtomicityCondition, OrdersByTagAndIsLessThanItselfWithoutPayload) {
    tables::expect_order_by_tag<T_Atomicity_Condition>();
}

TEST(AtomicityCondition, TheTagDecidesFirst) {
    T_Atomicity_Condition size;
    size.choose<"ARCH_SIZE">() = {100, 100};
    auto const atomic = tables::with_tag<T_Atomicity_Condition>(1);
    order::expect_less(size, atomic);
    order::expect_less(T_Atomicity_Condition(), size);
}

}  // namespace
