#pragma once
// Writes and reads values of any type by the archives and by the reference implementation.

#include <sml/core/transfer.hpp>
#include "tests/reference/plain.hpp"

#include <ostream>
#include <sstream>
#include <string>
#include <utility>

namespace plain_test {

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

}  // namespace plain_test
