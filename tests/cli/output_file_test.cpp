#include "output_file.hpp"

#include "cli_support.hpp"
#include "errors.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

namespace {

using namespace cli_test;
using bradep::Temporary;
using Names = std::vector<std::string>;

auto text(std::string const& bytes) {
    return [bytes](std::ostream& out) { out << bytes; };
}

// Both kinds of temporary files.
class OutputFile : public ::testing::TestWithParam<Temporary> {
protected:
    static void write_file(fs::path const&                           target,
                           std::function<void(std::ostream&)> const& write) {
        bradep::write_file(target, write, GetParam());
    }

    static std::string failure_of_writing(fs::path const&    target,
                                          std::string const& bytes = "new") {
        try {
            write_file(target, text(bytes));
        } catch (bradep::IoFailure const& failure) {
            return failure.what();
        }
        return "nothing";
    }
};

std::string name_of(::testing::TestParamInfo<Temporary> const& kind) {
    return kind.param == Temporary::named ? "Named" : "Unnamed";
}

INSTANTIATE_TEST_SUITE_P(Temporary, OutputFile,
                         ::testing::Values(Temporary::unnamed_where_possible, Temporary::named),
                         name_of);

bool has_unnamed_files(fs::path const& directory) {
    int const descriptor = ::open(directory.c_str(), O_TMPFILE | O_RDWR, 0600);
    if (descriptor >= 0) ::close(descriptor);
    return descriptor >= 0;
}

// Runs `action` in a child process, whose limits and rights it may change, and returns its result.
int in_a_child(std::function<int()> const& action) {
    auto const child = ::fork();
    if (child == 0) ::_exit(action());
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

mode_t mode_of(fs::path const& path) {
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0);
    return status.st_mode & 07777;
}

TEST_P(OutputFile, IsWholeAndAlone) {
    Scratch const scratch;
    write_file(scratch / "out", text("bytes"));
    EXPECT_EQ(bytes_of(scratch / "out"), "bytes");
    EXPECT_EQ(scratch.names(), Names{"out"});
}

TEST_P(OutputFile, ReplacesAFileAndKeepsItsMode) {
    Scratch const scratch;
    write_bytes(scratch / "out", "a longer text than the new one");
    ::chmod((scratch / "out").c_str(), 0640);
    write_file(scratch / "out", text("new"));
    EXPECT_EQ(bytes_of(scratch / "out"), "new");
    EXPECT_EQ(mode_of(scratch / "out"), 0640U);
}

TEST_P(OutputFile, NewFileHasTheModeThatTheProcessGives) {
    Scratch const scratch;
    auto const    before = ::umask(027);
    write_file(scratch / "out", text("new"));
    ::umask(before);
    EXPECT_EQ(mode_of(scratch / "out"), 0640U);
}

TEST_P(OutputFile, StandsBesideTheTargetWhileItIsWritten) {
    Scratch const scratch;
    bool const    unnamed = GetParam() != Temporary::named && has_unnamed_files(scratch.path());
    write_bytes(scratch / "out", "old");
    write_file(scratch / "out", [&](std::ostream& out) {
        out << "new" << std::flush;
        EXPECT_EQ(bytes_of(scratch / "out"), "old");
        EXPECT_EQ(scratch.names().size(), unnamed ? 1U : 2U);
    });
    EXPECT_EQ(bytes_of(scratch / "out"), "new");
    EXPECT_EQ(scratch.names(), Names{"out"});
}

TEST_P(OutputFile, AFileMadeMeanwhileIsReplaced) {
    Scratch const scratch;
    write_file(scratch / "out", [&](std::ostream& out) {
        out << "new";
        write_bytes(scratch / "out", "another's");
    });
    EXPECT_EQ(bytes_of(scratch / "out"), "new");
    EXPECT_EQ(scratch.names(), Names{"out"});
}

TEST_P(OutputFile, MayBeSeekedIn) {
    Scratch const scratch;
    write_file(scratch / "out", [](std::ostream& out) {
        out << "0123456789" << std::flush;
        out.seekp(3);
        out << "x";
        out.seekp(10);
        out << "end";
    });
    EXPECT_EQ(bytes_of(scratch / "out"), "012x456789end");
}

TEST_P(OutputFile, AWriterThatThrowsLeavesTheOldFile) {
    Scratch const scratch;
    write_bytes(scratch / "out", "old");
    auto const half = [](std::ostream& out) {
        out << "half" << std::flush;
        throw std::length_error("no more");
    };
    EXPECT_THROW(write_file(scratch / "out", half), std::length_error);
    EXPECT_EQ(bytes_of(scratch / "out"), "old");
    EXPECT_EQ(scratch.names(), Names{"out"});
    EXPECT_THROW(write_file(scratch / "none", half), std::length_error);
    EXPECT_EQ(scratch.names(), Names{"out"});
}

TEST_P(OutputFile, AnInterruptLeavesTheOldFile) {
    Scratch const scratch;
    write_bytes(scratch / "out", "old");
    int const code = in_a_child([&] {
        write_file(scratch / "out", [](std::ostream& out) {
            out << "half" << std::flush;
            ::raise(SIGTERM);
        });
        return 0;
    });
    EXPECT_EQ(code, 128 + SIGTERM);
    EXPECT_EQ(bytes_of(scratch / "out"), "old");
    EXPECT_EQ(scratch.names(), Names{"out"});
}

// A temporary file with a name stays after a kill.
TEST_P(OutputFile, AKillLeavesTheOldFileAlone) {
    for (char const* const name : {"out", "none"}) {
        Scratch const scratch;
        write_bytes(scratch / "out", "old");
        bool const unnamed = GetParam() != Temporary::named && has_unnamed_files(scratch.path());
        int const  code = in_a_child([&] {
            write_file(scratch / name, [](std::ostream& out) {
                out << "half" << std::flush;
                ::raise(SIGKILL);
            });
            return 0;
        });
        EXPECT_EQ(code, 128 + SIGKILL);
        EXPECT_EQ(bytes_of(scratch / "out"), "old");
        EXPECT_EQ(scratch.names().size(), unnamed ? 1U : 2U);
    }
}

TEST_P(OutputFile, AFileThatOutgrowsItsLimitLeavesTheOldFile) {
    Scratch const scratch;
    write_bytes(scratch / "out", "old");
    int const code = in_a_child([&] {
        rlimit const limit{4096, 4096};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        auto const failure = failure_of_writing(scratch / "out", std::string(1 << 20, 'x'));
        return failure == "cannot write " + (scratch / "out").string() + ": File too large" ? 0 : 1;
    });
    EXPECT_EQ(code, 0);
    EXPECT_EQ(bytes_of(scratch / "out"), "old");
    EXPECT_EQ(scratch.names(), Names{"out"});
}

TEST_P(OutputFile, DirectoryWithoutWriteRightsStaysAsItWas) {
    Scratch const scratch;
    write_bytes(scratch / "out", "old");
    ::chmod(scratch.path().c_str(), 0555);
    int const code = in_a_child([&] {
        if (::getuid() == 0 && ::setuid(65534) != 0) return 2;  // root may write anywhere
        auto const failure = failure_of_writing(scratch / "out");
        return failure == "cannot write " + (scratch / "out").string() + ": Permission denied" ? 0
                                                                                               : 1;
    });
    ::chmod(scratch.path().c_str(), 0755);
    EXPECT_EQ(code, 0);
    EXPECT_EQ(bytes_of(scratch / "out"), "old");
    EXPECT_EQ(scratch.names(), Names{"out"});
}

TEST_P(OutputFile, FullDiskIsAFailureAndTheDeviceStays) {
    EXPECT_EQ(failure_of_writing("/dev/full"), "cannot write /dev/full: No space left on device");
    struct stat status {};
    ASSERT_EQ(::stat("/dev/full", &status), 0);
    EXPECT_TRUE(S_ISCHR(status.st_mode));
}

TEST_P(OutputFile, TargetThatIsADirectoryIsAFailure) {
    Scratch const scratch;
    EXPECT_EQ(failure_of_writing(scratch.path()),
              "cannot write " + scratch.path().string() + ": Is a directory");
    EXPECT_EQ(scratch.names(), Names{});
}

TEST_P(OutputFile, DirectoryThatIsNotThereIsAFailure) {
    Scratch const scratch;
    EXPECT_EQ(failure_of_writing(scratch / "none/out"),
              "cannot write " + (scratch / "none/out").string() + ": No such file or directory");
    EXPECT_EQ(failure_of_writing(""), "cannot write : No such file or directory");
}

TEST_P(OutputFile, LinkIsFollowed) {
    Scratch const scratch;
    fs::create_directory(scratch / "below");
    write_bytes(scratch / "below/real", "old");
    fs::create_symlink("below/real", scratch / "link");
    write_file(scratch / "link", text("new"));
    EXPECT_TRUE(fs::is_symlink(scratch / "link"));
    EXPECT_EQ(bytes_of(scratch / "below/real"), "new");

    fs::create_symlink("below/made", scratch / "dangling");
    write_file(scratch / "dangling", text("made"));
    EXPECT_TRUE(fs::is_symlink(scratch / "dangling"));
    EXPECT_EQ(bytes_of(scratch / "below/made"), "made");

    fs::create_symlink("loop", scratch / "loop");
    EXPECT_EQ(failure_of_writing(scratch / "loop"), "cannot write " + (scratch / "loop").string() +
                                                        ": Too many levels of symbolic links");
    EXPECT_TRUE(fs::is_symlink(scratch / "loop"));
}

TEST_P(OutputFile, PipeIsWrittenTo) {
    Scratch const scratch;
    ASSERT_EQ(::mkfifo((scratch / "pipe").c_str(), 0600), 0);
    auto const child = ::fork();
    if (child == 0) {
        write_file(scratch / "pipe", text("through the pipe"));
        ::_exit(0);
    }
    EXPECT_EQ(bytes_of(scratch / "pipe"), "through the pipe");
    ::waitpid(child, nullptr, 0);
    EXPECT_EQ(scratch.names(), Names{"pipe"});
}

class CheckedOutput : public ::testing::Test {
protected:
    static void refuse(std::string_view bytes) {
        throw std::length_error("refused: " + std::string(bytes));
    }
    static std::string refusal_of_writing(std::string const& target, std::ostream& out) {
        try {
            bradep::write_seekable(target, out, text("new"), refuse);
        } catch (std::length_error const& refusal) {
            return refusal.what();
        }
        return "nothing";
    }
};

TEST_F(CheckedOutput, RefusedBytesAreSeenByNobody) {
    Scratch const      scratch;
    std::ostringstream out;
    auto const         target = (scratch / "out").string();
    EXPECT_EQ(refusal_of_writing(target, out), "refused: new");
    EXPECT_EQ(scratch.names(), Names{});
    write_bytes(target, "old");
    EXPECT_EQ(refusal_of_writing(target, out), "refused: new");
    EXPECT_EQ(bytes_of(target), "old");
    EXPECT_EQ(scratch.names(), Names{"out"});
    EXPECT_EQ(refusal_of_writing("-", out), "refused: new");
    EXPECT_EQ(out.str(), "");
    EXPECT_EQ(refusal_of_writing("/dev/full", out), "refused: new");
}

TEST_F(CheckedOutput, AcceptedBytesAreWritten) {
    Scratch const            scratch;
    std::ostringstream       out;
    std::vector<std::string> checked;
    auto const               accept = [&](std::string_view bytes) { checked.emplace_back(bytes); };
    auto const               target = (scratch / "out").string();
    bradep::write_seekable(target, out, text("first"), accept);
    EXPECT_EQ(bytes_of(target), "first");
    bradep::write_seekable(target, out, text("second"), accept);
    EXPECT_EQ(bytes_of(target), "second");
    bradep::write_seekable("-", out, text("third"), accept);
    EXPECT_EQ(out.str(), "third");
    EXPECT_EQ(checked, (Names{"first", "second", "third"}));
    EXPECT_EQ(scratch.names(), Names{"out"});
}

TEST(ImportCommand, StandardOutputByItsNameIsWrittenTo) {
    Scratch const scratch;
    auto const    command = "'" BRADEP_COMMAND "' import '" + fixture("flows.sarif").string() +
                         "' -o /dev/stdout | '" BRADEP_COMMAND "' show --json - > '" +
                         (scratch / "lines").string() + "'";
    ASSERT_EQ(std::system(command.c_str()), 0);
    EXPECT_TRUE(bytes_of(scratch / "lines").starts_with(R"({"key":["a.c",1],"run":0,)"));
}

}  // namespace
