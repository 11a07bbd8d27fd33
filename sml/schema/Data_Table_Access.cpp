#include <sml/schema/Data_Table_Access.hpp>

#include <sml/core/define.hpp>

namespace sml::Data_Table_Access {

SML_DEFINE_RECORD(T);

}  // namespace sml::Data_Table_Access
