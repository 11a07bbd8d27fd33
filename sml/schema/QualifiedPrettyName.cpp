#include <sml/schema/QualifiedPrettyName.hpp>

#include <sml/core/define.hpp>

namespace sml::QualifiedPrettyName {

SML_DEFINE_RECORD(T);

std::uint64_t T::hash() const {
    return core::combine(core::combine(0, qualifier.hash()), name.hash());
}

}  // namespace sml::QualifiedPrettyName
