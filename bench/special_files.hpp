#pragma once
// Values whose bytes are nearly all of one kind, to see what each kind costs by itself. Each takes
// about the given number of bytes on the wire.

#include <sml/bindings/bindings.hpp>

#include <cstddef>
#include <cstdint>

namespace bench {

/// A list of intervals between numbers of one to three digits.
sml::Answers::T_AnswerInspectionPoint short_numbers(std::size_t bytes, std::uint64_t seed);

/// One set of strings of 10 to 60 bytes.
std::unordered_map<sml::Strings_T, std::unordered_set<sml::Strings_T>> distinct_strings(
    std::size_t bytes, std::uint64_t seed);

/// One list that draws from few strings, again and again.
std::unordered_map<std::int32_t, sml::Base_Gui_Internal_Form_Datas::T_Chk_Data> string_references(
    std::size_t bytes, std::uint64_t seed);

}  // namespace bench
