// `==` and `<` of every type that has them.

#include "tests/generic/loops.hpp"
#include "tests/generic/required_order.hpp"

#include <array>
#include <optional>

using generic::Row;
using generic::Value;

namespace {

template <class Test>
void for_each_compared_type_and_seed(Test&& test) {
    generic::for_each_type_and_seed([&](Row const& row, std::uint64_t seed) {
        if (row.compared) test(row, seed);
    });
}

template <class Test>
void for_each_field(Test&& test) {
    for_each_compared_type_and_seed([&](Row const& row, std::uint64_t seed) {
        if (row.form != generic::Form::record) return;
        RandomValues                   random(seed, {.elements = 2, .depth = 3});
        std::vector<std::string> const names = row.field_lists().front().names;
        for (std::size_t field = 0; field < names.size(); ++field) {
            SCOPED_TRACE(names[field]);
            test(row, random, field);
            if (testing::Test::HasFatalFailure()) return;
        }
    });
}

constexpr int enough_tries = 2000;

// A random value with a field for which `fits` is true, if one is found.
template <class Fits>
std::optional<Value> with_field(Row const& row, RandomValues& random, std::size_t field,
                                Fits&& fits) {
    for (int i = 0; i < enough_tries; ++i) {
        Value value(row, random);
        if (fits(value.view().parts[field])) return value;
    }
    ADD_FAILURE() << "no such field among " << enough_tries << " values";
    return std::nullopt;
}

// A value of which no field is less than itself: in none of them is a variant that is unset or has
// a tag without payload.
std::optional<Value> value_not_less_than_itself(Row const& row, RandomValues& random) {
    Value             value(row);
    std::size_t const fields = value.view().parts.size();
    for (std::size_t field = 0; field < fields; ++field) {
        auto const source = with_field(row, random, field, [](generic::Node const& part) {
            return !generic::has_variant_without_payload(part);
        });
        if (!source) return std::nullopt;
        value.assign_field(*source, field);
    }
    return value;
}

TEST(Order, ADifferenceInOneFieldAloneMakesRecordsUnequal) {
    for_each_field([](Row const& row, RandomValues& random, std::size_t field) {
        Value const value(row, random);
        auto const  other = with_field(row, random, field, [&](generic::Node const& part) {
            return !generic::required_equal(part, value.view().parts[field]);
        });
        ASSERT_TRUE(other);
        Value copy(value);
        EXPECT_TRUE(copy == value);
        copy.assign_field(*other, field);
        EXPECT_FALSE(copy == value);
        EXPECT_FALSE(value == copy);
    });
}

TEST(Order, TheFirstFieldThatDiffersOrdersTheRecords) {
    for_each_field([](Row const& row, RandomValues& random, std::size_t field) {
        auto const base = value_not_less_than_itself(row, random);
        ASSERT_TRUE(base);
        generic::Node const view = base->view();
        bool                is_less = false;
        auto const          other = with_field(row, random, field, [&](generic::Node const& part) {
            is_less = generic::required_less(part, view.parts[field]);
            return is_less != generic::required_less(view.parts[field], part);
        });
        ASSERT_TRUE(other);
        // The fields after it are random.
        Value copy(row, random);
        for (std::size_t i = 0; i < field; ++i) copy.assign_field(*base, i);
        copy.assign_field(*other, field);
        EXPECT_EQ(copy < *base, is_less);
        EXPECT_EQ(*base < copy, !is_less);
    });
}

TEST(Order, AVariantOrdersByTagFirst) {
    generic::for_each_variant([](Row const& row) {
        if (!row.compared) return;
        RandomValues random(5);
        for (std::int32_t lower = -2; lower <= row.arms->count(); ++lower) {
            Value const a = Value::on_arm(row, lower, random);
            for (std::int32_t higher = lower + 1; higher <= row.arms->count() + 1; ++higher) {
                Value const b = Value::on_arm(row, higher, random);
                ASSERT_TRUE(a < b) << lower << ' ' << higher;
                ASSERT_FALSE(b < a) << lower << ' ' << higher;
                ASSERT_FALSE(a == b) << lower << ' ' << higher;
            }
        }
    });
}

// The number of times of each answer.
struct Answers {
    int less = 0;
    int greater = 0;
    int both = 0;
    int unordered = 0;
    int equal = 0;
    int less_than_itself = 0;
    int unequal_to_itself = 0;
};

void expect_required_answers(Value const& a, Value const& b, Answers& answers) {
    generic::Node const left = a.view();
    generic::Node const right = b.view();
    bool const          less = generic::required_less(left, right);
    bool const          greater = generic::required_less(right, left);
    bool const          equal = generic::required_equal(left, right);
    auto const          text = [&] { return text_of(left) + "\nand\n" + text_of(right); };
    ASSERT_EQ(a < b, less) << text();
    ASSERT_EQ(b < a, greater) << text();
    ASSERT_EQ(a == b, equal) << text();
    ASSERT_EQ(b == a, generic::required_equal(right, left)) << text();
    ASSERT_EQ(a < a, generic::required_less(left, left)) << text();
    ASSERT_EQ(a == a, generic::required_equal(left, left)) << text();
    answers.less += less && !greater;
    answers.greater += greater && !less;
    answers.both += less && greater;
    answers.unordered += !less && !greater && !equal;
    answers.equal += equal;
    answers.less_than_itself += a < a;
    answers.unequal_to_itself += !(a == a);
}

void expect_required_answers_for_pairs(Row const& row, RandomValues& random, Answers& answers) {
    constexpr int pairs = 100;
    for (int i = 0; i < pairs; ++i) {
        Value a(row, random);
        if (i % 4 == 3) a.mutate(random);

        Value b(a);
        expect_required_answers(a, b, answers);
        for (int changes = 0; changes < 3; ++changes) {
            b.mutate(random);
            expect_required_answers(a, b, answers);
        }
        expect_required_answers(a, Value(row, random), answers);

        // The same content, with hash tables built in another order.
        Value rebuilt(row);
        rebuilt.read(a.bytes());
        expect_required_answers(a, rebuilt, answers);
        rebuilt.mutate(random);
        expect_required_answers(a, rebuilt, answers);
        if (testing::Test::HasFatalFailure()) return;
    }
}

TEST(Order, RandomPairsCompareAsRequired) {
    Answers answers;
    for_each_compared_type_and_seed([&](Row const& row, std::uint64_t seed) {
        RandomValues random(seed, {.elements = 2, .depth = 3});
        expect_required_answers_for_pairs(row, random, answers);
    });
    for (int const count : {answers.less, answers.greater, answers.both, answers.unordered,
                            answers.equal, answers.less_than_itself, answers.unequal_to_itself})
        EXPECT_GT(count, 1000) << "this answer is hardly met";
}

TEST(Order, ValuesThatHoldOneArmCompareAsRequired) {
    Answers answers;
    for_each_compared_type_and_seed([&](Row const& row, std::uint64_t seed) {
        if (row.arms == nullptr) return;
        RandomValues random(seed, {.elements = 2, .depth = 3});
        for (std::int32_t tag = -2; tag <= row.arms->count() + 1; ++tag) {
            for (int i = 0; i < 10; ++i) {
                Value const a = Value::on_arm(row, tag, random);
                Value       b(a);
                expect_required_answers(a, b, answers);
                b.mutate(random);
                expect_required_answers(a, b, answers);
                expect_required_answers(a, Value::on_arm(row, tag, random), answers);
                if (testing::Test::HasFatalFailure()) return;
            }
        }
    });
    EXPECT_GT(answers.both, 0);
    EXPECT_GT(answers.equal, 0);
}

}  // namespace
