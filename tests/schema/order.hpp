#pragma once
// Expectations of `<` and `==` for two values, always in both directions.

#include <sml/core/Strings.hpp>

#include <gtest/gtest.h>

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

namespace order {

/// Two handles whose order is the reverse of the order of their texts.
struct Handles {
    sml::Strings_T lesser;
    sml::Strings_T greater;

    Handles() {
        std::vector<sml::Strings_T> all;
        for (char c = 'a'; c <= 'z'; ++c) all.emplace_back(std::string(1, c));
        for (char c = 'Z'; c >= 'A'; --c) all.emplace_back(std::string(1, c));
        for (auto const& left : all)
            for (auto const& right : all)
                if (left < right && right.str() < left.str()) {
                    lesser = left;
                    greater = right;
                    return;
                }
        throw std::logic_error("handles order as their texts do");
    }
};

template <class T>
void expect_less(T const& a, T const& b) {
    EXPECT_TRUE(a < b);
    EXPECT_FALSE(b < a);
    EXPECT_FALSE(a == b);
    EXPECT_FALSE(b == a);
}

/// Expects that they are equal and that neither is less.
template <class T>
void expect_equal(T const& a, T const& b) {
    EXPECT_FALSE(a < b);
    EXPECT_FALSE(b < a);
    EXPECT_TRUE(a == b);
    EXPECT_TRUE(b == a);
}

/// Expects that neither is less and that they are unequal.
template <class T>
void expect_unordered(T const& a, T const& b) {
    EXPECT_FALSE(a < b);
    EXPECT_FALSE(b < a);
    EXPECT_FALSE(a == b);
    EXPECT_FALSE(b == a);
}

template <class T>
void expect_each_less(T const& a, T const& b) {
    EXPECT_TRUE(a < b);
    EXPECT_TRUE(b < a);
}

}  // namespace order
