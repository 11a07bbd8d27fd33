// After a failed allocation, no object is half constructed, leaked or still counted. Each
// allocation of an operation fails once: the first, the second and so on.

#include <sml/bindings/bindings.hpp>
#include "tests/allocations.hpp"
#include "tests/core/string_table.hpp"
#include "tests/random_values.hpp"
#include "tests/wire.hpp"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <new>
#include <sstream>
#include <string>
#include <unordered_map>
#include <unordered_set>

namespace {

bool pages_are_refused = false;

}  // namespace

/// Takes the place of the C library's for this program; what the allocator calls is another one.
extern "C" void* mmap(void* at, std::size_t size, int protection, int flags, int file,
                      off_t offset) noexcept {
    if (pages_are_refused) {
        errno = ENOMEM;
        return MAP_FAILED;
    }
    return reinterpret_cast<void*>(::syscall(SYS_mmap, at, size, protection, flags, file, offset));
}

namespace {

using allocations::fail_each_allocation;
using sml::Strings_T;
using sml::Base_Gui_Internal_Form_Datas::T_Aggregated_Results;

T_Aggregated_Results results() { return RandomValues(11, {2, 3}).make<T_Aggregated_Results>(); }

std::string const long_text = "a text that is too long to stand inside its string object";

TEST(OutOfMemory, LeavesAHandleAndTheTableAsTheyWere) {
    Strings_T         handle("allocations: held");
    std::size_t const entries = string_table::size();
    auto const        check = [&] {
        EXPECT_EQ(handle.str(), "allocations: held");
        EXPECT_EQ(string_table::size(), entries);
    };
    EXPECT_GE(fail_each_allocation([&] { handle.setStr(long_text); }, check), 2);
    EXPECT_EQ(handle.str(), long_text);
    Strings_T::fAllStrings.erase(*string_table::entry_of("allocations: held"));
}

TEST(OutOfMemory, PassesThroughTheReadersAndReleasesTheirStrings) {
    std::string const bytes =
        sml::Base_Gui_Internal_Form_Datas_Aggregated_Results_T_fromCxx(results());
    std::size_t const entries = string_table::size();
    auto const        check = [&] { EXPECT_EQ(string_table::size(), entries); };

    long const from_bytes = fail_each_allocation(
        [&] {
            T_Aggregated_Results value;
            Base_Gui_Internal_Form_Datas_Aggregated_Results_T_toCxx(&value, bytes.data());
        },
        check);
    EXPECT_GT(from_bytes, 50);

    std::istringstream stream(bytes);
    fail_each_allocation(
        [&] {
            stream.clear();
            stream.seekg(0);
            T_Aggregated_Results value;
            sml::Base_Gui_Internal_Form_Datas_Aggregated_Results_T_fromStream(value, stream);
        },
        check);
}

/// The width follows the text. The blank in the text makes the reader parse it in allocated memory.
TEST(OutOfMemory, LeavesAFloatWhoseTextHasNoRoom) {
    std::string const       bytes = hex::bytes("07 00 00 00  ' 0X1P+0'  40 00 00 00");
    zelvanite::IEEE754Float value;
    value.width = 32;
    long const allocations = fail_each_allocation([&] { wire::read_over(value, bytes); },
                                                  [&] {
                                                      EXPECT_EQ(value.width, 32u);
                                                      EXPECT_NE(mpfr_zero_p(value.number()), 0);
                                                  });
    EXPECT_GE(allocations, 1);
    EXPECT_EQ(value.width, 64u);
    EXPECT_EQ(mpfr_cmp_ui(value.number(), 1), 0);
}

TEST(OutOfMemory, PassesThroughTheWritersAndKeepsTheLatestResult) {
    T_Aggregated_Results const value = results();
    std::size_t const          entries = string_table::size();
    std::string const&         result = sml::Interrogators_ClassKey_fromCxx(7);
    std::string const          latest = result;

    long const allocations = fail_each_allocation(
        [&] { Base_Gui_Internal_Form_Datas_Aggregated_Results_T_fromCxx(&value); },
        [&] {
            EXPECT_TRUE(result == latest);
            EXPECT_EQ(string_table::size(), entries);
        });
    EXPECT_GT(allocations, 5);
    EXPECT_FALSE(result == latest);
    for (auto const& entry : Strings_T::fAllStrings) EXPECT_GT(entry.count, 0u);
}

TEST(OutOfMemory, OfPagesForALargeTextIsThrown) {
    std::unordered_map<Strings_T, std::unordered_set<Strings_T>> sets;
    sets[Strings_T(std::string(4'000'000, 'x'))];
    pages_are_refused = true;
    EXPECT_THROW(sml::String_To_StringSet_T_fromCxx(sets), std::bad_alloc);
    pages_are_refused = false;
    EXPECT_GT(sml::String_To_StringSet_T_fromCxx(sets).size(), 4'000'000u);
}

TEST(OutOfMemory, LosesNoCountOfAString) {
    T_Aggregated_Results const value = results();
    auto const                 count = [] {
        std::size_t sum = 0;
        for (auto const& entry : Strings_T::fAllStrings) sum += entry.count;
        return sum;
    };
    std::size_t const handles = count();
    auto const        check = [&] { EXPECT_EQ(count(), handles); };
    fail_each_allocation(
        [&] { sml::Base_Gui_Internal_Form_Datas_Aggregated_Results_T_fromCxx(value); }, check);
    fail_each_allocation([&] { T_Aggregated_Results copy(value); }, check);
    check();
}

}  // namespace
