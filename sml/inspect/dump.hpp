#pragma once
// Bytes of unknown origin as JSON, without making objects of them.

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
        lines,  ///< a line for each element or `[key, value]` of the container at `path`
    };
    Form form = Form::compact;

    /// The path of the part to write, spelled as in findings. Empty: the whole value.
    std::string path{};
};

struct Dumped {
    Answer               answer = Answer::good;
    std::uint64_t        odd_count = 0;
    std::vector<Finding> findings;      ///< the odd ones by offset, then the unsafe one
    bool                 found = true;  ///< there is a part at the path; for lines, a container
    /// The length in bytes of the longest prefix of the path that leads to a part.
    std::size_t reached = 0;
};

/// Writes the value that a reader makes of `bytes` to `out`, as JSON. The first unsafe finding ends
/// the output: `{"unsafe": {...}}` is written in place of the value that can't be read, and all
/// open brackets are closed. Returns the verdict and the findings.
///
/// If writing to `out` fails, it returns early, and the state of `out` shows that. Throws what
/// `out` throws, `std::bad_alloc` if there is no memory left, and `BudgetExceeded`, which is one,
/// if the call needs more than `Limits::own_memory`. It keeps no reference to its arguments.
SML_API Dumped dump(Root const& root, std::string_view bytes, std::ostream& out,
                    DumpOptions const& options = {});

}  // namespace sml::inspect
