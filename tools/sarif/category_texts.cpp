#include "sarif/category_texts.hpp"

#include <algorithm>
#include <array>
#include <utility>

namespace bradep::sarif {

namespace {

using Described = std::pair<std::string_view, std::string_view>;

// In the order of their names. The set says nothing more of a category than its name and the shape
// of its payload, so those are missing here whose meaning these do not tell.
constexpr auto texts = std::to_array<Described>({
    {"ABSOLUTE_ADDRESS", "An absolute address is used as a pointer."},
    {"ADA_EXCP", "An exception of Ada is raised."},
    {"ADA_POW", "An exponentiation of Ada with operands that are not allowed."},
    {"ASSERT", "An assertion of the program fails."},
    {"ASSERT_QUESTION", "An assertion that asks the analyser a question."},
    {"BAD_FLOAT_OP", "An invalid floating-point operation."},
    {"BAD_LOCK", "A lock is taken that can't be taken there."},
    {"BAD_UNLOCK", "A lock is released that is not held there."},
    {"BF_CHECKER_SILENT", "A finding of a checker that has no message."},
    {"BF_CHECKER_WITH_PRECOMPUTED_MESSAGE", "A finding of a checker, with its own message."},
    {"BLOCKING_WHILE_LOCKED", "An operation that can take long is done while a lock is held."},
    {"CALL_FPPF", "A call through a pointer does not fit the function that is called."},
    {"CALL_IRV", "The value that a called function returns is not initialised."},
    {"CONV_NAN_TO_INT", "A value that is no number is converted to an integer."},
    {"CONV_OVFL", "A conversion overflows."},
    {"DATA_FLOW_FINDING", "A value is written and never read, or read and never written."},
    {"DATA_RACE", "Two tasks access a variable at the same time, and one of them writes it."},
    {"DATA_RACE_BIT_FIELDS", "Two tasks access bit-fields of one word at the same time."},
    {"DATA_RACE_STD_LIB",
     "Two tasks call functions of the standard library at the same time that may not be."},
    {"DEADLOCK", "Tasks wait for each other's locks."},
    {"DESTROY_LOCKED", "A lock is destroyed while it is held."},
    {"DOUBLE_LOCK", "A lock is taken that is held already."},
    {"DOUBLE_UNLOCK", "A lock is released a second time."},
    {"DRS", "A value is outside of the range that is specified for it."},
    {"FLOAT_ABSORPTION",
     "An operand of a floating-point operation is too small to have an effect."},
    {"FNC", "A function is never called."},
    {"FNR", "A function can't be reached."},
    {"FRV", "A function returns no value where one is needed."},
    {"GLOBAL_SET_AT_INITIALIZATION", "A global variable is assigned by its initialisation."},
    {"IDP", "A pointer is dereferenced that points to no object, or beyond one."},
    {"INIT_EXCEED_ALLOC", "An initialiser is larger than the memory that is allocated for it."},
    {"INT_TO_FLOAT_PRECISION_LOSS",
     "An integer is converted to a float that can't hold it exactly."},
    {"LEAK", "Memory or another resource is never released."},
    {"NIP", "A pointer is read before it has a value."},
    {"NIV", "A variable is read before it has a value."},
    {"NIV_STRUCT", "A structure is read before all of its fields have values."},
    {"NON_FINITE_INF", "The result of a floating-point operation is infinite."},
    {"NON_FINITE_NAN", "The result of a floating-point operation is no number."},
    {"NTC", "A call never returns."},
    {"NTL", "A loop never ends."},
    {"NULL", "A null pointer is used."},
    {"OBAI", "An index is outside of the bounds of its array."},
    {"OVFL", "An arithmetic operation overflows."},
    {"PLACEMENT_NEW", "The memory given to a placement new is too small for the object."},
    {"POSITIVE_VLA", "The size of a variable-length array is not positive."},
    {"PVC", "A pure virtual function is called."},
    {"RESOURCE", "A resource is not used as it must be."},
    {"SECURITY", "A construct that attackers can take advantage of."},
    {"SHF", "A shift by a negative number, or by more bits than the operand has."},
    {"STACK_POINTER", "A pointer to a local variable outlives its function."},
    {"STD_LIB",
     "A function of the standard library is called with arguments that it does not allow."},
    {"SUBNORMAL", "The result of a floating-point operation is subnormal."},
    {"UNR", "Code that can't be reached."},
    {"USER_GLOBAL_ASSERT", "An assertion of the user about a global variable fails."},
    {"ZDV", "A division by zero."},
});

static_assert(std::ranges::is_sorted(texts));

}  // namespace

std::string_view description_of_category(std::string_view name) {
    auto const found = std::ranges::lower_bound(texts, name, {}, &Described::first);
    return found != texts.end() && found->first == name ? found->second : std::string_view();
}

}  // namespace bradep::sarif
