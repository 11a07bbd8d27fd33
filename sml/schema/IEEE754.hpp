#pragma once
// Floating formats.

#include <sml/core/declare.hpp>

namespace sml::IEEE754 {

/// A floating format in three numbers.
struct T {
    int32 first_int{};
    int32 second_int{};
    int32 third_int{};

    SML_RECORD(T, first_int, second_int, third_int);
};

}  // namespace sml::IEEE754
