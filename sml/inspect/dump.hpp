#pragma once
// Bytes of unknown origin as JSON, straight from the walk.

#include <sml/core/export.hpp>
#include <sml/inspect/verify.hpp>

#include <ostream>
#include <string>
#include <string_view>

namespace sml::inspect {

struct DumpOptions {
    VerifyOptions walk{};

    enum class Form : std::uint8_t {
        compact,
        pretty,
        lines,  ///< of the container at `path`: one line for an element or a `[key, value]`
    };
    Form form = Form::compact;

    /// Only this part, as findings print paths. Empty: all.
    std::string path{};
};

struct Dumped {
    Answer               answer = Answer::good;
    std::uint64_t        odd_count = 0;
    std::vector<Finding> findings;      ///< the odd ones listed, then the unsafe one
    bool                 found = true;  ///< whether the path led to something, to a table for lines
    std::size_t          reached = 0;   ///< how many bytes of the path led to something, at best
};

/// Writes what a reader of the bytes would have. An unsafe byte ends the value: it is marked by
/// `{"unsafe": {...}}` where a value was to stand, and what is open is closed. Ends early where
/// `out` takes no more, which its state says. Throws `std::bad_alloc` where memory, or that of the
/// limits for work of its own, does not do, and what `out` throws.
SML_API Dumped dump(Root const& root, std::string_view bytes, std::ostream& out,
                    DumpOptions const& options = {});

}  // namespace sml::inspect
