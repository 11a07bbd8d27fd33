#include <sml/schema/SignaturePrefixedQualifiedPrettyName.hpp>
#include "tests/wire.hpp"

#include <gtest/gtest.h>

using Name = sml::SignaturePrefixedQualifiedPrettyName::T;

namespace {

template <class T>
concept Hashed = requires(T const& value) {
    value.hash();
};

TEST(SignaturePrefixedQualifiedPrettyName, WritesFiveStringReferences) {
    wire::expect(Name(), "FFFFFFFF 00000000  01000000  01000000  01000000  01000000");
    wire::expect(Name{{{"void"}, {{"std"}, {"sort"}}}, {{"std"}, {"less"}}},
                 "FFFFFFFF 04000000 'void'  FEFFFFFF 03000000 'std'  FDFFFFFF 04000000 'sort'"
                 "02000000  FCFFFFFF 04000000 'less'");
}

TEST(SignaturePrefixedQualifiedPrettyName, IsNoKeyAndHasNoHash) {
    static_assert(!Hashed<Name>);
    static_assert(Hashed<sml::QualifiedPrettySignature::T>);
}

}  // namespace
