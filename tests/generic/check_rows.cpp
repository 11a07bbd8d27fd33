#include "tests/generic/row_of.hpp"

DEFINE_ROWS(check_rows, CHECK_TYPES)
