#pragma once
// Makes allocations fail on demand. `allocations.cpp` replaces the allocation functions of the
// whole program, so tests that link it are separate programs.

#include <limits>
#include <new>

namespace allocations {

/// Whether the allocations after the first failure fail as well or succeed.
enum class Later { fail, succeed };

/// While it lives, the first `granted` allocations succeed and the next one fails. Only one
/// Shortage may exist at a time.
class Shortage {
public:
    explicit Shortage(long granted, Later later = Later::fail) noexcept;
    ~Shortage();
    Shortage(Shortage const&) = delete;
    Shortage& operator=(Shortage const&) = delete;

    /// The number of allocations requested, including the failed ones.
    long asked() const noexcept;
};

/// Whether `operation` completes with `granted` allocations. It may throw nothing but
/// `std::bad_alloc`.
template <class Operation>
bool ends_within(long granted, Operation&& operation, Later later = Later::fail) {
    try {
        Shortage const shortage(granted, later);
        operation();
        return true;
    } catch (std::bad_alloc const&) {
        return false;
    }
}

/// Makes each allocation of `operation` fail once and calls `check` after each failure. Returns the
/// number of allocations. `operation` is run from the start each time.
template <class Operation, class Check>
long fail_each_allocation(Operation&& operation, Check&& check) {
    long allocations = 0;
    while (!ends_within(allocations, operation)) {
        check();
        ++allocations;
    }
    return allocations;
}

/// How many blocks of memory are held now.
long held() noexcept;

/// How many allocations `operation` asks for.
template <class Operation>
long count(Operation&& operation) {
    Shortage const none(std::numeric_limits<long>::max());
    operation();
    return none.asked();
}

}  // namespace allocations
