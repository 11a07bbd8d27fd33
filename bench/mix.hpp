#pragma once
// How often the optional parts of a workload are present and how many entries containers have. The
// test of the workload checks the figures for each check that follow from these.

#include <sml/schema/Checks.hpp>
#include <sml/schema/Failure.hpp>
#include <sml/schema/Infos.hpp>

#include <cstdint>
#include <list>
#include <map>
#include <optional>
#include <set>
#include <utility>

namespace bench {

using Key = std::pair<sml::Strings_T, std::int32_t>;

/// A container in a field has 1 to `most` entries in `percent_filled` of a hundred cases, else
/// none.
struct Entries {
    std::uint32_t percent_filled;
    std::uint32_t most;
};

template <class T>
constexpr Entries entries{60, 3};
// 0 to 8 steps, all equally likely.
template <>
inline constexpr Entries entries<std::list<sml::Failure::Step>>{89, 8};
template <>
inline constexpr Entries entries<std::set<Key>>{100, 10};
template <>
inline constexpr Entries entries<decltype(sml::Checks::T_A_Check::classifications)>{40, 1};
template <>
inline constexpr Entries entries<decltype(sml::Checks::T_A_Check::located_names)>{10, 2};
template <>
inline constexpr Entries entries<decltype(sml::Infos::T_Information_Category::VORS_args::fields)>{
    60, 2};
template <>
inline constexpr Entries entries<std::list<sml::Infos::T_Range>>{85, 2};

/// How often an optional part is present, in percent.
template <class T>
constexpr std::uint32_t percent_present = 20;
template <>
inline constexpr std::uint32_t percent_present<sml::BigInteger> = 65;
// The caller chooses the checks that failed.
template <>
inline constexpr std::uint32_t percent_present<sml::Failure::T> = 0;

constexpr std::uint32_t most_in_key_set = 4;  ///< from 0 on, all equally likely
constexpr std::uint32_t draws_for_integer_set = 20;

constexpr std::uint32_t percent_real = 23;          ///< of the values in infos
constexpr std::uint32_t percent_integer_type = 95;  ///< of the other values
constexpr std::uint32_t percent_drs_float = 60;     ///< of the real values
constexpr std::uint32_t percent_full_range = 10;

/// How often an interval of integers has both bounds or only one, in percent.
constexpr std::uint32_t percent_both_bounds = 80;
constexpr std::uint32_t percent_lower_bound = 10;
constexpr std::uint32_t percent_upper_bound = 10;

/// The kinds of floats, in percent.
constexpr std::uint32_t percent_short = 30;
constexpr std::uint32_t percent_full_mantissa = 55;
constexpr std::uint32_t percent_largest = 10;
constexpr std::uint32_t percent_infinite = 5;

}  // namespace bench
