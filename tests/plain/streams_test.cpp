// Caller's streams in every state, against the plain reference.

#include "tests/plain/roots.hpp"
#include "tests/plain/seed.hpp"

#include <gtest/gtest.h>

#include <iomanip>
#include <sstream>
#include <streambuf>

namespace {

using namespace plain_test;

constexpr int few = 4;

/// Takes so many bytes; then refuses, or throws.
class Taker : public std::streambuf {
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

private:
    std::size_t most_;
    bool        throws_;
};

/// Gives bytes through a window of so many at a time and can't seek; at the end it ends, or throws.
class Giver : public std::streambuf {
public:
    Giver(std::string bytes, std::size_t window, bool throws)
        : bytes_(std::move(bytes)), window_(window), throws_(throws) {}

    /// How many bytes have been taken.
    std::size_t taken() const { return given_ - static_cast<std::size_t>(egptr() - gptr()); }

protected:
    int_type underflow() override {
        if (given_ == bytes_.size()) {
            if (throws_) throw std::length_error("empty");
            return traits_type::eof();
        }
        std::size_t const size = std::min(window_, bytes_.size() - given_);
        char* const       start = bytes_.data() + given_;
        setg(start, start, start + size);
        given_ += size;
        return traits_type::to_int_type(*start);
    }

private:
    std::string bytes_;
    std::size_t window_;
    bool        throws_;
    std::size_t given_ = 0;
};

/// One of the settings that a stream can have.
void set_up(std::ios& stream, std::uint64_t choice) {
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

template <class Action>
std::string outcome(Action const& action) {
    try {
        action();
    } catch (std::exception const& error) {
        return std::string(typeid(error).name()) + ": " + error.what();
    }
    return "";
}

template <class Buffer>
std::string written(void (*write)(void const*, std::ostream&), void const* value, Buffer& buffer,
                    std::uint64_t choice, std::ios::iostate state) {
    std::ostream stream(&buffer);
    set_up(stream, choice);
    std::string result = outcome([&] { stream.setstate(state); });
    result += outcome([&] { write(value, stream); });
    result += " state " + std::to_string(stream.rdstate()) + " width " +
              std::to_string(stream.width()) + " bytes " + buffer.bytes;
    return result;
}

TEST(PlainStreams, AreWrittenAlike) {
    std::mt19937_64 engine(seed());
    for (Root const& root : roots()) {
        for (int i = count(100, 5000); i > 0 && !HasFailure(); --i) {
            Object const        value = root.random(engine(), few);
            std::size_t const   size = root.write(value.get()).size();
            std::size_t const   most = engine() % 3 == 0 ? ~std::size_t{0} : engine() % (size + 2);
            bool const          throws = engine() % 2 == 0;
            std::uint64_t const choice = engine();
            auto const          state = engine() % 8 != 0   ? std::ios::goodbit
                                        : engine() % 2 == 0 ? std::ios::failbit
                                                            : std::ios::badbit;
            Taker               ours(most, throws);
            Taker               expected(most, throws);
            EXPECT_EQ(written(root.write_to, value.get(), ours, choice, state),
                      written(root.plain_write_to, value.get(), expected, choice, state))
                << root.stem << " setting " << choice % 8 << " size " << size << " most " << most;
        }
    }
}

/// Longer than what is held back, with the end of the stream anywhere.
TEST(PlainStreams, AreWrittenAlikeWhenLong) {
    std::mt19937_64 engine(seed() + 3);
    for (Root const& root : roots()) {
        if (root.stem != "Application_Results_Application_Results") continue;
        Object      value;
        std::size_t size = 0;
        while (size < 100'000 || size > 500'000) {
            value = root.random(engine(), 40);
            size = root.write(value.get()).size();
        }
        for (int i = count(20, 1000); i > 0 && !HasFailure(); --i) {
            std::size_t const   most = engine() % (size + 2);
            bool const          throws = engine() % 2 == 0;
            std::uint64_t const choice = engine();
            Taker               ours(most, throws);
            Taker               expected(most, throws);
            EXPECT_TRUE(
                written(root.write_to, value.get(), ours, choice, std::ios::goodbit) ==
                written(root.plain_write_to, value.get(), expected, choice, std::ios::goodbit))
                << root.stem << " setting " << choice % 8 << " size " << size << " most " << most;
        }
    }
}

struct Read {
    std::string told;
    Object      value;
};

Read read(Root const& root, void (*read)(void*, std::istream&), Giver& buffer, std::uint64_t choice,
          std::ios::iostate state) {
    std::istream stream(&buffer);
    set_up(stream, choice);
    Read result{outcome([&] { stream.setstate(state); }), root.make()};
    result.told += outcome([&] { read(result.value.get(), stream); });
    result.told += " state " + std::to_string(stream.rdstate()) + " count " +
                   std::to_string(stream.gcount()) + " width " + std::to_string(stream.width()) +
                   " taken " + std::to_string(buffer.taken());
    return result;
}

/// Not damaged: a failed read takes the word before it for a length, of any size.
TEST(PlainStreams, AreReadAlike) {
    std::mt19937_64 engine(seed() + 1);
    for (Root const& root : roots()) {
        for (int i = count(100, 5000); i > 0 && !HasFailure(); --i) {
            std::string bytes = root.write(root.random(engine(), few).get());
            bytes += "behind";
            std::size_t const   windows[] = {1, 2, 3, 7, 8, 64, 1000, ~std::size_t{0}};
            std::size_t const   window = windows[engine() % 8];
            std::uint64_t const choice = engine();
            Giver               our_buffer(bytes, window, false);
            Giver               expected_buffer(bytes, window, false);
            Read const ours = read(root, root.read_from, our_buffer, choice, std::ios::goodbit);
            Read const expected =
                read(root, root.plain_read_from, expected_buffer, choice, std::ios::goodbit);
            EXPECT_EQ(ours.told, expected.told) << root.stem << " window " << window;
            EXPECT_TRUE(root.plain_write(ours.value.get()) ==
                        root.plain_write(expected.value.get()))
                << root.stem;
        }
    }
}

/// Of the roots of fixed size, which a failed read can do no harm.
TEST(PlainStreams, ThatFailAreReadAlike) {
    std::mt19937_64 engine(seed() + 2);
    for (Root const& root : roots()) {
        if (root.stem != "Integers64_T" && root.stem != "Interrogators_ClassKey" &&
            root.stem != "Answers_Context" && !root.stem.ends_with("Ref"))
            continue;
        for (int i = count(300, 5000); i > 0 && !HasFailure(); --i) {
            std::string bytes = root.write(root.random(engine(), few).get());
            if (engine() % 4 == 0) bytes.insert(engine() % bytes.size(), " \n\t ", engine() % 4);
            bytes.resize(engine() % (bytes.size() + 1));
            std::size_t const   window = 1 + engine() % 5;
            bool const          throws = engine() % 2 == 0;
            std::uint64_t const choice = engine();
            auto const          state = engine() % 4 != 0 ? std::ios::goodbit : std::ios::failbit;
            Giver               our_buffer(bytes, window, throws);
            Giver               expected_buffer(bytes, window, throws);
            Read const          ours = read(root, root.read_from, our_buffer, choice, state);
            Read const expected = read(root, root.plain_read_from, expected_buffer, choice, state);
            EXPECT_EQ(ours.told, expected.told) << root.stem << " setting " << choice % 8;
            EXPECT_TRUE(root.plain_write(ours.value.get()) ==
                        root.plain_write(expected.value.get()))
                << root.stem;
        }
    }
}

}  // namespace
