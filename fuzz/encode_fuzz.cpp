// Encodes any text as JSON. The bytes are safe and encodable, and their dump encodes to the same
// bytes.

#include <sml/inspect/dump.hpp>
#include <sml/inspect/encode.hpp>
#include "fuzz/input.hpp"
#include "fuzz/mutate.hpp"

#include <iostream>
#include <sstream>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    using namespace sml::inspect;

    std::string_view const json(reinterpret_cast<char const*>(data), size);
    std::ostringstream     out;
    Encoded const          encoded = encode(json, out);
    if (encoded.error) return 0;
    std::string const bytes = out.str();
    fuzz::Input const input{encoded.root, bytes};

    Verdict const verdict = verify(*encoded.root, bytes);
    fuzz::require(verdict.answer != Answer::unsafe, input, "encoded to unsafe bytes");
    fuzz::require(!verdict.reason_against_encoding, input, "encoded to bytes that can't be");

    std::ostringstream dumped;
    dump(*encoded.root, bytes, dumped);
    std::ostringstream again;
    fuzz::require(!encode(dumped.str(), again).error, input, "the dump can't be encoded");
    fuzz::require(again.str() == bytes, input, "the dump encodes to other bytes");
    return 0;
}
