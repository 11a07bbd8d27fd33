#include "schema/SignaturePrefixedQualifiedPrettyName.hpp"

#include "core/define.hpp"

namespace sml::SignaturePrefixedQualifiedPrettyName {

SML_DEFINE_RECORD(T);

}  // namespace sml::SignaturePrefixedQualifiedPrettyName
