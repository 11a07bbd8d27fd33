#include <sml/schema/Checks.hpp>
#include "tests/core/string_table.hpp"
#include "tests/order.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <type_traits>
#include <utility>

using Check = sml::Checks::T_A_Check;
using Category = sml::Checks::T_Check_Category;
using Classification = sml::Check_Classification::T_Check_Classification;
using Classifications = decltype(Check::classifications);
using Located = decltype(Check::located_names);
using sml::Localization::T_Localization;
using Name = sml::QualifiedPrettyName::T;

namespace {

Classification critical() {
    Classification result;
    result.choose<"CRITICAL_CHK">();
    return result;
}

Classification impact(std::int32_t number) {
    Classification result;
    result.choose<"INPUT_IMPACT">().first_int = number;
    return result;
}

/// A check with an overflow. It is equal to itself and not less, so that every field decides.
Check overflow() {
    Check result;
    result.category.choose<"OVFL">().ovfl_data.choose<"Single_Ovfl">();
    return result;
}

template <sml::core::Name ArmName>
Check of_category() {
    Check result;
    result.category.choose<ArmName>();
    return result;
}

Check classified(Classifications const& classifications) {
    Check result = overflow();
    result.classifications = classifications;
    return result;
}

Check located(Located const& names) {
    Check result = overflow();
    result.located_names = names;
    return result;
}

Name name(char const* text) { return {{}, {text}}; }

sml::PackagedPrettySignature::T signature(sml::Strings_T const& package) { return {package, {}}; }

/// A check in which every field has content, and every string has another text: `text` and a
/// number.
Check full(std::string const& text) {
    auto  next = [&text, number = 0]() mutable { return text + std::to_string(++number); };
    Check check;
    check.first_string = next();
    check.first_int = 1;
    check.category.choose<"OVFL">() = {next(), true, {}, {{next(), next()}}, next()};
    check.category.arm<"OVFL">().ovfl_data.choose<"Linked_Ovfl">() = {next(), 2};
    check.second_int = 2;
    check.optional_string = next();
    check.classifications = {critical(), impact(3)};
    check.second_string = next();
    check.third_int = 3;
    check.fourth_int = 4;
    check.first_flag = true;
    check.third_string = next();
    check.fourth_string = next();
    check.fifth_int = 5;
    check.located_names = {{{1, {}, 2}, {{name("a"), name("b")}, {}}}, {{3, {}, 4}, {}}};
    check.fifth_string = next();
    check.sixth_int = 6;
    check.second_flag = true;
    check.seventh_int = 7;
    check.third_flag = true;
    check.source_ref = {8, {9, next(), 10}, 11};
    check.sixth_string = next();
    check.eighth_int = 12;
    check.failure.emplace().first_step = {{next(), 13}, {}};
    check.failure->technology.choose<"FORWARD">();
    return check;
}
constexpr int strings_in_full = 14;

/// The number of handles to each of the texts of `full`; 0 and a failure if the numbers differ.
std::uint64_t handles_to_each(std::string const& text) {
    std::uint64_t const first = string_table::count_of(text + "1");
    for (int i = 1; i <= strings_in_full; ++i) {
        if (string_table::count_of(text + std::to_string(i)) == first) continue;
        ADD_FAILURE() << string_table::count_of(text + std::to_string(i)) << " handles to " << text
                      << i << ", not " << first;
        return 0;
    }
    return first;
}

// ---- wire form ----

/// The bytes of a fresh check whose first flag is `first_flag`.
std::string fresh_check(char const* first_flag) {
    return "FFFFFFFF 00000000  00000000"
           "FFFFFFFF"
           "00000000  46  00000000  01000000  00000000  00000000  " +
           std::string(first_flag) +
           "01000000  01000000  00000000"
           "00000000"
           "01000000  00000000  46  00000000  46"
           "00000000 00000000 01000000 00000000 0000000000000000"
           "01000000  00000000"
           "46";
}

TEST(ACheck, DefaultIsZeroAndEmptyThroughout) {
    Check const check;
    EXPECT_EQ(check.category.tag, -1);
    EXPECT_EQ(check.classifications.bucket_count(), 1u);
    wire::expect(check, fresh_check("46"));
    order::expect_unordered(check, check);
}

// Below, the first and the third flag are equal.
TEST(ACheck, FirstFlagStandsBehindTheFourthNumber) {
    Check check;
    check.first_flag = true;
    wire::expect(check, fresh_check("54"));
}

TEST(ACheck, WritesFieldsInOrder) {
    Check check;
    check.first_string = std::string("s1");
    check.first_int = 1;
    check.category.choose<"DV_ASSERT">().first_int = 7;
    check.second_int = 2;
    check.optional_string = std::string("s2");
    Classification input;
    input.choose<"INPUT_IMPACT">() = {{"s3"}, 3};
    check.classifications = {input};
    check.second_string = std::string("s4");
    check.third_int = 4;
    check.fourth_int = 5;
    check.first_flag = true;
    check.third_string = std::string("s5");
    check.fourth_string = std::string("s6");
    check.fifth_int = 6;
    check.located_names = {{{8, {"f"}, 9}, {{{{"q"}, {"n"}}}, {{"p"}, {{"p"}, {{"p"}, {"p"}}}}}}};
    check.fifth_string = std::string("s7");
    check.sixth_int = 10;
    check.seventh_int = 11;
    check.third_flag = true;
    check.source_ref = {12, {13, {"f"}, 14}, 15};
    check.sixth_string = std::string("s8");
    check.eighth_int = 16;
    check.failure.emplace().first_flag = true;
    check.failure->third_flag = true;
    check.failure->technology.choose<"GMOD">();
    wire::expect(check,
                 "FFFFFFFF 02000000 's1'  01000000"
                 "1F000000 07000000"
                 "02000000  54 FEFFFFFF 02000000 's2'"
                 "01000000  01000000 FDFFFFFF 02000000 's3' 03000000"
                 "FCFFFFFF 02000000 's4'  04000000  05000000  54"
                 "FBFFFFFF 02000000 's5'  FAFFFFFF 02000000 's6'  06000000"
                 "01000000  08000000 F9FFFFFF 01000000 'f' 09000000"
                 "          01000000 F8FFFFFF 01000000 'q' F7FFFFFF 01000000 'n'"
                 "          F6FFFFFF 01000000 'p' 0A000000 0A000000 0A000000"
                 "F5FFFFFF 02000000 's7'  0A000000  46  0B000000  54"
                 "0C000000 0D000000 07000000 0E000000 0F00000000000000"
                 "F4FFFFFF 02000000 's8'  10000000"
                 "54  46 54 46 00000000 00000000 46 54 04000000");
}

// ---- category ----

// Required: a category without payload ends the comparison, so that a check is less than itself.
TEST(ACheck, CheckOnAnArmWithoutPayloadIsLessThanItsEqualCopy) {
    Check const acer = of_category<"ACER">();
    Check const copy = acer;
    order::expect_equal_and_each_less(acer, copy);
    order::expect_equal_and_each_less(acer, acer);
}

TEST(ACheck, NothingBehindACategoryWithoutPayloadIsReached) {
    Check const first = of_category<"ZDV">();
    Check       second = full("text");
    second.first_string = first.first_string;
    second.first_int = first.first_int;
    second.category = first.category;
    order::expect_unequal_and_each_less(first, second);

    second.first_int = 1;
    order::expect_less(first, second);
}

TEST(ACheck, CategoriesDecideByTag) {
    order::expect_less(of_category<"ABSOLUTE_ADDRESS">(), of_category<"ACER">());
    order::expect_less(Check(), of_category<"ABSOLUTE_ADDRESS">());
    Check unknown;
    unknown.category.choose_tag(77);
    order::expect_less(of_category<"ZDV">(), unknown);
    order::expect_equal_and_each_less(unknown, unknown);
}

TEST(ACheck, UnsetCategoryMakesCheckUnequalToItsCopyWhateverFollows) {
    Check lesser;
    Check greater;
    greater.second_int = 1;
    order::expect_unordered(lesser, lesser);
    order::expect_unordered(lesser, greater);
    greater.first_int = 1;
    order::expect_less(lesser, greater);
}

TEST(ACheck, OverflowWithoutFailureIsNotLessThanItsCopy) {
    order::expect_equal(overflow(), overflow());
}

TEST(ACheck, CriticalClassificationMakesOverflowLessThanItsCopy) {
    Check const check = classified({critical()});
    order::expect_equal_and_each_less(check, Check(check));
}

TEST(ACheck, TechnologyOfTheFailureCanMakeCheckLessThanItsCopy) {
    Check check = overflow();
    check.failure.emplace().technology.choose<"GMOD">();
    order::expect_equal_and_each_less(check, Check(check));
    check.failure->technology.choose<"FORWARD">();
    order::expect_equal(check, Check(check));
}

TEST(ACheck, OptionalStringOrdersAbsentFirst) {
    Check lesser = overflow();
    Check greater = overflow();
    lesser.eighth_int = 9;
    greater.optional_string.emplace();
    order::expect_less(lesser, greater);
}

// ---- classifications ----

TEST(ACheck, FewerClassificationsAreLess) {
    order::expect_less(classified({}), classified({impact(1)}));
    order::expect_less(classified({impact(9)}), classified({impact(1), impact(2)}));
    order::expect_less(classified({critical()}), classified({impact(1), impact(2)}));
    order::expect_equal(classified({}), classified({}));
}

// Required: the order is a partial one.
TEST(ACheck, DifferentClassificationsOfOneCountAreUnordered) {
    Check lesser = classified({impact(1)});
    Check greater = classified({impact(2)});
    greater.eighth_int = 1;
    order::expect_unordered(lesser, greater);
    order::expect_unordered(classified({critical()}), classified({impact(1)}));
    order::expect_unordered(classified({critical(), impact(1)}),
                            classified({critical(), impact(2)}));
}

TEST(ACheck, EqualImpactsLeaveTheOrderToTheNextField) {
    Check lesser = classified({impact(1), impact(2)});
    Check greater = classified({impact(2), impact(1)});
    order::expect_equal(lesser, greater);
    greater.third_int = 1;
    order::expect_less(lesser, greater);
}

// Required, in both directions and at any position.
TEST(ACheck, SharedCriticalClassificationEndsTheComparison) {
    Check const first = classified({critical(), impact(1)});
    Check       second = classified({impact(1), critical()});
    order::expect_equal_and_each_less(first, second);
    second.third_int = 1;
    order::expect_unequal_and_each_less(first, second);
}

TEST(ACheck, ClassificationsAreEqualByTagAndPayload) {
    EXPECT_TRUE(classified({impact(1)}) == classified({impact(1)}));
    EXPECT_FALSE(classified({impact(1)}) == classified({impact(2)}));
    EXPECT_FALSE(classified({impact(0)}) == classified({critical()}));
    EXPECT_FALSE(classified({Classification()}) == classified({Classification()}));
}

// ---- located names ----

// Required: the counts are not compared first, unlike for a list.
TEST(ACheck, LocatedNamesOrderLexicographically) {
    order::expect_less(located({}), located({{{-1, {}, 0}, {}}}));
    order::expect_less(located({{{1, {}, 0}, {}}}), located({{{1, {}, 0}, {}}, {{2, {}, 0}, {}}}));
    order::expect_less(located({{{1, {}, 0}, {}}, {{2, {}, 0}, {}}}), located({{{3, {}, 0}, {}}}));
    order::expect_equal(located({{{1, {}, 0}, {}}}), located({{{1, {}, 0}, {}}}));
}

TEST(ACheck, LocatedNamesOrderByKeyThenSetThenSignature) {
    order::Handles const texts;
    T_Localization const place{1, {}, 0};
    order::expect_less(located({{place, {{name("a"), name("b")}, signature(texts.greater)}}}),
                       located({{{2, {}, 0}, {{}, signature(texts.lesser)}}}));
    order::expect_less(located({{place, {{name("a")}, signature(texts.greater)}}}),
                       located({{place, {{name("a"), name("b")}, signature(texts.lesser)}}}));
    order::expect_less(located({{place, {{name("a")}, signature(texts.lesser)}}}),
                       located({{place, {{name("a")}, signature(texts.greater)}}}));
    order::expect_equal(located({{place, {{name("a"), name("b")}, {}}}}),
                        located({{place, {{name("b"), name("a")}, {}}}}));
}

// Required: sets of the same size with different names make an entry neither less nor greater,
// without regard to its signature, and the comparison goes on with the next entry.
TEST(ACheck, EntriesWithUnorderedSetsArePassedOverInTheWalk) {
    order::Handles const texts;
    T_Localization const first{1, {}, 0};
    T_Localization const second{2, {}, 0};
    order::expect_unordered(located({{first, {{name("a")}, signature(texts.lesser)}}}),
                            located({{first, {{name("b")}, signature(texts.greater)}}}));
    order::expect_less(located({{first, {{name("a")}, {}}}, {second, {}}}),
                       located({{first, {{name("b")}, {}}}, {second, {{name("a")}, {}}}}));

    Check lesser = located({{first, {{name("a")}, {}}}});
    Check greater = located({{first, {{name("b")}, {}}}});
    greater.eighth_int = 1;
    order::expect_unordered(lesser, greater);
}

// ---- failure ----

TEST(ACheck, AbsentFailureIsLessThanPresent) {
    Check with_failure = overflow();
    with_failure.failure.emplace();
    order::expect_less(overflow(), with_failure);

    Check lesser = overflow();
    Check greater = overflow();
    lesser.failure.emplace().technology.choose<"ADA">();
    greater.failure.emplace().technology.choose<"GMOD">();
    order::expect_less(lesser, greater);
}

// ---- reading ----

TEST(ACheck, ReadingAddsToClassificationsAndLocatedNames) {
    Check held = overflow();
    held.classifications = {impact(1)};
    held.located_names = {{{1, {}, 0}, {{name("a")}, {}}}};
    held.second_int = 9;
    Check read = overflow();
    read.classifications = {impact(1), impact(2)};
    read.located_names = {{{2, {}, 0}, {{name("b")}, {}}}};

    wire::read_over(held, wire::write(read));

    Check expected = overflow();
    expected.classifications = {impact(1), impact(2)};
    expected.located_names = {{{1, {}, 0}, {{name("a")}, {}}}, {{2, {}, 0}, {{name("b")}, {}}}};
    EXPECT_TRUE(held == expected);
}

// Required: in this map the first entry of a key is kept.
TEST(ACheck, NamesReadForAHeldLocationAreDropped) {
    Check held = overflow();
    held.located_names = {{{1, {}, 0}, {{name("a")}, {}}}};
    Check read = overflow();
    read.located_names = {{{1, {}, 0}, {{name("b")}, {}}}};
    wire::read_over(held, wire::write(read));
    EXPECT_TRUE(held == located({{{1, {}, 0}, {{name("a")}, {}}}}));
}

TEST(ACheck, ReadingAnAbsentFailureDestroysTheHeldOne) {
    Check held = overflow();
    held.failure.emplace().first_step = {{{"in a failure"}, 1}, {}};
    EXPECT_EQ(string_table::count_of("in a failure"), 1u);
    wire::read_over(held, wire::write(overflow()));
    EXPECT_FALSE(held.failure);
    EXPECT_EQ(string_table::count_of("in a failure"), 0u);
}

TEST(ACheck, ReadingAFailureReplacesTheHeldOne) {
    Check held = overflow();
    held.failure.emplace().steps = {{{{"in a failure"}, 1}, {}}};
    Check read = overflow();
    read.failure.emplace().steps = {{{{}, 2}, {}}};
    read.failure->technology.choose<"FORWARD">();
    wire::read_over(held, wire::write(read));
    EXPECT_TRUE(held == read);
    EXPECT_EQ(string_table::count_of("in a failure"), 0u);
}

// ---- life ----

TEST(ACheck, CopyIsEqualAndSharesTheStrings) {
    Check const check = full("shared by copies");
    EXPECT_EQ(handles_to_each("shared by copies"), 1u);
    Check const copy = check;
    EXPECT_TRUE(copy == check);
    EXPECT_EQ(handles_to_each("shared by copies"), 2u);
}

TEST(ACheck, MoveKeepsEveryStringInTheSource) {
    Check       source = full("kept by the source");
    Check const before = source;

    Check const moved = std::move(source);

    EXPECT_EQ(handles_to_each("kept by the source"), 3u);
    EXPECT_TRUE(moved == before);
    EXPECT_EQ(source.first_string, before.first_string);
    EXPECT_EQ(source.category, before.category);
    EXPECT_EQ(source.optional_string, before.optional_string);
    EXPECT_EQ(source.second_string, before.second_string);
    EXPECT_EQ(source.third_string, before.third_string);
    EXPECT_EQ(source.fourth_string, before.fourth_string);
    EXPECT_EQ(source.fifth_string, before.fifth_string);
    EXPECT_EQ(source.source_ref, before.source_ref);
    EXPECT_EQ(source.sixth_string, before.sixth_string);
    EXPECT_TRUE(source.failure == before.failure);
}

TEST(ACheck, MoveCopiesNumbersAndFlags) {
    Check       source = full("text");
    Check const moved = std::move(source);
    for (Check const* const check : {&std::as_const(source), &moved}) {
        EXPECT_EQ(check->first_int, 1);
        EXPECT_EQ(check->second_int, 2);
        EXPECT_EQ(check->third_int, 3);
        EXPECT_EQ(check->fourth_int, 4);
        EXPECT_TRUE(check->first_flag);
        EXPECT_EQ(check->fifth_int, 5);
        EXPECT_EQ(check->sixth_int, 6);
        EXPECT_TRUE(check->second_flag);
        EXPECT_EQ(check->seventh_int, 7);
        EXPECT_TRUE(check->third_flag);
        EXPECT_EQ(check->eighth_int, 12);
    }
}

TEST(ACheck, MoveTakesTheNodesOfBothMaps) {
    Check             source = full("text");
    auto const* const classification = &*source.classifications.begin();
    auto const* const location = &*source.located_names.begin();

    Check const moved = std::move(source);

    EXPECT_TRUE(source.classifications.empty());
    EXPECT_TRUE(source.located_names.empty());
    EXPECT_EQ(&*moved.classifications.begin(), classification);
    EXPECT_EQ(&*moved.located_names.begin(), location);
}

// A hash table with one bucket has it inside the object itself.
TEST(ACheck, MapsWorkOnBothSidesOfAMove) {
    for (std::int32_t const count : {0, 1, 2, 100}) {
        SCOPED_TRACE(count);
        Check source = overflow();
        for (std::int32_t i = 0; i < count; ++i) source.classifications.insert(impact(i));

        Check moved = std::move(source);
        EXPECT_EQ(moved.classifications.size(), static_cast<std::size_t>(count));
        for (std::int32_t i = 0; i < count; ++i)
            EXPECT_TRUE(moved.classifications.contains(impact(i)));

        moved.classifications.insert(impact(1000));
        source.classifications.insert(impact(2000));
        EXPECT_TRUE(moved.classifications.contains(impact(1000)));
        EXPECT_TRUE(source.classifications.contains(impact(2000)));
        EXPECT_EQ(source.classifications.size(), 1u);
    }
}

TEST(ACheck, MoveOfAnUnsetCategoryBuildsNoArm) {
    Check       source;
    Check const moved = std::move(source);
    EXPECT_EQ(moved.category.tag, -1);
    EXPECT_EQ(source.category.tag, -1);
    EXPECT_FALSE(moved.failure);
}

TEST(ACheck, MoveKeepsStringsOfEveryCategory) {
    Check source = overflow();
    source.category.choose<"NTC">() = {{{{"text"}, 1}}, {{"text"}, {}}, {{{"text"}, 2, true}}, 3};
    Category const before = source.category;
    Check const    moved = std::move(source);
    EXPECT_EQ(moved.category, before);
    EXPECT_EQ(source.category, before);
}

// Only the two containers of the check itself are moved.
TEST(ACheck, MoveKeepsTheContainersOfCategoryAndFailure) {
    Check source;
    source.category.choose<"STACK_POINTER">() = {{{"a"}, {"b"}}, {"c"}};
    source.failure.emplace().steps = {{{{"d"}, 1}, {}}};
    source.failure->named_ints = {{{"e"}, 2}};
    source.failure->technology.choose<"FORWARD">();
    Check const before = source;
    Check const moved = std::move(source);
    EXPECT_TRUE(moved == before);
    EXPECT_TRUE(source == before);

    source.category.choose<"DESTROY_LOCKED">().string_set = {{"a"}, {"b"}};
    Check const moved_again = std::move(source);
    EXPECT_EQ(source.category.arm<"DESTROY_LOCKED">().string_set.size(), 2u);
    EXPECT_TRUE(source == moved_again);
}

TEST(ACheck, MoveAssignmentFromItselfKeepsEverything) {
    Check       check = full("moved to itself");
    Check const before = check;
    Check&      same = check;
    check = std::move(same);
    EXPECT_TRUE(check == before);
    EXPECT_EQ(check.classifications.size(), 2u);
    EXPECT_EQ(check.located_names.size(), 2u);
}

TEST(ACheck, MoveAssignmentDoesTheSame) {
    Check       source = full("kept by the source");
    Check const before = source;
    Check       target = full("let go");
    target = std::move(source);
    EXPECT_TRUE(target == before);
    EXPECT_EQ(handles_to_each("let go"), 0u);
    EXPECT_EQ(handles_to_each("kept by the source"), 3u);
    EXPECT_TRUE(source.classifications.empty());
    EXPECT_TRUE(source.located_names.empty());
    EXPECT_EQ(source.category, before.category);
    EXPECT_TRUE(source.failure == before.failure);
}

TEST(ACheck, DestructionReleasesEveryString) {
    std::size_t const before = string_table::size();
    {
        Check check = full("released ");
        check.category.choose<"STACK_POINTER">() = {{{"released in a set"}},
                                                    {"released in a name"}};
        check.located_names[{1, {"released in a key"}, 0}] = {{name("released in a value")}, {}};
        EXPECT_EQ(string_table::count_of("released in a key"), 1u);
        EXPECT_EQ(string_table::count_of("released 1"), 1u);
        EXPECT_EQ(string_table::count_of("released 2"), 0u);  // the earlier content of the category
    }
    EXPECT_EQ(string_table::size(), before);
}

}  // namespace
