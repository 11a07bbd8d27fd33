#pragma once
// The archives: where the bytes of one root object come from or go to, with the ids of its strings.
// They check nothing. Exceptions of the caller's stream pass through.
//
// An archive lives for one root object. It pins each string that has an id.
//
// A writing archive with a buffer has room for at least `room_ahead` bytes whenever an element of a
// container, a boxed value or a root is about to be written. All that is written from one of these
// to the next, apart from texts, fits into that room, so nothing else asks for room.

#include <sml/core/decimal_point.hpp>
#include <sml/core/float_range.hpp>
#include <sml/core/put_numbers.hpp>
#include <sml/core/string_ids.hpp>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <istream>
#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace sml {

namespace core {

constexpr std::size_t room_ahead = 4096;

template <class Word>
Word word_at(char const* bytes) noexcept {
    Word word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

/// Where the next byte goes. While `at` is not beyond `full`, there is room for `room_ahead` bytes;
/// in `UnbufferedOArchive`, for `longest_number`.
struct Room {
    char* at;
    char* full;

    template <class Word>
    char* put(Word word) noexcept {
        std::memcpy(at, &word, sizeof word);
        return std::exchange(at, at + sizeof word);
    }
};

}  // namespace core

/// Writes to a caller's stream through a buffer. The stream has all bytes when `finish` returns.
///
/// Required: a stream that fails is left in the same state as if each item were written by a call
/// of its own. There, the item after the one that fails finds the stream bad, which sets the
/// failbit, too. So the last item is always held back and written by a call of its own.
class StreamOArchive {
public:
    static constexpr bool writes = true;

    explicit StreamOArchive(std::ostream& stream);

    /// Writes what an exception has left in the buffer.
    ~StreamOArchive();

    StreamOArchive(StreamOArchive const&) = delete;
    StreamOArchive& operator=(StreamOArchive const&) = delete;

    core::Room        room;
    core::IdsByString string_ids;
    core::FloatRange  float_range;
    char              point = core::decimal_point();

    template <class Word>
    void put(Word word) {
        last_ = room.put(word);
    }

    // Formatted output: the stream's width and fill apply.
    void put_flag(char flag) {
        if (is_padded_) [[unlikely]]
            put_padded(flag);
        else
            last_ = room.put(flag);
    }

    /// The caller has put bytes up to `next` into the room. Those from `last` on are one item.
    void have_put(char* last, char* next) {
        last_ = last;
        room.at = next;
    }

    void make_room() {
        if (room.at > room.full) [[unlikely]]
            drain();
    }

    /// Writes an item of any size, and makes room after it.
    void put_long(char const* bytes, std::size_t size);

    void finish();

private:
    static constexpr std::size_t buffer_size = 8 * core::room_ahead;

    void drain();
    void write(char const* start, char const* end);
    void put_padded(char flag);

    std::ostream* stream_;
    bool          is_padded_;       // whether the next flag is padded
    char*         last_ = nullptr;  // the start of the item that was put last; null once written
    char          buffer_[buffer_size];
};

/// Writes to a caller's stream item by item.
class UnbufferedOArchive {
public:
    static constexpr bool writes = true;

    explicit UnbufferedOArchive(std::ostream& stream) : room{number_, number_}, stream_(stream) {}

    UnbufferedOArchive(UnbufferedOArchive const&) = delete;
    UnbufferedOArchive& operator=(UnbufferedOArchive const&) = delete;

    core::Room        room;  // for one number
    core::IdsByString string_ids;
    core::FloatRange  float_range;
    char              point = core::decimal_point();

    template <class Word>
    void put(Word word) {
        write(reinterpret_cast<char const*>(&word), sizeof word);
    }
    void put_flag(char flag);

    /// The caller has put a number into the room, as two or three items: its length, its text, and
    /// what is from `last` to `next`.
    void have_put(char const* last, char const* next);

    void make_room() {}

    void put_long(char const* bytes, std::size_t size) { write(bytes, size); }

    void finish() {}

private:
    void write(char const* bytes, std::size_t size);

    char          number_[core::longest_number];
    std::ostream& stream_;
};

/// Writes to memory: first over the bytes that a string holds, then into chunks, so that nothing
/// is copied while it grows.
class StringOArchive {
public:
    static constexpr bool writes = true;

    static constexpr std::size_t smallest_chunk = 4 * core::room_ahead;
    static constexpr std::size_t largest_chunk = std::size_t{1} << 20;

    /// `result` must outlive this object. It holds the bytes when `finish` returns; until then,
    /// what it held is overwritten.
    explicit StringOArchive(std::string& result);

    StringOArchive(StringOArchive const&) = delete;
    StringOArchive& operator=(StringOArchive const&) = delete;

    core::Room        room;
    core::IdsByString string_ids;
    core::FloatRange  float_range;
    char              point = core::decimal_point();

    template <class Word>
    void put(Word word) {
        room.put(word);
    }
    void put_flag(char flag) { room.put(flag); }
    void have_put(char*, char* next) { room.at = next; }

