#include <sml/schema/Localization.hpp>

#include <sml/core/define.hpp>

namespace sml::Localization {

SML_DEFINE_RECORD(T_Localization);

}  // namespace sml::Localization
