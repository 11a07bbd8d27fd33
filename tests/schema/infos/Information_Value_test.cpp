// The types of values, and values, which have a type and a range.

#include <sml/schema/Infos.hpp>
#include "tests/core/string_table.hpp"
#include "tests/order.hpp"
#include "tests/schema/tables.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sstream>
#include <stdexcept>
#include <string>

using sml::BigInteger;
using sml::Infos::T_Info_Type;
using sml::Infos::T_Information_Value;
using sml::Infos::T_Pointer_Null_Value;
using zelvanite::IEEE754Float;
using Ada_Fixed = T_Info_Type::Inf_Type_Ada_Fixed_args;
using Ada_Float = T_Info_Type::Inf_Type_Ada_Float_args;
using Drs_Float = T_Info_Type::Inf_Type_DRSFloat_args;
using Drs_Integer = T_Info_Type::Inf_Type_DRSInteger_args;
using Integer = T_Info_Type::Inf_Type_Integer_args;

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

IEEE754Float number(double value) {
    IEEE754Float result;
    mpfr_set_d(result.number(), value, MPFR_RNDN);
    return result;
}

template <sml::core::Name ArmName, class Payload>
T_Info_Type type(Payload const& payload) {
    T_Info_Type result;
    result.choose<ArmName>() = payload;
    return result;
}

sml::Infos::T_Value_Range up_to(BigInteger const& upper) {
    sml::Infos::T_Value_Range result;
    result.choose<"Int_Full_Range">().upper = upper;
    return result;
}

/// A value that is equal to itself and not less.
T_Information_Value value(BigInteger const& upper = 0) {
    T_Information_Value result;
    result.type.choose<"Inf_Type_Integer">();
    result.range = up_to(upper);
    return result;
}

T_Information_Value of_type(T_Info_Type const& type, BigInteger const& upper = 0) {
    T_Information_Value result;
    result.type = type;
    result.range = up_to(upper);
    return result;
}

// ---- types ----

TEST(InfoType, HasSevenArms) {
    tables::expect_arms<T_Info_Type>({
        {"Inf_Type_Ada_Fixed", "00000000  08000000 '0.000000'  08000000 '0.000000'  46  00000000"},
        {"Inf_Type_Ada_Float", "08000000 '0.000000'  08000000 '0.000000'  00000000"},
        {"Inf_Type_DRSFloat",
         "06000000 '0X0P+0' 40000000  06000000 '0X0P+0' 40000000  00000000 00000000 00000000"},
        {"Inf_Type_DRSInteger", "03000000 '0' 00 00  03000000 '0' 00 00"},
        {"Inf_Type_Float", "00000000 00000000 00000000"},
        {"Inf_Type_Integer", "03000000 '0' 00 00  03000000 '0' 00 00  46"},
        {"Inf_Type_None"},
    });
}

TEST(InfoType, RecordsWriteFieldsInOrder) {
    wire::expect(Ada_Fixed{{1, -2}, 1.5, -2.25, true, {3}},
                 "02000000 01000000 FEFFFFFF  08000000 '1.500000'  09000000 '-2.250000'  54"
                 "01000000 03000000");
    wire::expect(Ada_Float{1.5, -2.25, 7}, "08000000 '1.500000'  09000000 '-2.250000'  07000000");
    wire::expect(Drs_Float{number(1.5), number(-2), {1, 2, 3}},
                 "08000000 '0X1.8P+0' 40000000  07000000 '-0X2P+0' 40000000"
                 "01000000 02000000 03000000");
    wire::expect(Drs_Integer{0x1F, -0x1F}, "04000000 '1f' 00 00  04000000 '-1f' 00");
    wire::expect(T_Info_Type::Inf_Type_Float_args{{1, 2, 3}}, "01000000 02000000 03000000");
    wire::expect(Integer{1, 2, 3}, "03000000 '1' 00 00  03000000 '2' 00 00  54 03000000 '3' 00 00");
}

TEST(InfoType, OrdersByTagThenRecord) {
    tables::expect_order_by_tag<T_Info_Type>();
    order::expect_less(type<"Inf_Type_DRSInteger">(Drs_Integer{1, 9}),
                       type<"Inf_Type_DRSInteger">(Drs_Integer{2, 1}));
    order::expect_less(type<"Inf_Type_DRSInteger">(Drs_Integer{9, 9}),
                       type<"Inf_Type_Integer">(Integer{1, 1, {}}));
    order::expect_equal(type<"Inf_Type_Ada_Float">(Ada_Float{1.5, 2, 3}),
                        type<"Inf_Type_Ada_Float">(Ada_Float{1.5, 2, 3}));
}

