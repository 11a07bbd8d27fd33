#pragma once
// The four archives: where the bytes of one root object come from or go to, and which strings of
// it have been met. None checks anything; exceptions of the caller's stream pass through.
//
// An archive lives for one root object. It pins each string that it has met.

#include "core/Strings.hpp"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <istream>
#include <ostream>
#include <string>
#include <unordered_map>
#include <utility>

namespace sml {

/// Writes to a caller's stream.
class StreamOArchive {
public:
    static constexpr bool writes = true;

    explicit StreamOArchive(std::ostream& stream) : stream_(&stream) {}

    void put(void const* bytes, std::size_t size) {
        stream_->write(static_cast<char const*>(bytes), static_cast<std::streamsize>(size));
    }

    // Formatted, so the stream's width and fill take part.
    void put_flag(char flag) { *stream_ << flag; }

    std::int32_t                                string_count = 0;
    std::unordered_map<Strings_T, std::int32_t> string_ids;

private:
    std::ostream* stream_;
};

/// Writes to a buffer of its own.
class StringOArchive {
public:
    static constexpr bool writes = true;

    void put(void const* bytes, std::size_t size) {
        bytes_.append(static_cast<char const*>(bytes), size);
    }
    void put_flag(char flag) { bytes_.push_back(flag); }

    /// Hands the bytes over.
    std::string take() { return std::move(bytes_); }

    std::int32_t                                string_count = 0;
    std::unordered_map<Strings_T, std::int32_t> string_ids;

private:
    std::string bytes_;
};

/// Reads from a caller's stream. A read that fails leaves the scratch word as it was, so the value
/// read before it is taken for the new one.
class StreamIArchive {
public:
    static constexpr bool writes = false;

    explicit StreamIArchive(std::istream& stream) : stream_(&stream) {}

    void get(char* bytes, std::int64_t size) { stream_->read(bytes, size); }

    template <class Word>
    Word get_word() {
        static_assert(sizeof(Word) <= sizeof scratch_);
        stream_->read(scratch_, sizeof(Word));
        Word word;
        std::memcpy(&word, scratch_, sizeof word);
        return word;
    }

    // Formatted, so white space before the flag is skipped when the stream says so.
    char get_flag() {
        *stream_ >> scratch_[0];
        return scratch_[0];
    }

    std::unordered_map<std::int32_t, Strings_T> strings_by_id;

private:
    std::istream* stream_;
    alignas(std::uint64_t) char scratch_[sizeof(std::uint64_t)]{};
};

/// Reads from a caller's bytes, without any bound.
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
        Word word;
        std::memcpy(&word, cursor_, sizeof word);
        cursor_ += sizeof word;
        return word;
    }

    char get_flag() { return *cursor_++; }

    /// The next unread byte.
    char const* cursor() const { return cursor_; }

    std::unordered_map<std::int32_t, Strings_T> strings_by_id;

private:
    char const* cursor_;
};

}  // namespace sml
