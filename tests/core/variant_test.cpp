#include "schema/Atomicity_Condition.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

using sml::Atomicity_Condition::T_Atomicity_Condition;

namespace {

T_Atomicity_Condition with_tag(std::int32_t tag) {
    T_Atomicity_Condition value;
    value.choose_tag(tag);
    return value;
}

TEST(Variant, ArmWithoutPayloadIsItsTag) {
    wire::expect(with_tag(1), "01 00 00 00");
    wire::expect(with_tag(4), "04 00 00 00");
}

TEST(Variant, DefaultPrintsArmZeroAndUnknownPrintsNull) {
    EXPECT_STREQ(T_Atomicity_Condition().toString(), "ARCH_SIZE");
    EXPECT_STREQ(with_tag(3).toString(), "MULTI_INSTR");
    EXPECT_EQ(with_tag(5).toString(), nullptr);
}

TEST(Variant, UnsetIsUnequalToItself) {
    T_Atomicity_Condition const unset;
    EXPECT_EQ(unset.tag, -1);
    EXPECT_FALSE(unset == unset);
    EXPECT_FALSE(unset < unset);
    EXPECT_TRUE(unset < with_tag(0));
}

TEST(Variant, ArmWithoutPayloadIsLessThanItself) {
    T_Atomicity_Condition const atomic = with_tag(1);
    EXPECT_TRUE(atomic == atomic);
    EXPECT_TRUE(atomic < atomic);
}

TEST(Variant, UnknownTagStaysAndIsLessThanItself) {
    auto const unknown = wire::read<T_Atomicity_Condition>(wire::bytes("07 00 00 00"));
    EXPECT_EQ(unknown.tag, 7);
    EXPECT_EQ(unknown.toString(), nullptr);
    EXPECT_TRUE(unknown < unknown);
    EXPECT_TRUE(unknown == unknown);
}

}  // namespace
