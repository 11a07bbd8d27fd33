#include "input_bytes.hpp"

#include "cli_support.hpp"
#include "errors.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>
#include <streambuf>
#include <thread>

namespace {

using namespace cli_test;
using bradep::default_max_size;
using bradep::InputBytes;

std::string read_of(fs::path const& path, std::uint64_t max_size = default_max_size,
                    std::string const& input = "") {
    std::istringstream in(input);
    return std::string(InputBytes(path.string(), max_size, in).view());
}

std::string failure_of_reading(fs::path const& path, std::uint64_t max_size = default_max_size,
                               std::string const& input = "") {
    try {
        read_of(path, max_size, input);
    } catch (bradep::IoFailure const& failure) {
        return failure.what();
    }
    return "nothing";
}

std::string numbered_bytes(std::size_t size) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * 31 + i / 251);
    return bytes;
}

TEST(InputBytes, AreTheWholeFileOfAnySize) {
    Scratch const scratch;
    for (std::size_t const size : {0u, 1u, 4096u, 65535u, 65536u, 65537u, 3000000u}) {
        write_bytes(scratch / "in", numbered_bytes(size));
        EXPECT_EQ(read_of(scratch / "in"), numbered_bytes(size)) << size;
        EXPECT_EQ(read_of("-", default_max_size, numbered_bytes(size)), numbered_bytes(size));
    }
}

class Broken : public std::streambuf {
    int_type underflow() override { throw std::runtime_error("broken"); }
};

TEST(InputBytes, AStandardInputThatFailsIsNoEnd) {
    Broken       buffer;
    std::istream in(&buffer);
    EXPECT_THROW(InputBytes("-", default_max_size, in), bradep::IoFailure);
}

TEST(InputBytes, AFileWithoutASizeOfItsOwnIsRead) {
    EXPECT_EQ(read_of("/proc/self/status").substr(0, 5), "Name:");
}

// If a pipe were opened twice, the bytes of the first writer would be lost, and the reader would
// wait for a second writer.
TEST(InputBytes, APipeIsOpenedOnce) {
    Scratch const scratch;
    ASSERT_EQ(::mkfifo((scratch / "pipe").c_str(), 0600), 0);
    for (int i = 0; i < 50; ++i) {
        auto const  bytes = numbered_bytes(200000);
        std::thread writer([&] { write_bytes(scratch / "pipe", bytes); });
        EXPECT_EQ(read_of(scratch / "pipe"), bytes) << i;
        writer.join();
    }
}

TEST(InputBytes, StayWhenTheFileIsCutOrWrittenInto) {
    Scratch const      scratch;
    std::istringstream none;
    auto const         bytes = numbered_bytes(1 << 20);
    write_bytes(scratch / "in", bytes);
    InputBytes const read((scratch / "in").string(), default_max_size, none);
    write_bytes(scratch / "in", "short");
    EXPECT_EQ(read.view(), bytes);
}

TEST(InputBytes, DirectoryAndMissingFileAreFailures) {
    Scratch const scratch;
    EXPECT_EQ(failure_of_reading(scratch.path()),
              "cannot read " + scratch.path().string() + ": Is a directory");
    EXPECT_EQ(failure_of_reading(scratch / "none"),
              "cannot read " + (scratch / "none").string() + ": No such file or directory");
    EXPECT_EQ(failure_of_reading(""), "cannot read : No such file or directory");
}

TEST(InputBytes, MoreThanTheLimitIsAFailure) {
    Scratch const scratch;
    auto const    file = scratch / "in";
    for (std::uint64_t const limit : {0u, 1u, 65535u, 65536u, 65537u, 1000000u}) {
        auto const beyond = ": larger than --max-size " + std::to_string(limit);
        write_bytes(file, numbered_bytes(limit));
        EXPECT_EQ(read_of(file, limit).size(), limit);
        EXPECT_EQ(read_of("-", limit, numbered_bytes(limit)).size(), limit);
        write_bytes(file, numbered_bytes(limit + 1));
        EXPECT_EQ(failure_of_reading(file, limit), "cannot read " + file.string() + beyond);
        EXPECT_EQ(failure_of_reading("-", limit, numbered_bytes(limit + 1)),
                  "cannot read standard input" + beyond);
        EXPECT_EQ(failure_of_reading("/dev/zero", limit), "cannot read /dev/zero" + beyond);
    }
}

TEST(InputBytes, AFileBeyondTheLimitIsRefusedUnread) {
    Scratch const scratch;
    write_bytes(scratch / "in", "");
    fs::resize_file(scratch / "in", std::uintmax_t{1} << 40);  // a sparse file
    EXPECT_EQ(failure_of_reading(scratch / "in"),
              "cannot read " + (scratch / "in").string() + ": larger than --max-size 4294967296");
}

/// Every command that reads a file, with its other required options.
std::vector<std::vector<std::string>> const reading_commands = {
    {"import", "-o", "-"}, {"show"},     {"verify"},           {"dump"},
    {"encode", "-o", "-"}, {"identify"}, {"canon", "-o", "-"}, {"digest"},
    {"schema", "--diff"}};

TEST(MaxSize, IsThereForEveryCommandThatReads) {
    for (auto const& command : reading_commands) {
        auto const with = [&](std::string const& file, std::string const& size) {
            auto args = command;
            args.insert(args.begin() + 1, {"--max-size", size});
            args.push_back(file);
            return run_command(args);
        };
        for (char const* const size : {"0", "10000", "64K", "1M"}) {
            auto const outcome = with("/dev/zero", size);
            EXPECT_EQ(outcome.code, 2) << command.front();
            EXPECT_EQ(outcome.out, "");
            EXPECT_TRUE(
                outcome.err.starts_with("bradep: cannot read /dev/zero: larger than --max-size "))
                << outcome.err;
        }
        EXPECT_EQ(with("/dev/zero", "64K").err,
                  "bradep: cannot read /dev/zero: larger than --max-size 65536\n");
        EXPECT_EQ(with("/dev/null", "x").code, 2);
        EXPECT_NE(run_command({command.front(), "--help"}).out.find("--max-size"),
                  std::string::npos);
    }
}

TEST(MaxSize, EveryCommandReadsAPipeToItsEnd) {
    Scratch const scratch;
    auto const    pipe = (scratch / "pipe").string();
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    for (auto const& command : reading_commands) {
        auto       args = command;
        auto const by_dash = [&] {
            args.push_back("-");
            return run_command(args, "{}");
        }();
        args.back() = pipe;
        std::thread writer([&] { write_bytes(pipe, "{}"); });
        auto const  by_pipe = run_command(args);
        writer.join();
        EXPECT_EQ(by_pipe.code, by_dash.code) << command.front();
        EXPECT_EQ(by_pipe.out.size() > 0, by_dash.out.size() > 0);
    }
}

}  // namespace
