#pragma once
// What the fuzz targets share: inputs that are bytes of a root, and the report of a finding.

#include <sml/inspect/type.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace fuzz {

/// The first byte of an input chooses the root, the others are the root's bytes.
struct Input {
    sml::inspect::Root const* root;
    std::string_view          bytes;

    std::size_t root_index() const {
        return static_cast<std::size_t>(root - sml::inspect::roots().data());
    }
};

/// The input of libFuzzer as an `Input`. There must be at least one byte, and the bytes must
/// outlive the result.
Input input_of(std::uint8_t const* data, std::size_t size);

/// The bytes of the input for bytes of a root.
std::string input_for(sml::inspect::Root const& root, std::string_view bytes);

/// A hash of the input, to choose what else is tried with it. It is the same in every run.
std::uint64_t hash_of(Input const& input);

/// Writes to stderr what is wrong and with which bytes, then aborts.
[[noreturn]] void fail(Input const& input, std::string_view what);

/// As `fail`, unless `holds`.
void require(bool holds, Input const& input, std::string_view what);

}  // namespace fuzz
