#pragma once
// What a walk says about bytes that are not as a writer makes them.

#include <sml/core/export.hpp>

#include <atomic>
#include <cstdint>
#include <new>
#include <string>

namespace sml::inspect {

enum class Severity : std::uint8_t {
    odd,     ///< defined for every reader, but no writer makes it
    unsafe,  ///< a reader could read beyond the bytes, throw, abort, overflow or stop early
};

enum class Oddity : std::uint8_t {
    unknown,   ///< an unset variant, an unknown tag or enumerator: told and encoded as it is
    repeated,  ///< an entry whose key is there already
    other,     ///< lost in the value that a reader has
};

/// One thing found.
struct Finding {
    Severity      severity;
    std::uint64_t offset;  ///< of the first byte concerned
    std::string   path;    ///< as in `checks[("src/a.c",3)].category.OVFL.ovfl_data`
    std::string   expected;
    std::string   found;
};

/// Thrown where a call would take more memory for work of its own than its limits allow.
struct SML_API BudgetExceeded : std::bad_alloc {
    char const* what() const noexcept override { return "more working memory than allowed"; }
};

/// What a walk puts up with. Beyond any of these but `own_memory` the bytes are unsafe.
struct Limits {
    std::uint32_t depth =
        default_depth;  ///< variants and containers in one another, up to `depth_cap`
    std::uint64_t elements = std::uint64_t{1} << 32;    ///< of all containers together
    std::uint64_t text_bytes = std::uint64_t{1} << 30;  ///< of one text
    std::uint64_t memory = std::uint64_t{1} << 36;      ///< a reader's heap at its peak, estimated

    /// Comparisons of keys in a reader's hash tables, estimated. Judged by `verify` alone.
    std::uint64_t work = 100'000'000;

    /// Bytes that the call itself takes beyond those given to it. Where they do not do, it throws
    /// `BudgetExceeded`, which is a `std::bad_alloc`.
    std::uint64_t own_memory = std::uint64_t{1} << 33;

    // The walk itself recurses, so there is a depth that no setting goes beyond.
    static constexpr std::uint32_t default_depth = 400;
    static constexpr std::uint32_t depth_cap = 1000;
};

/// How bytes are walked.
struct WalkOptions {
    Limits limits{};

    /// The decimal point of the process that wrote the bytes, as its locale has it.
    std::string decimal_point = ".";

    /// Told how many bytes have been walked, now and then: for another thread to show.
    std::atomic<std::uint64_t>* progress = nullptr;
};

}  // namespace sml::inspect
