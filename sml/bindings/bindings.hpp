#pragma once
// The entry points: seven functions for each root type, which make objects of bytes and bytes of
// objects.
//
// For a root with stem X and object type T:
//
//   void               sml::X_toCxx(T& value, char const* bytes)          reads a T from bytes
//   void               sml::deserializeSmlData(T& value, char const* bytes)   the same
//   std::string const& sml::X_fromCxx(T const& value)                     writes a T to a string
//   void               sml::X_toStream(T const& value, std::ostream&)     writes a T to a stream
//   void               sml::X_fromStream(T& value, std::istream&)         reads a T from a stream
//   void               X_toCxx(T* value, char const* bytes)               toCxx as `extern "C"`
//   char const*        X_fromCxx(T const* value)                          fromCxx as `extern "C"`
//
// Reading requires bytes that a writer of this library made, or that `sml/inspect/verify.hpp` found
// not to be unsafe: it checks nothing, and other bytes are undefined behaviour. It adds to the
// containers that `value` already has, so give it a new object. Pointers are not null. `value`,
// `bytes` and streams stay the caller's, and nothing keeps a pointer to them.
//
// All `fromCxx` return the same string, which the library owns and which is valid until the next
// call of any of them. The bytes may contain zeros; the `extern "C"` form does not return their
// number.
//
// They throw the exceptions of the standard library (`std::bad_alloc`; `std::length_error` and
// those of `std::stod` in reading) and what the stream throws; the `extern "C"` functions throw
// them, too. `fromCxx` that throws leaves the string of the last call as it was. No two threads may
// be in these functions at once: a library built with assertions names the two calls and aborts.

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
