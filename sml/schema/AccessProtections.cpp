#include <sml/schema/AccessProtections.hpp>

#include <sml/core/define.hpp>

namespace sml::AccessProtections {

SML_DEFINE_RECORD(T_AccessProtections::CRITICAL_SECTION_args);

std::uint64_t T_AccessProtections::CRITICAL_SECTION_args::hash() const {
    return core::combine(
        core::combine(core::combine(0, first_signature.hash()), section_name.hash()),
        second_signature.hash());
}

SML_DEFINE_VARIANT(T_AccessProtections);

}  // namespace sml::AccessProtections
