#pragma once
// A display tool's view of checks.

#include <sml/core/declare.hpp>
#include <sml/schema/GUI_Events.hpp>
#include <sml/schema/Results_API_base.hpp>

namespace sml::GUI_Check_Classification {

/// The event that explains a check's class.
struct T_GUI_Check_Event {
    std::optional<GUI_Events::GUI_Event_Path_Step::T> step;
    std::list<GUI_Events::GUI_Event_Path_Step::T>     path;
    int32                                             first_int{};

    SML_RECORD(T_GUI_Check_Event, step, path, first_int);
};

/// A source of input.
struct T_GUI_Input_Source {
    int32 value{};

    SML_RECORD(T_GUI_Input_Source, value);
};

/// A display tool's view of a check.
struct T_GUI_Check_Classification {
    Results_API_base::GUI_Check_Classification_base::T_GUI_Check_Classification_Class
                                     classification_class{};
    std::optional<T_GUI_Check_Event> event;
    std::set<T_GUI_Input_Source>     input_sources;
    bool                             first_flag{};

    SML_RECORD(T_GUI_Check_Classification, classification_class, event, input_sources, first_flag);
};

}  // namespace sml::GUI_Check_Classification
