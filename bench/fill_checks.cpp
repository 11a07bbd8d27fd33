#include "bench/filler.hpp"

namespace bench {

void Filler::draw(sml::Localization::T_Localization& value) {
    draw(value.first_position);
    value.file = (*names_)[names_->draw_path(draws_)];
    draw(value.second_position);
}

void Filler::draw(sml::Checks::T_Check_Category& value) {
    switch (draws_.among({20, 18, 12, 10, 40})) {
        case 0: return fill_arm<"OVFL">(value);
        case 1: return fill_arm<"NIV">(value);
        case 2: return fill_arm<"ZDV">(value);
        case 3: return fill_arm<"ASSERT">(value);
        default: return fill_other_category(value);
    }
}

void Filler::fill_other_category(sml::Checks::T_Check_Category& value) {
    switch (draws_.below(20)) {
        case 0: return fill_arm<"ABSOLUTE_ADDRESS">(value);
        case 1: return fill_arm<"CALL_FPPF">(value);
        case 2: return fill_arm<"CALL_IRV">(value);
        case 3: return fill_arm<"CONV_OVFL">(value);
        case 4: return fill_arm<"DATA_FLOW_FINDING">(value);
        case 5: return fill_arm<"DATA_RACE">(value);
        case 6: return fill_arm<"DESTROY_LOCKED">(value);
        case 7: return fill_arm<"FLOAT_ABSORPTION">(value);
        case 8: return fill_arm<"FNC">(value);
        case 9: return fill_arm<"FNR">(value);
        case 10: return fill_arm<"IDP">(value);
        case 11: return fill_arm<"IDR">(value);
        case 12: return fill_arm<"LEAK">(value);
        case 13: return fill_arm<"NTC">(value);
        case 14: return fill_arm<"NTL">(value);
        case 15: return fill_arm<"OBAI">(value);
        case 16: return fill_arm<"SHF">(value);
        case 17: return fill_arm<"STD_LIB">(value);
        case 18: return fill_arm<"UNR">(value);
        default: return fill_arm<"USER_GLOBAL_ASSERT">(value);
    }
}

}  // namespace bench
