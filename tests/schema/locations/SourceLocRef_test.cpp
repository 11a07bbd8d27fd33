#include <sml/schema/SourceLocRef.hpp>
#include "tests/order.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <list>

using sml::SourceLocRef::T_SourceLocRef;

namespace {

TEST(SourceLocRef, DefaultIsZeroThroughout) {
    T_SourceLocRef const reference;
    EXPECT_EQ(reference.kind, 0u);
    EXPECT_EQ(reference.localization, sml::Localization::T_Localization());
    EXPECT_EQ(reference.reference, 0);
    wire::expect(reference, "00000000  00000000 FFFFFFFF 00000000 00000000  0000000000000000");
}

TEST(SourceLocRef, WritesFieldsInOrder) {
    wire::expect(T_SourceLocRef{0xFFFFFFFE, {7, {"a.c"}, 8}, 0x0102030405060708},
                 "FEFFFFFF  07000000 FFFFFFFF 03000000 'a.c' 08000000  0807060504030201");
    wire::expect(T_SourceLocRef{1, {}, -2},
                 "01000000  00000000 FFFFFFFF 00000000 00000000  FEFFFFFFFFFFFFFF");
}

TEST(SourceLocRef, ReferencesToOneFileShareItsDefinition) {
    std::list<T_SourceLocRef> const references{{1, {2, {"a.c"}, 3}, 4}, {5, {6, {"a.c"}, 7}, 8}};
    wire::expect(references,
                 "02000000"
                 "01000000  02000000 FFFFFFFF 03000000 'a.c' 03000000  0400000000000000"
                 "05000000  06000000 01000000 07000000  0800000000000000");
}

// Required: the kind is unsigned and everything after it signed.
TEST(SourceLocRef, KindWithTopBitSetIsGreatest) {
    order::expect_less(T_SourceLocRef{1, {}, 0}, T_SourceLocRef{0xFFFFFFFF, {}, 0});
    order::expect_less(T_SourceLocRef{0x7FFFFFFF, {}, 0}, T_SourceLocRef{0x80000000, {}, 0});
}

TEST(SourceLocRef, NegativeReferenceIsLessThanPositive) {
    order::expect_less(T_SourceLocRef{0, {}, -1}, T_SourceLocRef{0, {}, 1});
    order::expect_less(T_SourceLocRef{0, {-1, {}, 0}, 0}, T_SourceLocRef{0, {1, {}, 0}, 0});
    order::expect_less(T_SourceLocRef{0, {0, {}, -1}, 0}, T_SourceLocRef{0, {0, {}, 1}, 0});
}

}  // namespace
