#include <sml/schema/QualifiedPrettySignature.hpp>

#include <sml/core/define.hpp>

namespace sml::QualifiedPrettySignature {

SML_DEFINE_RECORD(T);

std::uint64_t T::hash() const {
    return core::combine(core::combine(0, signature.hash()), qualified_name.hash());
}

}  // namespace sml::QualifiedPrettySignature
