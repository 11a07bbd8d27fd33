#pragma once

#include <cstdint>
#include <ostream>
#include <streambuf>
#include <string>

namespace bradep {

/// What a command prints at most, unless it is told otherwise.
constexpr std::uint64_t default_max_output = std::uint64_t{4} << 30;

/// A stream that hands on to `out` until `most` bytes have been written. What goes beyond makes the
/// stream bad, and nothing of it is handed on; so does a failure of `out`, which is bad then, too.
class LimitedOutput {
public:
    LimitedOutput(std::ostream& out, std::uint64_t most) : buffer_(out, most), stream_(&buffer_) {}

    std::ostream& stream() { return stream_; }

    /// To be called in the end. Throws DamagedInput, its text starting with `name`, where more was
    /// written than is handed on.
    void refuse_if_cut(std::string const& name) const;

private:
    class Buffer : public std::streambuf {
    public:
        Buffer(std::ostream& out, std::uint64_t most) : out_(out), most_(most), left_(most) {}

        bool          is_cut() const { return is_cut_; }
        std::uint64_t most() const { return most_; }

    private:
        std::streamsize xsputn(char const* bytes, std::streamsize count) override;
        int_type        overflow(int_type byte) override;
        int             sync() override;

        std::ostream& out_;
        std::uint64_t most_;
        std::uint64_t left_;
        bool          is_cut_ = false;
    };

    Buffer       buffer_;
    std::ostream stream_;
};

}  // namespace bradep
