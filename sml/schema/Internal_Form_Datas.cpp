#include <sml/schema/Internal_Form_Datas.hpp>

#include <sml/core/define.hpp>

namespace sml::Internal_Form_Datas {

SML_DEFINE_ENUM(T_CallKind);
SML_DEFINE_ENUM(T_Chk_Data_Type);
SML_DEFINE_ENUM(T_Info_Category);

}  // namespace sml::Internal_Form_Datas
