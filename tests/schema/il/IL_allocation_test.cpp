// When expressions take memory, and what is left of one whose memory runs out half way.

#include <sml/schema/IL.hpp>
#include "tests/allocations.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

using allocations::ends_within;
using allocations::fail_each_allocation;
using sml::IL::T_Annotation;
using sml::IL::T_Info_Expr;

/// Runs `action` with its first allocation failing, then with its second, and so on until it ends.
/// Expects that no memory is held after each failure. Returns how many allocations it makes.
template <class Action>
long expect_no_leak(Action const& action) {
    long const held = allocations::held();
    return fail_each_allocation(action, [&] { EXPECT_EQ(allocations::held(), held); });
}

/// The number of allocations when the bytes are read over `value`.
template <class T>
long allocations_of_reading_over(T& value, std::string const& bytes) {
    return allocations::count([&] { wire::read_over(value, bytes); });
}

T_Info_Expr variable(std::string const& name) {
    T_Info_Expr expression;
    expression.choose<"Info_Var">() = name;
    return expression;
}

TEST(AllocationFailure, ThePredicateFreesItsFirstChildWhenTheSecondFails) {
    T_Info_Expr expression;
    long const  held = allocations::held();
    EXPECT_FALSE(ends_within(0, [&] { expression.choose<"Info_Pred">(); }));
    EXPECT_EQ(allocations::held(), held);
    EXPECT_FALSE(ends_within(1, [&] { expression.choose<"Info_Pred">(); }));
    EXPECT_EQ(allocations::held(), held);
    EXPECT_EQ(expression.tag, -1);
    EXPECT_TRUE(ends_within(2, [&] { expression.choose<"Info_Pred">(); }));
    EXPECT_EQ(allocations::held(), held + 2);
    expression.choose<"Info_Const_Int">();
    EXPECT_EQ(allocations::held(), held);
}

TEST(AllocationFailure, ArmsWithOneChildLeakNothing) {
    EXPECT_EQ(expect_no_leak([] { T_Info_Expr().choose<"Info_Field">(); }), 1);
    EXPECT_EQ(expect_no_leak([] { T_Info_Expr().choose<"Info_Ptr_Builtin">(); }), 1);
    EXPECT_EQ(expect_no_leak([] { T_Annotation().choose<"Valued_Event_Annote">(); }), 1);
}

TEST(AllocationFailure, AFailedArmLeavesTheExpressionUsable) {
    T_Info_Expr expression = variable("x");
    EXPECT_FALSE(ends_within(1, [&] { expression.choose<"Info_Pred">(); }));
    expression = variable("y");
    EXPECT_EQ(expression.arm<"Info_Var">().str(), "y");
}

TEST(AllocationFailure, CopyingATreeLeaksNothing) {
    T_Info_Expr tree;
    auto& [op, left, right] = tree.choose<"Info_Pred">();
    *left->choose<"Info_Field">().first = variable("a");
    *right->choose<"Info_Ptr_Builtin">().second = variable("b");
    EXPECT_EQ(expect_no_leak([&] { T_Info_Expr const copy = tree; }), 4);
}

TEST(AllocationFailure, AFailedAssignmentLeavesTheTargetWhole) {
    T_Info_Expr tree;
    tree.choose<"Info_Field">().first->choose<"Info_Ptr_Builtin">();
    T_Info_Expr target = variable("kept");
    long const  allocations = fail_each_allocation(
        [&] { target = tree; }, [&] { EXPECT_EQ(target.arm<"Info_Var">().str(), "kept"); });
    EXPECT_EQ(allocations, 3);  // the child of the fresh arm, its copy, the copy's own child
    EXPECT_TRUE(target.holds<"Info_Field">());
}

TEST(AllocationFailure, ReadingATreeLeaksNothing) {
    std::string const bytes = hex::bytes(
        "03000000  00000000  05000000 FFFFFFFF 01000000 'x'"
        "  02000000 05000000 01000000 FEFFFFFF 01000000 'y'");
    auto const read = [&] {
        T_Info_Expr expression;
        wire::read_over(expression, bytes);
    };
    read();  // the string table keeps the room that it once took
    EXPECT_GE(expect_no_leak(read), 3);
}

TEST(Allocation, ReadingOverEqualTagsMakesNoChild) {
    T_Info_Expr expression;
    auto& [op, left, right] = expression.choose<"Info_Pred">();
    left->choose<"Info_Ptr_Builtin">();
    right->choose<"Info_Pred">();
    std::string const bytes = hex::bytes(
        "03000000  01000000  04000000 01000000 FFFFFFFF  03000000 01000000 FFFFFFFF FFFFFFFF");
    EXPECT_EQ(allocations_of_reading_over(expression, bytes), 0);
    EXPECT_EQ(op, 1);
    T_Info_Expr fresh;
    EXPECT_EQ(allocations_of_reading_over(fresh, bytes), 5);
}

TEST(Allocation, ReadingOverAnEqualTagSparesTheChildBesideAString) {
    T_Info_Expr       field;
    std::string const field_bytes = hex::bytes("02000000  FFFFFFFF  FFFFFFFF 00000000");
    auto const        making_the_aggregate = allocations_of_reading_over(field, field_bytes);
    EXPECT_EQ(allocations_of_reading_over(field, field_bytes), making_the_aggregate - 1);

    T_Annotation      annotation;
    std::string const annotation_bytes =
        hex::bytes("03000000  FFFFFFFF 00000000  00000000  FFFFFFFF");
    auto const making_the_value = allocations_of_reading_over(annotation, annotation_bytes);
    EXPECT_EQ(allocations_of_reading_over(annotation, annotation_bytes), making_the_value - 1);
}

}  // namespace
