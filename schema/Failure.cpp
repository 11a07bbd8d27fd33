#include "schema/Failure.hpp"

#include "core/define.hpp"

namespace sml::Failure {

SML_DEFINE_RECORD(T);
SML_DEFAULT_LIFE(T);

}  // namespace sml::Failure
