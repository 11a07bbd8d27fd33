#include <sml/schema/Application_Results.hpp>

#include <sml/core/define.hpp>

namespace sml::Application_Results {

SML_DEFINE_RECORD(T_Application_Results);
SML_DEFAULT_LIFE(T_Application_Results);

}  // namespace sml::Application_Results
