#include <sml/schema/Answers.hpp>

#include <sml/core/define.hpp>

namespace sml::Answers {

SML_DEFINE_RECORD(T_Answer);
SML_DEFINE_RECORD(T_AnswerAssert);
SML_DEFINE_RECORD(T_AnswerInspectionPoint);
SML_DEFINE_RECORD(T_Context);
SML_DEFINE_RECORD(T_ContextCallSite);
SML_DEFINE_RECORD(T_ContextCxx);
SML_DEFINE_RECORD(T_ContextInline);
SML_DEFINE_RECORD(T_ContextRegion);
SML_DEFINE_RECORD(T_ContextCounterExample);

}  // namespace sml::Answers
