#include <report/writer/source_directory.hpp>

#include <gtest/gtest.h>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace {

using namespace bradep::report;
namespace fs = std::filesystem;

void write(fs::path const& path, std::string const& text) {
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << text;
}

/// A directory `root` with sources, beside it what must never be read.
class Sources : public testing::TestWithParam<Opening> {
protected:
    void SetUp() override {
        auto pattern = (fs::temp_directory_path() / "sources-XXXXXX").string();
        ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
        top_ = pattern;
        write(top_ / "secret.c", "secret");
        write(root() / "src/a.c", "int a;\n");
        write(root() / "src/with space%.c", "space");
        write(root() / "a.c", "other a");
    }
    void TearDown() override { fs::remove_all(top_); }

    fs::path root() const { return top_ / "root"; }

    std::string read(std::string const& uri, SourceLimits limits = {}) const {
        SourceDirectory directory(root(), limits, GetParam());
        return text_of(directory.read(uri));
    }
    static std::string text_of(std::variant<std::string, Skipped> const& contents) {
        if (auto const* const text = std::get_if<std::string>(&contents)) return *text;
        return "- " + std::string(reason_of(std::get<Skipped>(contents)));
    }

    fs::path top_;
};

TEST_P(Sources, AreFoundByTheLongestEndOfTheirPath) {
    EXPECT_EQ(read("src/a.c"), "int a;\n");
    EXPECT_EQ(read("a.c"), "other a");
    EXPECT_EQ(read("./src/../src/a.c"), "int a;\n");
    EXPECT_EQ(read("file://" + (root() / "src/a.c").string()), "int a;\n");
    EXPECT_EQ(read((root() / "src/a.c").string()), "int a;\n");
    EXPECT_EQ(read("/build/elsewhere/src/a.c"), "int a;\n");
    EXPECT_EQ(read("/build/elsewhere/a.c"), "other a");
    EXPECT_EQ(read("src/with%20space%25.c"), "space");
    EXPECT_EQ(read("src/none.c"), "- not found");
    EXPECT_EQ(read(""), "- not found");
    EXPECT_EQ(read("/"), "- not found");
    EXPECT_EQ(read(std::string("src/a.c\0", 8)), "- not found");
}

TEST_P(Sources, OutsideOfTheDirectoryAreNotRead) {
    for (char const* const uri :
         {"../secret.c", "src/../../secret.c", "%2e%2e/secret.c", "../root/../secret.c",
          "file:///../secret.c", "..%2fsecret.c", "x/../../secret.c", "/../secret.c"}) {
        auto const text = read(uri);
        EXPECT_TRUE(text == "- outside the source root" || text == "- not found") << uri << text;
    }
    EXPECT_EQ(read("../secret.c"), "- outside the source root");
    EXPECT_EQ(read("../../../../../../../../etc/passwd"), "- outside the source root");
    EXPECT_EQ(read((top_ / "secret.c").string()), "- not found");
}

TEST_P(Sources, BehindLinksAreNotRead) {
    fs::create_symlink("../secret.c", root() / "link.c");
    fs::create_symlink("src/a.c", root() / "inside.c");
    fs::create_directory_symlink("..", root() / "up");
    fs::create_directory_symlink("/", root() / "all");
    EXPECT_EQ(read("link.c"), "- behind a symbolic link");
    EXPECT_EQ(read("inside.c"), "- behind a symbolic link");
    EXPECT_EQ(read("up/secret.c"), "- behind a symbolic link");
    EXPECT_EQ(read("all" + (top_ / "secret.c").string()), "- behind a symbolic link");
}

TEST_P(Sources, ThatAreNoRegularFilesAreNotOpened) {
    ASSERT_EQ(::mkfifo((root() / "pipe.c").c_str(), 0600), 0);
    int const   listener = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    (root() / "s.c").string().copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(::bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(read("pipe.c"), "- no regular file");
    EXPECT_EQ(read("s.c"), "- no regular file");
    EXPECT_EQ(read("src"), "- no regular file");
    ::close(listener);
    if (::mknod((root() / "null.c").c_str(), S_IFCHR | 0600, 0x103) != 0) return;  // not as root
    EXPECT_EQ(read("null.c"), "- no regular file");
}

TEST_P(Sources, AreReadUpToTheirLimits) {
    EXPECT_EQ(read("src/a.c", {7, 100}), "int a;\n");
    EXPECT_EQ(read("src/a.c", {6, 100}), "- larger than the limit of a file");
    SourceDirectory directory(root(), {100, 13}, GetParam());
    EXPECT_EQ(text_of(directory.read("src/a.c")), "int a;\n");
    EXPECT_EQ(text_of(directory.read("a.c")), "- beyond the limit of all files");
    EXPECT_EQ(text_of(directory.read("src/with%20space%25.c")), "space");
}

TEST_P(Sources, WithNulsAreNoText) {
    write(root() / "b.o", std::string("\177ELF\0", 5));
    EXPECT_EQ(read("b.o"), "- no text");
}

INSTANTIATE_TEST_SUITE_P(Opened, Sources, testing::Values(Opening::beneath, Opening::by_parts),
                         [](auto const& tested) {
                             return tested.param == Opening::beneath ? "Beneath" : "ByParts";
                         });

TEST(SourceDirectory, MustBeADirectory) {
    EXPECT_THROW(SourceDirectory("/dev/null"), fs::filesystem_error);
    EXPECT_THROW(SourceDirectory("/none at all"), fs::filesystem_error);
}

}  // namespace
