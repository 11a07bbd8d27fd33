#include <sml/schema/Atomicity_Condition.hpp>

#include <sml/core/define.hpp>

namespace sml::Atomicity_Condition {

SML_DEFINE_RECORD(T_Atomicity_Condition::ARCH_SIZE_args);
SML_DEFINE_RECORD(T_Atomicity_Condition::FUNCTION_CALL_args);
SML_DEFINE_RECORD(T_Atomicity_Condition::MULTI_INSTR_args);
SML_DEFINE_VARIANT(T_Atomicity_Condition);

}  // namespace sml::Atomicity_Condition
