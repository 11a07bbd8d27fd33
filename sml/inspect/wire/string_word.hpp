#pragma once
// The first word of a string.

#include <cstdint>

namespace sml::inspect {

/// In a definition, this word is the id with its sign changed, and the length and the text follow.
/// In a back-reference it is the id, and nothing follows. Every word is one of the two: 0 and
/// INT32_MIN are definitions, of ids that no word can refer to.
class StringWord {
public:
    explicit constexpr StringWord(std::int32_t word) noexcept : word_(word) {}

    static constexpr StringWord in_full(std::int32_t id) noexcept {
        return StringWord(with_other_sign(id));
    }
    static constexpr StringWord reference(std::int32_t id) noexcept { return StringWord(id); }

    /// The word as it is in the bytes.
    constexpr std::int32_t word() const noexcept { return word_; }

    /// Whether the string is a back-reference; else it is a definition.
    constexpr bool refers() const noexcept { return is_referable(word_); }

    /// Whether it is a back-reference to an id up to this one, found out by one comparison.
    constexpr bool refers_up_to(std::int32_t id) const noexcept {
        return static_cast<std::uint32_t>(word_) - 1 < static_cast<std::uint32_t>(id);
    }

    constexpr std::int32_t id() const noexcept { return refers() ? word_ : with_other_sign(word_); }

    /// Whether a word can refer to this id.
    static constexpr bool is_referable(std::int32_t id) noexcept { return id >= 1; }

private:
    /// INT32_MIN stays as it is.
    static constexpr std::int32_t with_other_sign(std::int32_t word) noexcept {
        return static_cast<std::int32_t>(0u - static_cast<std::uint32_t>(word));
    }

    std::int32_t word_;
};

}  // namespace sml::inspect
