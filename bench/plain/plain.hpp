#pragma once
// A plain reference for the library: the required behaviour with nothing done for speed. It is what
// the library's time is measured against, and what its bytes and objects are compared with.

#include "bench/plain/reader.hpp"
#include "bench/plain/writer.hpp"

#include <sstream>
#include <string>
#include <utility>

namespace plain {

/// The string that holds the bytes of the latest `from_cxx` of any type.
inline std::string shared_result;

template <class Root>
std::string const& from_cxx(Root const& value) {
    std::stringstream stream(std::ios::in | std::ios::out | std::ios::binary);
    Writer{stream}(value);
    shared_result = stream.str();
    return shared_result;
}

/// Gives the byte behind the value's last one.
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
