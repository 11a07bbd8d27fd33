#include <sml/schema/IL_Extras.hpp>

#include <sml/core/define.hpp>

namespace sml::IL_Extras::ExprExtraData {

SML_DEFINE_RECORD(T);
}  // namespace sml::IL_Extras::ExprExtraData

namespace sml::IL_Extras::VVIRZelvanitePragmasTag {

SML_DEFINE_RECORD(T_PragmaParameter::SOURCE_LOC_PRAGMA_PARAMETER_args);
SML_DEFINE_VARIANT_WITHOUT_COMPARISON(T_PragmaParameter);
}  // namespace sml::IL_Extras::VVIRZelvanitePragmasTag

namespace sml::IL_Extras {

SML_DEFINE_RECORD(T_ZelvaniteResultData::__unnamed_record_1);
SML_DEFINE_RECORD(T_ZelvaniteResultData::__unnamed_record_2);
SML_DEFINE_RECORD(T_ZelvaniteResultData::__unnamed_record_3);
SML_DEFINE_RECORD(T_ZelvaniteResultData::__unnamed_record_4);
SML_DEFINE_RECORD(T_ZelvaniteResultData::ATTRIBUTE_COPY_ALL_EXCEPT_args);
SML_DEFINE_RECORD(T_ZelvaniteResultData::Attribute_Pred_args);
SML_DEFINE_RECORD(T_ZelvaniteResultData::Call_args);
SML_DEFINE_RECORD(T_ZelvaniteResultData::Event_args);
SML_DEFINE_RECORD(T_ZelvaniteResultData::FLOAT_MODEL_ROUND_args);
SML_DEFINE_RECORD(T_ZelvaniteResultData::Inspection_Point_IPT_args);
SML_DEFINE_RECORD(T_ZelvaniteResultData::Inspection_Point_Points_To_args);
SML_DEFINE_RECORD(T_ZelvaniteResultData::Loop_Until_args);
SML_DEFINE_RECORD(T_ZelvaniteResultData::MEM_ALLOC_args);
SML_DEFINE_RECORD(T_ZelvaniteResultData::Marker_args);
SML_DEFINE_RECORD(T_ZelvaniteResultData::Procedure_Declaration_args);
SML_DEFINE_RECORD(T_ZelvaniteResultData::Program_args);
SML_DEFINE_VARIANT_WITHOUT_COMPARISON(T_ZelvaniteResultData);

}  // namespace sml::IL_Extras
