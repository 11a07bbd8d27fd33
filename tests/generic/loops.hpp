#pragma once
// The loops of the generic tests: over all types, and over seeds.

#include "tests/generic/row.hpp"
#include "tests/runs.hpp"

#include <sml/core/Strings.hpp>

#include <gtest/gtest.h>

#include <vector>

namespace generic {

/// Calls `test` with each type, also after a fatal failure of another type. Expects that no string
/// is left afterwards.
template <class Test>
void for_each_type(Test&& test) {
    for (Row const& row : all_rows()) {
        SCOPED_TRACE(row.name);
        std::size_t const strings = sml::Strings_T::fAllStrings.size();
        test(row);
        EXPECT_EQ(sml::Strings_T::fAllStrings.size(), strings) << "strings that nothing holds";
    }
}

template <class Test>
void for_each_variant(Test&& test) {
    for_each_type([&](Row const& row) {
        if (row.arms != nullptr) test(row);
    });
}

/// The seeds; more of them if BRADEP_SLOW_TESTS is set.
inline std::vector<std::uint64_t> seeds() {
    auto const                 count = static_cast<std::uint64_t>(runs::count(3, 40));
    std::vector<std::uint64_t> all;
    for (std::uint64_t i = 1; i <= count; ++i) all.push_back(i * 0x9E3779B97F4A7C15u);
    return all;
}

/// Calls `test` with each type and seed. After a failure it goes on with the next type.
template <class Test>
void for_each_type_and_seed(Test&& test) {
    for_each_type([&](Row const& row) {
        for (std::uint64_t const seed : seeds()) {
            SCOPED_TRACE(testing::Message() << "seed " << seed);
            test(row, seed);
            if (testing::Test::HasFatalFailure()) return;
        }
    });
}

}  // namespace generic
