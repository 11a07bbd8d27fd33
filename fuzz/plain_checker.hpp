#pragma once
// A second judge of bytes of unknown origin, as simple as can be and slow: the fuzzers compare
// verify with it. It shares no code with the walker; it follows the C++ types, and judges a number
// by reading it and printing it again.

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
    /// When unsafe; none where bytes are missing, which may be noticed sooner or later.
    std::optional<std::uint64_t> unsafe_offset;
};

/// Judges bytes as the root with this place in the list of roots. More than `depth` variants
/// and containers in one another are unsafe; there is no other limit.
Judgement judge(std::size_t root, std::string_view bytes, std::uint32_t depth);

}  // namespace plain
