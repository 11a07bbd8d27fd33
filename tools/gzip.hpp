#pragma once
// Packs as gzip does, and unpacks.

#include <zlib.h>

#include <cstddef>
#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>

namespace bradep {

bool is_gzip(std::string_view bytes);

/// Unpacks a gzip file of one or several members. The bytes must outlive this object.
class GzipReader {
public:
    /// `name` stands in messages.
    GzipReader(std::string_view packed, std::string const& name);
    ~GzipReader();
    GzipReader(GzipReader const&) = delete;
    GzipReader& operator=(GzipReader const&) = delete;

    /// Writes up to `most` bytes to `to` and returns how many, 0 only at the end. Throws
    /// DamagedInput.
    std::size_t read(char* to, std::size_t most);

private:
    void              give_input();
    void              start_next_member();
    [[noreturn]] void damaged(std::string const& what) const;

    std::string_view rest_;  // not given to the stream yet
    std::string      name_;
    ::z_stream       stream_{};
    bool             is_over_ = false;
};

/// A stream whose bytes are packed into another one.
class GzipOutput {
public:
    /// The stream must outlive this object.
    explicit GzipOutput(std::ostream& out) : buffer_(out), stream_(&buffer_) {}

    std::ostream& stream() { return stream_; }

    /// Must be called after the last byte.
    void finish() { buffer_.finish(); }

private:
    class Buffer : public std::streambuf {
    public:
        explicit Buffer(std::ostream& out);
        ~Buffer() override;

        void finish();

    private:
        std::streamsize xsputn(char const* bytes, std::streamsize count) override;
        int_type        overflow(int_type byte) override;
        bool            pack(int flush);

        std::ostream& out_;
        ::z_stream    packer_{};
    };

    Buffer       buffer_;
    std::ostream stream_;
};

}  // namespace bradep
