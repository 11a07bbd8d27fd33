#include <sml/schema/Event_Path.hpp>

#include <sml/core/define.hpp>

namespace sml::Event_Path::Event_Value {

SML_DEFINE_RECORD(T_value::WithValue_args);
SML_DEFINE_VARIANT(T_value);

}  // namespace sml::Event_Path::Event_Value
