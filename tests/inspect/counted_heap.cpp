#include "tests/inspect/counted_heap.hpp"

#include <malloc.h>

#include <algorithm>
#include <cstddef>

extern "C" {
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void* __libc_memalign(std::size_t, std::size_t);
void  __libc_free(void*);
}

namespace {

std::int64_t held = 0;
std::int64_t most = 0;

std::int64_t size_of(void* block) {
    constexpr std::size_t head = 8;
    return block == nullptr ? 0 : static_cast<std::int64_t>(::malloc_usable_size(block) + head);
}

void* counted(void* block) {
    held += size_of(block);
    most = std::max(most, held);
    return block;
}

}  // namespace

namespace counted_heap {

void start() { held = most = 0; }

std::uint64_t peak() { return static_cast<std::uint64_t>(most); }

}  // namespace counted_heap

// The libraries must find them, too.
#pragma GCC visibility push(default)
extern "C" {

void* malloc(std::size_t size) { return counted(__libc_malloc(size)); }
void* calloc(std::size_t count, std::size_t size) { return counted(__libc_calloc(count, size)); }
void* memalign(std::size_t alignment, std::size_t size) {
    return counted(__libc_memalign(alignment, size));
}
void* aligned_alloc(std::size_t alignment, std::size_t size) { return memalign(alignment, size); }

void* realloc(void* block, std::size_t size) {
    held -= size_of(block);
    return counted(__libc_realloc(block, size));
}

void free(void* block) {
    held -= size_of(block);
    __libc_free(block);
}

}  // extern "C"
#pragma GCC visibility pop
