#pragma once
// The descriptors as JSON, for tools in other languages and for comparing versions.

#include <sml/core/export.hpp>
#include <sml/inspect/type.hpp>

#include <ostream>
#include <span>
#include <string>

namespace sml::inspect {

/// Writes `{"roots": [...], "types": {...}}` to `out`, with all types that the roots reach. If
/// writing to `out` fails, it returns early, and the state of `out` shows that. Throws what `out`
/// throws.
SML_API void write_schema(std::span<Root const> roots, std::ostream& out);

/// Returns the SHA-256 of a root's wire form, as 64 hexadecimal digits in lower case. It depends on
/// all that bytes depend on: kinds, and names and order of fields, arms and enumerators. It does
/// not depend on the names of classes, nor on how a reader holds a value. Throws
/// `std::runtime_error` if SHA-256 is not available.
SML_API std::string wire_digest(Root const& root);

/// Returns a type in one line, as messages name it.
SML_API std::string type_text(Type const& type);

}  // namespace sml::inspect