// Required: the shorter list is less, whatever its elements are.
TEST(InfoType, ListsOfAdaFixedOrderByCountThenAsSignedNumbers) {
    order::expect_less(Ada_Fixed{{9}, 9, 9, true, {}}, Ada_Fixed{{1, 1}, 1, 1, false, {}});
    order::expect_less(Ada_Fixed{{-1}, 9, 9, true, {}}, Ada_Fixed{{1}, 1, 1, false, {}});
    order::expect_less(Ada_Fixed{{}, 1, 1, true, {9}}, Ada_Fixed{{}, 1, 1, true, {1, 1}});
    order::expect_less(Ada_Fixed{{}, 1, 1, true, {-1}}, Ada_Fixed{{}, 1, 1, true, {1}});
}

TEST(InfoType, AbsentThirdNumberIsLessThanPresent) {
    order::expect_less(Integer{1, 2, {}}, Integer{1, 2, -9});
    order::expect_less(Integer{1, 2, 9}, Integer{1, 2, 10});
    order::expect_equal(Integer{1, 2, {}}, Integer{1, 2, {}});
}

// Required: a NaN is unequal to everything, so it ends the comparison.
TEST(InfoType, DoubleThatIsNoNumberLeavesRecordsUnordered) {
    order::expect_unordered(Ada_Float{nan, 1, 1}, Ada_Float{nan, 2, 2});
    order::expect_unordered(Ada_Float{nan, 1, 1}, Ada_Float{1, 2, 2});
    order::expect_unordered(Ada_Float{1, nan, 1}, Ada_Float{1, 2, 2});
    order::expect_less(Ada_Float{1, nan, 1}, Ada_Float{2, nan, 1});
    order::expect_unordered(Ada_Fixed{{}, nan, 1, false, {}}, Ada_Fixed{{}, nan, 2, true, {}});
    order::expect_equal(Ada_Float{0.0, 1, 1}, Ada_Float{-0.0, 1, 1});
}

TEST(InfoType, FloatThatIsNoNumberLeavesRecordsUnordered) {
    order::expect_unordered(Drs_Float{number(nan), number(1), {}},
                            Drs_Float{number(nan), number(2), {}});
    order::expect_unordered(Drs_Float{number(1), number(nan), {1, 0, 0}},
                            Drs_Float{number(1), number(nan), {2, 0, 0}});
}

TEST(InfoType, EqualFloatsOfTwoFormatsOrderByFormat) {
    Drs_Float narrow{number(1), number(9), {}};
    narrow.first_float.width = 32;
    Drs_Float const wide{number(1), number(1), {}};
    order::expect_less(narrow, wide);
}

TEST(InfoType, ReadingTheHeldArmAddsToItsLists) {
    T_Info_Type       held = type<"Inf_Type_Ada_Fixed">(Ada_Fixed{{1}, 1.5, 2, true, {2}});
    std::string const bytes =
        wire::write(type<"Inf_Type_Ada_Fixed">(Ada_Fixed{{3}, 4, 5, false, {6}}));
    wire::read_over(held, bytes);
    EXPECT_EQ(held, type<"Inf_Type_Ada_Fixed">(Ada_Fixed{{1, 3}, 4, 5, false, {2, 6}}));
    wire::read_over(held, hex::bytes("06000000"));
    wire::read_over(held, bytes);
    EXPECT_EQ(held, type<"Inf_Type_Ada_Fixed">(Ada_Fixed{{3}, 4, 5, false, {6}}));
}

// ---- doubles on the wire ----

// Required: only six decimals are written.
TEST(InfoType, DoubleWithMoreDecimalsNoLongerEqualsWhatWasWritten) {
    Ada_Float const written{0.1234567, 1.5, 0};
    wire::expect(written, "08000000 '0.123457'  08000000 '1.500000'  00000000");
    auto const read = wire::read<Ada_Float>(wire::write(written));
    EXPECT_FALSE(read == written);
    EXPECT_EQ(read.first_double, 0.123457);
    EXPECT_EQ(read.second_double, 1.5);
}

TEST(InfoType, SmallNegativeDoubleBecomesNegativeZero) {
    auto const read = wire::read<Ada_Float>(wire::write(Ada_Float{-1e-7, 1e-7, 0}));
    EXPECT_EQ(read.first_double, 0);
    EXPECT_TRUE(std::signbit(read.first_double));
    EXPECT_FALSE(std::signbit(read.second_double));
}

