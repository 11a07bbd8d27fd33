#include <sml/schema/Long_Operation.hpp>
#include "tests/order.hpp"
#include "tests/schema/tables.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace {

using sml::Long_Operation::T_Long_Op_T;
using std::string_literals::operator""s;

TEST(LongOperation, EveryArmHasItsTagItsNameAndItsDefaultPayload) {
    tables::expect_arms_with_catch_all<T_Long_Op_T>(
        {{"FUNCTION", "FFFFFFFF 00000000  01000000"}, {"LOOP", "FFFFFFFF 00000000"}});
}

TEST(LongOperation, ABackReferenceToALoopNameTakesFourBytes) {
    T_Long_Op_T loop;
    loop.choose<"LOOP">() = "loop";
    wire::expect(loop, "01000000  FFFFFFFF 04000000 'loop'");
    wire::expect(std::pair(loop, loop), "01000000 FFFFFFFF 04000000 'loop'  01000000 01000000");
}

TEST(LongOperation, WritesFunctionNames) {
    T_Long_Op_T function;
    function.choose<"FUNCTION">() = {"q"s, "n"s};
    wire::expect(function, "00000000  FFFFFFFF 01000000 'q'  FEFFFFFF 01000000 'n'");
}

TEST(LongOperation, OrdersByTagThenByPayload) {
    tables::expect_order_by_tag<T_Long_Op_T>();
    order::Handles const names;
    T_Long_Op_T          a;
    T_Long_Op_T          b;
    a.choose<"LOOP">() = names.lesser;
    b.choose<"LOOP">() = names.greater;
    order::expect_less(a, b);
    a.choose<"FUNCTION">() = {names.lesser, names.greater};
    b.choose<"FUNCTION">() = {names.greater, names.lesser};
    order::expect_less(a, b);
    a.choose_tag(2);
    b.choose_tag(2);
    order::expect_equal(a, b);
    b.arm<"LOOP">() = names.lesser;
    order::expect_less(a, b);
}

}  // namespace
