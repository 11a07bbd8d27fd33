// Compares callers' streams in every state with the reference implementation.

#include "tests/plain/caller_streams.hpp"
#include "tests/plain/roots.hpp"
#include "tests/runs.hpp"

#include <gtest/gtest.h>

#include <istream>
#include <ostream>
#include <streambuf>

namespace {

using namespace plain_test;

constexpr int few = 4;

/// A buffer that supplies `window` bytes at a time and can't seek. At the end it reports the end or
/// throws.
class Giver : public std::streambuf {
public:
    Giver(std::string bytes, std::size_t window, bool throws)
        : bytes_(std::move(bytes)), window_(window), throws_(throws) {}

    /// The number of bytes read.
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

/// Returns a function that writes the value with `write`.
auto writing(void (*write)(void const*, std::ostream&), Object const& value) {
    return [write, &value](std::ostream& stream) { write(value.get(), stream); };
}

TEST(PlainStreams, AreWrittenAlike) {
    std::mt19937_64 engine(runs::seed());
    for (Root const& root : roots()) {
        for (int i = runs::count(100, 5000); i > 0 && !HasFailure(); --i) {
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
            EXPECT_EQ(written(writing(root.write_to, value), ours, choice, state),
                      written(writing(root.plain_write_to, value), expected, choice, state))
                << root.stem << " setting " << choice % 8 << " size " << size << " most " << most;
        }
    }
}

/// Values larger than the writer's buffer, with the end of the stream at any offset.
TEST(PlainStreams, AreWrittenAlikeWhenLong) {
    std::mt19937_64 engine(runs::seed() + 3);
    for (Root const& root : roots()) {
        if (root.stem != "Application_Results_Application_Results") continue;
        Object      value;
        std::size_t size = 0;
        while (size < 100'000 || size > 500'000) {
            value = root.random(engine(), 40);
            size = root.write(value.get()).size();
        }
        for (int i = runs::count(20, 1000); i > 0 && !HasFailure(); --i) {
            std::size_t const   most = engine() % (size + 2);
            bool const          throws = engine() % 2 == 0;
            std::uint64_t const choice = engine();
            Taker               ours(most, throws);
            Taker               expected(most, throws);
            EXPECT_TRUE(written(writing(root.write_to, value), ours, choice) ==
                        written(writing(root.plain_write_to, value), expected, choice))
                << root.stem << " setting " << choice % 8 << " size " << size << " most " << most;
        }
    }
}

struct Read {
    std::string outcomes;
    Object      value;
};

Read read(Root const& root, void (*read)(void*, std::istream&), Giver& buffer, std::uint64_t choice,
          std::ios::iostate state, bool tied_may_throw) {
    std::istream stream(&buffer);
    set_up(stream, choice);
    TiedStream const tied(stream, choice, tied_may_throw);
    Read             result{outcome([&] { stream.setstate(state); }), root.make()};
    result.outcomes += outcome([&] { read(result.value.get(), stream); });
    result.outcomes += " state " + std::to_string(stream.rdstate()) + " count " +
                       std::to_string(stream.gcount()) + " width " +
                       std::to_string(stream.width()) + " taken " + std::to_string(buffer.taken()) +
                       tied.calls();
    return result;
}

/// The bytes are not damaged, because after a failed read any previous word would be used as a
/// length.
TEST(PlainStreams, AreReadAlike) {
    std::mt19937_64 engine(runs::seed() + 1);
    for (Root const& root : roots()) {
        for (int i = runs::count(100, 5000); i > 0 && !HasFailure(); --i) {
            std::string bytes = root.write(root.random(engine(), few).get());
            bytes += "behind";
            std::size_t const   windows[] = {1, 2, 3, 7, 8, 64, 1000, ~std::size_t{0}};
            std::size_t const   window = windows[engine() % 8];
            std::uint64_t const choice = engine();
            Giver               our_buffer(bytes, window, false);
            Giver               expected_buffer(bytes, window, false);
            Read const          ours =
                read(root, root.read_from, our_buffer, choice, std::ios::goodbit, false);
            Read const expected =
                read(root, root.plain_read_from, expected_buffer, choice, std::ios::goodbit, false);
            EXPECT_EQ(ours.outcomes, expected.outcomes) << root.stem << " window " << window;
            EXPECT_TRUE(root.plain_write(ours.value.get()) ==
                        root.plain_write(expected.value.get()))
                << root.stem;
        }
    }
}

/// Only roots of fixed size, for which a failed read is harmless.
TEST(PlainStreams, ThatFailAreReadAlike) {
    std::mt19937_64 engine(runs::seed() + 2);
    for (Root const& root : roots()) {
        if (root.stem != "Integers64_T" && root.stem != "Interrogators_ClassKey" &&
            root.stem != "Answers_Context" && !root.stem.ends_with("Ref"))
            continue;
        for (int i = runs::count(300, 5000); i > 0 && !HasFailure(); --i) {
            std::string bytes = root.write(root.random(engine(), few).get());
            if (engine() % 4 == 0) bytes.insert(engine() % bytes.size(), " \n\t ", engine() % 4);
            bytes.resize(engine() % (bytes.size() + 1));
            std::size_t const   window = 1 + engine() % 5;
            bool const          throws = engine() % 2 == 0;
            std::uint64_t const choice = engine();
            auto const          state = engine() % 4 != 0 ? std::ios::goodbit : std::ios::failbit;
            Giver               our_buffer(bytes, window, throws);
            Giver               expected_buffer(bytes, window, throws);
            Read const          ours = read(root, root.read_from, our_buffer, choice, state, true);
            Read const          expected =
                read(root, root.plain_read_from, expected_buffer, choice, state, true);
            EXPECT_EQ(ours.outcomes, expected.outcomes) << root.stem << " setting " << choice % 8;
            EXPECT_TRUE(root.plain_write(ours.value.get()) ==
                        root.plain_write(expected.value.get()))
                << root.stem;
        }
    }
}

}  // namespace
