#include "tests/exports/consumer.hpp"

USE_TYPES(CheckTypesAreUsable, CHECK_TYPES)
