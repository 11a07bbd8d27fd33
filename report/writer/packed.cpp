#include <report/writer/packed.hpp>

#include <libdeflate.h>

#include <cstddef>
#include <cstdint>
#include <new>

namespace bradep::report {

std::string base64_of(std::string_view bytes) {
    constexpr char const* alphabet =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    auto const byte = [&](std::size_t at) {
        return at < bytes.size() ? std::uint32_t{static_cast<unsigned char>(bytes[at])} : 0;
    };
    std::string text((bytes.size() + 2) / 3 * 4, '=');
    std::size_t to = 0;
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
        auto const bits = byte(at) << 16 | byte(at + 1) << 8 | byte(at + 2);
        text[to++] = alphabet[bits >> 18];
        text[to++] = alphabet[bits >> 12 & 63];
        if (at + 1 < bytes.size()) text[to] = alphabet[bits >> 6 & 63];
        ++to;
        if (at + 2 < bytes.size()) text[to] = alphabet[bits & 63];
        ++to;
    }
    return text;
}

void Packer::Free::operator()(libdeflate_compressor* compressor) const {
    ::libdeflate_free_compressor(compressor);
}

Packer::Packer() {
    constexpr int level = 6;
    compressor_.reset(::libdeflate_alloc_compressor(level));
    if (!compressor_) throw std::bad_alloc();
}

std::string Packer::packed(std::string_view content) {
    deflated_.resize(::libdeflate_deflate_compress_bound(compressor_.get(), content.size()));
    auto const size = ::libdeflate_deflate_compress(
        compressor_.get(), content.data(), content.size(), deflated_.data(), deflated_.size());
    return base64_of(std::string_view(deflated_).substr(0, size));
}

}  // namespace bradep::report
