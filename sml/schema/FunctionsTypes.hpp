#pragma once
// Kinds of function bodies.

#include <sml/core/declare.hpp>

namespace sml::FunctionsTypes {

/// The kind of a function's body.
SML_ENUM(T_Body_Kind, BK_EC_LOOKUP_TABLE, BK_EXTERN, BK_FUNCTION_TO_STUB, BK_INTERNAL,
         BK_STANDARD_LIBRARY, BK_USERDEF, BK_USER_STANDARD_LIBRARY);

}  // namespace sml::FunctionsTypes
