#include <sml/schema/Failure.hpp>
#include "tests/core/string_table.hpp"
#include "tests/order.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <list>
#include <optional>
#include <string>
#include <unordered_map>

using sml::Failure::Step;
using Failure = sml::Failure::T;
using Value = sml::Event_Path::Event_Value::T_value;
using Numbers = std::unordered_map<sml::Strings_T, std::int32_t>;

namespace {

Value iteration(sml::BigInteger const& count) {
    Value value;
    value.choose<"LoopIteration">() = count;
    return value;
}

Value text(char const* first_string) {
    Value value;
    value.choose<"WithValue">().first_string = std::string(first_string);
    return value;
}

Step step(std::int32_t number, std::optional<Value> const& value = {}) {
    return {{{}, number}, value};
}

/// A failure that is equal to itself and not less, so that every field decides.
Failure failure() {
    Failure result;
    result.technology.choose<"FORWARD">();
    return result;
}

Failure with_steps(std::list<Step> const& steps) {
    Failure result = failure();
    result.steps = steps;
    return result;
}

Failure with_numbers(Numbers const& numbers) {
    Failure result = failure();
    result.named_ints = numbers;
    return result;
}

TEST(Failure, DefaultIsEmptyWithUnsetTechnology) {
    Failure const value;
    EXPECT_FALSE(value.first_step || value.second_step);
    EXPECT_FALSE(value.first_flag || value.second_flag || value.third_flag);
    EXPECT_TRUE(value.steps.empty());
    EXPECT_TRUE(value.named_ints.empty());
    EXPECT_EQ(value.named_ints.bucket_count(), 1u);
    EXPECT_EQ(value.named_ints.max_load_factor(), 1.0f);
    EXPECT_EQ(value.technology.tag, -1);
    wire::expect(value, "46  46  46  00000000  00000000  46  46  FFFFFFFF");
    order::expect_unordered(value, value);
}

TEST(Failure, WritesFieldsInOrder) {
    Failure value;
    value.first_step = {{{"a"}, 1}, iteration(0x1F)};
    value.first_flag = true;
    value.second_step = {{{"b"}, -1}, {}};
    value.steps = {{{{"a"}, 2}, text("c")}, {{{}, 3}, {}}};
    value.named_ints = {{{"d"}, 4}};
    value.third_flag = true;
    value.technology.choose<"GMOD">();
    wire::expect(value,
                 "54 FFFFFFFF 01000000 'a' 01000000 54 00000000 04000000 '1f' 00 00"
                 "54"
                 "54 FEFFFFFF 01000000 'b' FFFFFFFF 46"
                 "02000000  01000000 02000000 54 01000000 46 FDFFFFFF 01000000 'c'"
                 "          FCFFFFFF 00000000 03000000 46"
                 "01000000  FBFFFFFF 01000000 'd' 04000000"
                 "46  54"
                 "04000000");

    // Above, the first and the third flag are equal.
    Failure last_flag;
    last_flag.third_flag = true;
    wire::expect(last_flag, "46  46  46  00000000  00000000  46  54  FFFFFFFF");
}

// ---- steps ----

TEST(Failure, AbsentStepIsLessThanPresent) {
    Failure const none = failure();
    Failure       first = failure();
    first.first_step = step(-9);
    Failure second = failure();
    second.second_step = step(-9);
    order::expect_less(none, first);
    order::expect_less(none, second);
    order::expect_less(second, first);
}

TEST(Failure, StepsOrderByStringNumberAndValue) {
    order::Handles const texts;
    auto                 with_step = [](Step const& first_step) {
        Failure result = failure();
        result.first_step = first_step;
        return result;
    };
    order::expect_less(with_step({{texts.lesser, 9}, iteration(9)}),
                       with_step({{texts.greater, 1}, {}}));
    order::expect_less(with_step(step(-1, iteration(9))), with_step(step(1)));
    order::expect_less(with_step(step(1)), with_step(step(1, iteration(-9))));
    order::expect_less(with_step(step(1, iteration(9))), with_step(step(1, text(""))));
    order::expect_less(with_step(step(1, Value())), with_step(step(1, iteration(-9))));
    order::expect_equal(with_step(step(1, text("a"))), with_step(step(1, text("a"))));
    order::expect_equal(with_step(step(1, iteration(9))), with_step(step(1, iteration(9))));
}

// As texts of base 16, both pairs would have the opposite order: "9" and "a", "9" and "10".
TEST(Failure, LoopIterationsCompareAsNumbers) {
    order::expect_less(with_steps({step(0, iteration(9))}), with_steps({step(0, iteration(10))}));
    order::expect_less(with_steps({step(0, iteration(9))}), with_steps({step(0, iteration(16))}));
    order::expect_less(with_steps({step(0, iteration(-10))}), with_steps({step(0, iteration(-9))}));
}

// Required: the shorter list is less, whatever its elements.
TEST(Failure, StepListsOrderByCountThenByElements) {
    order::expect_less(with_steps({step(9)}), with_steps({step(1), step(1)}));
    order::expect_less(with_steps({step(1), step(9)}), with_steps({step(2), step(1)}));
    order::expect_less(with_steps({step(1), step(1)}), with_steps({step(1), step(2)}));
}

// Required: steps that are neither less nor greater do not end the comparison. Only at its end must
// the lists be equal.
TEST(Failure, StepsWithUnsetValueArePassedOverInTheWalk) {
    order::expect_less(with_steps({step(1, Value()), step(1)}),
                       with_steps({step(1, Value()), step(2)}));
    Failure lesser = with_steps({step(1, Value())});
    Failure greater = lesser;
    greater.third_flag = true;
    order::expect_unordered(lesser, greater);
}

TEST(Failure, StepListMayBeEmptyBetweenFilledSteps) {
    Failure value = failure();
    value.first_step = step(1);
    value.second_step = step(2);
    order::expect_equal(value, Failure(value));
    order::expect_less(with_steps({step(1)}), value);
}

// ---- named numbers ----

TEST(Failure, NamedNumbersAreEqualInAnyOrderOfInsertion) {
    Numbers one_way;
    one_way.emplace(std::string("a"), 1);
    one_way.emplace(std::string("b"), 2);
    Numbers other_way;
    other_way.emplace(std::string("b"), 2);
    other_way.emplace(std::string("a"), 1);
    order::expect_equal(with_numbers(one_way), with_numbers(other_way));
}

TEST(Failure, FewerNamedNumbersAreLess) {
    order::expect_less(with_numbers({}), with_numbers({{{"a"}, -1}}));
    order::expect_less(with_numbers({{{"c"}, 9}}), with_numbers({{{"a"}, 1}, {{"b"}, 1}}));
    order::expect_equal(with_numbers({}), with_numbers({}));
}

// Required: the order is a partial one.
TEST(Failure, NamedNumbersWithDifferentKeysAreUnordered) {
    Failure lesser = with_numbers({{{"a"}, 1}});
    Failure greater = with_numbers({{{"b"}, 2}});
    greater.third_flag = true;
    order::expect_unordered(lesser, greater);
}

TEST(Failure, NamedNumbersOfOneKeyDecide) {
    order::expect_less(with_numbers({{{"a"}, -1}}), with_numbers({{{"a"}, 1}}));
    Failure lesser = with_numbers({{{"a"}, 1}, {{"b"}, 1}});
    Failure greater = with_numbers({{{"a"}, 1}, {{"b"}, 2}});
    lesser.third_flag = true;
    order::expect_less(lesser, greater);
}

// Required: the comparison follows the order of the left hash table and ends at the first
// difference.
TEST(Failure, FirstDifferentNumberInTheLeftMapsOrderDecides) {
    Numbers const left{{{"a"}, 1}, {{"b"}, 2}};
    Numbers const right{{{"a"}, 2}, {{"b"}, 1}};
    EXPECT_EQ(with_numbers(left) < with_numbers(right),
              left.begin()->second < right.at(left.begin()->first));
    EXPECT_EQ(with_numbers(right) < with_numbers(left),
              right.begin()->second < left.at(right.begin()->first));
    EXPECT_FALSE(with_numbers(left) == with_numbers(right));
}

// ---- technology ----

TEST(Failure, TechnologyWithoutPayloadMakesEqualFailuresEachLess) {
    for (std::int32_t const tag : {0, 1, 2, 4, 5, 6, 7, 8, 9}) {
        SCOPED_TRACE(tag);
        Failure value;
        value.technology.choose_tag(tag);
        order::expect_equal_and_each_less(value, Failure(value));
    }
    order::expect_equal(failure(), failure());
}

TEST(Failure, TechnologyOrdersByTagThenSettings) {
    Failure ada;
    ada.technology.choose<"ADA">();
    Failure unknown;
    unknown.technology.choose<"UNKNOWN">();
    Failure settings = failure();
    settings.technology.arm<"FORWARD">().first_int = 1;
    order::expect_less(Failure(), ada);
    order::expect_less(ada, failure());
    order::expect_less(failure(), settings);
    order::expect_less(settings, unknown);
}

// ---- reading and life ----

TEST(Failure, ReadingAddsToListAndTableAndTheFirstNumberOfAKeyStays) {
    Failure value = with_steps({step(1)});
    value.named_ints = {{{"a"}, 1}};
    value.first_step = step(7);
    wire::read_over(value, hex::bytes("46  54  54 FFFFFFFF 00000000 08000000 46"
                                      "01000000  01000000 02000000 46"
                                      "03000000  FEFFFFFF 01000000 'a' 02000000"
                                      "          FDFFFFFF 01000000 'b' 03000000"
                                      "          03000000 04000000"
                                      "46  46  03000000 46 00000000 00000000"));
    Failure expected = with_steps({step(1), step(2)});
    expected.first_flag = true;
    expected.second_step = step(8);
    expected.named_ints = {{{"a"}, 1}, {{"b"}, 3}};
    EXPECT_EQ(value, expected);
}

TEST(Failure, DestructionReleasesEveryString) {
    {
        Failure value = failure();
        value.first_step = {{{"held by a failure"}, 1}, text("held by a failure")};
        value.second_step = value.first_step;
        value.steps = {*value.first_step, *value.first_step};
        value.named_ints = {{{"held by a failure"}, 1}};
        EXPECT_EQ(string_table::count_of("held by a failure"), 9u);
    }
    EXPECT_EQ(string_table::count_of("held by a failure"), 0u);
}

}  // namespace
