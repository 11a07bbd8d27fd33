// Compares the lists of fields, arms and enumerators with the declarations.

#include "tests/generic/all_enumerations.hpp"
#include "tests/generic/enumeration_shapes.hpp"
#include "tests/generic/loops.hpp"

#include <algorithm>
#include <limits>
#include <set>

using generic::FieldList;
using generic::Row;
using generic::Value;

namespace {

constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();

template <class Test>
void for_each_field_list(Test&& test) {
    generic::for_each_type([&](Row const& row) {
        for (FieldList const& list : row.field_lists()) {
            SCOPED_TRACE(list.owner);
            test(list);
        }
    });
}

bool ascend(std::vector<std::string> const& names) {
    return std::ranges::is_sorted(names, std::ranges::less_equal{});
}

TEST(Layout, FieldsStandInTheOrderOfTheirList) {
    for_each_field_list([](FieldList const& list) {
        ASSERT_EQ(list.offsets.size(), list.names.size() + 1) << "with the end of the record";
        EXPECT_EQ(list.offsets.front(), 0);
        EXPECT_TRUE(std::ranges::is_sorted(list.offsets, std::ranges::less_equal{}));
    });
}

TEST(Layout, FieldNamesAreUnique) {
    for_each_field_list([](FieldList const& list) {
        std::set<std::string> const names(list.names.begin(), list.names.end());
        EXPECT_EQ(names.size(), list.names.size());
        EXPECT_FALSE(names.contains(""));
    });
}

TEST(Layout, ArmNamesAscendAndAreUnique) {
    generic::for_each_variant([](Row const& row) { EXPECT_TRUE(ascend(row.arms->names)); });
}

TEST(Layout, ToStringGivesTheNameOfEveryArm) {
    generic::for_each_variant([](Row const& row) {
        for (std::int32_t tag = 0; tag < row.arms->count(); ++tag) {
            Value value(row);
            value.choose(tag);
            EXPECT_STREQ(value.to_string(), row.arms->names[static_cast<std::size_t>(tag)].c_str());
        }
    });
}

TEST(Layout, ToStringOfANegativeTagIsTheNameOfArmZero) {
    generic::for_each_variant([](Row const& row) {
        EXPECT_STREQ(Value(row).to_string(), row.arms->names[0].c_str());
        for (std::int32_t const tag : {-1, -2, lowest}) {
            Value value(row);
            value.choose(tag);
            EXPECT_STREQ(value.to_string(), row.arms->names[0].c_str()) << tag;
        }
    });
}

TEST(Layout, ToStringPastTheLastArmIsNull) {
    generic::for_each_variant([](Row const& row) {
        for (std::int32_t const tag : {row.arms->count(), row.arms->count() + 1, highest}) {
            Value value(row);
            value.choose(tag);
            EXPECT_EQ(value.to_string(), nullptr) << tag;
        }
    });
}

TEST(Layout, EnumeratorNamesAscendAndAreUnique) {
    for (auto const& shapes : {generic::field_enumerations(), generic::lone_enumerations()})
        for (auto const& [name, shape] : shapes) EXPECT_TRUE(ascend(shape->names)) << name;
}

template <class Enumeration>
void expect_names_of_enumerators(generic::Shape const& shape) {
    for (std::int32_t value = 0; value < shape.count(); ++value)
        EXPECT_STREQ(toString(static_cast<Enumeration>(value)),
                     shape.names[static_cast<std::size_t>(value)].c_str());
    for (std::int32_t const value : {-1, lowest, shape.count(), shape.count() + 1, highest})
        EXPECT_EQ(toString(static_cast<Enumeration>(value)), nullptr) << value;
}

TEST(Layout, ToStringGivesTheNameOfEveryEnumeratorAndNullOutsideThem) {
    generic::NamedShapes shapes = generic::field_enumerations();
    for (auto const& shape : generic::lone_enumerations()) shapes.push_back(shape);
    auto shape = shapes.begin();
#define EXPECT_NAMES(Type)                                        \
    {                                                             \
        SCOPED_TRACE(#Type);                                      \
        ASSERT_STREQ(shape->first, #Type);                        \
        expect_names_of_enumerators<sml::Type>(*shape++->second); \
    }
    ALL_ENUMERATIONS(EXPECT_NAMES)
#undef EXPECT_NAMES
    EXPECT_EQ(shape, shapes.end());
}

}  // namespace
