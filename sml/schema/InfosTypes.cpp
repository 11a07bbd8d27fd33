#include <sml/schema/InfosTypes.hpp>

#include <sml/core/define.hpp>

namespace sml::InfosTypes {

SML_DEFINE_ENUM(T_Scope);
SML_DEFINE_ENUM(T_Stdlib_Param_Kind);
SML_DEFINE_ENUM(T_Operation_Computation_Mode);
SML_DEFINE_VARIANT(T_Variable_Name);
SML_DEFINE_RECORD(T_Info_Statement_Kind::CONSTRUCTION_VIRTUAL_CALL_args);
SML_DEFINE_RECORD(T_Info_Statement_Kind::DESTRUCTION_VIRTUAL_CALL_args);
SML_DEFINE_RECORD(T_Info_Statement_Kind::DISPATCH_VIRTUAL_CALL_args);
SML_DEFINE_RECORD(T_Info_Statement_Kind::STDLIB_PARAM_args);
SML_DEFINE_RECORD(T_Info_Statement_Kind::STUB_OF_VIRTUAL_CALL_args);
SML_DEFINE_VARIANT(T_Info_Statement_Kind);
}  // namespace sml::InfosTypes

namespace sml::InfosTypes::Relation_Info {

SML_DEFINE_RECORD(T);

}  // namespace sml::InfosTypes::Relation_Info
