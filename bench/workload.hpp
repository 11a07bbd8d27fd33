#pragma once
// The result set of all measurements.

#include <sml/schema/Application_Results.hpp>

#include <cstddef>
#include <cstdint>

namespace bench {

constexpr std::uint64_t default_seed = 20240229;

/// A result set of `checks` checks and the records that belong to them: three infos, one event,
/// half a block and a twentieth of a function for each check. It is the same for the same seed on
/// every machine. A million checks take about 7 GB.
sml::Application_Results::T_Application_Results workload(std::size_t   checks,
                                                         std::uint64_t seed = default_seed);

/// The same, but every variant has an arm with a payload. An arm without one is less than itself
/// and would end each comparison by `<`; with these, `<` has to compare everything.
sml::Application_Results::T_Application_Results workload_with_payloads(
    std::size_t checks, std::uint64_t seed = default_seed);

}  // namespace bench
