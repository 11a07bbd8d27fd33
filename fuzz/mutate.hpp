#pragma once
// What libFuzzer has of a program for making new inputs from old ones.

#include <cstddef>
#include <cstdint>

extern "C" {

/// libFuzzer's own mutation; gives the new size.
std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t max_size);

/// Defined by the program: changes the input in place and gives its new size.
std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t max_size,
                                    unsigned int seed);

/// May be defined by the program: called once before the first input.
int LLVMFuzzerInitialize(int* count, char*** arguments);

/// Defined by the program: judges one input.
int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

}  // extern "C"
