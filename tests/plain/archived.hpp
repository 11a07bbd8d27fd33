#pragma once
// Writes and reads values of any type by the archives and by the reference implementation.

#include <sml/core/archives.hpp>
#include <sml/core/transfer.hpp>
#include "bench/plain/plain.hpp"

#include <istream>
#include <ostream>
#include <sstream>
#include <string>
#include <utility>

namespace plain_test {

/// The bytes of the value. The archive writes over the bytes that `result` already has.
template <class T>
std::string archived(T const& value, std::string result = {}) {
    sml::StringOArchive archive(result);
    sml::core::Writer{archive}.write_with_room(value);
    archive.finish();
    return result;
}

template <class T>
std::string plainly_written(T const& value) {
    std::ostringstream stream;
    plain::to_stream(value, stream);
    return std::move(stream).str();
}

template <class T>
auto archiving(T const& value) {
    return [&value](std::ostream& stream) { sml::core::write_to_stream(value, stream); };
}

template <class T>
auto plainly_writing(T const& value) {
    return [&value](std::ostream& stream) { plain::to_stream(value, stream); };
}

template <class T>
void read_archived(T& value, std::istream& stream) {
    sml::core::read_from_stream(value, stream);
}

}  // namespace plain_test
