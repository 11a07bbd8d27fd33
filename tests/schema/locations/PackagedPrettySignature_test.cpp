#include <sml/schema/PackagedPrettySignature.hpp>
#include "tests/wire.hpp"

#include <gtest/gtest.h>

using Signature = sml::PackagedPrettySignature::T;

namespace {

TEST(PackagedPrettySignature, WritesFourStringReferences) {
    wire::expect(Signature{{"core"}, {{"void"}, {{"std"}, {"sort"}}}},
                 "FFFFFFFF 04000000 'core'  FEFFFFFF 04000000 'void'"
                 "FDFFFFFF 03000000 'std'   FCFFFFFF 04000000 'sort'");
}

TEST(PackagedPrettySignature, AllFourReferencesMayBeOneId) {
    wire::expect(Signature(), "FFFFFFFF 00000000  01000000  01000000  01000000");
    wire::expect(Signature{{"x"}, {{"x"}, {{"x"}, {"x"}}}},
                 "FFFFFFFF 01000000 'x'  01000000  01000000  01000000");
}

TEST(PackagedPrettySignature, HashCombinesPackageAndHashOfSignature) {
    EXPECT_EQ(Signature().hash(), 0xdf87ea5aeaa8863cu);
    EXPECT_EQ((Signature{{"core"}, {{"void"}, {{"std"}, {"vector"}}}}.hash()), 0x25bbcd9d4bd5b4b9u);
    EXPECT_EQ((Signature{{"x"}, {{"x"}, {{"x"}, {"x"}}}}.hash()), 0x603cf790725c7871u);
}

}  // namespace
