#pragma once
// Values whose bytes are almost entirely of one kind, to measure the cost of each kind. Each value
// takes about `bytes` bytes on the wire.

#include <sml/bindings/bindings.hpp>

#include <cstddef>
#include <cstdint>

namespace bench {

/// A list of intervals between numbers of one to three digits.
sml::Answers::T_AnswerInspectionPoint short_numbers(std::size_t bytes, std::uint64_t seed);

/// One set of strings of 10 to 60 bytes.
std::unordered_map<sml::Strings_T, std::unordered_set<sml::Strings_T>> distinct_strings(
    std::size_t bytes, std::uint64_t seed);

/// One list of strings, all drawn from a small pool.
std::unordered_map<std::int32_t, sml::Base_Gui_Internal_Form_Datas::T_Chk_Data> string_references(
    std::size_t bytes, std::uint64_t seed);

}  // namespace bench
