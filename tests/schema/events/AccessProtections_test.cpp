#include <sml/schema/AccessProtections.hpp>
#include "tests/order.hpp"
#include "tests/schema/tables.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

using sml::Hash;
using sml::Strings_T;
using sml::AccessProtections::T_AccessProtections;
using std::string_literals::operator""s;

using Section = T_AccessProtections::CRITICAL_SECTION_args;

Section locked_section() {
    return {{"void"s, {"os"s, "lock"s}}, "mutex"s, {"int"s, {"os"s, "unlock"s}}};
}

T_AccessProtections resource(Strings_T const& name) {
    T_AccessProtections protection;
    protection.choose<"RESOURCE">() = name;
    return protection;
}

TEST(AccessProtections, EveryArmHasItsTagItsNameAndItsDefaultPayload) {
    tables::expect_arms<T_AccessProtections>(
        {{"ACCESS_PATTERN"},
         {"CRITICAL_SECTION",
          "FFFFFFFF 00000000 01000000 01000000  01000000  01000000 01000000 01000000"},
         {"DESIGN_PATTERN"},
         {"DISABLED_INTERRUPTS"},
         {"RENDEZ_VOUS"},
         {"RESOURCE", "FFFFFFFF 00000000"},
         {"TEMPORAL_EXCLUSION"}});
}

TEST(AccessProtections, ResourceIsATagAndAString) {
    wire::expect(resource("bus"s), "05000000  FFFFFFFF 03000000 'bus'");
}

TEST(AccessProtections, CriticalSectionWritesItsNameBetweenTheRoutines) {
    wire::expect(Section{{"a"s, {"b"s, "c"s}}, "d"s, {"e"s, {"f"s, "g"s}}},
                 "FFFFFFFF 01000000 'a'  FEFFFFFF 01000000 'b'  FDFFFFFF 01000000 'c'"
                 "  FCFFFFFF 01000000 'd'"
                 "  FBFFFFFF 01000000 'e'  FAFFFFFF 01000000 'f'  F9FFFFFF 01000000 'g'");
}

TEST(AccessProtections, OrdersByTagAndIsLessThanItselfWithoutPayload) {
    tables::expect_order_by_tag<T_AccessProtections>();
}

TEST(AccessProtections, ResourcesOrderByHandleAndSectionsAsTheirRecords) {
    order::Handles const names;
    order::expect_less(resource(names.lesser), resource(names.greater));
    order::expect_equal(resource(names.lesser), resource(names.lesser));
    T_AccessProtections a;
    a.choose<"CRITICAL_SECTION">().section_name = names.lesser;
    T_AccessProtections b = a;
    b.arm<"CRITICAL_SECTION">().section_name = names.greater;
    order::expect_less(a, b);
}

TEST(AccessProtections, CriticalSectionHashDependsOnTheTextsOnly) {
    EXPECT_EQ(Section().hash(), 0xb6462a756b1f2bccu);
    EXPECT_EQ(locked_section().hash(), 0xb7be55edd118cbe0u);
    Section swapped = locked_section();
    std::swap(swapped.first_signature, swapped.second_signature);
    EXPECT_EQ(swapped.hash(), 0x9e403ab7a0ecd360u);
}

TEST(AccessProtections, HashTakesTheTagAndThePayload) {
    Hash<T_AccessProtections> const hash;
    EXPECT_EQ(hash(tables::with_tag<T_AccessProtections>(0)), 0xe6546b64u);
    EXPECT_EQ(hash(tables::with_tag<T_AccessProtections>(2)), 0x8d494f279df83e8eu);
    EXPECT_EQ(hash(tables::with_tag<T_AccessProtections>(3)), 0x53edf6baf9ca2823u);
    EXPECT_EQ(hash(tables::with_tag<T_AccessProtections>(4)), 0x1a929e4e559c11b8u);
    EXPECT_EQ(hash(tables::with_tag<T_AccessProtections>(6)), 0xa7dbed750d3fe4e2u);
    EXPECT_EQ(hash(tables::with_tag<T_AccessProtections>(7)), 0x6e8095086911ce77u);
    EXPECT_EQ(hash(T_AccessProtections()), 0x395b586d8a8281cfu);
    EXPECT_EQ(hash(resource("bus"s)), 0x8f25192cbd4339c1u);
    EXPECT_EQ(hash(resource(""s)), 0xe13745e1b16dfb4du);
    T_AccessProtections section;
    section.choose<"CRITICAL_SECTION">();
    EXPECT_EQ(hash(section), 0xe272059e4f70e9edu);
    section.arm<"CRITICAL_SECTION">() = locked_section();
    EXPECT_EQ(hash(section), 0x19441b2db9b36d33u);
}

}  // namespace
