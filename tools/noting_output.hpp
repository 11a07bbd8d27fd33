#pragma once

#include <ostream>
#include <streambuf>

namespace bradep {

/// A stream that hands everything on to `out`, and notes why that failed first.
class NotingOutput {
public:
    explicit NotingOutput(std::ostream& out) : buffer_(out), stream_(&buffer_) {}

    std::ostream& stream() { return stream_; }

    /// The `errno` of the first failure; 0 where none is known.
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
