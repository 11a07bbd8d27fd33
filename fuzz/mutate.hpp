#pragma once
// The functions by which libFuzzer and a fuzz target call each other.

#include <cstddef>
#include <cstdint>

extern "C" {

/// libFuzzer's own mutation; returns the new size.
std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t max_size);

/// Defined by the target: changes the input in place and returns its new size.
std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t max_size,
                                    unsigned int seed);

/// May be defined by the target: called once before the first input.
int LLVMFuzzerInitialize(int* count, char*** arguments);

/// Defined by the target: checks one input. Returns 0, or -1 if the input is not to be kept.
int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

}  // extern "C"
