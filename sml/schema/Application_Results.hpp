#pragma once
// The raw result of an analysis.

#include <sml/core/big_integer.hpp>
#include <sml/core/declare.hpp>
#include <sml/schema/Blocks.hpp>
#include <sml/schema/Checks.hpp>
#include <sml/schema/Events.hpp>
#include <sml/schema/Functions.hpp>
#include <sml/schema/Infos.hpp>
#include <sml/schema/QualifiedPrettySignature.hpp>

namespace sml::Application_Results {

/// The whole raw result of one analysis.
struct T_Application_Results {
    int32                                                                  first_int{};
    std::unordered_map<Strings_T, int32>                                   block_numbers;
    core::HashedMap<std::pair<Strings_T, int32>, Blocks::T_BlockAttribute> blocks;
    std::unordered_map<Strings_T, int32>                                   check_numbers;
    core::HashedMap<std::pair<Strings_T, int32>, Checks::T_A_Check>        checks;
    std::unordered_map<Strings_T, int32>                                   event_numbers;
    core::HashedMap<std::pair<Strings_T, int32>, Events::T_An_Event>       events;
    std::unordered_map<Strings_T, Functions::T_A_Function>                 functions;
    std::unordered_map<Strings_T, int32>                                   info_numbers;
    core::HashedMap<std::pair<Strings_T, int32>, Infos::T_An_Info>         infos;
    core::HashedMap<std::pair<Strings_T, int32>, std::set<std::pair<Strings_T, int32>>>
        first_key_sets;
    core::HashedMap<std::pair<Strings_T, int32>, std::set<std::pair<Strings_T, int32>>>
                                                               second_key_sets;
    std::unordered_map<Strings_T, core::HashedSet<BigInteger>> integer_sets;
    std::unordered_map<Strings_T, std::pair<QualifiedPrettySignature::T,
                                            std::optional<QualifiedPrettySignature::T>>>
        signatures;

    SML_OWN_LIFE(T_Application_Results);
    SML_RECORD(T_Application_Results, first_int, block_numbers, blocks, check_numbers, checks,
               event_numbers, events, functions, info_numbers, infos, first_key_sets,
               second_key_sets, integer_sets, signatures);
};

}  // namespace sml::Application_Results
