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

/// What `<` and `==` say of two values.
struct Answers {
    bool less;
    bool greater;
    bool equal;
    bool equal_turned;
};

template <class T>
Answers answers(T const& a, T const& b) {
    return {a < b, b < a, a == b, b == a};
}

inline void expect(Answers const& found, Answers const& expected) {
    EXPECT_EQ(found.less, expected.less) << "a < b";
    EXPECT_EQ(found.greater, expected.greater) << "b < a";
    EXPECT_EQ(found.equal, expected.equal) << "a == b";
    EXPECT_EQ(found.equal_turned, expected.equal_turned) << "b == a";
}

template <class T>
void expect_less(T const& a, T const& b) {
    expect(answers(a, b), {true, false, false, false});
}

/// Expects that they are equal and that neither is less.
template <class T>
void expect_equal(T const& a, T const& b) {
    expect(answers(a, b), {false, false, true, true});
}

/// Expects that neither is less and that they are unequal.
template <class T>
void expect_unordered(T const& a, T const& b) {
    expect(answers(a, b), {false, false, false, false});
}

template <class T>
void expect_equal_and_each_less(T const& a, T const& b) {
    expect(answers(a, b), {true, true, true, true});
}

template <class T>
void expect_unequal_and_each_less(T const& a, T const& b) {
    expect(answers(a, b), {true, true, false, false});
}

}  // namespace order
