#include "tests/exports/consumer.hpp"

USE_TYPES(InfoTypesAreUsable, INFO_TYPES)
