#include <sml/schema/IL.hpp>

#include <sml/core/define.hpp>

namespace sml::IL {

SML_DEFINE_ENUM(T_Relational_Binop);
SML_DEFINE_ENUM(T_Pointer_Builtin);
SML_DEFINE_ENUM(T_Memory_Builtin);
SML_DEFINE_ENUM(T_Loop_Kind);
SML_DEFINE_RECORD(T_Type_Op::Float_Op_args);
SML_DEFINE_VARIANT(T_Type_Op);
SML_DEFINE_VARIANT_WITHOUT_COMPARISON(T_Info_Expr);
SML_DEFINE_RECORD(T_Annotation::Long_Annote_args);
SML_DEFINE_VARIANT_WITHOUT_COMPARISON(T_Annotation);

}  // namespace sml::IL
