#include <sml/schema/BlockKind.hpp>

#include <sml/core/define.hpp>

namespace sml::BlockKind {

SML_DEFINE_VARIANT(T_BlockKind);
SML_DEFINE_VARIANT(T_ControlFlowPoint);

}  // namespace sml::BlockKind
