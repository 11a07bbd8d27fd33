#include "tests/exports/consumer.hpp"

USE_TYPES(EventTypesAreUsable, EVENT_TYPES)
