#include <sml/schema/QualifiedPrettySignature.hpp>
#include "tests/wire.hpp"

#include <gtest/gtest.h>

using Signature = sml::QualifiedPrettySignature::T;

namespace {

TEST(QualifiedPrettySignature, WritesThreeStringReferences) {
    wire::expect(Signature(), "FFFFFFFF 00000000  01000000  01000000");
    wire::expect(Signature{{"void"}, {{"std"}, {"sort"}}},
                 "FFFFFFFF 04000000 'void'  FEFFFFFF 03000000 'std'  FDFFFFFF 04000000 'sort'");
}

TEST(QualifiedPrettySignature, HashCombinesSignatureAndHashOfName) {
    EXPECT_EQ(Signature().hash(), 0xc3d02d149e9aacd6u);
    EXPECT_EQ((Signature{{"void"}, {{"std"}, {"vector"}}}.hash()), 0x75c8d6a5e98be233u);
}

}  // namespace
