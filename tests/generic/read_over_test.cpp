// Reads into values that are not fresh.

#include "tests/generic/loops.hpp"

using generic::Row;
using generic::Value;

namespace {

// Reads the bytes of `source` over copies of `held`, by both readers.
void expect_reading_over(Value const& held, Value const& source, std::string const& expected) {
    std::string const bytes = source.bytes();
    Value             from_bytes(held);
    ASSERT_EQ(from_bytes.read(bytes), bytes.size());
    ASSERT_EQ(from_bytes.text(), expected);
    Value from_stream(held);
    ASSERT_EQ(from_stream.read_from_stream(bytes), bytes.size());
    ASSERT_EQ(from_stream.text(), expected);
}

TEST(ReadOver, ADifferingTagMakesTheArmAnew) {
    generic::for_each_variant([](Row const& row) {
        RandomValues random(4);
        for (std::int32_t held = -2; held <= row.arms->count() + 1; ++held) {
            for (std::int32_t tag = -2; tag <= row.arms->count() + 1; ++tag) {
                if (held == tag) continue;
                SCOPED_TRACE(testing::Message() << "tag " << tag << " over " << held);
                Value const source = Value::on_arm(row, tag, random);
                expect_reading_over(Value::on_arm(row, held, random), source, source.text());
                if (testing::Test::HasFatalFailure()) return;
            }
        }
    });
}

TEST(ReadOver, AnEqualTagReadsOverThePayload) {
    generic::for_each_type_and_seed([](Row const& row, std::uint64_t seed) {
        if (row.arms == nullptr) return;
        RandomValues random(seed);
        for (std::int32_t tag = -2; tag <= row.arms->count() + 1; ++tag) {
            SCOPED_TRACE(testing::Message() << "tag " << tag);
            Value const held = Value::on_arm(row, tag, random);
            Value const source = Value::on_arm(row, tag, random);
            expect_reading_over(held, source, text_read_over(held.view(), source.view()));
        }
    });
}

TEST(ReadOver, ARecordKeepsWhatItsContainersHold) {
    generic::for_each_type_and_seed([](Row const& row, std::uint64_t seed) {
        RandomValues random(seed);
        for (int i = 0; i < 4; ++i) {
            Value const held(row, random);
            Value const source(row, random);
            expect_reading_over(held, source, text_read_over(held.view(), source.view()));
        }
    });
}

TEST(ReadOver, ReadingTheSameBytesTwiceDoublesTheListsOnly) {
    generic::for_each_type_and_seed([](Row const& row, std::uint64_t seed) {
        RandomValues random(seed);
        Value const  source(row, random);
        expect_reading_over(source, source, text_read_over(source.view(), source.view()));
    });
}

}  // namespace
