#include <sml/schema/Blocks.hpp>

#include <sml/core/define.hpp>

namespace sml::Blocks {

SML_DEFINE_ENUM(T_BlockUnreachable);
SML_DEFINE_RECORD(T_BlockLocalization);
SML_DEFINE_RECORD(T_BlockAttribute);

}  // namespace sml::Blocks
