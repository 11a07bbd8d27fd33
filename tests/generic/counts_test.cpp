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

auto count_of(bool (*is_counted)(Row const&)) {
    return std::ranges::count_if(generic::all_rows(), is_counted);
}

TEST(Counts, TypesAre227OfWhich184AreRecordsAnd43AreVariants) {
    EXPECT_EQ(generic::all_rows().size(), 227u);
    EXPECT_EQ(count_of([](Row const& row) { return row.form == Form::record; }), 184);
    EXPECT_EQ(count_of([](Row const& row) { return row.form != Form::record; }), 43);
    EXPECT_EQ(count_of([](Row const& row) { return row.form == Form::reference; }), 6);
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

TEST(Counts, EnumerationsAre32) {
    std::set<std::type_index> types;
#define INSERT(Type) types.insert(typeid(sml::Type));
    ALL_ENUMERATIONS(INSERT)
#undef INSERT
    EXPECT_EQ(types.size(), 32u);
}

TEST(Counts, RootsAre40) {
    std::set<std::string> stems;
#define SML_ROOT(Stem, ...) EXPECT_TRUE(stems.insert(#Stem).second) << #Stem;
#include <sml/bindings/roots.def>
    EXPECT_EQ(stems.size(), 40u);
}

}  // namespace
