#include "tests/exports/consumer.hpp"

USE_TYPES(QuestionAndAnswerTypesAreUsable, QUESTION_TYPES)
