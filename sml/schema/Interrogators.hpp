#pragma once
// Questions put to a results repository, and the references that name its objects.
//
// No reference is ever followed: an address is written as a number.

#include <sml/core/declare.hpp>
#include <sml/schema/InfosTypes.hpp>
#include <sml/schema/PackagedPrettySignature.hpp>
#include <sml/schema/SourceLocRef.hpp>

namespace sml::Interrogators {

/// Names a repository.
struct T_RepositoryRef {
    SML_REFERENCE(T_RepositoryRef, "RepositoryId", "RepositoryPtr");
};

/// Names an interrogator.
struct T_InterrogatorRef {
    SML_REFERENCE(T_InterrogatorRef, "InterrogatorId", "InterrogatorPtr");
};

/// Names a question.
struct T_QuestionRef {
    SML_REFERENCE(T_QuestionRef, "QuestionId", "QuestionPtr");
};

/// Names an answer.
struct T_AnswerRef {
    SML_REFERENCE(T_AnswerRef, "AnswerId", "AnswerPtr");
};

/// Names a context.
struct T_ContextRef {
    SML_REFERENCE(T_ContextRef, "ContextId", "ContextPtr");
};

/// Names a function.
struct T_FunctionRef {
    SML_REFERENCE(T_FunctionRef, "FunctionId", "FunctionPtr");
};

/// A function of the analysed program.
struct T_Function {
    Strings_T                    key;
    PackagedPrettySignature::T   signature;
    SourceLocRef::T_SourceLocRef location;

    SML_RECORD(T_Function, key, signature, location);
};

/// A function as the analyser knows it.
struct T_ZvFunction {
    int32      first_int{};
    bool       flag{};
    T_Function function;

    SML_RECORD(T_ZvFunction, first_int, flag, function);
};

/// The common part of all interrogators.
struct T_Interrogator {
    T_FunctionRef                function_ref;
    int32                        first_int{};
    SourceLocRef::T_SourceLocRef location;

    SML_RECORD(T_Interrogator, function_ref, first_int, location);
};

/// Asks about a division by zero check.
struct T_InterrogatorCheckZDV {
    T_Interrogator interrogator;
    int32          first_int{};

    SML_RECORD(T_InterrogatorCheckZDV, interrogator, first_int);
};

/// Asks about a shift check.
struct T_InterrogatorCheckSHF {
    T_Interrogator interrogator;
    int32          first_int{};
    std::string    text;
    int32          second_int{};

    SML_RECORD(T_InterrogatorCheckSHF, interrogator, first_int, text, second_int);
};

/// Asks about an overflow check.
struct T_InterrogatorCheckOVFL {
    std::string                                    first_text;
    T_Interrogator                                 interrogator;
    bool                                           first_flag{};
    int32                                          first_int{};
    bool                                           second_flag{};
    std::optional<std::pair<Strings_T, Strings_T>> string_pair;
    std::string                                    second_text;

    SML_RECORD(T_InterrogatorCheckOVFL, first_text, interrogator, first_flag, first_int,
               second_flag, string_pair, second_text);
};

/// Asks about an overflow check of a conversion.
struct T_InterrogatorCheckCONV_OVFL {
    std::string                                    first_text;
    bool                                           first_flag{};
    std::string                                    second_text;
    T_Interrogator                                 interrogator;
    int32                                          first_int{};
    bool                                           second_flag{};
    std::optional<std::pair<Strings_T, Strings_T>> string_pair;
    bool                                           third_flag{};
    std::string                                    third_text;

    SML_RECORD(T_InterrogatorCheckCONV_OVFL, first_text, first_flag, second_text, interrogator,
               first_int, second_flag, string_pair, third_flag, third_text);
};

/// Asks about an operator.
struct T_InterrogatorInfoOperator {
    T_Interrogator                              interrogator;
    int32                                       first_int{};
    std::string                                 first_text;
    std::optional<InfosTypes::Relation_Info::T> relation;
    std::string                                 second_text;

    SML_RECORD(T_InterrogatorInfoOperator, interrogator, first_int, first_text, relation,
               second_text);
};

/// Asks about a conversion.
struct T_InterrogatorInfoConversion {
    std::string    first_text;
    bool           flag{};
    T_Interrogator interrogator;
    int32          first_int{};
    std::string    second_text;

    SML_RECORD(T_InterrogatorInfoConversion, first_text, flag, interrogator, first_int,
               second_text);
};

/// Asks about a read or an assignment.
struct T_InterrogatorInfoReadOrAssign {
    T_Interrogator                    interrogator;
    InfosTypes::T_Info_Statement_Kind statement_kind;
    std::string                       first_text;
    std::string                       second_text;

    SML_RECORD(T_InterrogatorInfoReadOrAssign, interrogator, statement_kind, first_text,
               second_text);
};

/// The common part of all questions.
struct T_Question {
    SourceLocRef::T_SourceLocRef location;

    SML_RECORD(T_Question, location);
};

/// Asks about an assertion.
struct T_QuestionAssert {
    T_Question question;

    SML_RECORD(T_QuestionAssert, question);
};

/// Asks about an inspection point.
struct T_QuestionInspectionPoint {
    T_Question question;

    SML_RECORD(T_QuestionInspectionPoint, question);
};

}  // namespace sml::Interrogators
