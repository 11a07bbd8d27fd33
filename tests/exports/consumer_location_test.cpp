#include "tests/exports/consumer.hpp"

USE_TYPES(LocationTypesAreUsable, LOCATION_TYPES)
