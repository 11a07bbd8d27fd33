// The memory that an import takes beside the set: that of the log's text.

#include "cli_support.hpp"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace cli_test;

#if defined(__SANITIZE_ADDRESS__)
constexpr bool has_memory_of_its_own = false;
#elif defined(__has_feature)
constexpr bool has_memory_of_its_own = !__has_feature(address_sanitizer);
#else
constexpr bool has_memory_of_its_own = true;
#endif

/// The exit code of `bradep import LOG -o SET` with so many bytes of memory for data.
int code_of_importing(fs::path const& log, fs::path const& set, std::size_t memory) {
    auto const child = ::fork();
    if (child == 0) {
        rlimit const limit{memory, memory};
        ::setrlimit(RLIMIT_DATA, &limit);
        ::close(STDERR_FILENO);  // expects the message of a process that is out of memory
        ::execl(BRADEP_COMMAND, BRADEP_COMMAND, "import", log.c_str(), "-o", set.c_str(), nullptr);
        ::_exit(127);
    }
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status));
    return WEXITSTATUS(status);
}

std::string repeated(std::size_t bytes, std::string const& element) {
    std::string list = element;
    while (list.size() < bytes) (list += ',') += element;
    return list;
}

constexpr std::size_t size = 60'000'000;
constexpr std::size_t rest = 40'000'000;  // the program, buffers, the set

void expect_memory_of_the_text(std::string const& log) {
    if (!has_memory_of_its_own) GTEST_SKIP() << "the sanitizer takes memory, too";
    Scratch const scratch;
    write_bytes(scratch / "log", log);
    EXPECT_EQ(code_of_importing(scratch / "log", scratch / "set", size + rest), 0);
    EXPECT_EQ(code_of_importing(scratch / "log", scratch / "set", size / 2), 2);
}

std::string log_of_run(std::string const& members) {
    return R"({"version":"2.1.0","runs":[{)" + members + R"(,"results":[{}]}]})";
}

std::string const many_values = R"({"a":[1,2,{"b":null}]})";

TEST(ImportMemory, OfWhatIsNotHeldIsThatOfItsText) {
    expect_memory_of_the_text(log_of_run(R"("properties":[)" + repeated(size, many_values) + "]"));
}

TEST(ImportMemory, OfFilesInTheLogIsThatOfTheirText) {
    auto const file = R"({"contents":{"text":")" + std::string(100'000, 'c') + "\"}}";
    expect_memory_of_the_text(log_of_run(R"("artifacts":[)" + repeated(size, file) + "]"));
}

TEST(ImportMemory, OfResultsIsThatOfOneAtATime) {
    auto const result = R"({"unknown":[)" + repeated(100'000, many_values) + "]}";
    expect_memory_of_the_text(log_with(repeated(size, result)));
}

}  // namespace
