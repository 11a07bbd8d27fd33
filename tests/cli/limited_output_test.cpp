#include "limited_output.hpp"

#include "errors.hpp"
#include "noting_output.hpp"

#include <gtest/gtest.h>

#include <cerrno>
#include <fstream>
#include <sstream>
#include <streambuf>

namespace {

using bradep::LimitedOutput;
using bradep::NotingOutput;

/// Fails with one error, then with another one.
class FailsTwice : public std::streambuf {
    std::streamsize xsputn(char const*, std::streamsize) override {
        errno = errno_;
        errno_ = EIO;
        return 0;
    }

    int errno_ = ENOSPC;
};

TEST(NotingOutput, KeepsTheErrorOfTheFirstFailure) {
    FailsTwice   buffer;
    std::ostream out(&buffer);
    NotingOutput noting(out);
    for (int i = 0; i < 2; ++i) {
        noting.stream() << "text";
        EXPECT_TRUE(noting.stream().bad());
        EXPECT_EQ(noting.error(), ENOSPC);
        out.clear();
        noting.stream().clear();
    }
}

TEST(LimitedOutput, HandsOnWhatFits) {
    std::ostringstream out;
    LimitedOutput      limited(out, 5);
    limited.stream() << "abc" << 'd' << std::flush << "e";
    EXPECT_TRUE(limited.stream());
    EXPECT_EQ(out.str(), "abcde");
    EXPECT_NO_THROW(limited.refuse_if_cut("name"));
}

TEST(LimitedOutput, IsBadFromTheFirstPieceThatDoesNotFit) {
    for (std::string const piece : {"d", "def"}) {
        std::ostringstream out;
        LimitedOutput      limited(out, 3 + piece.size() - 1);
        limited.stream() << "abc";
        EXPECT_TRUE(limited.stream());
        if (piece.size() == 1)
            limited.stream().put(piece.front());
        else
            limited.stream() << piece;
        EXPECT_TRUE(limited.stream().bad());
        limited.stream().clear();
        limited.stream() << "x";
        EXPECT_TRUE(limited.stream().bad());
        EXPECT_EQ(out.str(), "abc");
        EXPECT_TRUE(out.good());
        try {
            limited.refuse_if_cut("name");
            ADD_FAILURE();
        } catch (bradep::DamagedInput const& error) {
            EXPECT_EQ(error.what(), "name: what is to be printed is larger than --max-output " +
                                        std::to_string(3 + piece.size() - 1));
        }
    }
}

TEST(LimitedOutput, AFailureOfTheOutputIsNoLimit) {
    std::ofstream full("/dev/full");
    LimitedOutput limited(full, 1 << 20);
    limited.stream() << std::string(100000, 'x') << std::flush;
    EXPECT_TRUE(limited.stream().bad());
    EXPECT_TRUE(full.bad());
    EXPECT_NO_THROW(limited.refuse_if_cut("name"));
}

}  // namespace
