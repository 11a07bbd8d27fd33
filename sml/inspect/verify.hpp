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

enum class Answer : std::uint8_t {
    good,    ///< exactly what a writer could have made for the value that a reader gets
    odd,     ///< safe to read, but not what a writer makes
    unsafe,  ///< a reader could read beyond the bytes, throw, abort, overflow or stop early
};

struct VerifyOptions {
    Limits      limits{};
    std::size_t listed = 100;  ///< how many odd findings are told in full; all are counted

    /// The decimal point of the process that wrote the bytes, as its locale has it.
    std::string decimal_point = ".";

    /// Told how many bytes have been walked, now and then: for another thread to show.
    std::atomic<std::uint64_t>* progress = nullptr;

    /// Told of the odd findings listed, as they are met; they are not kept then. Of no use to
    /// `dump`.
    std::function<void(Finding const&)> listener{};

    WalkOptions walk() const { return {limits, decimal_point, progress}; }
};

struct Verdict {
    Answer               answer = Answer::good;
    std::uint64_t        odd_count = 0;
    std::vector<Finding> findings;  ///< the odd ones listed, then the unsafe one
    /// The first finding but for unset or unknown tags and enumerators: without one, dump and
    /// encode give the very same bytes.
    std::optional<Finding> reason_against_encoding;
    std::uint64_t          walked = 0;  ///< how many bytes were walked
    std::uint64_t          heap = 0;    ///< bytes of heap that reading takes at its peak, estimated
    std::uint64_t work = 0;  ///< comparisons of keys in hash tables, to read and destroy, estimated
    std::uint64_t elements = 0;  ///< entries of all containers
    std::uint64_t strings = 0;   ///< strings told whole
};

/// Walks the bytes as a value of the root. The first unsafe finding ends the walk. What is not
/// unsafe, `toCxx` of that root reads without a fault, without an exception and to the last byte,
/// in every locale and rounding mode, as long as memory lasts. Throws `std::bad_alloc` where
/// memory, or that of the limits for work of its own, does not do.
SML_API Verdict verify(Root const& root, std::string_view bytes, VerifyOptions const& options = {});

/// A root that bytes can be, or how far they came as one.
struct Candidate {
    Root const*   root;
    Answer        answer;
    std::uint64_t walked;  ///< how many bytes
};

/// All roots with the answer for these bytes: good ones, odd ones, then unsafe ones by how far
/// their walk came; equal ones in the order of `roots()`.
SML_API std::vector<Candidate> identify(std::string_view bytes, VerifyOptions const& options = {});

}  // namespace sml::inspect
