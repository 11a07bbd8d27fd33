#pragma once
// The entry points: bytes to objects and back, seven functions for each of the 40 root types.
//
// For a root with stem X and object type T:
//
//   void               sml::X_toCxx(T& value, char const* bytes)          reads T from the bytes
//   void               sml::deserializeSmlData(T& value, char const* bytes)   the same
//   std::string const& sml::X_fromCxx(T const& value)                     writes T to a string
//   void               sml::X_toStream(T const& value, std::ostream&)     writes T to a stream
//   void               sml::X_fromStream(T& value, std::istream&)         reads T from a stream
//   void               X_toCxx(T* value, char const* bytes)               flat twin of toCxx
//   char const*        X_fromCxx(T const* value)                          flat twin of fromCxx
//
// Reading adds to the containers that `value` already holds, so give it a fresh object. It trusts
// its input: bytes that no writer of this library made are undefined behaviour. Object and bytes
// stay the caller's.
//
// All `fromCxx` share one result string: copy the bytes before the next call of any of them. The
// bytes hold zeros, and the flat form tells no length.
//
// Exceptions of the standard library pass through, also through the flat functions. Nothing here
// is safe across threads: a library built with assertions names two calls that overlap and aborts.

#include <sml/core/Strings.hpp>
#include <sml/core/export.hpp>
#include <sml/core/hash.hpp>
#include <sml/schema/Answers.hpp>
#include <sml/schema/Application_Results.hpp>
#include <sml/schema/Base_Gui_Internal_Form_Datas.hpp>
#include <sml/schema/GUI_Check_Classification.hpp>
#include <sml/schema/IL_Extras.hpp>
#include <sml/schema/Interrogators.hpp>

#include <cstdint>
#include <iosfwd>
#include <list>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace sml {

#define SML_ROOT(Stem, ...)                                                                     \
    SML_API void Stem##_toCxx(__VA_ARGS__& value, char const* bytes);                           \
    SML_API void deserializeSmlData(__VA_ARGS__& value, char const* bytes);                     \
    SML_API std::string const& Stem##_fromCxx(__VA_ARGS__ const& value);                        \
    SML_API void               Stem##_toStream(__VA_ARGS__ const& value, std::ostream& stream); \
    SML_API void               Stem##_fromStream(__VA_ARGS__& value, std::istream& stream);
#include <sml/bindings/roots.def>

}  // namespace sml

extern "C" {

#define SML_ROOT(Stem, ...)                                                  \
    SML_API void        Stem##_toCxx(__VA_ARGS__* value, char const* bytes); \
    SML_API char const* Stem##_fromCxx(__VA_ARGS__ const* value);
#include <sml/bindings/roots.def>

}  // extern "C"
