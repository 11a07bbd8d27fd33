#include <sml/schema/IL.hpp>
#include "tests/core/string_table.hpp"
#include "tests/order.hpp"
#include "tests/schema/tables.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <concepts>
#include <string>
#include <utility>

namespace {

using sml::Strings_T;
using sml::IL::T_Annotation;
using sml::IL::T_Info_Expr;
using sml::IL::T_Relational_Binop;
using sml::IL::T_Type_Op;
using std::string_literals::operator""s;

template <class T>
concept HasLess = requires(T const& value) {
    value < value;
};
static_assert(!HasLess<T_Info_Expr> && !std::equality_comparable<T_Info_Expr>);
static_assert(!HasLess<T_Annotation> && !std::equality_comparable<T_Annotation>);

T_Info_Expr variable(std::string const& name) {
    T_Info_Expr expression;
    expression.choose<"Info_Var">() = name;
    return expression;
}

T_Info_Expr integer(int value) {
    T_Info_Expr expression;
    expression.choose<"Info_Const_Int">() = value;
    return expression;
}

T_Info_Expr field_of(T_Info_Expr const& aggregate, std::string const& name) {
    T_Info_Expr expression;
    auto& [child, field] = expression.choose<"Info_Field">();
    *child = aggregate;
    field = name;
    return expression;
}

T_Info_Expr relation(T_Relational_Binop op, T_Info_Expr const& left, T_Info_Expr const& right) {
    T_Info_Expr expression;
    auto& [held_op, held_left, held_right] = expression.choose<"Info_Pred">();
    held_op = op;
    *held_left = left;
    *held_right = right;
    return expression;
}

TEST(RelationalBinop, PrintsItsNames) {
    tables::expect_enumerators<T_Relational_Binop>({"Equl", "Ge", "Gt", "Le", "Lt", "NotEqual"});
}

TEST(RelationalBinop, SixPrintsANullPointer) {
    EXPECT_EQ(toString(static_cast<T_Relational_Binop>(6)), nullptr);
}

TEST(PointerBuiltin, PrintsItsNames) {
    tables::expect_enumerators<sml::IL::T_Pointer_Builtin>(
        {"Pointer_Invalid", "Pointer_Nip_Or_Null", "Pointer_Offset",
         "Pointer_Points_To_Initialized_Data", "Pointer_Size_In_Bytes"});
}

TEST(MemoryBuiltin, PrintsItsNames) {
    tables::expect_enumerators<sml::IL::T_Memory_Builtin>(
        {"Memcpy", "Meminit", "Memset", "Memzero"});
}

TEST(LoopKind, PrintsItsNames) {
    tables::expect_enumerators<sml::IL::T_Loop_Kind>(
        {"MODEL_LOOP", "REGULAR_LOOP", "TRIVIAL_LOOP"});
}

TEST(TypeOp, EveryArmHasItsTagItsNameAndItsDefaultPayload) {
    tables::expect_arms<T_Type_Op>({{"Float_Op", "00000000 00000000 00000000"}, {"Integer_Op"}});
}

TEST(TypeOp, FloatOpWritesItsFormat) {
    T_Type_Op type;
    type.choose<"Float_Op">().format = {1, -2, 3};
    wire::expect(type, "00000000  01000000 FEFFFFFF 03000000");
}

TEST(TypeOp, OrdersByTagAndIsLessThanItselfWithoutPayload) {
    tables::expect_order_by_tag<T_Type_Op>();
}

TEST(InfoExpr, EveryArmHasItsTagItsNameAndItsDefaultPayload) {
    tables::expect_arms<T_Info_Expr>({{"Info_Const_Float", "06000000 '0X0P+0' 40000000"},
                                      {"Info_Const_Int", "03000000 '0' 00 00"},
                                      {"Info_Field", "FFFFFFFF  FFFFFFFF 00000000"},
                                      {"Info_Pred", "00000000  FFFFFFFF  FFFFFFFF"},
                                      {"Info_Ptr_Builtin", "00000000  FFFFFFFF"},
                                      {"Info_Var", "FFFFFFFF 00000000"}});
}

TEST(InfoExpr, DefaultFloatIsZeroInTheDoubleFormat) {
    T_Info_Expr expression;
    auto const& value = expression.choose<"Info_Const_Float">();
    EXPECT_EQ(mpfr_zero_p(value.number()), 1);
    EXPECT_EQ(value.width, 64u);
    EXPECT_EQ(mpfr_get_prec(value.number()), 53);
    EXPECT_EQ(mpfr_get_emin(), -1073);
    EXPECT_EQ(mpfr_get_emax(), 1024);
}

TEST(InfoExpr, NewChildrenHaveNoArm) {
    T_Info_Expr expression;
    EXPECT_EQ(expression.choose<"Info_Field">().first->tag, -1);
    auto const& [builtin, operand] = expression.choose<"Info_Ptr_Builtin">();
    EXPECT_EQ(builtin, 0);
    EXPECT_EQ(operand->tag, -1);
    auto const& [op, left, right] = expression.choose<"Info_Pred">();
    EXPECT_EQ(op, 0);
    EXPECT_EQ(left->tag, -1);
    EXPECT_EQ(right->tag, -1);
    EXPECT_NE(&*left, &*right);
}

TEST(InfoExpr, PredicateWritesOperatorLeftAndRight) {
    wire::expect(relation(sml::IL::Le, variable("x"), integer(10)),
                 "03000000  03000000  05000000 FFFFFFFF 01000000 'x'"
                 "  01000000 03000000 'a' 00 00");
}

TEST(InfoExpr, FieldWritesTheAggregateThenTheName) {
    wire::expect(field_of(field_of(variable("s"), "inner"), "s"),
                 "02000000  02000000  05000000 FFFFFFFF 01000000 's'"
                 "  FEFFFFFF 05000000 'inner'  01000000");
}

TEST(InfoExpr, BuiltinWritesItsNumberThenTheOperand) {
    T_Info_Expr expression;
    auto& [builtin, operand] = expression.choose<"Info_Ptr_Builtin">();
    builtin = sml::IL::Pointer_Offset;
    *operand = variable("p");
    wire::expect(expression, "04000000  02000000  05000000 FFFFFFFF 01000000 'p'");
}

TEST(InfoExpr, FloatWritesItsTextThenItsWidth) {
    T_Info_Expr expression;
    mpfr_set_d(expression.choose<"Info_Const_Float">().number(), 1.5, MPFR_RNDN);
    wire::expect(expression, "00000000  08000000 '0X1.8P+0'  40000000");
}

TEST(InfoExpr, UnknownOperatorsCrossAsTheyAre) {
    std::string const bytes = hex::bytes("03000000  06000000  FFFFFFFF  FFFFFFFF");
    auto const        expression = wire::read<T_Info_Expr>(bytes);
    EXPECT_EQ(std::get<0>(expression.arm<"Info_Pred">()), 6);
    wire::expect(expression, hex::shown(bytes));
}

TEST(InfoExpr, NestsDeep) {
    T_Info_Expr expression = variable("x");
    std::string bytes = hex::bytes("05000000 FFFFFFFF 01000000 'x'");
    for (int depth = 0; depth < 100; ++depth) {
        expression = field_of(expression, "x");
        bytes = hex::bytes("02000000") + bytes + hex::bytes("01000000");
    }
    wire::expect(expression, hex::shown(bytes));
}

TEST(InfoExpr, ReadingAPredicateOverAPredicateReusesBothChildren) {
    T_Info_Expr expression = relation(sml::IL::Ge, variable("a"), variable("b"));
    auto const& [op, left, right] = expression.arm<"Info_Pred">();
    T_Info_Expr const* const left_child = &*left;
    T_Info_Expr const* const right_child = &*right;
    wire::read_over(expression, wire::write(relation(sml::IL::Lt, variable("c"), integer(7))));
    EXPECT_EQ(&*left, left_child);
    EXPECT_EQ(&*right, right_child);
    EXPECT_EQ(op, sml::IL::Lt);
    EXPECT_EQ(left->arm<"Info_Var">().str(), "c");
    EXPECT_TRUE(right->arm<"Info_Const_Int">() == 7);
}

TEST(InfoExpr, ReadingAPredicateOverAVariableDropsItsString) {
    T_Info_Expr expression = variable("dropped by the predicate");
    wire::read_over(expression, wire::write(relation(sml::IL::Lt, variable("c"), integer(7))));
    EXPECT_EQ(string_table::count_of("dropped by the predicate"), 0u);
    auto const& [op, left, right] = expression.arm<"Info_Pred">();
    EXPECT_EQ(op, sml::IL::Lt);
    EXPECT_EQ(left->arm<"Info_Var">().str(), "c");
    EXPECT_TRUE(right->arm<"Info_Const_Int">() == 7);
}

TEST(InfoExpr, ReadingAnEqualTagReusesTheOneChild) {
    T_Info_Expr              field = field_of(integer(1), "old");
    T_Info_Expr const* const aggregate = &*field.arm<"Info_Field">().first;
    wire::read_over(field, wire::write(field_of(integer(2), "new")));
    EXPECT_EQ(&*field.arm<"Info_Field">().first, aggregate);
    EXPECT_TRUE(aggregate->arm<"Info_Const_Int">() == 2);
    EXPECT_EQ(field.arm<"Info_Field">().second.str(), "new");

    T_Info_Expr builtin;
    builtin.choose<"Info_Ptr_Builtin">();
    T_Info_Expr const* const operand = &*builtin.arm<"Info_Ptr_Builtin">().second;
    wire::read_over(builtin, hex::bytes("04000000  01000000  05000000 FFFFFFFF 01000000 'p'"));
    EXPECT_EQ(&*builtin.arm<"Info_Ptr_Builtin">().second, operand);
    EXPECT_EQ(operand->arm<"Info_Var">().str(), "p");
}

TEST(InfoExpr, ReadingAnotherTagDestroysTheChildren) {
    T_Info_Expr expression = field_of(field_of(variable("innermost"), "middle"), "outer");
    wire::read_over(expression, hex::bytes("01000000 03000000 '1' 00 00"));
    EXPECT_EQ(string_table::count_of("innermost"), 0u);
    EXPECT_EQ(string_table::count_of("middle"), 0u);
    EXPECT_EQ(string_table::count_of("outer"), 0u);
}

TEST(InfoExpr, CopiesAreDeep) {
    T_Info_Expr const original = relation(sml::IL::Gt, variable("x"), integer(1));
    T_Info_Expr       copy = original;
    auto const& [op, left, right] = original.arm<"Info_Pred">();
    auto& [copied_op, copied_left, copied_right] = copy.arm<"Info_Pred">();
    EXPECT_NE(&*copied_left, &*left);
    EXPECT_NE(&*copied_right, &*right);
    EXPECT_EQ(hex::shown(wire::write(copy)), hex::shown(wire::write(original)));
    copied_left->arm<"Info_Var">() = "y";
    EXPECT_EQ(left->arm<"Info_Var">().str(), "x");
}

TEST(InfoExpr, DestructionIsRecursive) {
    { T_Info_Expr const expression = field_of(field_of(variable("leaf"), "stem"), "root"); }
    EXPECT_EQ(string_table::count_of("leaf"), 0u);
    EXPECT_EQ(string_table::count_of("stem"), 0u);
    EXPECT_EQ(string_table::count_of("root"), 0u);
}

TEST(InfoExpr, AMovedFromOneCanBeCopiedAssignedAndDestroyed) {
    T_Info_Expr       source = field_of(variable("x"), "f");
    T_Info_Expr const target = std::move(source);
    EXPECT_FALSE(source.arm<"Info_Field">().first);
    T_Info_Expr const copy = source;
    EXPECT_FALSE(copy.arm<"Info_Field">().first);
    source = target;
    EXPECT_EQ(hex::shown(wire::write(source)), hex::shown(wire::write(target)));
}

TEST(InfoExpr, TakesItsOwnChild) {
    T_Info_Expr expression = field_of(field_of(variable("x"), "f"), "g");
    expression = *expression.arm<"Info_Field">().first;
    EXPECT_EQ(hex::shown(wire::write(expression)),
              hex::shown(wire::write(field_of(variable("x"), "f"))));
    expression = std::move(*expression.arm<"Info_Field">().first);
    EXPECT_EQ(hex::shown(wire::write(expression)), hex::shown(wire::write(variable("x"))));
}

TEST(Annotation, EveryArmHasItsTagItsNameAndItsDefaultPayload) {
    tables::expect_arms_with_catch_all<T_Annotation>(
        {{"Event_Annote", "FFFFFFFF 00000000  00000000"},
         {"Long_Annote", "'F'  FFFFFFFF FFFFFFFF 00000000"},
         {"Simple_Annote", "FFFFFFFF 00000000"},
         {"Valued_Event_Annote", "FFFFFFFF 00000000  00000000  FFFFFFFF"}});
}

TEST(Annotation, AnUnknownTagKeepsItsPayload) {
    for (char const* const tag : {"04000000", "FEFFFFFF"}) {
        std::string const bytes =
            hex::bytes(tag + "  FFFFFFFF 01000000 'a'  07000000  05000000 FEFFFFFF 01000000 'x'"s);
        auto const annotation = wire::read<T_Annotation>(bytes);
        wire::expect(annotation, hex::shown(bytes));
        wire::expect(T_Annotation(annotation), hex::shown(bytes));
        EXPECT_EQ(std::get<1>(annotation.arm<"Valued_Event_Annote">()), 7);
    }
}

TEST(Annotation, WritesNamesNumbersAndExpressions) {
    T_Annotation annotation;
    annotation.choose<"Event_Annote">() = {"a"s, -2};
    wire::expect(annotation, "00000000  FFFFFFFF 01000000 'a'  FEFFFFFF");
    auto& long_annotation = annotation.choose<"Long_Annote">();
    long_annotation.name_and_number.emplace("n"s, 3);
    long_annotation.operation.choose<"FUNCTION">() = {"q"s, "f"s};
    wire::expect(annotation,
                 "01000000  'T' FFFFFFFF 01000000 'n' 03000000"
                 "  00000000 FEFFFFFF 01000000 'q' FDFFFFFF 01000000 'f'");
    annotation.choose<"Simple_Annote">() = "s";
    wire::expect(annotation, "02000000  FFFFFFFF 01000000 's'");
    auto& [name, number, value] = annotation.choose<"Valued_Event_Annote">();
    EXPECT_EQ(value->tag, -1);
    name = "v";
    number = 5;
    *value = integer(31);
    wire::expect(annotation,
                 "03000000  FFFFFFFF 01000000 'v'  05000000  01000000 04000000 '1f' 00 00");
}

TEST(Annotation, ReadingAnEqualTagReusesTheExpression) {
    T_Annotation annotation;
    annotation.choose<"Valued_Event_Annote">();
    T_Info_Expr const* const value = &*std::get<2>(annotation.arm<"Valued_Event_Annote">());
    wire::read_over(annotation, hex::bytes("03000000  FFFFFFFF 01000000 'v'  05000000"
                                           "  01000000 03000000 '7' 00 00"));
    EXPECT_EQ(&*std::get<2>(annotation.arm<"Valued_Event_Annote">()), value);
    EXPECT_TRUE(value->arm<"Info_Const_Int">() == 7);
}

TEST(Annotation, ReadingAnotherTagMakesTheArmAnew) {
    T_Annotation annotation;
    annotation.choose<"Simple_Annote">() = "dropped by the annotation";
    wire::read_over(annotation, hex::bytes("00000000  FFFFFFFF 01000000 'a'  02000000"));
    EXPECT_EQ(string_table::count_of("dropped by the annotation"), 0u);
    EXPECT_EQ(annotation.arm<"Event_Annote">().second, 2);
}

TEST(Annotation, CopiesAreDeep) {
    T_Annotation original;
    *std::get<2>(original.choose<"Valued_Event_Annote">()) = integer(1);
    T_Annotation copy = original;
    *std::get<2>(copy.arm<"Valued_Event_Annote">()) = integer(2);
    EXPECT_TRUE(std::get<2>(original.arm<"Valued_Event_Annote">())->arm<"Info_Const_Int">() == 1);
}

using Long = T_Annotation::Long_Annote_args;

Long long_annotation_of_loop(Strings_T const& loop) {
    Long annotation;
    annotation.operation.choose<"LOOP">() = loop;
    return annotation;
}

TEST(LongAnnotation, AFunctionIsLessThanALoop) {
    order::Handles const names;
    Long                 function;
    function.operation.choose<"FUNCTION">() = {names.greater, names.greater};
    order::expect_less(function, long_annotation_of_loop(names.lesser));
    Long lesser = function;
    lesser.operation.arm<"FUNCTION">().name = names.lesser;
    order::expect_less(lesser, function);
}

TEST(LongAnnotation, ANegativeOperationIsNeitherEqualNorLess) {
    Long const unset;
    order::expect_unordered(unset, unset);
}

}  // namespace
