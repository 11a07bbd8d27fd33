#include "tests/generic/row_of.hpp"

DEFINE_ROWS(il_rows, IL_TYPES)
