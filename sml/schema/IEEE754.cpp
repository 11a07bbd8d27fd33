#include <sml/schema/IEEE754.hpp>

#include <sml/core/define.hpp>

namespace sml::IEEE754 {

SML_DEFINE_RECORD(T);

}  // namespace sml::IEEE754
