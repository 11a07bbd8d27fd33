#pragma once
// What is known of a finding while two sides are compared.

#include <sml/results/hash.hpp>

#include <cstdint>
#include <tuple>

namespace sml::results {

/// How two findings were found to be the same; see docs/diff.md. The names are in `stages`.
enum class Stage : std::uint8_t {
    none,
    fingerprint,
    surroundings,
    text,
    function,
    place,
    message,
    moved,
};

/// Texts are hashes, names are numbers that both sides share.
struct Finding {
    static constexpr std::uint32_t none = ~std::uint32_t{0};

    Hash          message;       ///< without places; of a kernel's check the payload
    Hash          loose;         ///< the message without any numbers
    Hash          function;      ///< none if it is not known
    Hash          text;          ///< of the flagged line; none if it is not known
    Hash          surroundings;  ///< of the lines around; none if they are not known
    Hash          flow;          ///< of the steps of its flows, whatever their order
    Hash          content;       ///< of all else that is compared in a pair
    std::uint32_t rule = 0;      ///< with the tool, if both sides have that
    std::uint32_t file = 0;      ///< files are numbered in the order of their names
    std::int32_t  line = 0;      ///< 0 if it is not known
    std::int32_t  column = 0;
    std::uint32_t ordinal = 0;          ///< in the key
    std::uint32_t partner = none;       ///< index of the finding on the other side
    std::uint16_t set = 0;              ///< the result set, from 1
    Stage         stage = Stage::none;  ///< in which the partner was found

    bool has_partner() const { return partner != none; }

    /// Whether a pair of both would be unchanged.
    bool has_content_of(Finding const& other) const {
        return content == other.content && flow == other.flow;
    }

    /// The order in which equal findings are matched.
    auto rank() const { return std::tie(file, line, column, flow, content, text, ordinal, set); }
};

}  // namespace sml::results
