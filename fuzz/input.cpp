#include "fuzz/input.hpp"

#include "tests/hex.hpp"

#include <cstdlib>
#include <iostream>

namespace fuzz {

Input input_of(std::uint8_t const* data, std::size_t size) {
    auto const all = sml::inspect::roots();
    return {&all[data[0] % all.size()], {reinterpret_cast<char const*>(data) + 1, size - 1}};
}

std::string input_for(sml::inspect::Root const& root, std::string_view bytes) {
    Input const input{&root, bytes};
    return static_cast<char>(input.root_index()) + std::string(bytes);
}

std::uint64_t hash_of(Input const& input) {
    std::uint64_t hash = 0xcbf29ce484222325 + input.root_index();
    for (char const c : input.bytes)
        hash = (hash ^ static_cast<unsigned char>(c)) * std::uint64_t{0x100000001b3};
    return hash ^ hash >> 32;
}

void fail(Input const& input, std::string_view what) {
    std::cerr << "FINDING: " << what << "\nroot: " << input.root->stem
              << "\nbytes: " << hex::shown(input.bytes) << std::endl;
    std::abort();
}

void require(bool holds, Input const& input, std::string_view what) {
    if (!holds) fail(input, what);
}

}  // namespace fuzz