    void make_room() {
        if (room.at > room.full) [[unlikely]]
            add_chunk(0);
    }

    /// Writes any number of bytes, and makes room after them.
    void put_long(char const* bytes, std::size_t size);

    void finish();

private:
    /// Frees what `allocate` gave.
    struct Free {
        std::size_t size;

        void operator()(char* bytes) const noexcept;
    };
    using Memory = std::unique_ptr<char[], Free>;

    struct Chunk {
        Memory      bytes;
        std::size_t size;  // of what has been written
    };

    static Memory allocate(std::size_t size);

    void add_chunk(std::size_t least_size);
    void close_chunk();

    std::string&       result_;
    std::size_t        written_ = 0;  // bytes in front of the open chunk
    char*              start_;        // of the open chunk, or of the result
    std::vector<Chunk> chunks_;
};

/// Reads from a caller's stream. A read that fails leaves the scratch word as it was, so the value
/// that was read before is taken again.
///
/// Bytes that the stream's buffer holds already are taken from there, as the stream itself would
/// take them. Other bytes, and flags other than T and F, are read by the stream; nothing is read
/// ahead. A stream that is tied to another one reads each item itself, since it flushes the other
/// one before each item. When `finish` returns, the stream is positioned after the object.
class StreamIArchive {
public:
    static constexpr bool writes = false;

    explicit StreamIArchive(std::istream& stream) : stream_(&stream) {}

    /// Moves the stream past the bytes that were taken from its buffer before an exception.
    ~StreamIArchive();

    StreamIArchive(StreamIArchive const&) = delete;
    StreamIArchive& operator=(StreamIArchive const&) = delete;

    void get(char* bytes, std::int64_t size);

    template <class Word>
    Word get_word() {
        static_assert(sizeof(Word) <= sizeof scratch_);
        if (end_ - at_ >= static_cast<std::ptrdiff_t>(sizeof(Word))) [[likely]] {
            std::memcpy(scratch_, at_, sizeof(Word));
            take_item(sizeof(Word));
        } else {
            get(scratch_, sizeof(Word));
        }
        return core::word_at<Word>(scratch_);
    }

    // Formatted input: white space before the flag is skipped if the stream is set to do so.
    char get_flag() {
        if (at_ != end_ && (*at_ == 'T' || *at_ == 'F')) [[likely]]
            return scratch_[0] = *at_++;
        return get_formatted();
    }

    /// Returns where a block starts that has this length and is followed by a word of `more` bytes,
    /// without taking it; null if the buffer does not hold all of that and the length before it.
    char const* view(std::int32_t length, std::int32_t more = 0) const {
        bool const is_here = item_ != nullptr && length >= 0 && length <= longest_view &&
                             end_ - at_ >= std::int64_t{length} + more;
        return is_here ? at_ : nullptr;
    }

    /// Takes the block and the word that `view` has returned.
    void skip(std::int32_t length, std::int32_t more = 0) {
        take_item(length);
        if (more == 0) return;
        std::memcpy(scratch_, at_, static_cast<std::size_t>(more));
        take_item(more);
    }

    /// Moves the stream past the bytes that were taken from its buffer.
    void finish() { close(); }

    core::StringsById<core::Counting::immediately> strings_by_id;
    char                                           point = core::decimal_point();

private:
    static constexpr std::int32_t longest_view = 128;

    void take_item(std::int32_t size) {
        item_ = at_;
        item_size_ = size;
        at_ += size;
    }

    void open();
    void close();
    char get_formatted();

    std::istream* stream_;
    alignas(std::uint64_t) char scratch_[sizeof(std::uint64_t)]{};

    char const*  at_ = nullptr;  // in the stream's buffer; null: the stream reads
    char const*  end_ = nullptr;
    char const*  item_ = nullptr;  // the last item taken from there, but for flags
    std::int32_t item_size_ = 0;
};

/// Reads from a caller's bytes, without a check where they end.
class StringIArchive {
public:
    static constexpr bool writes = false;

    explicit StringIArchive(char const* bytes) : cursor_(bytes) {}

    void get(char* bytes, std::int64_t size) {
        if (size <= 0) return;
        std::memcpy(bytes, cursor_, static_cast<std::size_t>(size));
        cursor_ += size;
    }

    template <class Word>
    Word get_word() {
        auto const word = core::word_at<Word>(cursor_);
        cursor_ += sizeof word;
        return word;
    }

    char get_flag() { return *cursor_++; }

    /// Returns where a block of this length starts, without taking it; null for a negative length.
    /// The length is before it.
    char const* view(std::int32_t length, std::int32_t = 0) const {
        return length < 0 ? nullptr : cursor_;
    }

    /// Takes a block and `more` bytes after it.
    void skip(std::int32_t length, std::int32_t more = 0) {
        cursor_ += std::int64_t{length} + more;
    }

    /// The next unread byte.
    char const* cursor() const { return cursor_; }

    core::StringsById<core::Counting::at_end> strings_by_id;
    char                                      point = core::decimal_point();

private:
    char const* cursor_;
};

}  // namespace sml
