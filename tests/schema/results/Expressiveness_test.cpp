#include <sml/schema/Expressiveness.hpp>
#include "tests/order.hpp"
#include "tests/schema/tables.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

namespace {

using sml::Expressiveness::T_relational_level;

TEST(Relation, PrintsItsNames) {
    tables::expect_enumerators<sml::Expressiveness::T_relation>(
        {"Disequalities", "Equalities", "Inequalities", "Modulo"});
}

TEST(Coefficients, PrintsItsNames) {
    tables::expect_enumerators<sml::Expressiveness::T_coefficients>({"Any", "Potential", "Unary"});
}

TEST(Constant, PrintsItsNames) {
    tables::expect_enumerators<sml::Expressiveness::T_constant>({"Z", "Zero"});
}

TEST(RelationalLevel, EveryArmHasItsTagItsNameAndItsDefaultPayload) {
    tables::expect_arms<T_relational_level>(
        {{"Bound", "00000000"}, {"Exact", "00000000"}, {"UnBound"}});
}

TEST(RelationalLevel, UnboundIsItsTagAlone) {
    wire::expect(tables::with_tag<T_relational_level>(2), "02000000");
    T_relational_level level;
    level.choose<"Exact">() = -2;
    wire::expect(level, "01000000  FEFFFFFF");
}

TEST(RelationalLevel, OrdersByTagThenAsSigned) {
    tables::expect_order_by_tag<T_relational_level>();
    T_relational_level a;
    T_relational_level b;
    a.choose<"Bound">() = -1;
    b.choose<"Bound">() = 0;
    order::expect_less(a, b);
    a.choose<"Exact">() = -1;
    b.choose<"Exact">() = 0;
    order::expect_less(a, b);
}

}  // namespace
