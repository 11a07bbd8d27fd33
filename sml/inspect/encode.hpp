#pragma once
// From the JSON form back to bytes.

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
    std::string path;  ///< as findings print paths
    std::string expected;
    std::string found;
};

struct EncodeOptions {
    Limits limits{};

    /// Told how many bytes of the text have been read, now and then.
    std::atomic<std::uint64_t>* progress = nullptr;
};

struct Encoded {
    Root const*                root = nullptr;
    std::optional<EncodeError> error;  ///< what was written until then is to be thrown away
};

/// Writes the bytes of a `{"root": STEM, "value": ...}` as `dump` makes it to a stream that can
/// seek.
SML_API Encoded encode(std::string_view json, std::ostream& out, EncodeOptions const& options = {});

}  // namespace sml::inspect
