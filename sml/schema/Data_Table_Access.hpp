#pragma once
// Recorded reads and writes of variables.

#include <sml/core/declare.hpp>
#include <sml/schema/AccessPath.hpp>
#include <sml/schema/Atomicity_Condition.hpp>
#include <sml/schema/SourceLocRef.hpp>

namespace sml::Data_Table_Access {

/// One recorded read or write of a variable.
struct T {
    Atomicity_Condition::T_Atomicity_Condition          atomicity;
    bool                                                first_flag{};
    bool                                                second_flag{};
    SourceLocRef::T_SourceLocRef                        location;
    Strings_T                                           variable;
    std::list<AccessPath::Selector::T_private_selector> path;
    Strings_T                                           variable_type;

    SML_RECORD(T, atomicity, first_flag, second_flag, location, variable, path, variable_type);
};

}  // namespace sml::Data_Table_Access
