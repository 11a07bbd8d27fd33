#include "tests/generic/row_of.hpp"

DEFINE_ROWS(info_rows, INFO_TYPES)
