#include <sml/bindings/bindings.hpp>
#include "tests/bindings/families.hpp"
#include "tests/hex.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <limits>
#include <sstream>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

using sml::Strings_T;

namespace {

using StringSet = std::unordered_set<Strings_T>;
using StringSets = std::unordered_map<Strings_T, StringSet>;
using InfoIds = std::unordered_map<std::pair<Strings_T, std::int32_t>, std::int32_t,
                                   sml::Hash<std::pair<Strings_T, std::int32_t>>>;

/// Expects that all writers write these bytes and that all readers read an equal object.
template <class T>
void expect_bytes(Family<T> const& family, T const& value, std::string_view hex) {
    std::string const expected = hex::bytes(hex);
    EXPECT_EQ(hex::shown(std::string(family.from_cxx(value))), hex::shown(expected));
    EXPECT_EQ(hex::shown(std::string_view(family.flat_from_cxx(&value), expected.size())),
              hex::shown(expected));
    std::stringstream stream;
    family.to_stream(value, stream);
    EXPECT_EQ(hex::shown(stream.str()), hex::shown(expected));

    T read{};
    family.to_cxx(read, expected.data());
    EXPECT_TRUE(read == value);
    T deserialized{};
    family.deserialize(deserialized, expected.data());
    EXPECT_TRUE(deserialized == value);
    T read_flat{};
    family.flat_to_cxx(&read_flat, expected.data());
    EXPECT_TRUE(read_flat == value);
    T read_from_stream{};
    family.from_stream(read_from_stream, stream);
    EXPECT_TRUE(read_from_stream == value);
}

/// The three texts in a set that iterates in the order beta, alpha, empty.
StringSet beta_alpha_empty() {
    std::array<std::string, 3> texts{"", "alpha", "beta"};
    do {
        StringSet set;
        for (std::string const& text : texts) set.insert(Strings_T(text));
        if (set.begin()->str() == "beta" && std::next(set.begin())->str() == "alpha") return set;
    } while (std::ranges::next_permutation(texts).found);
    ADD_FAILURE() << "no order of insertion gives the order of iteration";
    return {};
}

TEST(WorkedLayout, Integers64) {
    auto const family = FAMILY(Integers64_T, std::int64_t);
    expect_bytes(family, std::int64_t{0x0102030405060708}, "08 07 06 05 04 03 02 01");
    expect_bytes(family, std::int64_t{-2}, "FE FF FF FF FF FF FF FF");
    for (std::int64_t const value : {std::int64_t{0}, std::numeric_limits<std::int64_t>::min(),
                                     std::numeric_limits<std::int64_t>::max()})
        EXPECT_EQ(sml::Integers64_T_fromCxx(value).size(), 8u);
}

TEST(WorkedLayout, ClassKey) {
    auto const family = FAMILY(Interrogators_ClassKey, std::int32_t);
    expect_bytes(family, std::int32_t{7}, "07 00 00 00");
    for (std::int32_t const value : {0, -1, std::numeric_limits<std::int32_t>::min()})
        EXPECT_EQ(sml::Interrogators_ClassKey_fromCxx(value).size(), 4u);
}

TEST(WorkedLayout, TableOfStringSets) {
    auto const family = FAMILY(String_To_StringSet_T, StringSets);
    StringSets value;
    value[Strings_T("alpha")] = beta_alpha_empty();
    expect_bytes(family, value,
                 "01 00 00 00"
                 "FF FF FF FF  05 00 00 00 'alpha'"
                 "03 00 00 00"
                 "FE FF FF FF  04 00 00 00 'beta'"
                 "01 00 00 00"
                 "FD FF FF FF  00 00 00 00");
    EXPECT_EQ(sml::String_To_StringSet_T_fromCxx(value).size(), 45u);
}

TEST(WorkedLayout, TableOfNumberedKeys) {
    auto const family = FAMILY(Base_Gui_Internal_Form_Datas_Kernel_To_GUI_InfoId_T, InfoIds);
    expect_bytes(family, InfoIds{}, "00 00 00 00");
    expect_bytes(family, InfoIds{{{Strings_T("key"), -1}, 5}},
                 "01 00 00 00"
                 "FF FF FF FF  03 00 00 00 'key'  FF FF FF FF"
                 "05 00 00 00");
    expect_bytes(family, InfoIds{{{Strings_T(), 2}, 3}},
                 "01 00 00 00"
                 "FF FF FF FF  00 00 00 00  02 00 00 00"
                 "03 00 00 00");
}

TEST(WorkedLayout, EmptyTables) {
    EXPECT_EQ(hex::shown(sml::String_To_StringSet_T_fromCxx({})), "00 00 00 00 ");
    EXPECT_EQ(hex::shown(sml::Base_Gui_Internal_Form_Datas_Check_Id_Data_Pairs_T_fromCxx({})),
              "00 00 00 00 ");
    EXPECT_EQ(
        hex::shown(sml::Base_Gui_Internal_Form_Datas_Checks_Id_To_Chk_Data_Table_T_fromCxx({})),
        "00 00 00 00 ");
    EXPECT_EQ(
        hex::shown(sml::Base_Gui_Internal_Form_Datas_InfoId_To_Info_Definition_Table_T_fromCxx({})),
        "00 00 00 00 ");
}

}  // namespace
