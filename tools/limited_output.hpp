#pragma once

#include <cstdint>
#include <ostream>
#include <streambuf>
#include <string>

namespace bradep {

/// The default of --max-output: the most bytes that a command prints.
constexpr std::uint64_t default_max_output = std::uint64_t{4} << 30;

/// A stream that passes bytes on to `out`, up to `most` bytes. A write that exceeds `most` is not
/// passed on and makes the stream bad. A failure of `out` makes both streams bad.
class LimitedOutput {
public:
    LimitedOutput(std::ostream& out, std::uint64_t most) : buffer_(out, most), stream_(&buffer_) {}

    std::ostream& stream() { return stream_; }

    /// Call it after the last write. Throws DamagedInput, with a message that starts with `name`,
    /// if a write was not passed on.
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
