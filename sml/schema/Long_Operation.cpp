#include <sml/schema/Long_Operation.hpp>

#include <sml/core/define.hpp>

namespace sml::Long_Operation {

SML_DEFINE_VARIANT(T_Long_Op_T);

}  // namespace sml::Long_Operation
