#pragma once
// Allocations that fail on demand. A program that links `allocations.cpp` has its allocation
// functions replaced: it is a program of its own.

#include <limits>
#include <new>

namespace allocations {

/// What the allocations behind the first that fails do.
enum class Later { fail, succeed };

/// While it lives, so many allocations are granted, then they fail. One at a time.
class Shortage {
public:
    explicit Shortage(long granted, Later later = Later::fail) noexcept;
    ~Shortage();
    Shortage(Shortage const&) = delete;
    Shortage& operator=(Shortage const&) = delete;

    /// How many allocations have been asked for, the failed ones included.
    long asked() const noexcept;
};

/// Whether `operation` ends within so many allocations. It may throw nothing but `std::bad_alloc`.
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

/// Lets each allocation of `operation` fail once and calls `check` after each failure; gives how
/// many there were. `operation` starts anew each time.
template <class Operation, class Check>
long fail_each_allocation(Operation&& operation, Check&& check) {
    long allocations = 0;
    while (!ends_within(allocations, operation)) {
        check();
        ++allocations;
    }
    return allocations;
}

/// How many allocations `operation` asks for.
template <class Operation>
long count(Operation&& operation) {
    Shortage const none(std::numeric_limits<long>::max());
    operation();
    return none.asked();
}

}  // namespace allocations
