#pragma once
// A second checker of bytes of unknown origin, simple and slow, with which the fuzz targets compare
// verify. It shares no code with the walker: it follows the C++ types, and checks a number by
// reading it and printing it again.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string_view>

namespace plain {

enum class Answer : std::uint8_t { good, odd, unsafe };

struct Judgement {
    Answer                  answer = Answer::good;
    std::set<std::uint64_t> odd_offsets;
    /// The offset of the unsafe finding. None if bytes are missing, which may be found at several
    /// offsets.
    std::optional<std::uint64_t> unsafe_offset;
};

/// Checks bytes as a value of the root with this index in the list of roots. More than `depth`
/// levels of variants and containers are unsafe; there is no other limit.
Judgement judge(std::size_t root, std::string_view bytes, std::uint32_t depth);

}  // namespace plain
