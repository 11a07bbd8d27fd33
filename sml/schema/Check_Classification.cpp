#include <sml/schema/Check_Classification.hpp>

#include <sml/core/define.hpp>

namespace sml::Check_Classification {

SML_DEFINE_RECORD(T_Check_Classification::INPUT_IMPACT_args);

std::uint64_t T_Check_Classification::INPUT_IMPACT_args::hash() const {
    return core::combine(0, core::combine(first_string.hash(), core::hash_word(first_int)));
}

SML_DEFINE_VARIANT(T_Check_Classification);

}  // namespace sml::Check_Classification
