// The command's behaviour on a terminal.

#include "terminal.hpp"
#include "cli_support.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

namespace {

using namespace cli_test;
using bradep::cut_to_columns;

/// Whether the system gives programs terminals. A container without /dev/pts doesn't.
bool has_terminals() {
    int const  terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
    bool const is_open = terminal >= 0 && ::ptsname(terminal) != nullptr;
    if (terminal >= 0) ::close(terminal);
    return is_open;
}

#define NEEDS_TERMINALS() \
    if (!has_terminals()) GTEST_SKIP() << "this system gives programs no terminals"

/// Runs the real command on a terminal with this many columns. Returns its output and exit code.
Outcome on_terminal(std::string const& args, unsigned short columns) {
    struct winsize size {};
    size.ws_row = 24;
    size.ws_col = columns;
    int         terminal = -1;
    pid_t const child = ::forkpty(&terminal, nullptr, nullptr, &size);
    if (child == 0) {
        auto const command = "exec '" BRADEP_COMMAND "' " + args;
        ::execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
        ::_exit(127);
    }
    Outcome outcome{-1, "", ""};
    char    bytes[4096];
    for (ssize_t got; (got = ::read(terminal, bytes, sizeof bytes)) > 0;)
        outcome.out.append(bytes, static_cast<std::size_t>(got));
    int status = 0;
    ::waitpid(child, &status, 0);
    ::close(terminal);
    outcome.code = WEXITSTATUS(status);
    return outcome;
}

std::string quoted_path(fs::path const& path) { return "'" + path.string() + "'"; }

TEST(Terminal, LinesAreCutToItsColumns) {
    EXPECT_EQ(cut_to_columns("", 5), "");
    EXPECT_EQ(cut_to_columns("abcde", 5), "abcde");
    EXPECT_EQ(cut_to_columns("abcdef", 5), "abcd\u2026");
    EXPECT_EQ(cut_to_columns("gr\u00F6\u00DFer", 5), "gr\u00F6\u00DF\u2026");
    EXPECT_EQ(cut_to_columns("\u6F22\u5B57\u6F22", 6), "\u6F22\u5B57\u6F22");
    EXPECT_EQ(cut_to_columns("\u6F22\u5B57\u6F22", 5), "\u6F22\u5B57\u2026");
    EXPECT_EQ(cut_to_columns("e\u0301e\u0301", 2), "e\u0301e\u0301");
}

TEST(Terminal, ShowFitsIntoIt) {
    NEEDS_TERMINALS();
    Scratch const scratch;
    write_bytes(scratch / "log",
                log_with(R"({"message": {"text": ")" + std::string(300, 'm') + "\"}}"));
    auto const set = (scratch / "set").string();
    ASSERT_EQ(run_command({"import", (scratch / "log").string(), "-o", set}).code, 0);
    auto const shown = on_terminal("show " + quoted_path(set), 40);
    EXPECT_EQ(shown.code, 0);
    auto const cut = "  (no place): warning: " + std::string(16, 'm') + "\u2026\r\n";
    EXPECT_NE(shown.out.find(cut), std::string::npos) << shown.out;
    auto const piped = run_command({"show", set}).out;
    EXPECT_NE(piped.find(std::string(300, 'm')), std::string::npos);
    EXPECT_NE(on_terminal("show --json " + quoted_path(set), 40).out.find(std::string(300, 'm')),
              std::string::npos);
}

TEST(Terminal, GetsNoBytesUnlessForced) {
    NEEDS_TERMINALS();
    Scratch const scratch;
    auto const    set = (scratch / "set").string();
    auto const    log = fixture("flows.sarif");
    ASSERT_EQ(run_command({"import", log.string(), "-o", set}).code, 0);
    write_bytes(scratch / "json", run_command({"dump", set}).out);
    for (std::string const& command : {"import " + quoted_path(log), "canon " + quoted_path(set),
                                       "encode " + quoted_path(scratch / "json")}) {
        auto const refused = on_terminal(command + " -o -", 80);
        EXPECT_EQ(refused.code, 2) << command;
        EXPECT_EQ(refused.out,
                  "bradep: standard output is a terminal: bytes are written to it with --force "
                  "only\r\n")
            << command;
        EXPECT_EQ(on_terminal(command + " -o /dev/tty", 80).code, 2) << command;
        auto const forced = on_terminal(command + " --force -o -", 80);
        EXPECT_EQ(forced.code, 0) << command;
        EXPECT_GT(forced.out.size(), 1000U) << command;
    }
}

// The log is large enough to keep the command busy for some seconds.
TEST(Terminal, ImportShowsItsProgress) {
    NEEDS_TERMINALS();
    Scratch const scratch;
    std::string   results = R"({"message": {"text": "m"}})";
    std::string   locations = R"({"id": 1})";
    for (int i = 0; i < 100; ++i) locations += R"(,{"id": 1})";
    for (int i = 0; i < 10000; ++i)
        results += R"(,{"message": {"text": "m"}, "relatedLocations": [)" + locations + "]}";
    write_bytes(scratch / "log", log_with(results));
    auto const outcome = on_terminal(
        "import " + quoted_path(scratch / "log") + " -o " + quoted_path(scratch / "set"), 80);
    EXPECT_EQ(outcome.code, 0);
    EXPECT_NE(outcome.out.find("log, importing: "), std::string::npos) << outcome.out;
    EXPECT_TRUE(outcome.out.ends_with("\r\x1B[K")) << outcome.out;
}

}  // namespace
