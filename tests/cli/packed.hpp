#pragma once
// Bytes compressed as gzip does it.

#include <gtest/gtest.h>
#include <zlib.h>

#include <string>

namespace cli_test {

/// The bytes as one member of a gzip file.
inline std::string packed(std::string const& bytes) {
    ::z_stream stream{};
    EXPECT_EQ(::deflateInit2(&stream, 9, Z_DEFLATED, 16 + MAX_WBITS, 8, Z_DEFAULT_STRATEGY), Z_OK);
    std::string member(::deflateBound(&stream, bytes.size()), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
    stream.avail_in = static_cast<uInt>(bytes.size());
    stream.next_out = reinterpret_cast<Bytef*>(member.data());
    stream.avail_out = static_cast<uInt>(member.size());
    EXPECT_EQ(::deflate(&stream, Z_FINISH), Z_STREAM_END);
    member.resize(stream.total_out);
    ::deflateEnd(&stream);
    return member;
}

}  // namespace cli_test
