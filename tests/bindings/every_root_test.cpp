#include <sml/bindings/bindings.hpp>
#include "tests/bindings/families.hpp"
#include "tests/core/string_table.hpp"
#include "tests/hex.hpp"
#include "tests/random_values.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <list>
#include <set>
#include <sstream>
#include <string>
#include <string_view>

namespace {

constexpr std::uint64_t seeds = 20;

/// Whether `==` can be true for two objects of the type.
template <class T>
constexpr bool has_equality = true;
template <>
constexpr bool has_equality<sml::IL_Extras::T_ZelvaniteResultData> = false;
template <>
constexpr bool has_equality<std::list<sml::IL_Extras::VVIRZelvanitePragmasTag::T_PragmaParameter>> =
    false;

/// If `==` can't be used, the bytes are compared. Containers then have at most one entry, so that
/// there is only one order.
template <class T>
constexpr int most_entries = has_equality<T> ? 3 : 1;

template <class T>
T random_value(std::uint64_t seed) {
    return RandomValues(seed, {most_entries<T>, 4}).template make<T>();
}

/// The bytes in hex, for comparisons and messages.
template <class T>
std::string bytes_of(Family<T> const& family, T const& value) {
    return hex::shown(family.from_cxx(value));
}

template <class T>
void expect_equal(Family<T> const& family, T const& value, T const& original) {
    if constexpr (has_equality<T>)
        EXPECT_TRUE(value == original);
    else
        EXPECT_EQ(bytes_of(family, value), bytes_of(family, original));
}

template <class T>
std::string to_stream(Family<T> const& family, T const& value) {
    std::ostringstream stream;
    family.to_stream(value, stream);
    return stream.str();
}

/// Expects that every writer of the family writes the same bytes, and that every reader reads an
/// equal object from them.
template <class T>
void expect_round_trip(Family<T> const& family, std::uint64_t seed) {
    T const           original = random_value<T>(seed);
    std::string const bytes = family.from_cxx(original);

    EXPECT_TRUE(to_stream(family, original) == bytes);
    EXPECT_TRUE(std::string_view(family.flat_from_cxx(&original), bytes.size()) == bytes);

    T read{};
    family.to_cxx(read, bytes.data());
    expect_equal(family, read, original);

    T deserialized{};
    family.deserialize(deserialized, bytes.data());
    expect_equal(family, deserialized, original);

    T read_flat{};
    family.flat_to_cxx(&read_flat, bytes.data());
    expect_equal(family, read_flat, original);

    std::istringstream stream(bytes + "x");
    T                  read_from_stream{};
    family.from_stream(read_from_stream, stream);
    expect_equal(family, read_from_stream, original);
    EXPECT_EQ(stream.tellg(), static_cast<std::streamoff>(bytes.size()));
}

template <class T>
void expect_round_trips(Family<T> const& family) {
    std::size_t const before = string_table::size();
    for (std::uint64_t seed = 1; seed <= seeds; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        expect_round_trip(family, seed);
    }
    EXPECT_EQ(string_table::size(), before);
}

#define SML_ROOT(Stem, ...) \
    TEST(RootRoundTrip, Stem) { expect_round_trips(FAMILY(Stem, __VA_ARGS__)); }
#include <sml/bindings/roots.def>

TEST(EveryRoot, WritesToTheOneSharedString) {
    std::set<std::string const*> results;
    for_each_root([&]<class T>(std::string_view stem, Family<T> const& family) {
        T const            value = random_value<T>(1);
        std::string const& result = family.from_cxx(value);
        results.insert(&result);
        char const* const flat_result = family.flat_from_cxx(&value);
        EXPECT_EQ(flat_result, result.data()) << stem;
    });
    EXPECT_EQ(results.size(), 1u);
}

TEST(EveryRoot, LeavesTheObjectThatItWrites) {
    for_each_root([&]<class T>(std::string_view stem, Family<T> const& family) {
        T const           value = random_value<T>(2);
        std::string const bytes = family.from_cxx(value);
        EXPECT_TRUE(family.from_cxx(value) == bytes) << stem;
    });
}

// An archive serves one object, so the strings of the next one are numbered from 1 again.
TEST(EveryRoot, StandsInOneStreamWithOthers) {
    std::stringstream stream;
    std::string       all;
    for_each_root([&]<class T>(std::string_view, Family<T> const& family) {
        T const value = random_value<T>(3);
        family.to_stream(value, stream);
        all += family.from_cxx(value);
    });
    EXPECT_TRUE(stream.str() == all);
    for_each_root([&]<class T>(std::string_view stem, Family<T> const& family) {
        SCOPED_TRACE(stem);
        T value{};
        family.from_stream(value, stream);
        expect_equal(family, value, random_value<T>(3));
    });
    EXPECT_EQ(stream.peek(), std::char_traits<char>::eof());
}

}  // namespace
