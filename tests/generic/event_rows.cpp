#include "tests/generic/row_of.hpp"

DEFINE_ROWS(event_rows, EVENT_TYPES)
