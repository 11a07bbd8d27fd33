#include <sml/schema/SignaturePrefixedQualifiedPrettyName.hpp>

#include <sml/core/define.hpp>

namespace sml::SignaturePrefixedQualifiedPrettyName {

SML_DEFINE_RECORD(T);

}  // namespace sml::SignaturePrefixedQualifiedPrettyName
