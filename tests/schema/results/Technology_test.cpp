#include <sml/schema/Technology.hpp>
#include "tests/order.hpp"
#include "tests/schema/tables.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <tuple>

namespace {

namespace Expressiveness = sml::Expressiveness;
using Technology = sml::Technology::T;
using Technics = sml::Technology::Technics::T;

TEST(InterproceduralTechnology, PrintsItsNames) {
    tables::expect_enumerators<sml::Technology::Technics::T_Interprocedural_Technology>(
        {"FULL_INLINE", "SUMMARIES"});
}

TEST(LoopTechnology, PrintsItsNames) {
    tables::expect_enumerators<sml::Technology::Technics::T_Loop_Technology>(
        {"UNROLLING", "WIDENING"});
}

TEST(Technology, EveryArmHasItsTagItsNameAndItsDefaultPayload) {
    tables::expect_arms<Technology>({{"ADA"},
                                     {"BACKWARD"},
                                     {"DATA_FLOW"},
                                     {"FORWARD", "'F'  00000000  00000000"},
                                     {"GMOD"},
                                     {"MEMORY_DOMAIN"},
                                     {"MIDDLE_END"},
                                     {"QDVX"},
                                     {"UNKNOWN"}});
}

TEST(Technology, ForwardWithoutExpressivenessIsTagFlagAndTwoNumbers) {
    Technology technology;
    technology.choose<"FORWARD">() = {{}, -1, 2};
    wire::expect(technology, "03000000  'F'  FFFFFFFF  02000000");
}

TEST(Technology, OrdersByTagThenByTechnics) {
    tables::expect_order_by_tag<Technology>();
    Technology a;
    Technology b;
    a.choose<"FORWARD">() = {{}, 0, -1};
    b.choose<"FORWARD">() = {{}, 0, 0};
    order::expect_less(a, b);
}

Technics technics(int level_tag) {
    Technics value;
    std::get<0>(value.expressiveness.emplace()).choose_tag(level_tag);
    return value;
}

TEST(Technics, WritesLevelRelationsAndCoefficients) {
    Technics value = technics(0);
    auto& [level, relations, coefficients] = *value.expressiveness;
    level.arm<"Bound">() = 5;
    relations = {{Expressiveness::Modulo, Expressiveness::Zero},
                 {Expressiveness::Equalities, Expressiveness::Z}};
    coefficients = Expressiveness::Unary;
    value.first_int = -6;
    value.second_int = 7;
    wire::expect(value,
                 "'T'  00000000 05000000"
                 "  02000000  03000000 01000000  01000000 00000000"
                 "  02000000"
                 "  FAFFFFFF  07000000");
}

TEST(Technics, RelationsCompareTheirCountThenEachPair) {
    auto with =
        [](std::list<std::pair<Expressiveness::T_relation, Expressiveness::T_constant>> relations) {
            Technics value = technics(1);
            std::get<1>(*value.expressiveness) = std::move(relations);
            return value;
        };
    using namespace Expressiveness;
    order::expect_less(with({{Modulo, Zero}}), with({{Equalities, Z}, {Equalities, Z}}));
    order::expect_less(with({{Equalities, Zero}}), with({{Modulo, Z}}));
    order::expect_less(with({{Modulo, Z}}), with({{Modulo, Zero}}));
    order::expect_less(with({{Modulo, Z}, {Equalities, Zero}}),
                       with({{Modulo, Zero}, {Equalities, Z}}));
    order::expect_equal(with({{Modulo, Z}}), with({{Modulo, Z}}));
}

TEST(Technics, AnUnboundLevelEndsTheOrder) {
    Technics const a = technics(2);
    Technics       b = a;
    order::expect_equal_and_each_less(a, a);
    std::get<1>(*b.expressiveness).emplace_back();
    b.first_int = 1;
    b.second_int = 1;
    order::expect_unequal_and_each_less(a, b);
    order::expect_less(Technics(), a);
}

TEST(Technics, AnUnsetLevelIsNeitherLessNorEqual) {
    Technics const a = technics(-1);
    Technics       b = a;
    b.first_int = 1;
    order::expect_unordered(a, a);
    order::expect_unordered(a, b);
}

TEST(Technics, ReadingExpressivenessMakesItAnew) {
    Technics value = technics(1);
    std::get<1>(*value.expressiveness).resize(2);
    std::string const bytes = wire::write(value);
    wire::read_over(value, bytes);
    EXPECT_EQ(std::get<1>(*value.expressiveness).size(), 2u);
    wire::read_over(value, hex::bytes("'F' 00000000 00000000"));
    EXPECT_FALSE(value.expressiveness.has_value());
}

}  // namespace
