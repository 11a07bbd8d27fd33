#include <sml/core/Strings.hpp>
#include "tests/core/string_table.hpp"
#include "tests/order.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <functional>
#include <iterator>
#include <set>
#include <string>
#include <type_traits>
#include <unordered_set>
#include <utility>
#include <vector>

using sml::Strings_T;
using string_table::count_of;
using string_table::Entry;
using string_table::entry_of;

namespace {

/// Removes the entry of a text, which must have no handles.
void forget(std::string const& text) { Strings_T::fAllStrings.erase(*entry_of(text)); }

TEST(Strings, HandleIsOneWord) {
    static_assert(sizeof(Strings_T) == sizeof(void*));
    static_assert(!std::is_polymorphic_v<Strings_T>);
}

TEST(Strings, EmptyTextGivesTheNullHandle) {
    std::size_t const before = string_table::size();
    Strings_T         handle;
    handle.setStr("");
    EXPECT_TRUE(handle == Strings_T());
    EXPECT_EQ(handle.str(), "");
    EXPECT_EQ(handle.hash(), 0u);
    EXPECT_EQ(string_table::size(), before);
}

TEST(Strings, HandleAssignedFromAnEmptyTextEqualsAnEmptyHandle) {
    Strings_T handle("strings: to be emptied");
    handle = std::string();
    EXPECT_TRUE(handle == Strings_T());
    EXPECT_EQ(entry_of("strings: to be emptied"), nullptr);
}

TEST(Strings, AllNullHandlesShowOneEmptyText) {
    EXPECT_EQ(&Strings_T().str(), &Strings_T(std::string()).str());
}

TEST(Strings, NoEntryIsEverEmpty) {
    Strings_T const handle{std::string()};
    EXPECT_EQ(entry_of(""), nullptr);
}

TEST(Strings, EqualTextsShareAnEntryWithCountTwo) {
    Strings_T const first("strings: shared");
    Strings_T const second("strings: shared");
    EXPECT_TRUE(first == second);
    EXPECT_EQ(&first.str(), &second.str());
    EXPECT_EQ(count_of("strings: shared"), 2u);
}

TEST(Strings, LastHandleTakesItsTextOutOfTheTable) {
    std::size_t const before = string_table::size();
    {
        Strings_T const first("strings: short-lived");
        Strings_T const second(first);
        EXPECT_EQ(string_table::size(), before + 1);
    }
    EXPECT_EQ(string_table::size(), before);
    EXPECT_EQ(entry_of("strings: short-lived"), nullptr);

    Strings_T const again("strings: short-lived");
    EXPECT_EQ(count_of("strings: short-lived"), 1u);
}

TEST(Strings, TextStandsAtItsEntrysAddress) {
    Strings_T const    handle("strings: at its entry");
    Entry const* const entry = entry_of("strings: at its entry");
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(static_cast<void const*>(&handle.str()), static_cast<void const*>(entry));
}

TEST(Strings, TableFindsAnEntryByItsStoredHashAndText) {
    Strings_T const handle("strings: looked up");
    auto const found = Strings_T::fAllStrings.find(Entry{"strings: looked up", handle.hash(), 0});
    ASSERT_NE(found, Strings_T::fAllStrings.end());
    EXPECT_EQ(&found->str, &handle.str());
}

TEST(Strings, EntriesAreEqualByHashLengthAndText) {
    using namespace std::string_literals;
    EXPECT_TRUE((Entry{"text", 7, 1} == Entry{"text", 7, 2}));
    EXPECT_FALSE((Entry{"text", 7, 1} == Entry{"text", 8, 1}));
    EXPECT_FALSE((Entry{"text", 7, 1} == Entry{"texts", 7, 1}));
    EXPECT_FALSE((Entry{"a\0b"s, 7, 1} == Entry{"a\0c"s, 7, 1}));
}

TEST(Strings, EntrysHashIsTheStoredOneAndNotThatOfItsText) {
    EXPECT_EQ(Strings_T::StringWithRefCountHash{}(Entry{"text", 77, 1}), 77u);
}

TEST(Strings, TextsThatDifferBehindAZeroByteAreTwo) {
    using namespace std::string_literals;
    Strings_T const first("a\0b"s);
    Strings_T const second("a\0c"s);
    EXPECT_FALSE(first == second);
    EXPECT_EQ(first.str(), "a\0b"s);
    EXPECT_EQ(second.str().size(), 3u);
}

TEST(Strings, HashIsThatOfTheStandardString) {
    using namespace std::string_literals;
    for (std::string const& text : {"a"s, "alpha"s, "zero\0byte"s, "\xff\x80"s, std::string(9, 'x'),
                                    std::string(10000, 'y')}) {
        Strings_T const handle(text);
        EXPECT_EQ(std::hash<Strings_T>{}(handle), std::hash<std::string>{}(text));
        EXPECT_EQ(entry_of(text)->hash, std::hash<std::string>{}(text));
    }
}

TEST(Strings, HashOfTheNullHandleIsZero) {
    EXPECT_EQ(std::hash<Strings_T>{}(Strings_T()), 0u);
    EXPECT_NE(std::hash<std::string>{}(""), 0u);
}

// Texts in ascending and in descending order: whichever way addresses run, one half is not
// alphabetical.
TEST(Strings, OrderIsThatOfTheAddressesAndNotTheAlphabet) {
    std::vector<Strings_T> handles;
    for (int i = 0; i < 50; ++i) handles.emplace_back("strings: up " + std::to_string(100 + i));
    for (int i = 0; i < 50; ++i) handles.emplace_back("strings: down " + std::to_string(199 - i));

    int against_the_alphabet = 0;
    for (Strings_T const& a : handles) {
        for (Strings_T const& b : handles) {
            EXPECT_EQ(a < b, std::less<std::string const*>{}(&a.str(), &b.str()));
            if (a < b && b.str() < a.str()) ++against_the_alphabet;
        }
    }
    EXPECT_GT(against_the_alphabet, 0);
}

TEST(Strings, NullHandleIsLessThanEveryOther) {
    Strings_T const null;
    Strings_T const text("strings: not null");
    order::expect_less(null, text);
    order::expect_equal(null, null);
    order::expect_equal(text, text);
}

TEST(Strings, CopyCountsOneMore) {
    Strings_T const first("strings: copied");
    Strings_T const second(first);
    Strings_T       third("strings: given up for a copy");
    third = first;
    EXPECT_TRUE(second == first);
    EXPECT_TRUE(third == first);
    EXPECT_EQ(count_of("strings: copied"), 3u);
    EXPECT_EQ(entry_of("strings: given up for a copy"), nullptr);
}

TEST(Strings, CopyOfTheSameEntryLeavesItsCount) {
    Strings_T        first("strings: assigned to itself");
    Strings_T const& same = first;
    first = same;
    EXPECT_EQ(count_of("strings: assigned to itself"), 1u);

    Strings_T const second(first);
    first = second;
    EXPECT_EQ(count_of("strings: assigned to itself"), 2u);
}

TEST(Strings, MoveLeavesItsSourceWhole) {
    Strings_T first("strings: moved");
    Strings_T second(std::move(first));
    Strings_T third;
    third = std::move(second);
    EXPECT_EQ(first.str(), "strings: moved");
    EXPECT_EQ(second.str(), "strings: moved");
    EXPECT_EQ(count_of("strings: moved"), 3u);
}

TEST(Strings, AssignmentFromTheEntrysOwnTextLeavesItsCount) {
    Strings_T handle("strings: own text");
    handle = handle.str();
    EXPECT_EQ(handle.str(), "strings: own text");
    EXPECT_EQ(count_of("strings: own text"), 1u);

    Strings_T const other(handle);
    handle = other.str();
    EXPECT_EQ(count_of("strings: own text"), 2u);
}

TEST(Strings, AssignmentFromAnEqualTextElsewhereKeepsOneEntry) {
    Strings_T         handle("strings: assigned again");
    std::string const text = handle.str();
    handle = text;
    EXPECT_EQ(handle.str(), text);
    EXPECT_EQ(count_of(text), 1u);
}

TEST(Strings, AssignmentFromAnotherEntrysTextSharesIt) {
    Strings_T       handle("strings: let go");
    Strings_T const other("strings: taken up");
    handle = other.str();
    EXPECT_TRUE(handle == other);
    EXPECT_EQ(count_of("strings: taken up"), 2u);
    EXPECT_EQ(entry_of("strings: let go"), nullptr);
}

TEST(Strings, SetStrDoesNotReleaseWhatWasHeld) {
    Strings_T handle("strings: abandoned");
    handle.setStr("strings: set over it");
    EXPECT_EQ(handle.str(), "strings: set over it");
    EXPECT_EQ(count_of("strings: abandoned"), 1u);

    handle.setStr("strings: set over it");
    EXPECT_EQ(count_of("strings: set over it"), 2u);

    handle.setStr("");
    EXPECT_EQ(count_of("strings: set over it"), 2u);
    forget("strings: abandoned");
    forget("strings: set over it");
}

TEST(Strings, EntriesKeepTheirAddressWhileTheTableGrows) {
    Strings_T const          handle("strings: stays in place");
    std::string const* const address = &handle.str();
    std::vector<Strings_T>   others;
    for (int i = 0; i < 20000; ++i) others.emplace_back("strings: filler " + std::to_string(i));
    EXPECT_EQ(&handle.str(), address);
    EXPECT_EQ(&Strings_T("strings: stays in place").str(), address);
}

TEST(Strings, OrderedSetOfHandlesFollowsTheAddresses) {
    std::set<Strings_T> const handles{Strings_T("strings: one"), Strings_T(),
                                      Strings_T("strings: two"), Strings_T("strings: three")};
    EXPECT_TRUE(*handles.begin() == Strings_T());
    for (auto next = std::next(handles.begin(), 2); next != handles.end(); ++next)
        EXPECT_LT(&std::prev(next)->str(), &next->str());
}

TEST(Strings, HashedSetFindsAHandleByAnEqualText) {
    std::unordered_set<Strings_T> const handles{Strings_T("strings: in the set"), Strings_T()};
    EXPECT_TRUE(handles.contains(Strings_T("strings: in the set")));
    EXPECT_TRUE(handles.contains(Strings_T()));
    EXPECT_FALSE(handles.contains(Strings_T("strings: not in the set")));
}

TEST(StringsDeathTest, TableGoesAtExitWhateverItsCountsSay) {
    EXPECT_EXIT(
        {
            static auto* const kept = new Strings_T("strings: alive at exit");
            std::exit(count_of(kept->str()) == 1 ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

}  // namespace
