#include <sml/schema/SourceLocRef.hpp>

#include <sml/core/define.hpp>

namespace sml::SourceLocRef {

SML_DEFINE_RECORD(T_SourceLocRef);

}  // namespace sml::SourceLocRef
