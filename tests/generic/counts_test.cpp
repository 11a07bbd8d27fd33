#include "tests/generic/all_enumerations.hpp"
#include "tests/generic/row.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <typeindex>

using generic::Form;
using generic::Row;

namespace {

std::set<std::type_index> enumerations() {
    return {
#define TYPE_OF(Type) typeid(sml::Type),
        ALL_ENUMERATIONS(TYPE_OF)
#undef TYPE_OF
    };
}

std::set<std::string> stems() {
    return {
#define SML_ROOT(Stem, ...) #Stem,
#include <sml/bindings/roots.def>
    };
}

auto count_of(bool (*is_counted)(Row const&)) {
    return std::ranges::count_if(generic::all_rows(), is_counted);
}

/// The schema is fixed: a type is added or removed only on purpose, together with the number here.
/// No other test has these numbers.
constexpr auto how_to_mend =
    "where this is meant, change the number in tests/generic/counts_test.cpp";

TEST(Counts, OfRecordsVariantsReferencesEnumerationsAndRoots) {
    EXPECT_EQ(count_of([](Row const& row) { return row.form == Form::record; }), 184)
        << how_to_mend;
    EXPECT_EQ(count_of([](Row const& row) { return row.form == Form::variant; }), 37)
        << how_to_mend;
    EXPECT_EQ(count_of([](Row const& row) { return row.form == Form::reference; }), 6)
        << how_to_mend;
    EXPECT_EQ(enumerations().size(), 32u) << how_to_mend;
    EXPECT_EQ(stems().size(), 40u) << how_to_mend;
}

TEST(Counts, NoTypeIsListedTwice) {
    std::set<std::type_index> types;
    for (Row const& row : generic::all_rows())
        EXPECT_TRUE(types.insert(row.type).second) << row.name;
}

TEST(Counts, FourTypesHaveNoComparison) {
    std::set<std::string> names;
    for (Row const& row : generic::all_rows())
        if (!row.compared) names.insert(row.name);
    EXPECT_EQ(names, (std::set<std::string>{
                         "IL::T_Annotation", "IL::T_Info_Expr", "IL_Extras::T_ZelvaniteResultData",
                         "IL_Extras::VVIRZelvanitePragmasTag::T_PragmaParameter"}));
}

}  // namespace