TEST(InfoType, DoubleTakes12To321Bytes) {
    Ada_Float const smallest{0, 0, 0};
    Ada_Float const largest{std::numeric_limits<double>::lowest(), 0, 0};
    EXPECT_EQ(wire::write(smallest).size(), 12u + 12u + 4u);
    EXPECT_EQ(wire::write(largest).size(), 321u + 12u + 4u);
    EXPECT_EQ(wire::read<Ada_Float>(wire::write(largest)), largest);
}

TEST(InfoType, InfiniteDoublesComeBack) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    wire::expect(Ada_Float{infinity, -infinity, 0}, "03000000 'inf'  04000000 '-inf'  00000000");
    EXPECT_TRUE(std::isnan(wire::read<Ada_Float>(wire::write(Ada_Float{nan, 0, 0})).first_double));
}

TEST(InfoType, DoubleTextIsCutAtAZeroByteAndItsLengthIsTakenWhole) {
    auto const read =
        wire::read<Ada_Float>(hex::bytes("06000000 '1.5' 00 '99'  08000000 '2.500000'  07000000"));
    EXPECT_EQ(read, (Ada_Float{1.5, 2.5, 7}));
}

TEST(InfoType, DoubleTextWithoutNumberThrowsAndKeepsWhatWasRead) {
    for (char const* const text : {"00000000", "03000000 'abc'", "04000000 00 '1.5'"}) {
        SCOPED_TRACE(text);
        Ada_Float read{7, 8, 9};
        try {
            wire::read_over(read, hex::bytes("08000000 '1.500000'" + std::string(text)));
            ADD_FAILURE() << "nothing was thrown";
        } catch (std::invalid_argument const& error) {
            EXPECT_STREQ(error.what(), "stod");
        }
        EXPECT_EQ(read, (Ada_Float{1.5, 8, 9}));
    }
}

TEST(InfoType, DoubleTextOutOfRangeThrowsAndKeepsWhatWasRead) {
    Ada_Float read{7, 8, 9};
    try {
        wire::read_over(read, hex::bytes("08000000 '1.500000'  05000000 '1e400'"));
        ADD_FAILURE() << "nothing was thrown";
    } catch (std::out_of_range const& error) {
        EXPECT_STREQ(error.what(), "stod");
    }
    EXPECT_EQ(read, (Ada_Float{1.5, 8, 9}));
}

TEST(InfoType, DoubleOfLengthMinusOneOnAStreamThrowsAndKeepsWhatWasRead) {
    std::istringstream stream(hex::bytes("08000000 '1.500000'  FFFFFFFF"));
    Ada_Float          read{7, 8, 9};
    EXPECT_THROW(sml::core::read_from_stream(read, stream), std::logic_error);
    EXPECT_EQ(read, (Ada_Float{1.5, 8, 9}));
}

// ---- values ----

TEST(InformationValue, WritesFieldsInOrder) {
    T_Information_Value written;
    written.first_string = std::string("v");
    written.first_int = 7;
    written.type.choose<"Inf_Type_Float">().format = {1, 2, 3};
    written.range.choose<"Real_Full_Range">().flag = true;
    wire::expect(written,
                 "FFFFFFFF 01000000 'v'  07000000  04000000 01000000 02000000 03000000"
                 "01000000 00000000 00000000 00000000 46 54");
}

TEST(InformationValue, DefaultIsUnset) {
    T_Information_Value const fresh;
    EXPECT_EQ(fresh.first_string.str(), "");
    EXPECT_EQ(fresh.first_int, 0);
    EXPECT_EQ(fresh.type.tag, -1);
    EXPECT_EQ(fresh.range.tag, -1);
    wire::expect(fresh, "FFFFFFFF 00000000  00000000  FFFFFFFF  FFFFFFFF 00000000 FFFFFFFF");
}

TEST(InformationValue, ValuesThatWereNeverSetAreUnequal) {
    order::expect_unordered(T_Information_Value(), T_Information_Value());
    T_Information_Value unset_range;
    unset_range.type.choose<"Inf_Type_Integer">();
    order::expect_unordered(unset_range, unset_range);
}

TEST(InformationValue, RangeFollowsAtOnceBehindAnUnknownType) {
    auto const read = wire::read<T_Information_Value>(
        hex::bytes("FFFFFFFF 00000000  00000000  07000000  00000000 46 46"));
    EXPECT_EQ(read.type.tag, 7);
    EXPECT_TRUE(read.range.holds<"Int_Full_Range">());
}

