#include <sml/schema/Functions.hpp>

#include <sml/core/define.hpp>

namespace sml::Functions::Cxx_Clone_Context {

SML_DEFINE_RECORD(T::During_Constr_Destr_args);
SML_DEFINE_VARIANT(T);
}  // namespace sml::Functions::Cxx_Clone_Context

namespace sml::Functions {

SML_DEFINE_RECORD(T_Function_Context);
SML_DEFINE_VARIANT(T_Function_Context_Option);
SML_DEFINE_RECORD(T_A_Function);

}  // namespace sml::Functions
