// Tests when expressions allocate memory, and that nothing of them is left after a failed
// allocation. The program's allocation functions are replaced, so that each allocation can fail and
// all are counted.

#include <sml/schema/IL.hpp>
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <new>
#include <string>

namespace {

constexpr std::int64_t unlimited = -1;

std::int64_t allocations_left = unlimited;
std::int64_t live_allocations = 0;
std::int64_t allocations_made = 0;

}  // namespace

// Not inlined: otherwise compilers would report malloc and delete, or new and free, as mismatched
// pairs.
__attribute__((noinline)) void* operator new(std::size_t size) {
    if (allocations_left == 0) throw std::bad_alloc();
    if (allocations_left > 0) --allocations_left;
    void* const memory = std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr) throw std::bad_alloc();
    ++live_allocations;
    ++allocations_made;
    return memory;
}

__attribute__((noinline)) void operator delete(void* memory) noexcept {
    if (memory != nullptr) --live_allocations;
    std::free(memory);
}

__attribute__((noinline)) void operator delete(void* memory, std::size_t) noexcept {
    operator delete(memory);
}

namespace {

using sml::IL::T_Annotation;
using sml::IL::T_Info_Expr;

/// Whether `action` throws when only this many allocations succeed.
template <class Action>
bool runs_out(std::int64_t allocations, Action const& action) {
    allocations_left = allocations;
    try {
        action();
        allocations_left = unlimited;
        return false;
    } catch (std::bad_alloc const&) {
        allocations_left = unlimited;
        return true;
    }
}

/// Makes each allocation of `action` fail in turn, and expects that nothing is left after the
/// exception. Returns the number of allocations.
template <class Action>
std::int64_t expect_no_leak(Action const& action) {
    std::int64_t allowed = 0;
    std::int64_t before = live_allocations;
    while (runs_out(allowed, action)) {
        EXPECT_EQ(live_allocations, before) << "with " << allowed << " allocations";
        ++allowed;
        before = live_allocations;
    }
    return allowed;
}

/// The number of allocations when the bytes are read over `value`.
template <class T>
std::int64_t allocations_of_reading_over(T& value, std::string const& bytes) {
    std::int64_t const before = allocations_made;
    wire::read_over(value, bytes);
    return allocations_made - before;
}

T_Info_Expr variable(std::string const& name) {
    T_Info_Expr expression;
    expression.choose<"Info_Var">() = name;
    return expression;
}

TEST(AllocationFailure, ThePredicateFreesItsFirstChildWhenTheSecondFails) {
    T_Info_Expr  expression;
    std::int64_t before = live_allocations;
    EXPECT_TRUE(runs_out(0, [&] { expression.choose<"Info_Pred">(); }));
    EXPECT_EQ(live_allocations, before);
    EXPECT_TRUE(runs_out(1, [&] { expression.choose<"Info_Pred">(); }));
    EXPECT_EQ(live_allocations, before);
    EXPECT_EQ(expression.tag, -1);
    EXPECT_FALSE(runs_out(2, [&] { expression.choose<"Info_Pred">(); }));
    EXPECT_EQ(live_allocations, before + 2);
    expression.choose<"Info_Const_Int">();
    EXPECT_EQ(live_allocations, before);
}

TEST(AllocationFailure, ArmsWithOneChildLeakNothing) {
    EXPECT_EQ(expect_no_leak([] { T_Info_Expr().choose<"Info_Field">(); }), 1);
    EXPECT_EQ(expect_no_leak([] { T_Info_Expr().choose<"Info_Ptr_Builtin">(); }), 1);
    EXPECT_EQ(expect_no_leak([] { T_Annotation().choose<"Valued_Event_Annote">(); }), 1);
}

TEST(AllocationFailure, AFailedArmLeavesTheExpressionUsable) {
    T_Info_Expr expression = variable("x");
    EXPECT_TRUE(runs_out(1, [&] { expression.choose<"Info_Pred">(); }));
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
    tree.choose<"Info_Pred">();
    T_Info_Expr target = variable("kept");
    EXPECT_TRUE(runs_out(1, [&] { target = tree; }));
    EXPECT_EQ(target.arm<"Info_Var">().str(), "kept");
}

TEST(AllocationFailure, ReadingATreeLeaksNothing) {
    std::string const bytes = hex::bytes(
        "03000000  00000000  05000000 FFFFFFFF 01000000 'x'"
        "  02000000 05000000 01000000 FEFFFFFF 01000000 'y'");
    auto const read = [&] {
        T_Info_Expr expression;
        wire::read_over(expression, bytes);
    };
    read();  // the string table keeps its buckets
    std::int64_t const made = expect_no_leak(read);
    EXPECT_GE(made, 3);
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
