#include <sml/schema/Expressiveness.hpp>
#include "tests/schema/order.hpp"
#include "tests/schema/tables.hpp"
#include "tests/schema/tags.hpp"
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
    tables::expect_stray_tags<T_relational_level>("");
}

TEST(RelationalLevel, UnboundIsItsTagAlone) {
    wire::expect(tables::with_tag<T_relational_level>(2), "02000000");
    T_relational_level level;
    level.choose<"Exact">() = -2;
    wire::expect(level, "01000000  FEFFFFFF");
}

TEST(RelationalLevel, OrdersByTagThenAsSigned) {
    tags::expect_to_decide<T_relational_level>();
    tables::expect_arms_without_payload_less<T_relational_level>([](auto&) {});
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
