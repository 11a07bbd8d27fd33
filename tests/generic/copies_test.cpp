// Copies, moves and assignments of every type.

#include "tests/generic/loops.hpp"

#include <utility>

using generic::Row;
using generic::Value;

namespace {

void expect_same(Value const& copy, Value const& value, std::string const& text, Row const& row) {
    ASSERT_EQ(copy.text(), text);
    if (!row.compared) return;
    EXPECT_TRUE(copy == value);
    EXPECT_TRUE(value == copy);
}

TEST(Copies, CopyAndAssignmentKeepTheValue) {
    generic::for_each_type_and_seed([](Row const& row, std::uint64_t seed) {
        RandomValues      random(seed);
        Value const       value(row, random);
        std::string const text = value.text();

        Value const copy(value);
        expect_same(copy, value, text, row);

        Value assigned(row, random);
        assigned = value;
        expect_same(assigned, value, text, row);

        Value const& itself = assigned;
        assigned = itself;
        expect_same(assigned, value, text, row);
        EXPECT_EQ(value.text(), text);
    });
}

TEST(Copies, MoveKeepsTheValueAndItsSourceCanBeAssigned) {
    generic::for_each_type_and_seed([](Row const& row, std::uint64_t seed) {
        RandomValues      random(seed);
        Value const       value(row, random);
        std::string const text = value.text();

        Value source(value);
        Value moved(std::move(source));
        expect_same(moved, value, text, row);
        source = value;
        expect_same(source, value, text, row);

        Value assigned(row, random);
        assigned = std::move(moved);
        expect_same(assigned, value, text, row);
        moved = std::move(assigned);
        expect_same(moved, value, text, row);
    });
}

TEST(Copies, AChangeOfACopyLeavesItsSourceAsItWas) {
    generic::for_each_type_and_seed([](Row const& row, std::uint64_t seed) {
        RandomValues random(seed);
        Value        value(row, random);
        std::string  text = value.text();
        int          changes = 0;
        for (int i = 0; i < 30; ++i) {
            Value copy(value);
            ASSERT_TRUE(copy.mutate(random));
            ASSERT_EQ(value.text(), text);
            changes += copy.text() != text;
            // The copy becomes the source, and the old source is destroyed.
            if (i % 3 == 0) {
                value = copy;
                text = value.text();
            }
        }
        EXPECT_GT(changes, 0);
    });
}

TEST(Copies, AnAssignedArmReplacesEveryOther) {
    generic::for_each_variant([](Row const& row) {
        RandomValues random(3);
        for (std::int32_t held = -1; held <= row.arms->count(); ++held) {
            for (std::int32_t tag = -1; tag <= row.arms->count(); ++tag) {
                Value const source = Value::on_arm(row, tag, random);
                Value       target = Value::on_arm(row, held, random);
                target = source;
                ASSERT_EQ(target.text(), source.text()) << held << " then " << tag;
                Value moved_over = Value::on_arm(row, held, random);
                moved_over = std::move(target);
                ASSERT_EQ(moved_over.text(), source.text()) << held << " then " << tag;
            }
        }
    });
}

}  // namespace
