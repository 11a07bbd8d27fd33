#pragma once
// Findings, and the limits and options of a walk.

#include <sml/core/export.hpp>

#include <atomic>
#include <cstdint>
#include <new>
#include <string>

namespace sml::inspect {

enum class Severity : std::uint8_t {
    odd,     ///< safe to read, but not what a writer makes
    unsafe,  ///< a reader could read beyond the bytes, throw, abort, overflow or stop early
};

/// What an odd finding means for a dump of the bytes.
enum class Oddity : std::uint8_t {
    unknown,   ///< unset or unknown tag or enumerator: dumped and encoded as it is
    repeated,  ///< repeated key or element: dropped, or its value read over the first one
    other,     ///< other oddity: not kept in the value that a reader makes, nor in a dump
};

/// One odd or unsafe place.
struct Finding {
    Severity      severity;
    std::uint64_t offset;  ///< of the first byte concerned
    std::string   path;    ///< as in `checks[("src/a.c",3)].category.OVFL.ovfl_data`
    std::string   expected;
    std::string   found;
};

/// Thrown if a call would allocate more memory for its own work than `Limits::own_memory`.
struct SML_API BudgetExceeded : std::bad_alloc {
    char const* what() const noexcept override { return "more working memory than allowed"; }
};

/// The limits of a walk. Bytes beyond any of them but `own_memory` are unsafe.
struct Limits {
    std::uint32_t depth =
        default_depth;  ///< levels of nested variants and containers, at most `depth_cap`
    std::uint64_t elements = std::uint64_t{1} << 32;    ///< elements and entries of all containers
    std::uint64_t text_bytes = std::uint64_t{1} << 30;  ///< bytes of one text
    std::uint64_t memory = std::uint64_t{1} << 36;      ///< reader's peak heap in bytes, estimated

    /// Comparisons of keys in a reader's hash tables, estimated. Only `verify` counts them.
    std::uint64_t work = 100'000'000;

    /// Bytes of memory that a call allocates for its own work. A call that needs more throws
    /// `BudgetExceeded`, which is a `std::bad_alloc`.
    std::uint64_t own_memory = std::uint64_t{1} << 33;

    // The walk is recursive, so no setting raises the limit of depth above `depth_cap`.
    static constexpr std::uint32_t default_depth = 400;
    static constexpr std::uint32_t depth_cap = 1000;
};

/// How bytes are walked.
struct WalkOptions {
    Limits limits{};

    /// The decimal point of the process that wrote the bytes, as its locale has it.
    std::string decimal_point = ".";

    /// If not null, the number of bytes walked is stored here from time to time, for another thread
    /// to show. It must outlive the call.
    std::atomic<std::uint64_t>* progress = nullptr;
};

}  // namespace sml::inspect
