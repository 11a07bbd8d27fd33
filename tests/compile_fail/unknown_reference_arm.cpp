// error: no arm has this name
// errors: 1
// lines: 20
// says: "AnswerId".*"QuestionId", "QuestionPtr"

#include <sml/schema/Interrogators.hpp>

void use(sml::Interrogators::T_QuestionRef& question) {
#ifdef MISTAKE
    question.choose<"AnswerId">() = 7;
#else
    question.choose<"QuestionId">() = 7;
#endif
}
