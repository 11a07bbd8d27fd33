#pragma once
// Why checks failed.

#include <sml/core/declare.hpp>
#include <sml/schema/Event_Path.hpp>
#include <sml/schema/Technology.hpp>

namespace sml::Failure {

/// A name and a number, and a value that may be absent.
using Step =
    std::pair<std::pair<Strings_T, int32>, std::optional<Event_Path::Event_Value::T_value>>;

/// Why a check failed.
struct T {
    std::optional<Step>                  first_step;
    bool                                 first_flag{};
    std::optional<Step>                  second_step;
    std::list<Step>                      steps;
    std::unordered_map<Strings_T, int32> named_ints;
    bool                                 second_flag{};
    bool                                 third_flag{};
    Technology::T                        technology;

    SML_OWN_LIFE(T);
    SML_RECORD(T, first_step, first_flag, second_step, steps, named_ints, second_flag, third_flag,
               technology);
};

}  // namespace sml::Failure
