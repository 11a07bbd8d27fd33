#pragma once
// Counts the heap of the whole process, including the number libraries. `counted_heap.cpp` replaces
// the allocation functions of the whole program, so tests that link it are separate programs, which
// cannot run under sanitizers.

#include <cstdint>

namespace counted_heap {

/// Starts counting from 0.
void start();

/// The most bytes that were allocated at once since `start`, including the allocator's overhead for
/// each block.
std::uint64_t peak();

}  // namespace counted_heap
