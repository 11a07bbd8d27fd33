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

/// `progress` rises from 0 to the number of bytes three times: in two walks, and in writing.
using CanonOptions = WalkOptions;

/// Writes the canonical form of `bytes`, a value of the root, to `out`: elements of sets and
/// entries of maps are sorted by the bytes of the key, then of the value, with strings compared by
/// text; string ids are assigned anew; numbers have a dot for the decimal point.
///
/// Requires that the bytes are good, or odd in unset or unknown tags and enumerators only: that
/// `verify` gives no `reason_against_encoding`. Allocates memory in proportion to the bytes.
///
/// Throws `std::invalid_argument` for unsafe bytes, what `out` throws, `std::bad_alloc` if there is
/// no memory left, and `BudgetExceeded`, which is one, if the call needs more than
/// `Limits::own_memory`. If writing fails without an exception, the state of `out` shows that.
SML_API void write_canonical(Root const& root, std::string_view bytes, std::ostream& out,
                             CanonOptions const& options = {});

/// Returns the SHA-256 of the canonical bytes, as 64 hexadecimal digits in lower case.
///
/// Requires and throws what `write_canonical` does, and throws `std::runtime_error` if SHA-256 is
/// not available.
SML_API std::string digest(Root const& root, std::string_view bytes,
                           CanonOptions const& options = {});

}  // namespace sml::inspect
