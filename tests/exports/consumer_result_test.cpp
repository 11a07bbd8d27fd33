#include "tests/exports/consumer.hpp"

USE_TYPES(ResultTypesAreUsable, RESULT_TYPES)
