#pragma once
// Makes bytes of the JSON form.

#include <sml/core/export.hpp>
#include <sml/inspect/finding.hpp>
#include <sml/inspect/position.hpp>
#include <sml/inspect/type.hpp>

#include <atomic>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

namespace sml::inspect {

/// Why a JSON text can't be encoded.
struct EncodeError {
    Position    position;
    std::string path;  ///< spelled as in findings
    std::string expected;
    std::string found;
};

struct EncodeOptions {
    /// Of these, `depth`, `elements`, `text_bytes` and `own_memory` apply.
    Limits limits{};

    /// If not null, the number of bytes of the text that have been read is stored here from time to
    /// time, for another thread to show. It must outlive the call.
    std::atomic<std::uint64_t>* progress = nullptr;
};

struct Encoded {
    Root const*                root = nullptr;  ///< of the bytes; null if there is an error
    std::optional<EncodeError> error;           ///< if there is one, the output is of no use
};

/// Writes the bytes for `json`, an object `{"root": STEM, "value": ...}` as `dump` makes it, to
/// `out`, from its present position on. `out` must be able to seek. Returns the root, or why the
/// text can't be encoded; what was written until then is not to be used.
///
/// Throws what `out` throws, `std::bad_alloc` if there is no memory left, and `BudgetExceeded`,
/// which is one, if the call needs more than `Limits::own_memory`. If writing fails without an
/// exception, the state of `out` shows that. It keeps no reference to its arguments.
SML_API Encoded encode(std::string_view json, std::ostream& out, EncodeOptions const& options = {});

}  // namespace sml::inspect
