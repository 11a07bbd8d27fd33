#pragma once

#include <ostream>
#include <streambuf>

namespace bradep {

/// A stream that passes everything on to `out`, and keeps the `errno` of the first failure.
class NotingOutput {
public:
    explicit NotingOutput(std::ostream& out) : buffer_(out), stream_(&buffer_) {}

    std::ostream& stream() { return stream_; }

    /// The `errno` of the first failure; 0 if nothing failed or the reason is unknown.
    int error() const { return buffer_.error; }

private:
    class Buffer : public std::streambuf {
    public:
        explicit Buffer(std::ostream& out) : out_(out) {}

        int error = 0;

    private:
        std::streamsize xsputn(char const* bytes, std::streamsize count) override;
        int_type        overflow(int_type byte) override;
        int             sync() override;
        template <class Put>
        bool noting(Put const& put);

        std::ostream& out_;
    };

    Buffer       buffer_;
    std::ostream stream_;
};

}  // namespace bradep
