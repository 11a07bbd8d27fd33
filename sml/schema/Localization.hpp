#pragma once
// Places in a source file.

#include <sml/core/declare.hpp>

namespace sml::Localization {

/// A place in a source file.
struct T_Localization {
    int32     first_position{};
    Strings_T file;
    int32     second_position{};

    SML_RECORD(T_Localization, first_position, file, second_position);
};

}  // namespace sml::Localization
