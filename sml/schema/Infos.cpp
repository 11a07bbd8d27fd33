#include <sml/schema/Infos.hpp>

#include <sml/core/define.hpp>

namespace sml::Infos {

SML_DEFINE_ENUM(T_NTC_Kind);
SML_DEFINE_VARIANT(T_Range);
}  // namespace sml::Infos

namespace sml::Infos::Multiplicity {

SML_DEFINE_VARIANT(T);
}  // namespace sml::Infos::Multiplicity

namespace sml::Infos {

SML_DEFINE_RECORD(T_Value_Range::Int_Full_Range_args);
SML_DEFINE_VARIANT(T_Value_Range);
SML_DEFINE_RECORD(T_Info_Type::Inf_Type_Ada_Fixed_args);
SML_DEFINE_RECORD(T_Info_Type::Inf_Type_Ada_Float_args);
SML_DEFINE_RECORD(T_Info_Type::Inf_Type_DRSFloat_args);
SML_DEFINE_RECORD(T_Info_Type::Inf_Type_DRSInteger_args);
SML_DEFINE_RECORD(T_Info_Type::Inf_Type_Float_args);
SML_DEFINE_RECORD(T_Info_Type::Inf_Type_Integer_args);
SML_DEFINE_VARIANT(T_Info_Type);
SML_DEFINE_RECORD(T_Information_Value);
SML_DEFAULT_LIFE(T_Information_Value);
SML_DEFINE_RECORD(T_Pointer_Null_Value);
SML_DEFINE_VARIANT(T_Field_Information_Kind);
SML_DEFINE_RECORD(T_Info_Operator_Kind::BINARY_OP_args);
SML_DEFINE_RECORD(T_Info_Operator_Kind::CONV_args);
SML_DEFINE_RECORD(T_Info_Operator_Kind::UNARY_OP_args);
SML_DEFINE_VARIANT(T_Info_Operator_Kind);
}  // namespace sml::Infos

namespace sml::Infos::Concurrency_Info {

SML_DEFINE_ENUM(T_Routine);
SML_DEFINE_RECORD(T_Origin::Spawned_args);
SML_DEFINE_VARIANT(T_Origin);
SML_DEFINE_RECORD(T::ConcurrentItem_args);
SML_DEFINE_RECORD(T::ConcurrentRoutine_args);
SML_DEFINE_VARIANT(T);
}  // namespace sml::Infos::Concurrency_Info

namespace sml::Infos::Stack_Escape_Info_Data {

SML_DEFINE_ENUM(T_Stack_Escape_Info);
}  // namespace sml::Infos::Stack_Escape_Info_Data

namespace sml::Infos {

SML_DEFINE_RECORD(T_Information_Category::IPT_args);
SML_DEFINE_RECORD(T_Information_Category::QUESTION_IPT_args);
SML_DEFINE_RECORD(T_Information_Category::RELATION_args);
SML_DEFINE_RECORD(T_Information_Category::TOOLTIP_INFO_args);
SML_DEFINE_RECORD(T_Information_Category::VAI_args);
SML_DEFINE_RECORD(T_Information_Category::VCS_args);
SML_DEFINE_RECORD(T_Information_Category::VNTC_args);
SML_DEFINE_RECORD(T_Information_Category::VNTL_args);
SML_DEFINE_RECORD(T_Information_Category::VOL_args);
SML_DEFINE_RECORD(T_Information_Category::VOO_args);
SML_DEFINE_RECORD(T_Information_Category::VOR_args);
SML_DEFINE_RECORD(T_Information_Category::VORP_args);
SML_DEFINE_RECORD(T_Information_Category::VORPF_args);
SML_DEFINE_RECORD(T_Information_Category::VORS_args);
SML_DEFINE_VARIANT(T_Information_Category);
SML_DEFINE_RECORD(T_An_Info);

T_An_Info::T_An_Info() = default;
T_An_Info::T_An_Info(T_An_Info const& other) = default;
T_An_Info& T_An_Info::operator=(T_An_Info const& other) = default;
T_An_Info::~T_An_Info() = default;

// Required: a move copies by assignment, and the source stays whole and equal.
T_An_Info::T_An_Info(T_An_Info&& other) : T_An_Info() { *this = std::as_const(other); }
T_An_Info& T_An_Info::operator=(T_An_Info&& other) { return *this = std::as_const(other); }

}  // namespace sml::Infos
