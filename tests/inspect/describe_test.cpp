#include <sml/bindings/bindings.hpp>
#include <sml/inspect/describe.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace {

using sml::inspect::describe;
using sml::inspect::find_root;
using sml::inspect::Kind;
using sml::inspect::Type;

TEST(Describe, RootsInTheirOrder) {
    std::vector<std::string_view> const stems{
#define SML_ROOT(Stem, ...) #Stem,
#include <sml/bindings/roots.def>
    };
    EXPECT_TRUE(std::ranges::equal(sml::inspect::roots(), stems, {}, &sml::inspect::Root::stem));
    EXPECT_EQ(find_root("Answers_Answer")->type->name, "sml::Answers::T_Answer");
    EXPECT_EQ(find_root("no such stem"), nullptr);
}

TEST(Describe, RecordHasItsFieldsInWireOrder) {
    Type const& type = *describe<sml::SourceLocRef::T_SourceLocRef>();
    ASSERT_EQ(type.kind, Kind::record);
    ASSERT_EQ(type.parts.size(), 3u);
    EXPECT_EQ(type.parts[0].name, "kind");
    EXPECT_EQ(type.parts[0].type->kind, Kind::uint32);
    EXPECT_EQ(type.parts[1].name, "localization");
    EXPECT_EQ(type.parts[1].type->name, "sml::Localization::T_Localization");
    EXPECT_EQ(type.parts[2].name, "reference");
    EXPECT_EQ(type.parts[2].type->kind, Kind::int64);
    EXPECT_EQ(type.least_size, 4u + 12u + 8u);
}

TEST(Describe, VariantHasItsArmsByTag) {
    Type const& type = *describe<sml::Checks::T_Check_Category>();
    ASSERT_EQ(type.kind, Kind::variant);
    ASSERT_EQ(std::ssize(type.arms), sml::Checks::T_Check_Category::arms::count);
    EXPECT_EQ(type.arms[55].name, "NULL");
    EXPECT_EQ(type.arms[55].payload, nullptr);
    EXPECT_EQ(type.arms[57].payload->name, "sml::Checks::T_Check_Category::OVFL_args");
    EXPECT_FALSE(type.has_catch_all);
    EXPECT_EQ(type.arm_of(77), nullptr);
    EXPECT_EQ(type.arm_of(-1), nullptr);
}

TEST(Describe, LastArmIsTheCatchAllArm) {
    Type const& type = *describe<sml::Checks::T_Ovfl_Data>();
    EXPECT_TRUE(type.has_catch_all);
    EXPECT_EQ(type.arm_of(-1), &type.arms.back());
    EXPECT_EQ(type.arm_of(3), &type.arms.back());
    EXPECT_EQ(type.least_size, 4u + 1u);
}

TEST(Describe, BoxedTypesHoldThemselves) {
    Type const& kind = *describe<sml::Events::T_Event_Kind>();
    Type const& nested = *kind.arms[22].payload->parts[0].type;
    EXPECT_EQ(nested.kind, Kind::optional);
    ASSERT_EQ(nested.element->kind, Kind::boxed);
    EXPECT_EQ(nested.element->element, &kind);
}

TEST(Describe, ContainersSayHowTheyAreRead) {
    Type const& category = *describe<sml::Infos::T_Information_Category>();
    Type const& fields = *category.arms[16].payload->parts[0].type;
    EXPECT_EQ(fields.kind, Kind::map);
    EXPECT_TRUE(fields.last_wins);
    EXPECT_FALSE(fields.hashed);
    Type const& checks =
        *describe<sml::Application_Results::T_Application_Results>()->parts[4].type;
    EXPECT_TRUE(checks.hashed);
    EXPECT_FALSE(checks.last_wins);
    EXPECT_EQ(checks.key->kind, Kind::tuple);
}

TEST(Describe, EnumerationHasItsNames) {
    Type const& type = *describe<sml::IL::T_Relational_Binop>();
    EXPECT_EQ(type.kind, Kind::enumeration);
    EXPECT_EQ(type.name, "sml::IL::T_Relational_Binop");
    ASSERT_EQ(type.enumerators.size(), 6u);
    EXPECT_EQ(type.enumerators[0], "Equl");
    EXPECT_EQ(type.enumerators[5], "NotEqual");
}

}  // namespace
