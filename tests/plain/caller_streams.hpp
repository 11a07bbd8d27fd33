#pragma once
// Streams that callers may have: buffers that take a limited number of bytes, and all settings of a
// stream.

#include "tests/plain/outcome.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <ios>
#include <limits>
#include <ostream>
#include <stdexcept>
#include <streambuf>
#include <string>

namespace plain_test {

constexpr std::size_t no_end = ~std::size_t{0};

/// A buffer whose flush succeeds a given number of times and then fails or throws.
class Flushed : public std::streambuf {
public:
    void allow_flushes(int most, bool throws) {
        most_flushes_ = most;
        flush_throws_ = throws;
    }

    int flushes = 0;  // requested

protected:
    int sync() override {
        if (flushes++ < most_flushes_) return 0;
        if (flush_throws_) throw std::runtime_error("no flush");
        return -1;
    }

private:
    int  most_flushes_ = std::numeric_limits<int>::max();
    bool flush_throws_ = false;
};

/// Takes `most` bytes, one at a time, then refuses or throws.
class Taker : public Flushed {
public:
    Taker(std::size_t most, bool throws) : most_(most), throws_(throws) {}

    std::string bytes;

protected:
    int_type overflow(int_type c) override {
        if (bytes.size() == most_) {
            if (throws_) throw std::length_error("full");
            return traits_type::eof();
        }
        if (c != traits_type::eof()) bytes += static_cast<char>(c);
        return traits_type::not_eof(c);
    }

    std::size_t room() const { return most_ - bytes.size(); }
    bool        throws() const { return throws_; }

private:
    std::size_t most_;
    bool        throws_;
};

/// Takes as much of a block at once as it has room for.
class BlockTaker : public Taker {
public:
    using Taker::Taker;

protected:
    std::streamsize xsputn(char const* block, std::streamsize size) override {
        auto const taken = std::min(static_cast<std::size_t>(size), room());
        bytes.append(block, taken);
        if (taken < static_cast<std::size_t>(size) && throws()) throw std::length_error("full");
        return static_cast<std::streamsize>(taken);
    }
};

/// Applies one of eight settings to the stream.
inline void set_up(std::ios& stream, std::uint64_t choice) {
    switch (choice % 8) {
        case 1: stream.width(7); break;
        case 2:
            stream.fill('*');
            stream.width(3);
            stream.setf(std::ios::left, std::ios::adjustfield);
            break;
        case 3: stream.setf(std::ios::unitbuf); break;
        case 4: stream.unsetf(std::ios::skipws); break;
        case 5: stream.exceptions(std::ios::badbit); break;
        case 6: stream.exceptions(std::ios::badbit | std::ios::failbit | std::ios::eofbit); break;
        case 7: stream.setf(std::ios::hex | std::ios::showbase | std::ios::uppercase); break;
        default: break;
    }
}

/// Limits the number of flushes in half of the choices.
inline void limit_flushes(Flushed& buffer, std::uint64_t choice, bool throws) {
    if (choice % 2 == 0) buffer.allow_flushes(static_cast<int>(choice / 2 % 32), throws);
}

/// A stream that is tied to `stream` in half of the choices, so that it is flushed before each
/// item. The flush can fail and, with `may_throw`, throw.
class TiedStream {
public:
    TiedStream(std::ios& stream, std::uint64_t choice, bool may_throw = true) {
        if (is_chosen(choice)) stream.tie(&stream_);
        choice /= 8;
        bool const throws = choice / 4 % 2 == 0;
        limit_flushes(buffer_, choice / 8, throws);
        if (may_throw && choice % 4 == 0) stream_.exceptions(std::ios::badbit);
    }

    static bool is_chosen(std::uint64_t choice) { return choice / 8 % 4 < 2; }

    std::string calls() const {
        return " tied stream: state " + std::to_string(stream_.rdstate()) + " flushes " +
               std::to_string(buffer_.flushes);
    }

private:
    Flushed      buffer_;
    std::ostream stream_{&buffer_};
};

/// Whether with this choice a stream is flushed before or after each item.
inline bool is_flushed_for_each_item(std::uint64_t choice) {
    return choice % 8 == 3 || TiedStream::is_chosen(choice);
}

/// Describes the result of writing to a stream over `buffer` with one choice of settings.
template <class Write>
std::string written(Write const& write, Taker& buffer, std::uint64_t choice,
                    std::ios::iostate state = std::ios::goodbit) {
    std::ostream stream(&buffer);
    set_up(stream, choice);
    TiedStream const tied(stream, choice);
    limit_flushes(buffer, choice >> 20, false);  // `unitbuf` flushes in destructors: no exceptions
    std::string result = outcome([&] { stream.setstate(state); });
    result += outcome([&] { write(stream); });
    result += " state " + std::to_string(stream.rdstate()) + " width " +
              std::to_string(stream.width()) + " flushes " + std::to_string(buffer.flushes) +
              tied.calls() + " bytes " + buffer.bytes;
    return result;
}

}  // namespace plain_test
