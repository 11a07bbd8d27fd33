#include <sml/schema/Check_Classification.hpp>
#include "tests/order.hpp"
#include "tests/schema/tables.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <string>

using Classification = sml::Check_Classification::T_Check_Classification;
using Impact = Classification::INPUT_IMPACT_args;

namespace {

Classification critical() { return tables::with_tag<Classification>(0); }

Classification impact(char const* text, std::int32_t number) {
    Classification result;
    result.choose<"INPUT_IMPACT">() = {{text}, number};
    return result;
}

/// A classification with any tag other than 0, and this payload.
Classification stray(std::string const& tag, char const* payload) {
    return wire::read<Classification>(hex::bytes(tag + payload));
}

std::uint64_t hash(Classification const& value) { return sml::Hash<Classification>{}(value); }

TEST(CheckClassification, HasTwoArms) {
    tables::expect_arms_with_catch_all<Classification>(
        {{"CRITICAL_CHK"}, {"INPUT_IMPACT", "FFFFFFFF 00000000  00000000"}});
}

TEST(CheckClassification, CriticalIsItsTagAndImpactHasAStringAndANumber) {
    wire::expect(critical(), "00000000");
    wire::expect(impact("stdin", -3), "01000000  FFFFFFFF 05000000 'stdin'  FDFFFFFF");
}

// Required: the last arm is a catch-all arm.
TEST(CheckClassification, EveryOtherTagHasTheImpactPayload) {
    for (char const* const tag : {"02000000", "07000000", "FFFFFFFF"}) {
        auto const read = stray(tag, "FFFFFFFF 05000000 'stdin'  03000000");
        EXPECT_EQ(read.arm<"INPUT_IMPACT">(), (Impact{{"stdin"}, 3}));
        wire::expect(read, std::string(tag) + "FFFFFFFF 05000000 'stdin'  03000000");
    }
}

// The literals were computed outside this library.
TEST(CheckClassification, ImpactHashesStringAndSignedNumber) {
    EXPECT_EQ(Impact().hash(), 0xaedc04cfa2e5b999u);
    EXPECT_EQ((Impact{{"stdin"}, 3}.hash()), 0xec4364006f71788eu);
    EXPECT_EQ((Impact{{"stdin"}, -3}.hash()), 0x5e61d05cd7258450u);
}

TEST(CheckClassification, HashOfCriticalIsAConstant) { EXPECT_EQ(hash(critical()), 0xe6546b64u); }

TEST(CheckClassification, EveryTagButZeroHashesThePayload) {
    EXPECT_EQ(hash(impact("stdin", 3)), 0x0f657665415f7ccau);
    EXPECT_EQ(hash(impact("stdin", -3)), 0x555cf69bc36c92ceu);
    EXPECT_EQ(hash(impact("", 0)), 0x8b53164a9d941963u);
    EXPECT_EQ(hash(stray("07000000", "FFFFFFFF 05000000 'stdin'  03000000")), 0x678988f11a74034cu);
    EXPECT_EQ(hash(Classification()), 0x74ace9b72f14bd65u);
    EXPECT_EQ(hash(stray("FFFFFFFF", "FFFFFFFF 00000000  00000000")), 0x74ace9b72f14bd65u);
}

TEST(CheckClassification, OrdersByTagThenPayload) {
    tables::expect_order_by_tag<Classification>();
    order::expect_less(critical(), impact("", -1));
    order::expect_less(impact("stdin", -1), impact("stdin", 1));
    order::expect_equal(impact("stdin", 1), impact("stdin", 1));
    order::expect_less(stray("02000000", "FFFFFFFF 00000000  FFFFFFFF"),
                       stray("02000000", "FFFFFFFF 00000000  01000000"));
    order::expect_less(impact("", 9), stray("02000000", "FFFFFFFF 00000000  01000000"));
    order::expect_unordered(stray("FFFFFFFF", "FFFFFFFF 00000000  FFFFFFFF"),
                            stray("FFFFFFFF", "FFFFFFFF 00000000  01000000"));
}

TEST(CheckClassification, SetHoldsCriticalOnce) {
    sml::core::HashedSet<Classification> set{critical(), critical()};
    EXPECT_EQ(set.size(), 1u);
    set.insert(impact("stdin", 3));
    set.insert(impact("stdin", 3));
    set.insert(impact("stdin", 4));
    EXPECT_EQ(set.size(), 3u);

    EXPECT_EQ(
        wire::read<sml::core::HashedSet<Classification>>(hex::bytes("02000000  00000000  00000000"))
            .size(),
        1u);
}

// Values with a negative tag are unequal even to themselves.
TEST(CheckClassification, SetHoldsEveryUnsetValue) {
    sml::core::HashedSet<Classification> const set{Classification(), Classification()};
    EXPECT_EQ(set.size(), 2u);
}

}  // namespace
