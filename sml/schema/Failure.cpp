#include <sml/schema/Failure.hpp>

#include <sml/core/define.hpp>

namespace sml::Failure {

SML_DEFINE_RECORD(T);
SML_DEFAULT_LIFE(T);

}  // namespace sml::Failure
