// A program outside the library that uses the functions of its public headers.

#include <sml/bindings/bindings.hpp>
#include <sml/schema/AccessProtections.hpp>
#include <sml/schema/Check_Classification.hpp>
#include <sml/schema/Checks.hpp>
#include "tests/generic/all_enumerations.hpp"

#include <gtest/gtest.h>

#include <string>
#include <unordered_set>

namespace {

TEST(Consumer, ArmsAreNamedAsStrings) {
    sml::Checks::T_Check_Category category;
    category.choose<"NULL">();
    EXPECT_TRUE(category.holds<"NULL">());
    EXPECT_STREQ(category.toString(), "NULL");
    EXPECT_EQ(category.tag, 55);
    category.choose<"OVFL">().first_string = std::string("x + y");
    EXPECT_EQ(category.arm<"OVFL">().first_string.str(), "x + y");
    category.choose_tag(1000);
    EXPECT_EQ(category.toString(), nullptr);
}

TEST(Consumer, HandlesShareOneEntryWithTheLibrary) {
    sml::Strings_T first = std::string("shared by two handles");
    sml::Strings_T second;
    second.setStr("shared by two handles");
    EXPECT_TRUE(first == second);
    EXPECT_EQ(&first.str(), &second.str());

    sml::Localization::T_Localization place;
    place.file = first;
    auto const bytes = [&] {
        sml::Interrogators::T_Question question;
        question.location.localization = place;
        return sml::Interrogators_Question_fromCxx(question);
    }();
    sml::Interrogators::T_Question copy;
    sml::Interrogators_Question_toCxx(copy, bytes.data());
    EXPECT_EQ(&copy.location.localization.file.str(), &first.str());
}

TEST(Consumer, NoEntryIsLeftWhenTheLastHandleGoes) {
    std::size_t const before = sml::Strings_T::fAllStrings.size();
    {
        sml::Strings_T const handle = std::string("held for a moment");
        EXPECT_EQ(sml::Strings_T::fAllStrings.size(), before + 1);
    }
    EXPECT_EQ(sml::Strings_T::fAllStrings.size(), before);
}

TEST(Consumer, KeysAreHashed) {
    sml::Strings_T const handle = std::string("key");
    EXPECT_EQ(std::hash<sml::Strings_T>{}(handle), std::hash<std::string>{}("key"));
    std::pair<sml::Strings_T, std::int32_t> const key(handle, 3);
    EXPECT_NE((sml::Hash<std::pair<sml::Strings_T, std::int32_t>>{}(key)), handle.hash());

    sml::AccessProtections::T_AccessProtections protection;
    protection.choose<"RESOURCE">() = handle;
    sml::core::HashedSet<sml::AccessProtections::T_AccessProtections> protections;
    protections.insert(protection);
    EXPECT_TRUE(protections.contains(protection));

    sml::Check_Classification::T_Check_Classification critical;
    critical.choose<"CRITICAL_CHK">();
    sml::core::HashedSet<sml::Check_Classification::T_Check_Classification> classifications;
    classifications.insert(critical);
    classifications.insert(critical);
    EXPECT_EQ(classifications.size(), 1u);

    sml::core::HashedSet<sml::BigInteger> integers{sml::BigInteger(1) << 100, 0, -1};
    EXPECT_TRUE(integers.contains(sml::BigInteger(1) << 100));
}

TEST(Consumer, FloatsAreMadeCopiedAndOrdered) {
    zelvanite::IEEE754Float one;
    one.value = 1;
    zelvanite::IEEE754Float const copy(one);
    EXPECT_TRUE(copy == one);
    EXPECT_TRUE(zelvanite::IEEE754Float() < one);
    EXPECT_FALSE(one < copy);
}

TEST(Consumer, EnumeratorsHaveNames) {
#define EXPECT_NAMES(Type)                                                          \
    EXPECT_STREQ(toString(static_cast<sml::Type>(0)), enumerators(sml::Type{})[0]); \
    EXPECT_EQ(toString(static_cast<sml::Type>(-1)), nullptr);
    ALL_ENUMERATIONS(EXPECT_NAMES)
#undef EXPECT_NAMES
}

}  // namespace
