#include "tests/allocations.hpp"

#include <cstddef>
#include <cstdlib>

namespace {

constexpr long none = std::numeric_limits<long>::max();

long asked_for = 0;
long first_failing = none;
long behind_last_failing = none;
long held_now = 0;

void* allocate(std::size_t size) {
    long const number = asked_for++;
    if (number >= first_failing && number < behind_last_failing) throw std::bad_alloc();
    void* const memory = std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr) throw std::bad_alloc();
    ++held_now;
    return memory;
}

void* allocate_or_null(std::size_t size) noexcept try {
    return allocate(size);
} catch (std::bad_alloc const&) {
    return nullptr;
}

void release(void* memory) noexcept {
    if (memory != nullptr) --held_now;
    std::free(memory);
}

}  // namespace

namespace allocations {

Shortage::Shortage(long granted, Later later) noexcept {
    asked_for = 0;
    first_failing = granted;
    behind_last_failing = later == Later::fail ? none : granted + 1;
}

Shortage::~Shortage() { first_failing = none; }

long Shortage::asked() const noexcept { return asked_for; }

long held() noexcept { return held_now; }

}  // namespace allocations

// The functions for arrays are replaced as well, because those of a sanitizer would not call the
// others. Not inlined: otherwise the compiler would report malloc() and `delete` as a mismatched
// pair.
[[gnu::noinline]] void* operator new(std::size_t size) { return allocate(size); }
[[gnu::noinline]] void* operator new[](std::size_t size) { return allocate(size); }
[[gnu::noinline]] void* operator new(std::size_t size, std::nothrow_t const&) noexcept {
    return allocate_or_null(size);
}
[[gnu::noinline]] void* operator new[](std::size_t size, std::nothrow_t const&) noexcept {
    return allocate_or_null(size);
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { release(memory); }
[[gnu::noinline]] void operator delete[](void* memory) noexcept { release(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { release(memory); }
[[gnu::noinline]] void operator delete[](void* memory, std::size_t) noexcept { release(memory); }
