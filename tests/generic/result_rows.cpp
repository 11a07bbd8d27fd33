#include "tests/generic/row_of.hpp"

DEFINE_ROWS(result_rows, RESULT_TYPES)
