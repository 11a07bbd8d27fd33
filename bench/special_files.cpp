#include "bench/special_files.hpp"

#include "bench/draws.hpp"
#include "bench/names.hpp"

#include <algorithm>
#include <list>

namespace bench {

namespace {

constexpr std::size_t word_bytes = 4;

std::size_t draw_short_number(Draws& draws, std::optional<sml::BigInteger>& number) {
    number = draws.below(300);
    std::size_t const digits = mpz_sizeinbase(number->backend().data(), 16);
    return 1 + word_bytes + digits + 2;  // flag, length, digits, two zeros
}

}  // namespace

sml::Answers::T_AnswerInspectionPoint short_numbers(std::size_t bytes, std::uint64_t seed) {
    Draws                                 draws(seed);
    sml::Answers::T_AnswerInspectionPoint answer;
    auto&                                 range = answer.range.choose<"Value_Range">();
    range.multiplicity.choose<"Top">();
    for (std::size_t used = 0; used < bytes;) {
        auto& interval = range.intervals.emplace_back().choose<"Int_Interval">();
        used += word_bytes;
        used += draw_short_number(draws, interval.lower);
        used += draw_short_number(draws, interval.upper);
        if (*interval.upper < *interval.lower) interval.lower->swap(*interval.upper);
    }
    return answer;
}

std::unordered_map<sml::Strings_T, std::unordered_set<sml::Strings_T>> distinct_strings(
    std::size_t bytes, std::uint64_t seed) {
    Draws                                                                  draws(seed);
    std::unordered_map<sml::Strings_T, std::unordered_set<sml::Strings_T>> table;
    auto& strings = table[std::string("all")];
    for (std::size_t used = 0, number = 0; used < bytes; ++number) {
        std::string const name = make_name(draws, number, number % 5 == 0);
        strings.emplace(name);
        used += 2 * word_bytes + name.size();
    }
    return table;
}

std::unordered_map<std::int32_t, sml::Base_Gui_Internal_Form_Datas::T_Chk_Data> string_references(
    std::size_t bytes, std::uint64_t seed) {
    std::size_t const references = bytes / word_bytes;
    // The pool has a thousandth as many names as there are references, and its text is about a
    // hundredth of the bytes.
    Names const names(references / 100, seed);
    Draws       draws(seed + 1);
    std::unordered_map<std::int32_t, sml::Base_Gui_Internal_Form_Datas::T_Chk_Data> table;
    auto& check = table[1];
    auto& list = check.category.choose<"STACK_POINTER">().strings;
    for (std::size_t left = references; left > 0; --left)
        list.push_back(names.draw_identifier(draws));
    return table;
}

}  // namespace bench
