#include <sml/core/archives.hpp>

#include <sys/mman.h>

#include <algorithm>
#include <limits>
#include <locale>
#include <new>
#include <utility>

namespace sml {

StreamOArchive::StreamOArchive(std::ostream& stream)
    : room{buffer_, buffer_ + buffer_size - core::room_ahead},
      stream_(&stream),
      is_padded_(stream.width() != 0) {}

StreamOArchive::~StreamOArchive() {
    try {
        finish();
    } catch (...) {
        // The exception that has led here goes on instead.
    }
}

void StreamOArchive::write(char const* start, char const* end) {
    // The stream's buffer is the caller's code.
    float_range.apply();
    stream_->write(start, end - start);
    point = core::decimal_point();
}

/// Writes all but the last item to the stream.
void StreamOArchive::drain() {
    char const* const last = std::exchange(last_, nullptr);
    auto const        size = static_cast<std::size_t>(room.at - last);
    room.at = buffer_;
    write(buffer_, last);
    std::memmove(buffer_, last, size);
    last_ = buffer_;
    room.at = buffer_ + size;
}

void StreamOArchive::finish() {
    if (last_ == nullptr) return;
    drain();
    last_ = nullptr;
    write(buffer_, std::exchange(room.at, buffer_));
}

void StreamOArchive::put_padded(char flag) {
    if (std::exchange(last_, nullptr) != nullptr) write(buffer_, std::exchange(room.at, buffer_));
    *stream_ << flag;
    is_padded_ = stream_->width() != 0;
    point = core::decimal_point();
}

void StreamOArchive::put_long(char const* bytes, std::size_t size) {
    if (size > buffer_size / 2) {
        if (std::exchange(last_, nullptr) != nullptr)
            write(buffer_, std::exchange(room.at, buffer_));
        write(bytes, bytes + size);
        return;
    }
    if (size > static_cast<std::size_t>(buffer_ + buffer_size - room.at)) drain();
    std::memcpy(room.at, bytes, size);
    have_put(room.at, room.at + size);
    make_room();
}

void UnbufferedOArchive::write(char const* bytes, std::size_t size) {
    float_range.apply();  // the stream's buffer is the caller's code
    stream_.write(bytes, static_cast<std::streamsize>(size));
    point = core::decimal_point();
}

void UnbufferedOArchive::put_flag(char flag) {
    float_range.apply();
    stream_ << flag;
    point = core::decimal_point();
}

void UnbufferedOArchive::have_put(char const* last, char const* next) {
    char const* const text = number_ + sizeof(std::int32_t);
    write(number_, sizeof(std::int32_t));
    if (text != last) write(text, static_cast<std::size_t>(last - text));
    write(last, static_cast<std::size_t>(next - last));
}

namespace {

/// The bytes that a stream's buffer holds. Its functions for that are protected; a derived class
/// can name them.
struct Buffered : std::streambuf {
    static char const* next(std::streambuf& buffer) { return (buffer.*&Buffered::gptr)(); }
    static char const* end(std::streambuf& buffer) { return (buffer.*&Buffered::egptr)(); }

    static void skip_to(std::streambuf& buffer, char const* place) {
        constexpr std::ptrdiff_t most = std::numeric_limits<int>::max();
        for (auto left = place - next(buffer); left > 0; left = place - next(buffer))
            (buffer.*&Buffered::gbump)(static_cast<int>(std::min(left, most)));
    }
};

/// Whether the stream takes neither flag for white space.
bool has_usual_flags(std::istream const& stream) {
    std::locale const& locale = stream.getloc();
    if (!std::has_facet<std::ctype<char>>(locale)) return false;
    auto const& kinds = std::use_facet<std::ctype<char>>(locale);
    return !kinds.is(std::ctype_base::space, 'T') && !kinds.is(std::ctype_base::space, 'F');
}

}  // namespace

StreamIArchive::~StreamIArchive() {
    try {
        close();
    } catch (...) {
        // The exception that has led here goes on instead.
    }
}

void StreamIArchive::open() {
    point = core::decimal_point();  // the stream's buffer is the caller's code
    std::streambuf* const buffer = stream_->rdbuf();
    if (stream_->tie() != nullptr) return;
    if (!stream_->good() || buffer == nullptr || !has_usual_flags(*stream_)) return;
    at_ = Buffered::next(*buffer);
    end_ = Buffered::end(*buffer);
    item_ = nullptr;
}

/// Required: the stream's `gcount` is that of the item read last, so the stream reads that item
/// again, itself. This can refill or move its buffer, so the flags after that item are taken one by
/// one.
void StreamIArchive::close() {
    if (at_ == nullptr) return;
    std::streambuf&   buffer = *stream_->rdbuf();
    char const* const at = std::exchange(at_, nullptr);  // not valid any more if the read throws
    end_ = nullptr;
    if (item_ == nullptr) {
        Buffered::skip_to(buffer, at);
    } else {
        auto flags = at - (item_ + item_size_);
        char again[longest_view];
        Buffered::skip_to(buffer, item_);
        stream_->read(again, item_size_);
        for (; flags > 0 && stream_->good(); --flags) buffer.sbumpc();
    }
}

void StreamIArchive::get(char* bytes, std::int64_t size) {
    close();
    stream_->read(bytes, size);
    open();
}

char StreamIArchive::get_formatted() {
    close();
    *stream_ >> scratch_[0];
    open();
    return scratch_[0];
}

StringOArchive::StringOArchive(std::string& result)
    : room{result.data(), result.data()}, result_(result), start_(result.data()) {
    if (result.size() > 2 * core::room_ahead)
        room.full += result.size() - core::room_ahead;
    else
        add_chunk(0);
}

/// Large chunks are mapped, so that they go back to the system as soon as they have been joined.
/// Free memory that the heap keeps would add as much again to the peak.
StringOArchive::Memory StringOArchive::allocate(std::size_t size) {
    if (size < largest_chunk) return {new char[size], Free{size}};
    void* const pages =
        ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (pages == MAP_FAILED) throw std::bad_alloc();
    return {static_cast<char*>(pages), Free{size}};
}

void StringOArchive::Free::operator()(char* bytes) const noexcept {
    if (size < largest_chunk)
        delete[] bytes;
    else
        ::munmap(bytes, size);
}

void StringOArchive::close_chunk() {
    auto const size = static_cast<std::size_t>(room.at - start_);
    if (!chunks_.empty()) chunks_.back().size = size;
    written_ += size;
    start_ = room.at;
}

void StringOArchive::add_chunk(std::size_t least_size) {
    close_chunk();
    std::size_t const size = std::max(least_size + core::room_ahead,
                                      std::clamp(written_, smallest_chunk, largest_chunk));
    chunks_.push_back({allocate(size), 0});
    start_ = chunks_.back().bytes.get();
    room = {start_, start_ + size - core::room_ahead};
}

void StringOArchive::put_long(char const* bytes, std::size_t size) {
    if (size > static_cast<std::size_t>(room.full + core::room_ahead - room.at)) add_chunk(size);
    std::memcpy(room.at, bytes, size);
    room.at += size;
    make_room();
}

void StringOArchive::finish() {
    close_chunk();
    std::size_t total = written_;
    for (Chunk const& chunk : chunks_) total -= chunk.size;
    result_.resize(total);  // what was written over its own bytes
    result_.reserve(written_);
    for (Chunk& chunk : chunks_) {
        result_.append(chunk.bytes.get(), chunk.size);
        chunk.bytes.reset();
    }
    chunks_.clear();
}

}  // namespace sml
