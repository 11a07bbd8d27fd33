#include <sml/schema/Technology.hpp>

#include <sml/core/define.hpp>

namespace sml::Technology::Technics {

SML_DEFINE_ENUM(T_Interprocedural_Technology);
SML_DEFINE_ENUM(T_Loop_Technology);
SML_DEFINE_RECORD(T);
}  // namespace sml::Technology::Technics

namespace sml::Technology {

SML_DEFINE_VARIANT(T);

}  // namespace sml::Technology
