#pragma once
// Output of bytes to a function.

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace sml::inspect {

/// Calls the function with pieces of at least 64 KiB, and with the last bytes when `flush` is
/// called.
class PieceOutput {
public:
    explicit PieceOutput(std::function<void(std::string_view)> write) : write_(std::move(write)) {}

    void append(std::string_view bytes) {
        if (bytes.size() < least_piece) buffer_ += bytes;
        if (buffer_.size() < least_piece && bytes.size() < least_piece) return;
        flush();
        if (bytes.size() >= least_piece) write_(bytes);
    }

    void flush() {
        if (!buffer_.empty()) write_(buffer_);
        buffer_.clear();
    }

private:
    static constexpr std::size_t least_piece = std::size_t{1} << 16;

    std::function<void(std::string_view)> write_;
    std::string                           buffer_;
};

}  // namespace sml::inspect
