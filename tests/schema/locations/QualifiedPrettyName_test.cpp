#include <sml/schema/QualifiedPrettyName.hpp>
#include "tests/order.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

using Name = sml::QualifiedPrettyName::T;

namespace {

TEST(QualifiedPrettyName, WritesTwoStringReferences) {
    wire::expect(Name(), "FFFFFFFF 00000000  01000000");
    wire::expect(Name{{"std"}, {"sort"}}, "FFFFFFFF 03000000 'std'  FEFFFFFF 04000000 'sort'");
    wire::expect(Name{{"std"}, {"std"}}, "FFFFFFFF 03000000 'std'  01000000");
}

// Null handles take part with the value 0, which still multiplies and adds.
TEST(QualifiedPrettyName, HashOfDefaultCombinesTwoZeros) {
    EXPECT_EQ(Name().hash(), 0xcb34c5ae03d8f098u);
}

// The literals were computed outside this library. They hold in every process.
TEST(QualifiedPrettyName, HashDependsOnTextsAndTheirOrder) {
    EXPECT_EQ((Name{{"std"}, {"vector"}}.hash()), 0x79fe19316b7ef261u);
    EXPECT_EQ((Name{{"vector"}, {"std"}}.hash()), 0xaeff9f6242d75f4du);
    EXPECT_EQ((Name{{}, {"vector"}}.hash()), 0xc31b12a851fc3829u);
    EXPECT_EQ((Name{{"std"}, {}}.hash()), 0x77df196cc7d5b370u);
}

// An order by address is valid for one process only. The hash must not depend on addresses.
TEST(QualifiedPrettyName, OrderFollowsAddressesWhileHashFollowsTexts) {
    order::Handles const texts;
    ASSERT_GT(texts.lesser.str(), texts.greater.str());
    Name const lesser{{}, texts.lesser};
    Name const greater{{}, texts.greater};
    order::expect_less(lesser, greater);
    for (int round = 0; round < 2; ++round) {
        // Each round interns the two texts again.
        sml::Strings_T const taking_its_place(round == 0 ? "" : "takes the freed place");
        EXPECT_EQ((Name{{"std"}, {"vector"}}.hash()), 0x79fe19316b7ef261u);
    }
}

}  // namespace
