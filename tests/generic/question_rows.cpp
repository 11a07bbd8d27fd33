#include "tests/generic/row_of.hpp"

DEFINE_ROWS(question_rows, QUESTION_TYPES)
