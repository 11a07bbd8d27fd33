#pragma once
// Steps of a path as a display tool sees them.

#include <sml/core/declare.hpp>

namespace sml::GUI_Events::GUI_Event_Path_Step {

/// A step of a path as a display tool sees it.
struct T {
    int32     first_int{};
    bool      first_flag{};
    bool      second_flag{};
    Strings_T first_string;

    SML_RECORD(T, first_int, first_flag, second_flag, first_string);
};

}  // namespace sml::GUI_Events::GUI_Event_Path_Step
