#pragma once
// Equal bytes for equal content, whatever the process, the order of insertion and the addresses of
// strings.

#include "core/export.hpp"
#include "inspect/finding.hpp"
#include "inspect/type.hpp"

#include <ostream>
#include <string>
#include <string_view>

namespace sml::inspect {

/// Writes the canonical bytes of good bytes, or of bytes that are odd in unset or unknown tags and
/// enumerators only: entries of sets and tables sorted by the bytes of the key, then of the value,
/// with strings compared by text; strings numbered anew. Takes memory in proportion to
/// the bytes. Throws `std::invalid_argument` for unsafe bytes.
SML_API void write_canonical(Root const& root, std::string_view bytes, std::ostream& out,
                             Limits const& limits = {});

/// The SHA-256 of the canonical bytes, as 64 hexadecimal digits in lower case.
SML_API std::string digest(Root const& root, std::string_view bytes, Limits const& limits = {});

}  // namespace sml::inspect
