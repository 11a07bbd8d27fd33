#pragma once
// Equal bytes for equal content, whatever the process, the order of insertion and the addresses of
// strings.

#include <sml/core/export.hpp>
#include <sml/inspect/finding.hpp>
#include <sml/inspect/type.hpp>

#include <atomic>
#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>

namespace sml::inspect {

/// Progress is told how many of the bytes are done: in two walks and in writing them.
using CanonOptions = WalkOptions;

/// Writes the canonical bytes of good bytes, or of bytes that are odd in unset or unknown tags and
/// enumerators only: entries of sets and tables sorted by the bytes of the key, then of the value,
/// with strings compared by text; strings numbered anew; numbers with a dot for the decimal
/// point. Takes memory in proportion to the bytes. Throws `std::invalid_argument` for unsafe bytes,
/// and `std::bad_alloc` where memory, or that of the limits for work of its own, does not do.
SML_API void write_canonical(Root const& root, std::string_view bytes, std::ostream& out,
                             CanonOptions const& options = {});

/// The SHA-256 of the canonical bytes, as 64 hexadecimal digits in lower case.
SML_API std::string digest(Root const& root, std::string_view bytes,
                           CanonOptions const& options = {});

}  // namespace sml::inspect
