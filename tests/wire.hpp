#pragma once
// Writes and reads values in tests: with hex literals cut at field boundaries, through all four
// archives.

#include <sml/core/archives.hpp>
#include <sml/core/transfer.hpp>

#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>

namespace wire {

/// The bytes of a hex literal. Blanks between bytes are ignored. `'` quotes text: "'abc' 00".
inline std::string bytes(std::string_view hex) {
    std::string result;
    auto        digit = [](char c) -> int {
        if (c >= '0' && c <= '9') return c - '0';
        if (c >= 'A' && c <= 'F') return c - 'A' + 10;
        if (c >= 'a' && c <= 'f') return c - 'a' + 10;
        throw std::invalid_argument("no hex digit");
    };
    for (std::size_t i = 0; i < hex.size();) {
        if (hex[i] == ' ') {
            ++i;
        } else if (hex[i] == '\'') {
            std::size_t const end = hex.find('\'', i + 1);
            result += hex.substr(i + 1, end - i - 1);
            i = end + 1;
        } else {
            result += static_cast<char>(digit(hex.at(i)) * 16 + digit(hex.at(i + 1)));
            i += 2;
        }
    }
    return result;
}

/// The bytes in hex, for comparisons and messages.
inline std::string hex(std::string_view bytes) {
    constexpr char digits[] = "0123456789ABCDEF";
    std::string    result;
    for (char const c : bytes) {
        auto const byte = static_cast<unsigned char>(c);
        result += digits[byte >> 4];
        result += digits[byte & 15];
        result += ' ';
    }
    return result;
}

template <class T>
std::string write(T const& value) {
    std::string         bytes;
    sml::StringOArchive archive(bytes);
    sml::core::Writer{archive}(value);
    archive.finish();
    return bytes;
}

template <class T>
std::string write_to_stream(T const& value) {
    std::ostringstream  stream;
    sml::StreamOArchive archive(stream);
    sml::core::Writer{archive}(value);
    archive.finish();
    return stream.str();
}

/// Reads the bytes over `value` and returns how many were read.
template <class T>
std::size_t read_over(T& value, std::string const& bytes) {
    sml::StringIArchive archive(bytes.data());
    sml::core::Reader{archive}(value);
    return static_cast<std::size_t>(archive.cursor() - bytes.data());
}

template <class T>
void read_over_from_stream(T& value, std::istream& stream) {
    sml::StreamIArchive archive(stream);
    sml::core::Reader{archive}(value);
    archive.finish();
}

/// Reads the bytes into a fresh value, and expects that all of them are read.
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
    read_over_from_stream(value, stream);
    EXPECT_EQ(stream.tellg(), static_cast<std::streamoff>(bytes.size()));
    return value;
}

/// Expects that both writers write `value` as these bytes, and that both readers read them as a
/// value that is written as the same bytes.
template <class T>
void expect(T const& value, std::string_view hex_bytes) {
    std::string const expected = bytes(hex_bytes);
    EXPECT_EQ(hex(write(value)), hex(expected));
    EXPECT_EQ(hex(write_to_stream(value)), hex(expected));
    EXPECT_EQ(hex(write(read<T>(expected))), hex(expected));
    EXPECT_EQ(hex(write(read_from_stream<T>(expected))), hex(expected));
}

}  // namespace wire
