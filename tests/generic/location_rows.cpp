#include "tests/generic/row_of.hpp"

DEFINE_ROWS(location_rows, LOCATION_TYPES)
