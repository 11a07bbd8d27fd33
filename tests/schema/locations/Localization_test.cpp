#include <sml/schema/Localization.hpp>
#include "tests/order.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>

#include <list>

using sml::Localization::T_Localization;

namespace {

TEST(Localization, DefaultHasZeroNumbersAndNoFile) {
    T_Localization const place;
    EXPECT_EQ(place.first_position, 0);
    EXPECT_EQ(place.file.str(), "");
    EXPECT_EQ(place.second_position, 0);
    wire::expect(place, "00000000  FFFFFFFF 00000000  00000000");
}

TEST(Localization, WritesFieldsInOrder) {
    wire::expect(T_Localization{0x01020304, {"main.c"}, -2},
                 "04030201  FFFFFFFF 06000000 'main.c'  FEFFFFFF");
}

TEST(Localization, PlacesInOneFileShareItsDefinition) {
    std::list<T_Localization> const places{{1, {"main.c"}, 2}, {3, {"main.c"}, 4}};
    wire::expect(places,
                 "02000000"
                 "01000000  FFFFFFFF 06000000 'main.c'  02000000"
                 "03000000  01000000                    04000000");
}

TEST(Localization, NumbersOrderAsSigned) {
    order::expect_less(T_Localization{-1, {}, 0}, T_Localization{0, {}, 0});
    order::expect_less(T_Localization{0, {}, -1}, T_Localization{0, {}, 0});
}

TEST(Localization, FilesOrderByAddressAndNotByAlphabet) {
    order::Handles const files;
    ASSERT_GT(files.lesser.str(), files.greater.str());
    ASSERT_TRUE(std::less<>{}(&files.lesser.str(), &files.greater.str()));
    order::expect_less(T_Localization{0, files.lesser, 1}, T_Localization{0, files.greater, 0});
    order::expect_less(T_Localization{0, {}, 1}, T_Localization{0, files.lesser, 0});
}

}  // namespace
