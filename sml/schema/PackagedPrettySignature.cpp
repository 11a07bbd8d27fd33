#include <sml/schema/PackagedPrettySignature.hpp>

#include <sml/core/define.hpp>

namespace sml::PackagedPrettySignature {

SML_DEFINE_RECORD(T);

std::uint64_t T::hash() const {
    return core::combine(core::combine(0, package.hash()), qualified_signature.hash());
}

}  // namespace sml::PackagedPrettySignature
