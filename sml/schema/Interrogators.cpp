#include <sml/schema/Interrogators.hpp>

#include <sml/core/define.hpp>

namespace sml::Interrogators {

SML_DEFINE_REFERENCE(T_RepositoryRef);
SML_DEFINE_REFERENCE(T_InterrogatorRef);
SML_DEFINE_REFERENCE(T_QuestionRef);
SML_DEFINE_REFERENCE(T_AnswerRef);
SML_DEFINE_REFERENCE(T_ContextRef);
SML_DEFINE_REFERENCE(T_FunctionRef);
SML_DEFINE_RECORD(T_Function);
SML_DEFINE_RECORD(T_ZvFunction);
SML_DEFINE_RECORD(T_Interrogator);
SML_DEFINE_RECORD(T_InterrogatorCheckZDV);
SML_DEFINE_RECORD(T_InterrogatorCheckSHF);
SML_DEFINE_RECORD(T_InterrogatorCheckOVFL);
SML_DEFINE_RECORD(T_InterrogatorCheckCONV_OVFL);
SML_DEFINE_RECORD(T_InterrogatorInfoOperator);
SML_DEFINE_RECORD(T_InterrogatorInfoConversion);
SML_DEFINE_RECORD(T_InterrogatorInfoReadOrAssign);
SML_DEFINE_RECORD(T_Question);
SML_DEFINE_RECORD(T_QuestionAssert);
SML_DEFINE_RECORD(T_QuestionInspectionPoint);

}  // namespace sml::Interrogators
