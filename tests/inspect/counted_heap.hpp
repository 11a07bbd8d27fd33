#pragma once
// Counts the heap of the whole process, number libraries included. A program that links
// `counted_heap.cpp` has its allocation functions replaced: it is a program of its own, and none
// for a sanitizer.

#include <cstdint>

namespace counted_heap {

/// Starts to count from 0.
void start();

/// The most bytes that were held at once since then, with what the allocator adds to each block.
std::uint64_t peak();

}  // namespace counted_heap
