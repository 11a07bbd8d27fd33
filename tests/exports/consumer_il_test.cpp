#include "tests/exports/consumer.hpp"

USE_TYPES(IntermediateLanguageTypesAreUsable, IL_TYPES)
