#include "schema/SourceLocRef.hpp"

#include "core/define.hpp"

namespace sml::SourceLocRef {

SML_DEFINE_RECORD(T_SourceLocRef);

}  // namespace sml::SourceLocRef
