#pragma once
// Answers to questions and the contexts in which they hold.

#include <sml/core/declare.hpp>
#include <sml/schema/Base_Gui_Internal_Form_Datas.hpp>
#include <sml/schema/Functions.hpp>
#include <sml/schema/GUI_Check_Classification.hpp>
#include <sml/schema/Infos.hpp>
#include <sml/schema/SourceLocRef.hpp>

namespace sml::Answers {

/// The common part of all answers.
struct T_Answer {
    bool flag{};

    SML_RECORD(T_Answer, flag);
};

/// The answer about an assertion.
struct T_AnswerAssert {
    T_Answer                                             answer;
    GUI_Check_Classification::T_GUI_Check_Classification classification;
    int32                                                first_int{};

    SML_RECORD(T_AnswerAssert, answer, classification, first_int);
};

/// The answer about an inspection point.
struct T_AnswerInspectionPoint {
    T_Answer             answer;
    std::string          text;
    Infos::T_Value_Range range;

    SML_RECORD(T_AnswerInspectionPoint, answer, text, range);
};

/// The common part of all contexts.
struct T_Context {
    bool flag{};

    SML_RECORD(T_Context, flag);
};

/// The context of a call site.
struct T_ContextCallSite {
    Functions::T_Function_Context function_context;
    T_Context                     context;
    Strings_T                     label;

    SML_RECORD(T_ContextCallSite, function_context, context, label);
};

/// The context of a clone.
struct T_ContextCxx {
    T_Context                       context;
    Strings_T                       first_label;
    Functions::Cxx_Clone_Context::T clone_context;
    Strings_T                       second_label;

    SML_RECORD(T_ContextCxx, context, first_label, clone_context, second_label);
};

/// The context of an inlined function.
struct T_ContextInline {
    Base_Gui_Internal_Form_Datas::T_Caller caller;
    T_Context                              context;
    Strings_T                              label;
    bool                                   second_flag{};

    SML_RECORD(T_ContextInline, caller, context, label, second_flag);
};

/// The context of a region.
struct T_ContextRegion {
    T_Context                    context;
    Strings_T                    label;
    SourceLocRef::T_SourceLocRef location;

    SML_RECORD(T_ContextRegion, context, label, location);
};

/// The context of a counter-example.
struct T_ContextCounterExample {
    T_Context                    context;
    Strings_T                    first_label;
    bool                         second_flag{};
    Strings_T                    second_label;
    SourceLocRef::T_SourceLocRef location;

    SML_RECORD(T_ContextCounterExample, context, first_label, second_flag, second_label, location);
};

}  // namespace sml::Answers
