// Compares the heap that verify estimates with the peak of the real readers.

#include <sml/bindings/bindings.hpp>
#include <sml/inspect/verify.hpp>
#include "tests/golden/goldens.hpp"
#include "tests/inspect/counted_heap.hpp"
#include "tests/inspect/real_roots.hpp"
#include "tests/inspect/wire_bytes.hpp"
#include "tests/runs.hpp"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <thread>
#include <type_traits>

namespace {

using namespace sml::inspect;
using wire_bytes::block;
using wire_bytes::in_full;
using wire_bytes::word;

template <class T>
std::uint64_t peak_of(void (*to_cxx)(T&, char const*), char const* bytes) {
    T value{};
    counted_heap::start();
    to_cxx(value, bytes);
    return counted_heap::peak();
}

std::uint64_t peak_of_reading(Root const& root, char const* bytes) {
    std::size_t const wanted = static_cast<std::size_t>(&root - roots().data());
    std::size_t       place = 0;
#define SML_ROOT(Stem, ...) \
    if (place++ == wanted) return peak_of<__VA_ARGS__>(&sml::Stem##_toCxx, bytes);
#include <sml/bindings/roots.def>
    return 0;
}

/// The peak of a read in a new process, whose string table is empty, and in a new thread, whose
/// heap has no freed blocks: reused blocks can be larger than requested.
std::uint64_t peak_in_new_process(Root const& root, std::string const& bytes) {
    int ends[2];
    if (::pipe(ends) != 0) return 0;
    pid_t const child = ::fork();
    if (child == 0) {
        auto& strings = sml::Strings_T::fAllStrings;
        std::remove_reference_t<decltype(strings)>().swap(strings);
        std::uint64_t peak = 0;
        std::thread([&] { peak = peak_of_reading(root, bytes.data()); }).join();
        bool const is_reported = ::write(ends[1], &peak, sizeof peak) == sizeof peak;
        ::_exit(is_reported ? 0 : 1);
    }
    ::close(ends[1]);
    std::uint64_t peak = 0;
    bool const    is_reported = ::read(ends[0], &peak, sizeof peak) == sizeof peak;
    ::close(ends[0]);
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(is_reported && status == 0);
    return peak;
}

void expect_close_estimate(Root const& root, std::string const& bytes) {
    SCOPED_TRACE(root.stem);
    Verdict const verdict = verify(root, bytes);
    ASSERT_NE(verdict.answer, Answer::unsafe);
    std::uint64_t const peak = peak_in_new_process(root, bytes);
    EXPECT_GE(verdict.heap, peak);
    EXPECT_LE(verdict.heap, 2 * peak);
}

TEST(ReaderHeap, OfGoldenFiles) {
    auto const files = golden::files_in(GOLDEN_FILES);
    ASSERT_GE(files.size(), sml::inspect::roots().size());
    for (auto const& file : files) {
        SCOPED_TRACE(file.name);
        expect_close_estimate(*file.root, file.bytes);
    }
}

TEST(ReaderHeap, OfRandomValuesOfAllRoots) {
    std::uint64_t const seed = runs::seed();
    SCOPED_TRACE("seed " + std::to_string(seed));
    for (Root const& root : roots()) {
        for (std::uint64_t i = 0; i < 5; ++i) {
            RandomValues values(seed + i, {.elements = 6, .depth = 8});
            expect_close_estimate(root, real_root(root).random_bytes(values));
        }
    }
}

/// Entries of `functions`, which are so large that a reader builds the hash table separately.
std::string functions(std::size_t count) {
    sml::Application_Results::T_Application_Results results;
    for (std::size_t i = 0; i < count; ++i)
        results.functions[sml::Strings_T("the function number " + std::to_string(i))];
    return sml::Application_Results_Application_Results_fromCxx(results);
}

TEST(ReaderHeap, OfLargeTables) {
    Root const& root = *find_root("Application_Results_Application_Results");
    for (std::size_t const count : {63u, 64u, 129u, 1000u, 20'000u})
        expect_close_estimate(root, functions(count));
}

std::string strings(std::size_t count, std::size_t length) {
    std::string bytes = word(static_cast<std::int32_t>(count));
    for (std::size_t i = 1; i <= count; ++i) {
        std::string text = std::to_string(i);
        text.resize(length, '.');
        bytes += in_full(static_cast<std::int32_t>(i), text) + word(0);
    }
    return bytes;
}

TEST(ReaderHeap, OfStrings) {
    Root const& root = *find_root("String_To_StringSet_T");
    for (std::size_t const count : {1u, 2u, 13u, 14u, 1000u, 50'000u})
        for (std::size_t const length : {8u, 15u, 16u, 30u, 31u, 100u})
            expect_close_estimate(root, strings(count, length));
}

/// All entries but one are dropped: each has its share of the buckets, and no node.
TEST(ReaderHeap, OfOneKeyAgainAndAgain) {
    Root const&        root = *find_root("String_To_StringSet_T");
    std::int32_t const count = 10'000;
    std::string        bytes = word(count) + in_full(1, "a text") + word(0);
    for (std::int32_t i = 1; i < count; ++i) bytes += word(1) + word(0);
    Verdict const verdict = verify(root, bytes);
    EXPECT_GE(verdict.heap, peak_in_new_process(root, bytes));
    EXPECT_LT(verdict.heap, 32u * count);
}

/// Each id is used in the second key of a check. A reader keeps a place for every id.
TEST(ReaderHeap, OfUndefinedIds) {
    std::size_t const count = 30'000;
    std::string       bytes = word(static_cast<std::int32_t>(count));
    for (std::size_t i = 1; i <= count; ++i)
        bytes += word(static_cast<std::int32_t>(7 * i)) + word(0);
    expect_close_estimate(*find_root("String_To_StringSet_T"), bytes);
}

/// Sets of integers in a map, all odd: each is read by the code for long integers.
TEST(ReaderHeap, OfLongNumbers) {
    std::string const digits(3'000'000, 'F');
    Root const&       root = *find_root("Application_Results_Application_Results");
    sml::Application_Results::T_Application_Results results;
    results.integer_sets[sml::Strings_T("a")].insert(sml::BigInteger(17));
    std::string       bytes = sml::Application_Results_Application_Results_fromCxx(results);
    std::string const plain = block(std::string("11\0\0", 4));
    std::size_t const at = bytes.find(plain);
    ASSERT_NE(at, bytes.npos);
    for (std::size_t const size : {3u, 16u, 17u, 64u, 65u, 200u, 100'000u, 3'000'000u}) {
        std::string odd = bytes;
        odd.replace(at, plain.size(), block(digits.substr(0, size)));
        expect_close_estimate(root, odd);
        std::string       good = bytes;
        std::string const lower(size, 'f');
        good.replace(at, plain.size(), block(lower + std::string(2, '\0')));
        expect_close_estimate(root, good);
    }
}

}  // namespace
