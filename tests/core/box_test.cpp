#include <sml/core/box.hpp>
#include <sml/schema/IL.hpp>
#include "tests/core/counted.hpp"

#include <gtest/gtest.h>

#include <string>
#include <utility>

using sml::core::Box;
using sml::IL::T_Info_Expr;

namespace {

/// An expression `inner`.`outer`.
T_Info_Expr nested() {
    T_Info_Expr value;
    auto&       field = value.choose<"Info_Field">();
    field.first->choose<"Info_Var">() = std::string("inner");
    field.second = std::string("outer");
    return value;
}

TEST(Box, MakesItsObjectAndEndsIt) {
    int const alive = Counted::alive;
    {
        Box<Counted> const box;
        EXPECT_TRUE(static_cast<bool>(box));
        EXPECT_EQ(box->number, 0);
        EXPECT_EQ(Counted::alive, alive + 1);
    }
    EXPECT_EQ(Counted::alive, alive);
}

TEST(Box, CopyIsDeep) {
    Box<Counted> const first(Counted(4));
    Box<Counted>       second(first);
    Box<Counted>       third;
    third = first;
    second->number = 5;
    EXPECT_EQ(first->number, 4);
    EXPECT_EQ(third->number, 4);
    EXPECT_NE(&*first, &*third);
}

TEST(Box, MoveTakesTheObject) {
    Box<Counted>   source(Counted(4));
    Counted* const object = &*source;
    Box<Counted>   target(std::move(source));
    EXPECT_EQ(&*target, object);
    EXPECT_FALSE(static_cast<bool>(source));
}

TEST(Box, MoveAssignmentLeavesNoObjectBehind) {
    int const    alive = Counted::alive;
    Box<Counted> source(Counted(4));
    Box<Counted> target;
    target = std::move(source);
    EXPECT_EQ(target->number, 4);
    EXPECT_FALSE(static_cast<bool>(source));
    EXPECT_EQ(Counted::alive, alive + 1);
}

TEST(Box, MovedFromOneMayBeCopiedAndAssigned) {
    Box<Counted>       source(Counted(4));
    Box<Counted> const target(std::move(source));
    Box<Counted> const copy(source);
    EXPECT_FALSE(static_cast<bool>(copy));
    source = target;
    EXPECT_EQ(source->number, 4);
}

TEST(Box, AssignmentToItselfChangesNothing) {
    Box<Counted>  box(Counted(4));
    Box<Counted>& same = box;
    box = same;
    EXPECT_EQ(box->number, 4);
    box = std::move(same);
    EXPECT_EQ(box->number, 4);
}

TEST(Box, AssignmentTakesASourceInsideItsObject) {
    Box<T_Info_Expr> copied(nested());
    copied = copied->arm<"Info_Field">().first;
    EXPECT_EQ(copied->arm<"Info_Var">().str(), "inner");

    Box<T_Info_Expr> moved(nested());
    moved = std::move(moved->arm<"Info_Field">().first);
    EXPECT_EQ(moved->arm<"Info_Var">().str(), "inner");
}

TEST(Box, ObjectThatCantBeMadeLeavesNothing) {
    int const alive = Counted::alive;
    {
        Box<Counted> const source(Counted(4));
        Box<Counted>       target(Counted(5));
        Refuse const       refuse(Counted::copying);
        EXPECT_THROW(Box<Counted> copy(source), Refusal);
        EXPECT_THROW(target = source, Refusal);
        EXPECT_EQ(target->number, 5);
    }
    EXPECT_EQ(Counted::alive, alive);
}

}  // namespace
