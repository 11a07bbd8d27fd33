#pragma once
// Output in which a count can be written after its entries.

#include <cstdint>
#include <cstring>
#include <ostream>
#include <string>
#include <string_view>

namespace sml::inspect {

/// Writes to a stream that can seek, from its present position on. The stream must outlive this
/// object. The last bytes are written when `flush` is called.
class PatchedOutput {
public:
    explicit PatchedOutput(std::ostream& out) : out_(out), start_(out.tellp()) {}

    std::uint64_t offset() const noexcept { return flushed_ + buffer_.size(); }

    void append(std::string_view bytes) {
        if (buffer_.size() >= flushed_at || bytes.size() >= flushed_at) flush();
        if (bytes.size() < flushed_at) {
            buffer_ += bytes;
            return;
        }
        out_.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        flushed_ += bytes.size();
    }

    /// Replaces the word at an offset, which was appended before.
    void patch(std::uint64_t offset, std::uint32_t word) {
        if (offset >= flushed_) {
            std::memcpy(buffer_.data() + (offset - flushed_), &word, sizeof word);
            return;
        }
        flush();
        out_.seekp(start_ + static_cast<std::streamoff>(offset));
        out_.write(reinterpret_cast<char const*>(&word), sizeof word);
        out_.seekp(start_ + static_cast<std::streamoff>(flushed_));
    }

    void flush() {
        out_.write(buffer_.data(), static_cast<std::streamsize>(buffer_.size()));
        flushed_ += buffer_.size();
        buffer_.clear();
    }

private:
    static constexpr std::size_t flushed_at = std::size_t{1} << 20;

    std::ostream&  out_;
    std::streampos start_;
    std::string    buffer_;
    std::uint64_t  flushed_ = 0;
};

}  // namespace sml::inspect
