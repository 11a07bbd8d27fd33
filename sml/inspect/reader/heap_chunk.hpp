#pragma once
// The sizes of the blocks of this platform's allocator, glibc's. Large blocks are mapped.

#include <algorithm>
#include <cstdint>

namespace sml::inspect {

/// The size of the block that the allocator takes for so many bytes.
constexpr std::uint64_t chunk_of(std::uint64_t bytes) {
    constexpr std::uint64_t least = 32;
    constexpr std::uint64_t head = 8;
    constexpr std::uint64_t step = 16;
    constexpr std::uint64_t least_mapped = std::uint64_t{1} << 17;
    constexpr std::uint64_t page = 4096;
    if (bytes == 0) return 0;
    if (bytes >= least_mapped) return (bytes + 2 * head + page - 1) / page * page;
    return std::max(least, (bytes + head + step - 1) / step * step);
}

}  // namespace sml::inspect
