#pragma once
// What the fuzz targets share: inputs that are bytes of a root, and how a finding is told.

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

/// The input has at least one byte.
Input input_of(std::uint8_t const* data, std::size_t size);

/// The input for bytes of a root.
std::string input_for(sml::inspect::Root const& root, std::string_view bytes);

/// A number for choosing what else is to be tried with an input: the same one in every run.
std::uint64_t hash_of(Input const& input);

/// Says on stderr what is wrong with which bytes, then aborts.
[[noreturn]] void fail(Input const& input, std::string_view what);

/// As `fail`, unless `holds`.
void require(bool holds, Input const& input, std::string_view what);

}  // namespace fuzz
