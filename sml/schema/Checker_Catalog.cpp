#include <sml/schema/Checker_Catalog.hpp>

#include <sml/core/define.hpp>

namespace sml::Checker_Catalog {

SML_DEFINE_ENUM(T_Checker);

}  // namespace sml::Checker_Catalog
