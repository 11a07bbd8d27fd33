#pragma once
// Writes and reads values in tests, in memory and through streams, with hex literals that are cut
// at field boundaries.

#include <sml/core/archives.hpp>
#include <sml/core/transfer.hpp>
#include "tests/hex.hpp"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <string_view>
#include <utility>

namespace wire {

/// Writes over the bytes that `result` holds.
template <class T>
std::string write(T const& value, std::string result = {}) {
    sml::StringOArchive archive(result);
    sml::core::Writer{archive}.write_with_room(value);
    archive.finish();
    return result;
}

template <class T>
std::string write_to_stream(T const& value) {
    std::ostringstream stream;
    sml::core::write_to_stream(value, stream);
    return std::move(stream).str();
}

/// Reads the bytes over `value` and returns how many were read.
template <class T>
std::size_t read_over(T& value, std::string const& bytes) {
    sml::StringIArchive archive(bytes.data());
    sml::core::Reader{archive}(value);
    return static_cast<std::size_t>(archive.cursor() - bytes.data());
}

/// Reads a fresh value that must take all the bytes.
template <class T>
T read(std::string const& bytes) {
    T value{};
    EXPECT_EQ(read_over(value, bytes), bytes.size());
    return value;
}

/// Reads the bytes into a fresh value through the stream archive, and expects that all of them are
/// read and nothing after them.
template <class T>
T read_from_stream(std::string const& bytes) {
    std::istringstream stream(bytes + "x");
    T                  value{};
    sml::core::read_from_stream(value, stream);
    EXPECT_EQ(stream.tellg(), static_cast<std::streamoff>(bytes.size()));
    return value;
}

/// Expects that both writers write `value` as these bytes, and that both readers read them as a
/// value that is written as the same bytes.
template <class T>
void expect(T const& value, std::string_view hex_bytes) {
    std::string const expected = hex::bytes(hex_bytes);
    std::string const shown = hex::shown(expected);
    EXPECT_EQ(hex::shown(write(value)), shown);
    EXPECT_EQ(hex::shown(write_to_stream(value)), shown);
    EXPECT_EQ(hex::shown(write(read<T>(expected))), shown);
    EXPECT_EQ(hex::shown(write(read_from_stream<T>(expected))), shown);
}

}  // namespace wire
