#include "tests/generic/enumeration_shapes.hpp"

#include "tests/generic/all_enumerations.hpp"
#include "tests/generic/row_of.hpp"

namespace generic {

#define NAMED_SHAPE(Type) {#Type, &enumeration_shape<sml::Type>()},

NamedShapes field_enumerations() { return {FIELD_ENUMERATIONS(NAMED_SHAPE)}; }
NamedShapes lone_enumerations() { return {LONE_ENUMERATIONS(NAMED_SHAPE)}; }

}  // namespace generic
