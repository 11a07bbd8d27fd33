#include <sml/schema/AccessPath.hpp>

#include <sml/core/define.hpp>

namespace sml::AccessPath::Selector {

SML_DEFINE_VARIANT(T_private_selector);

}  // namespace sml::AccessPath::Selector
