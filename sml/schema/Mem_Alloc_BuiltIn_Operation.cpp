#include <sml/schema/Mem_Alloc_BuiltIn_Operation.hpp>

#include <sml/core/define.hpp>

namespace sml::Mem_Alloc_BuiltIn_Operation {

SML_DEFINE_RECORD(T_can_initialize);
SML_DEFINE_RECORD(T_stub_mem_alloc_builtin_param);
SML_DEFINE_VARIANT(T_Operation);

}  // namespace sml::Mem_Alloc_BuiltIn_Operation
