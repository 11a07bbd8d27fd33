#include <sml/schema/Answers.hpp>
#include "tests/order.hpp"
#include "tests/schema/tables.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace sml::Answers;
using sml::Strings_T;
using std::string_literals::operator""s;

using Clone = sml::Functions::Cxx_Clone_Context::T;

TEST(Answer, IsOneByte) {
    wire::expect(T_Answer{true}, "'T'");
    wire::expect(T_Answer{false}, "'F'");
    wire::expect(T_Context{true}, "'T'");
    wire::expect(T_Context{false}, "'F'");
}

TEST(Answer, OrdersFalseBeforeTrue) {
    order::expect_less(T_Answer{false}, T_Answer{true});
    order::expect_equal(T_Answer{true}, T_Answer{true});
    order::expect_less(T_Context{false}, T_Context{true});
    order::expect_equal(T_Context{false}, T_Context{false});
}

TEST(Answer, EveryFlagByteButTIsFalse) {
    for (char const byte : {'F', '\0', '\xFF', 't'}) {
        T_Answer answer{true};
        wire::read_over(answer, std::string(1, byte));
        EXPECT_FALSE(answer.flag);
    }
}

TEST(AnswerAssert, WritesFlagClassificationAndNumber) {
    T_AnswerAssert answer{{true}, {}, -2};
    answer.classification.classification_class =
        sml::Results_API_base::GUI_Check_Classification_base::CRITICAL;
    answer.classification.input_sources = {{5}};
    answer.classification.first_flag = true;
    wire::expect(answer, "'T'  03000000 'F' 01000000 05000000 'T'  FEFFFFFF");
}

T_AnswerInspectionPoint inspection_point() {
    T_AnswerInspectionPoint answer{{false}, "ab", {}};
    answer.range.choose<"Int_Full_Range">();
    return answer;
}

TEST(AnswerInspectionPoint, WritesFlagTextAndRange) {
    T_AnswerInspectionPoint answer = inspection_point();
    answer.range.arm<"Int_Full_Range">().upper = 31;
    wire::expect(answer, "'F'  02000000 'ab'  00000000 'F' 'T' 04000000 '1f' 00 00");
    wire::expect(T_AnswerInspectionPoint(), "'F'  00000000  FFFFFFFF 00000000 FFFFFFFF");
}

TEST(AnswerInspectionPoint, ThatDiffersInItsRangeOnlyOrdersAsTheRange) {
    auto bounded = [](int lower) {
        T_AnswerInspectionPoint answer = inspection_point();
        answer.range.arm<"Int_Full_Range">().lower = lower;
        return answer;
    };
    order::expect_less(bounded(9), bounded(16));
    auto intervals = [](std::size_t count) {
        T_AnswerInspectionPoint answer = inspection_point();
        auto&                   range = answer.range.choose<"Value_Range">();
        range.intervals.resize(count);
        for (auto& interval : range.intervals) interval.choose<"Int_Interval">();
        range.multiplicity.choose<"Multiple">() = 2;
        return answer;
    };
    order::expect_less(bounded(9), intervals(1));
    order::expect_less(intervals(1), intervals(2));
    order::expect_equal(intervals(2), intervals(2));
    auto top = intervals(1);
    top.range.arm<"Value_Range">().multiplicity.choose<"Top">();
    order::expect_equal_and_each_less(top, top);
}

TEST(ContextCallSite, BeginsWithTheFunctionContext) {
    wire::expect(T_ContextCallSite{{{1, {2, "f"s, 3}, 4}, "a"s, "b"s}, {true}, "c"s},
                 "01000000 02000000 FFFFFFFF 01000000 'f' 03000000 0400000000000000"
                 "  FEFFFFFF 01000000 'a'  FDFFFFFF 01000000 'b'  'T'  FCFFFFFF 01000000 'c'");
}

