#pragma once
// The word that a string starts with.

#include <cstdint>

namespace sml::inspect {

/// A string that is written in full has its id there with the sign changed, and its length and
/// text behind it; any other one is the id of its text alone. Every word is one of the two: 0 and
/// the least number are of strings in full, under ids that no word refers to.
class StringWord {
public:
    explicit constexpr StringWord(std::int32_t word) noexcept : word_(word) {}

    static constexpr StringWord in_full(std::int32_t id) noexcept {
        return StringWord(with_other_sign(id));
    }
    static constexpr StringWord reference(std::int32_t id) noexcept { return StringWord(id); }

    /// As it stands on the wire.
    constexpr std::int32_t word() const noexcept { return word_; }

    /// Whether it refers to an id; otherwise the string is written in full behind it.
    constexpr bool refers() const noexcept { return is_referable(word_); }

    /// Whether it refers to an id up to this one, told by one comparison.
    constexpr bool refers_up_to(std::int32_t id) const noexcept {
        return static_cast<std::uint32_t>(word_) - 1 < static_cast<std::uint32_t>(id);
    }

    constexpr std::int32_t id() const noexcept { return refers() ? word_ : with_other_sign(word_); }

    /// Whether there is a word that refers to an id.
    static constexpr bool is_referable(std::int32_t id) noexcept { return id >= 1; }

private:
    /// The least number stays what it is.
    static constexpr std::int32_t with_other_sign(std::int32_t word) noexcept {
        return static_cast<std::int32_t>(0u - static_cast<std::uint32_t>(word));
    }

    std::int32_t word_;
};

}  // namespace sml::inspect