TEST(InformationValue, TypeDecidesBeforeRange) {
    order::expect_less(of_type(type<"Inf_Type_DRSInteger">(Drs_Integer{1, 1}), 9),
                       of_type(type<"Inf_Type_DRSInteger">(Drs_Integer{1, 2}), 1));
    order::expect_less(of_type(type<"Inf_Type_DRSInteger">(Drs_Integer{9, 9}), 9),
                       of_type(type<"Inf_Type_Integer">(Integer{1, 1, {}}), 1));
    order::expect_less(value(1), value(2));
    order::expect_equal(value(1), value(1));
}

// Required: `<` does not compare the range, but `==` does.
TEST(InformationValue, ValuesOfNoTypeAreEachLess) {
    for (std::int32_t const tag : {6, 7}) {
        auto const no_type = tables::with_tag<T_Info_Type>(tag);
        order::expect_unequal_and_each_less(of_type(no_type, 1), of_type(no_type, 2));
        order::expect_equal_and_each_less(of_type(no_type, 1), of_type(no_type, 1));
    }
    T_Information_Value lesser = of_type(tables::with_tag<T_Info_Type>(6));
    T_Information_Value greater = lesser;
    greater.first_int = 1;
    order::expect_less(lesser, greater);
}

TEST(InformationValue, TypeWithoutNumberEndsTheComparison) {
    Drs_Float const no_number{number(nan), number(1), {}};
    order::expect_unordered(of_type(type<"Inf_Type_DRSFloat">(no_number), 1),
                            of_type(type<"Inf_Type_DRSFloat">(no_number), 2));
    order::expect_unordered(of_type(type<"Inf_Type_Ada_Float">(Ada_Float{nan, 1, 1}), 1),
                            of_type(type<"Inf_Type_Ada_Float">(Ada_Float{nan, 1, 1}), 2));
    order::expect_unordered(of_type(T_Info_Type(), 1), of_type(T_Info_Type(), 2));
}

// Required: the comparison of a range goes from its intervals straight to the multiplicity. A
// record around the value goes on only if the values are equal.
TEST(InformationValue, HolderEndsAtARangeThatIsUnequalAndNotLess) {
    auto holder = [](std::int32_t number) {
        sml::Infos::T_Information_Category::VAI_args result{value(), number};
        auto& range = result.value.range.choose<"Value_Range">();
        range.intervals.emplace_back();
        range.multiplicity.choose<"Multiple">();
        return result;
    };
    order::expect_unordered(holder(1), holder(2));
}

TEST(InformationValue, AssignmentReplacesTypeAndRangeAndSharesTheString) {
    T_Information_Value source = value(7);
    source.first_string = std::string("shared");
    T_Information_Value target =
        of_type(type<"Inf_Type_Ada_Fixed">(Ada_Fixed{{1}, 2, 3, true, {}}));
    target.first_string = std::string("let go");
    target = source;
    EXPECT_EQ(target, source);
    EXPECT_EQ(string_table::count_of("shared"), 2u);
    EXPECT_EQ(string_table::count_of("let go"), 0u);
    T_Information_Value const& itself = target;
    target = itself;
    EXPECT_EQ(target, source);
    EXPECT_EQ(string_table::count_of("shared"), 2u);
    target.range.arm<"Int_Full_Range">().upper = 8;
    EXPECT_EQ(source.range, up_to(7));
}

TEST(InformationValue, DestructionReleasesTheString) {
    {
        T_Information_Value held = value();
        held.first_string = std::string("held by a value");
        EXPECT_EQ(string_table::count_of("held by a value"), 1u);
    }
    EXPECT_EQ(string_table::count_of("held by a value"), 0u);
}

// ---- pointers ----

TEST(PointerNullValue, WritesNumberThenValue) {
    wire::expect(T_Pointer_Null_Value(),
                 "00000000  FFFFFFFF 00000000  00000000  FFFFFFFF  FFFFFFFF 00000000 FFFFFFFF");
    wire::expect(T_Pointer_Null_Value{-2, value(0)},
                 "FEFFFFFF  FFFFFFFF 00000000  00000000"
                 "05000000 03000000 '0' 00 00 03000000 '0' 00 00 46"
                 "00000000 46 54 03000000 '0' 00 00");
}

TEST(PointerNullValue, OfAnUnsetValueIsUnequalToItself) {
    order::expect_unordered(T_Pointer_Null_Value(), T_Pointer_Null_Value());
}

}  // namespace
