#pragma once
// The reference implementation: the required behaviour with no optimisation. The library's time is
// measured against it, and the library's bytes and objects are compared with it.

#include "tests/reference/reader.hpp"
#include "tests/reference/writer.hpp"

#include <sstream>
#include <string>
#include <utility>

namespace plain {

/// The bytes of the latest `from_cxx`, of any type.
inline std::string shared_result;

template <class Root>
std::string const& from_cxx(Root const& value) {
    std::stringstream stream(std::ios::in | std::ios::out | std::ios::binary);
    Writer{stream}(value);
    shared_result = std::move(stream).str();
    return shared_result;
}

/// Returns a pointer to the byte after the value.
template <class Root>
char const* to_cxx(Root& value, char const* bytes) {
    Buffer buffer(bytes);
    Reader<Buffer>{buffer}(value);
    return buffer.at();
}

template <class Root>
void to_stream(Root const& value, std::ostream& stream) {
    Writer{stream}(value);
}

template <class Root>
void from_stream(Root& value, std::istream& stream) {
    Stream source(stream);
    Reader<Stream>{source}(value);
}

}  // namespace plain
