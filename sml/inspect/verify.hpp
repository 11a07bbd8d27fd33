#pragma once
// Whether bytes of unknown origin are safe to read, and what is odd about them.

#include <sml/core/export.hpp>
#include <sml/inspect/finding.hpp>
#include <sml/inspect/type.hpp>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

namespace sml::inspect {

/// The verdict on bytes.
enum class Answer : std::uint8_t {
    good,    ///< exactly what a writer could have made for the value that a reader gets
    odd,     ///< safe to read, but not what a writer makes
    unsafe,  ///< a reader could read beyond the bytes, throw, abort, overflow or stop early
};

struct VerifyOptions {
    Limits      limits{};
    std::size_t listed = 100;  ///< how many odd findings are listed; all are counted

    /// The decimal point of the process that wrote the bytes, as its locale has it.
    std::string decimal_point = ".";

    /// If not null, the number of bytes walked is stored here from time to time, for another thread
    /// to show. It must outlive the call.
    std::atomic<std::uint64_t>* progress = nullptr;

    /// If set, it is called during the walk with each odd finding that would be listed, and the
    /// verdict does not hold these. They come in the order of the walk: a repeated key after the
    /// findings in its value. `dump` must not be given a listener: it would lack these findings.
    std::function<void(Finding const&)> listener{};

    /// The part of these options that every walk has.
    WalkOptions walk() const { return {limits, decimal_point, progress}; }
};

struct Verdict {
    Answer               answer = Answer::good;
    std::uint64_t        odd_count = 0;
    std::vector<Finding> findings;  ///< the odd ones by offset, then the unsafe one
    /// The first finding other than an unset or unknown tag or an unknown enumerator. If there is
    /// none, `encode` makes the very same bytes of the dump of the bytes.
    std::optional<Finding> reason_against_encoding;
    std::uint64_t          walked = 0;  ///< the number of bytes walked
    std::uint64_t          heap = 0;    ///< bytes of a reader's heap at its peak, estimated
    /// Comparisons of keys in a reader's hash tables, while it reads and when the object is
    /// destroyed, estimated.
    std::uint64_t work = 0;
    std::uint64_t elements = 0;  ///< elements and entries of all containers
    std::uint64_t strings = 0;   ///< definitions of strings
};

/// Walks `bytes` as a value of the root and returns the verdict and the findings. The first unsafe
/// finding ends the walk. It keeps no reference to its arguments. Several threads may call it at
/// once.
///
/// Bytes that are not unsafe are read by `toCxx` of this root to the last byte, without a fault and
/// without an exception, in every locale and rounding mode, as long as there is memory.
///
/// Throws `std::bad_alloc` if there is no memory left, `BudgetExceeded`, which is one, if the call
/// needs more than `Limits::own_memory`, and what the listener throws.
SML_API Verdict verify(Root const& root, std::string_view bytes, VerifyOptions const& options = {});

/// The verdict on bytes as a value of one root.
struct Candidate {
    Root const*   root;
    Answer        answer;
    std::uint64_t walked;  ///< the number of bytes walked
};

/// Verifies `bytes` as a value of each root. Returns all roots: those for which the bytes are good,
/// then odd, then unsafe; of the unsafe ones first those whose walk came further. Equal ones are in
/// the order of `roots()`. `options.listed` and `options.listener` are not used.
///
/// Throws what `verify` throws.
SML_API std::vector<Candidate> identify(std::string_view bytes, VerifyOptions const& options = {});

}  // namespace sml::inspect
