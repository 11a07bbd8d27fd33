#include <sml/schema/Data_Table_Access.hpp>
#include "tests/order.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <optional>

using Access = sml::Data_Table_Access::T;
using Selector = sml::AccessPath::Selector::T_private_selector;

namespace {

Selector element(std::optional<std::int32_t> index) {
    Selector selector;
    selector.choose<"Array_element">() = index;
    return selector;
}

Selector field(sml::Strings_T const& name) {
    Selector selector;
    selector.choose<"Field">().field_name = name;
    return selector;
}

/// An access whose atomicity is equal to itself and not less, so that the fields after it decide.
Access access(std::list<Selector> const& path = {}) {
    Access result;
    result.atomicity.choose<"FUNCTION_CALL">();
    result.path = path;
    return result;
}

TEST(DataTableAccess, WritesFieldsInOrder) {
    Access value;
    value.atomicity.choose<"ARCH_SIZE">() = {3, 0x1F};
    value.first_flag = true;
    value.location = {1, {2, {"a.c"}, 3}, 4};
    value.variable = std::string("v");
    value.path = {element(5), field({"f"})};
    value.variable_type = std::string("int");
    wire::expect(value,
                 "00000000 03000000 04000000 '1f' 00 00"
                 "54  46"
                 "01000000 02000000 FFFFFFFF 03000000 'a.c' 03000000 0400000000000000"
                 "FEFFFFFF 01000000 'v'"
                 "02000000  00000000 54 05000000  01000000 FDFFFFFF 01000000 'f' 46"
                 "FCFFFFFF 03000000 'int'");
}

TEST(DataTableAccess, DefaultHasUnsetAtomicityAndEmptyPath) {
    Access const value;
    EXPECT_EQ(value.atomicity.tag, -1);
    wire::expect(value,
                 "FFFFFFFF  46  46"
                 "00000000 00000000 FFFFFFFF 00000000 00000000 0000000000000000"
                 "01000000  00000000  01000000");
    order::expect_unordered(value, value);
}

TEST(DataTableAccess, EmptyPathIsLessThanEveryOther) {
    order::expect_less(access(), access({element({})}));
    order::expect_less(access(), access({field({})}));
    order::expect_equal(access(), access());
}

// Required: the sizes are compared first.
TEST(DataTableAccess, ShortPathIsLessWhateverItHolds) {
    order::expect_less(access({field({"x"})}), access({element({}), element({})}));
}

TEST(DataTableAccess, FirstDifferentSelectorDecides) {
    order::expect_less(access({element(1), field({})}), access({field({}), element(1)}));
    order::expect_less(access({element(1), element(2)}), access({element(1), element(3)}));
    order::expect_less(access({element(1), element(9)}), access({element(2), element(0)}));
}

TEST(DataTableAccess, EqualPathsLeaveTheOrderToTheType) {
    order::Handles const types;
    Access               lesser = access({element(1)});
    Access               greater = lesser;
    lesser.variable_type = types.lesser;
    greater.variable_type = types.greater;
    order::expect_less(lesser, greater);
}

TEST(DataTableAccess, UnsetSelectorMakesARecordUnequalToItsCopy) {
    Access const value = access({Selector()});
    order::expect_unordered(value, Access(value));
}

// Required: selectors that are neither less nor greater, equal or not, do not end the comparison.
// Only at its end are the whole paths compared for equality.
TEST(DataTableAccess, UnsetSelectorIsPassedOverInTheWalk) {
    order::expect_less(access({Selector(), element(1)}), access({Selector(), element(2)}));

    order::Handles const types;
    Access               lesser = access({Selector()});
    Access               greater = lesser;
    lesser.variable_type = types.lesser;
    greater.variable_type = types.greater;
    order::expect_unordered(lesser, greater);
}

// Required: an atomicity without payload ends the comparison.
TEST(DataTableAccess, AtomicAccessesAreEachLessThanTheOther) {
    for (std::int32_t const tag : {1, 4}) {
        Access first;
        first.atomicity.choose_tag(tag);
        Access second = first;
        order::expect_equal_and_each_less(first, second);
        second.first_flag = true;
        second.variable = std::string("v");
        order::expect_unequal_and_each_less(first, second);
    }
}

TEST(DataTableAccess, ReadingAddsToThePath) {
    Access            value = access({element(1)});
    std::string const bytes = wire::write(access({element(2)}));
    wire::read_over(value, bytes);
    EXPECT_EQ(value, access({element(1), element(2)}));
}

}  // namespace