TEST(ContextInline, BeginsWithTheCaller) {
    wire::expect(
        T_ContextInline{
            {-1, {"p"s, {"s"s, {"q"s, "n"s}}}, true, {1, "f"s, 2}}, {false}, "l"s, true},
        "FFFFFFFF  FFFFFFFF 01000000 'p' FEFFFFFF 01000000 's' FDFFFFFF 01000000 'q'"
        " FCFFFFFF 01000000 'n'  'T'  01000000 FBFFFFFF 01000000 'f' 02000000"
        "  'F'  FAFFFFFF 01000000 'l'  'T'");
}

TEST(ContextRegion, WritesANullLabelAsTheEmptyText) {
    wire::expect(T_ContextRegion{{true}, {}, {1, {2, "f"s, 3}, 4}},
                 "'T'  FFFFFFFF 00000000"
                 "  01000000 02000000 FEFFFFFF 01000000 'f' 03000000 0400000000000000");
}

TEST(ContextCounterExample, WritesItsFieldsInOrder) {
    wire::expect(T_ContextCounterExample{{true}, "a"s, false, "b"s, {1, {2, "a"s, 3}, -1}},
                 "'T'  FFFFFFFF 01000000 'a'  'F'  FEFFFFFF 01000000 'b'"
                 "  01000000 02000000 01000000 03000000 FFFFFFFFFFFFFFFF");
}

T_ContextCxx with_clone(std::int32_t tag) {
    T_ContextCxx context;
    context.clone_context.choose_tag(tag);
    return context;
}

TEST(ContextCxx, WritesTheCloneBetweenItsLabels) {
    T_ContextCxx context{{true}, "a"s, {}, "b"s};
    context.clone_context.choose<"Sub_Dtor">() = "c";
    wire::expect(context,
                 "'T'  FFFFFFFF 01000000 'a'  03000000 FEFFFFFF 01000000 'c'"
                 "  FDFFFFFF 01000000 'b'");
    context.clone_context.choose<"During_Constr_Destr">() = {true, false, {}, "d"s};
    wire::expect(context,
                 "'T'  FFFFFFFF 01000000 'a'  00000000 'T' 'F' 'F' FEFFFFFF 01000000 'd'"
                 "  FDFFFFFF 01000000 'b'");
    context.clone_context.choose<"Top_Dtor">();
    wire::expect(context, "'T'  FFFFFFFF 01000000 'a'  05000000  FEFFFFFF 01000000 'b'");
    wire::expect(T_ContextCxx(), "'F'  FFFFFFFF 00000000  FFFFFFFF  01000000");
}

TEST(ContextCxx, TheTagOfTheCloneDecidesFirst) {
    for (std::int32_t lesser = -2; lesser < 7; ++lesser)
        for (std::int32_t greater = lesser + 1; greater < 8; ++greater) {
            SCOPED_TRACE(testing::Message() << lesser << " and " << greater);
            order::expect_less(with_clone(lesser), with_clone(greater));
        }
}

TEST(ContextCxx, ANegativeTagIsNeitherLessNorEqual) {
    for (std::int32_t const tag : {-1, -2}) {
        order::expect_unordered(with_clone(tag), with_clone(tag));
        T_ContextCxx later = with_clone(tag);
        later.second_label = "later";
        order::expect_unordered(with_clone(tag), later);
    }
}

TEST(ContextCxx, WithEqualPayloadsOrdersByTheSecondLabel) {
    order::Handles const names;
    for (std::int32_t const tag : {0, 1, 2, 3}) {
        SCOPED_TRACE(tag);
        T_ContextCxx lesser = with_clone(tag);
        T_ContextCxx greater = lesser;
        order::expect_equal(lesser, greater);
        lesser.second_label = names.lesser;
        greater.second_label = names.greater;
        order::expect_less(lesser, greater);
    }
}

TEST(ContextCxx, ATopCloneEndsTheOrderBeforeTheSecondLabel) {
    for (std::int32_t const tag : {4, 5, 6}) {
        SCOPED_TRACE(tag);
        T_ContextCxx const a = with_clone(tag);
        T_ContextCxx       b = a;
        order::expect_equal_and_each_less(a, b);
        b.second_label = "other";
        order::expect_unequal_and_each_less(a, b);
        b.first_label = "other";
        order::expect_less(a, b);
    }
}

}  // namespace
