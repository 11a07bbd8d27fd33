#include <sml/results/paths.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace sml::results;
using Paths = std::vector<std::string>;

TEST(Paths, HaveOneSpelling) {
    EXPECT_EQ(path_of("file:///home/a/x.c"), "/home/a/x.c");
    EXPECT_EQ(path_of("file:/home/a/x.c"), "/home/a/x.c");
    EXPECT_EQ(path_of("file:///C:/Code/x.c"), "c:/Code/x.c");
    EXPECT_EQ(path_of("C:\\Code\\x.c"), "c:/Code/x.c");
    EXPECT_EQ(path_of("file:///c%3A/my%20work/x.c"), "c:/my work/x.c");
    EXPECT_EQ(path_of("./src//a/../b.c"), "src/b.c");
    EXPECT_EQ(path_of("../x.c"), "../x.c");
    EXPECT_EQ(path_of("100%.c"), "100%.c");
    EXPECT_EQ(path_of("https://host/a//b"), "https://host/a//b");
    EXPECT_EQ(path_of(""), "");
}

Paths with_root(std::string const& root, Paths paths) {
    for (std::string& path : paths) path.insert(0, root);
    std::ranges::sort(paths);
    return paths;
}

TEST(Paths, RootThatAllShareIsFound) {
    Paths const names = {"src/a.c", "src/net/b.c", "lib/util.c", "test/util.c"};
    for (auto const& [before, after] :
         std::vector<std::pair<std::string, std::string>>{{"/home/a/", "/build/"},
                                                          {"", "/build/"},
                                                          {"c:/code/", "d:/x/y/"},
                                                          {"p-1.0/", "p-1.1/"}}) {
        auto const roots = moved_roots(with_root(before, names), with_root(after, names));
        ASSERT_EQ(roots.size(), 1u) << before;
        EXPECT_EQ(roots.front(), (MovedRoot{before, after}));
    }
}

TEST(Paths, RootIsFoundAmongFilesThatStay) {
    Paths const headers = with_root("/usr/include/", {"stdio.h", "stdlib.h", "string.h"});
    Paths       olds = with_root("/home/a/", {"src/a.c", "src/b.c", "src/c.c", "src/gone.c"});
    Paths       news = with_root("/build/", {"src/a.c", "src/b.c", "src/c.c", "src/new.c"});
    olds.insert(olds.end(), headers.begin(), headers.end());
    news.insert(news.end(), headers.begin(), headers.end());
    Files const files(olds, news, {});
    for (std::string const& path : headers) EXPECT_EQ(files.of_old(path), files.of_new(path));
    EXPECT_EQ(files.of_old("/home/a/src/a.c"), files.of_new("/build/src/a.c"));
    EXPECT_EQ(files.of_old("/home/a/src/gone.c"), files.of_new("/build/src/gone.c"));
    EXPECT_NE(files.of_old("/home/a/src/gone.c"), files.of_new("/build/src/new.c"));
}

TEST(Paths, SingleFileInAnotherDirectoryIsNoMovedRoot) {
    Paths const olds = {"src/a.c", "src/b.c", "src/x/index.js"};
    Paths const news = {"src/a.c", "src/b.c", "src/y/index.js"};
    EXPECT_TRUE(moved_roots(olds, news).empty());
    EXPECT_EQ(moved_roots({"/a/x.c"}, {"/b/x.c"}), (std::vector<MovedRoot>{{"/a/", "/b/"}}));
}

TEST(Paths, RootWithFewOfItsFilesOnBothSidesHasNotMoved) {
    Paths const olds = with_root("/a/", {"1.c", "2.c", "3.c", "4.c", "5.c"});
    EXPECT_TRUE(moved_roots(olds, with_root("/b/", {"1.c", "2.c", "6.c", "7.c", "8.c"})).empty());
    EXPECT_EQ(moved_roots(olds, with_root("/b/", {"1.c", "2.c", "6.c", "7.c"})).size(), 1u);
}

TEST(Paths, SwappedSidesHaveSwappedRoots) {
    for (auto const& [olds, news] : std::vector<std::pair<Paths, Paths>>{
             {{"/a/src/main.c", "/a/src/util.c", "/b/main.c", "/c/main.c"},
              {"/a/main.c", "/x/src/main.c", "/x/src/util.c", "/y/main.c"}},
             // As many paths speak for /a/ and /x/ as for /a/sub/ and /0/.
             {{"/a/sub/f.c", "/a/sub/g.c", "/a/sub/h.c"},
              {"/0/f.c", "/0/g.c", "/0/h.c", "/x/sub/f.c", "/x/sub/g.c"}}}) {
        auto roots = moved_roots(olds, news);
        for (MovedRoot& root : roots) std::swap(root.before, root.after);
        EXPECT_EQ(moved_roots(news, olds), roots) << olds[0];
    }
}

TEST(Paths, GivenRootComesFirst) {
    Files const files({"/a/x.c", "/a/y.c"}, {"/b/x.c", "/b/y.c", "/c/x.c"},
                      {moved_root_of("/a", "file:///c")});
    EXPECT_EQ(files.of_old("/a/x.c"), files.of_new("/c/x.c"));
    EXPECT_NE(files.of_old("/a/x.c"), files.of_new("/b/x.c"));
}

TEST(Paths, RootThatHadMovedOrHasNotIsNotMoved) {
    std::vector<MovedRoot> const a_to_b = {moved_root_of("/a", "/b")};
    std::vector<MovedRoot> const b_to_a = {moved_root_of("/b", "/a")};
    std::vector<MovedRoot> const none;
    EXPECT_EQ(roots_to_move(a_to_b, {"/a/x"}, {"/b/x"}), a_to_b);
    EXPECT_EQ(roots_to_move(a_to_b, {"/a/x", "/b/y"}, {"/b/x"}), a_to_b);
    EXPECT_EQ(roots_to_move(a_to_b, {"/a/x"}, {"/b/x", "/a/y"}), a_to_b);
    for (auto const& roots : {a_to_b, b_to_a}) {
        EXPECT_EQ(roots_to_move(roots, {"/a/x"}, {"/a/x"}), none);
        EXPECT_EQ(roots_to_move(roots, {"/b/x"}, {"/b/x"}), none);
        EXPECT_EQ(roots_to_move(roots, {}, {}), roots);
    }
    EXPECT_EQ(roots_to_move(b_to_a, {"/a/x"}, {"/b/x"}), none);
}

TEST(Paths, RootInTheOtherOneCanMove) {
    for (auto const& [before, after] : std::vector<std::pair<std::string, std::string>>{
             {"/a", "/a/sub"}, {"/a/sub", "/a"}, {"", "/a"}, {"/a", ""}}) {
        std::vector<MovedRoot> const given = {moved_root_of(before, after)};
        Paths const                  olds = {given[0].before + "x"};
        Paths const                  news = {given[0].after + "x"};
        EXPECT_EQ(roots_to_move(given, olds, news), given) << before;
        EXPECT_TRUE(roots_to_move(given, news, news).empty()) << before;
        EXPECT_TRUE(roots_to_move(given, olds, olds).empty()) << before;
    }
}

}  // namespace
