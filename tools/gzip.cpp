#include "gzip.hpp"

#include "errors.hpp"

#include <algorithm>
#include <limits>
#include <new>

namespace bradep {

namespace {

constexpr int gzip_form = 16 + MAX_WBITS;

uInt at_most_all(std::size_t size) {
    return static_cast<uInt>(std::min<std::size_t>(size, std::numeric_limits<uInt>::max()));
}

}  // namespace

bool is_gzip(std::string_view bytes) { return bytes.starts_with("\x1F\x8B"); }

GzipReader::GzipReader(std::string_view packed, std::string const& name)
    : rest_(packed), name_(name) {
    if (::inflateInit2(&stream_, gzip_form) != Z_OK) throw std::bad_alloc();
}

GzipReader::~GzipReader() { ::inflateEnd(&stream_); }

std::size_t GzipReader::read(char* to, std::size_t most) {
    auto const room = at_most_all(most);
    stream_.next_out = reinterpret_cast<Bytef*>(to);
    stream_.avail_out = room;
    while (stream_.avail_out == room && !is_over_) {
        give_input();
        int const code = ::inflate(&stream_, Z_NO_FLUSH);
        if (code == Z_MEM_ERROR) throw std::bad_alloc();
        if (code == Z_STREAM_END)
            start_next_member();
        else if (code == Z_BUF_ERROR)
            damaged("it ends too early");
        else if (code != Z_OK)
            damaged(stream_.msg ? stream_.msg : "unknown form");
    }
    return room - stream_.avail_out;
}

void GzipReader::give_input() {
    if (stream_.avail_in > 0) return;
    stream_.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(rest_.data()));
    stream_.avail_in = at_most_all(rest_.size());
    rest_.remove_prefix(stream_.avail_in);
}

// Zeros may fill up the file behind the last member.
void GzipReader::start_next_member() {
    std::string_view const given(reinterpret_cast<char const*>(stream_.next_in), stream_.avail_in);
    auto const             is_zero = [](char c) { return c == '\0'; };
    is_over_ = std::ranges::all_of(given, is_zero) && std::ranges::all_of(rest_, is_zero);
    if (is_over_) return;
    std::string const start = std::string(given.substr(0, 2)) + std::string(rest_.substr(0, 2));
    if (!is_gzip(start)) damaged("other bytes follow its end");
    ::inflateReset(&stream_);
}

void GzipReader::damaged(std::string const& what) const {
    throw DamagedInput(name_ + ": compressed by gzip, but damaged: " + what);
}

GzipOutput::Buffer::Buffer(std::ostream& out) : out_(out) {
    constexpr int memory_level = 8;
    if (::deflateInit2(&packer_, Z_DEFAULT_COMPRESSION, Z_DEFLATED, gzip_form, memory_level,
                       Z_DEFAULT_STRATEGY) != Z_OK)
        throw std::bad_alloc();
}

GzipOutput::Buffer::~Buffer() { ::deflateEnd(&packer_); }

std::streamsize GzipOutput::Buffer::xsputn(char const* bytes, std::streamsize count) {
    packer_.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes));
    for (auto left = static_cast<std::size_t>(count); left > 0;) {
        auto const piece = at_most_all(left);
        packer_.avail_in = piece;
        left -= piece;
        if (!pack(Z_NO_FLUSH)) return 0;
    }
    return count;
}

GzipOutput::Buffer::int_type GzipOutput::Buffer::overflow(int_type byte) {
    if (traits_type::eq_int_type(byte, traits_type::eof())) return traits_type::not_eof(byte);
    char const one = traits_type::to_char_type(byte);
    return xsputn(&one, 1) == 1 ? byte : traits_type::eof();
}

void GzipOutput::Buffer::finish() { pack(Z_FINISH); }

// Takes all input. Returns whether the stream has taken what came of it.
bool GzipOutput::Buffer::pack(int flush) {
    char packed[1 << 14];
    do {
        packer_.next_out = reinterpret_cast<Bytef*>(packed);
        packer_.avail_out = sizeof packed;
        ::deflate(&packer_, flush);
        out_.write(packed, static_cast<std::streamsize>(sizeof packed - packer_.avail_out));
    } while (packer_.avail_out == 0 && out_);
    return static_cast<bool>(out_);
}

}  // namespace bradep
