#include "bench/filler.hpp"

namespace bench {

namespace {

sml::IEEE754::T numbers_of(std::uint64_t width) {
    auto const      format = zelvanite::IEEE754Float::Format::of(width);
    sml::IEEE754::T numbers;
    numbers.first_int = static_cast<std::int32_t>(format.emin);
    numbers.second_int = static_cast<std::int32_t>(format.emax);
    numbers.third_int = static_cast<std::int32_t>(format.mantissa_bits);
    return numbers;
}

}  // namespace

void Filler::draw(sml::Infos::T_Information_Category& value) {
    switch (draws_.below(4)) {
        case 0: return fill_arm<"IPT">(value);
        case 1: return fill_arm<"VAI">(value);
        case 2: return fill_arm<"VOO">(value);
        default: return fill_arm<"VORS">(value);
    }
}

void Filler::draw(sml::Infos::T_Information_Value& value) {
    draw(value.first_string);
    draw(value.first_int);
    if (draws_.chance(percent_real))
        fill_real(value);
    else
        fill_integral(value);
}

void Filler::draw(sml::Infos::T_Range& value) {
    if (draws_.chance(percent_real))
        fill_interval(value.choose<"Real_Interval">(), draws_.width());
    else
        fill_interval(value.choose<"Int_Interval">());
}

void Filler::fill_integral(sml::Infos::T_Information_Value& value) {
    if (draws_.chance(percent_integer_type))
        fill_arm<"Inf_Type_Integer">(value.type);
    else
        fill_arm<"Inf_Type_None">(value.type);
    if (draws_.chance(percent_full_range)) return fill_arm<"Int_Full_Range">(value.range);
    auto& range = value.range.choose<"Value_Range">();
    for (auto left = draw_count<std::list<sml::Infos::T_Range>>(); left > 0; --left)
        fill_interval(range.intervals.emplace_back().choose<"Int_Interval">());
    fill(range.multiplicity);
}

void Filler::fill_real(sml::Infos::T_Information_Value& value) {
    std::uint64_t const width = draws_.width();
    auto const          numbers = numbers_of(width);
    if (draws_.chance(percent_drs_float)) {
        auto& type = value.type.choose<"Inf_Type_DRSFloat">();
        type.format = numbers;
        fill_bounds(type.first_float, type.second_float, width);
    } else {
        value.type.choose<"Inf_Type_Float">().format = numbers;
    }
    if (draws_.chance(percent_full_range)) {
        auto& range = value.range.choose<"Real_Full_Range">();
        range.format = numbers;
        auto& [lower, upper] = range.bounds.emplace();
        fill_bounds(lower, upper, width);
        return draw(range.flag);
    }
    auto& range = value.range.choose<"Value_Range">();
    for (auto left = draw_count<std::list<sml::Infos::T_Range>>(); left > 0; --left)
        fill_interval(range.intervals.emplace_back().choose<"Real_Interval">(), width);
    if (arms_ == Arms_Drawn::usual && draws_.chance(10))
        range.intervals.emplace_back().choose<"Nan">();
    fill(range.multiplicity);
}

void Filler::fill_interval(sml::Infos::T_Range::Int_Interval_parts& interval) {
    std::size_t const bounds =
        draws_.among({percent_both_bounds, percent_lower_bound, percent_upper_bound});
    if (bounds != 2) draw(interval.lower.emplace());
    if (bounds != 1) draw(interval.upper.emplace());
    if (bounds == 0 && *interval.upper < *interval.lower) interval.lower->swap(*interval.upper);
}

void Filler::fill_interval(sml::Infos::T_Range::Real_Interval_parts& interval,
                           std::uint64_t                             width) {
    fill_bounds(interval.lower, interval.upper, width);
}

void Filler::fill_bounds(zelvanite::IEEE754Float& lower, zelvanite::IEEE754Float& upper,
                         std::uint64_t width) {
    draws_.real(lower, width);
    draws_.real(upper, width);
    if (upper < lower) mpfr_swap(lower.number(), upper.number());
}

}  // namespace bench
