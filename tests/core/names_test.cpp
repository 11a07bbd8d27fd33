#include <sml/core/hash.hpp>
#include <sml/core/names.hpp>
#include <sml/schema/Critical_Section_Funtype_Base.hpp>
#include <sml/schema/Expressiveness.hpp>

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <utility>

using sml::Strings_T;

namespace {

TEST(Enumeration, PrintsItsNameAsSpelled) {
    using namespace sml::Expressiveness;
    EXPECT_STREQ(toString(Disequalities), "Disequalities");
    EXPECT_STREQ(toString(Equalities), "Equalities");
    EXPECT_STREQ(toString(Inequalities), "Inequalities");
    EXPECT_STREQ(toString(Modulo), "Modulo");
}

TEST(Enumeration, PrintsNullOutsideItsValues) {
    using namespace sml::Critical_Section_Funtype_Base;
    EXPECT_STREQ(toString(Unlock), "Unlock");
    for (std::int32_t const value : {3, 4, -1, INT32_MAX, INT32_MIN})
        EXPECT_EQ(toString(static_cast<T>(value)), nullptr) << value;
}

TEST(Enumeration, GivesOneStaticTextEachTime) {
    using namespace sml::Critical_Section_Funtype_Base;
    EXPECT_EQ(toString(Lock), toString(Lock));
}

TEST(Enumeration, CountsFromZeroInAscendingOrderOfItsNames) {
    using namespace sml::Expressiveness;
    static_assert(Disequalities == 0 && Equalities == 1 && Inequalities == 2 && Modulo == 3);
    static_assert(T_relational_level::arms::count == 3);
    T_relational_level level;
    level.choose<"Exact">();
    EXPECT_EQ(level.tag, 1);
    level.choose<"UnBound">();
    EXPECT_EQ(level.tag, 2);
}

TEST(NameTable, CutsAListAtItsCommas) {
    constexpr sml::core::NameTable<3, 12> names("One, Two, X");
    EXPECT_STREQ(names[0], "One");
    EXPECT_STREQ(names[1], "Two");
    EXPECT_STREQ(names[2], "X");
    static_assert(names.ascends());
    static_assert(sml::core::count_names("One, Two, X") == 3);
    static_assert(sml::core::count_names("") == 0);
}

TEST(NameTable, AscendsByBytesAndWithoutRepeats) {
    using sml::core::NameTable;
    constexpr NameTable<2, 4> lower_behind_upper("Z,a");
    constexpr NameTable<2, 4> descending("a,Z");
    constexpr NameTable<2, 4> repeated("a,a");
    static_assert(lower_behind_upper.ascends());
    static_assert(!descending.ascends());
    static_assert(!repeated.ascends());
}

// The same steps, written in plain arithmetic.
std::uint64_t combined(std::uint64_t h, std::uint64_t k) {
    k *= 0xc6a4a7935bd1e995;
    k = k ^ (k >> 47);
    k *= 0xc6a4a7935bd1e995;
    h = h ^ k;
    return h * 0xc6a4a7935bd1e995 + 0xe6546b64;
}

TEST(Hash, CombinesByTheOneStep) {
    EXPECT_EQ(sml::core::combine(0, 0), 0xe6546b64u);
    for (std::uint64_t const h : {0ull, 1ull, 0xffffffffffffffffull, 0x123456789abcdefull})
        for (std::uint64_t const k : {0ull, 1ull, 0x8000000000000000ull, 0xfedcba987654321ull})
            EXPECT_EQ(sml::core::combine(h, k), combined(h, k));
}

TEST(Hash, NumberedKeyOfNullAndZeroIsTheConstant) {
    using Key = std::pair<Strings_T, std::int32_t>;
    EXPECT_EQ(sml::Hash<Key>{}(Key()), 0xe6546b64u);
}

TEST(Hash, NumberedKeyCombinesTheSignExtendedNumberIntoTheTextsHash) {
    using Key = std::pair<Strings_T, std::int32_t>;
    std::uint64_t const text = std::hash<std::string>{}("name");
    EXPECT_EQ(sml::Hash<Key>{}(Key("name", 7)), combined(text, 7));
    EXPECT_EQ(sml::Hash<Key>{}(Key("name", -1)), combined(text, ~std::uint64_t{0}));
    EXPECT_EQ(sml::Hash<Key>{}(Key(Strings_T(), -2)), combined(0, ~std::uint64_t{1}));
}

}  // namespace
