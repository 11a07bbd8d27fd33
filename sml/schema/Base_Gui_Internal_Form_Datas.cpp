#include <sml/schema/Base_Gui_Internal_Form_Datas.hpp>

#include <sml/core/define.hpp>

namespace sml::Base_Gui_Internal_Form_Datas {

SML_DEFINE_RECORD(T_Caller);
SML_DEFINE_RECORD(T_Chk_Context::Chk_Clone_args);
SML_DEFINE_RECORD(T_Chk_Context::Chk_Context_args);
SML_DEFINE_VARIANT(T_Chk_Context);
SML_DEFINE_RECORD(T_Info_Definition);
SML_DEFINE_RECORD(T_Chk_Data);
SML_DEFINE_RECORD(T_Aggregated_Results);

}  // namespace sml::Base_Gui_Internal_Form_Datas
