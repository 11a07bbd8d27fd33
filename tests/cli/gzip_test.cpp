#include "gzip.hpp"

#include "cli_support.hpp"
#include "errors.hpp"
#include "input_bytes.hpp"
#include "packed.hpp"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace cli_test;

std::string unpacked(std::string const& bytes, std::uint64_t max_size = bradep::default_max_size) {
    std::istringstream in(bytes);
    bradep::InputBytes input("-", max_size, in);
    input.unpack();
    return std::string(input.view());
}

std::string complaint_of_unpacking(std::string const& bytes) {
    try {
        unpacked(bytes);
    } catch (bradep::DamagedInput const& damage) {
        return damage.what();
    }
    return "nothing";
}

std::string digest_of(std::vector<std::string> const& logs, std::string const& input = "") {
    std::vector<std::string> args = {"import", "-o", "-"};
    args.insert(args.end(), logs.begin(), logs.end());
    auto const imported = run_command(args, input);
    EXPECT_EQ(imported.code, 0) << imported.err;
    return run_command({"digest", "--quiet", "-"}, imported.out).out;
}

TEST(Gzip, ALogIsImportedAsItIs) {
    Scratch const scratch;
    for (auto const& log : sound_logs()) {
        auto const bytes = packed(bytes_of(log));
        // The first bytes count, not the name.
        auto const named = scratch / "log.sarif";
        write_bytes(named, bytes);
        auto const wanted = digest_of({log.string()});
        EXPECT_EQ(digest_of({named.string()}), wanted) << log;
        EXPECT_EQ(digest_of({"-"}, bytes), wanted) << log;
    }
}

TEST(Gzip, SizesAroundThoseOfBuffersAreUnpacked) {
    for (std::size_t const size : {0u, 1u, 65535u, 65536u, 65537u, 3000000u}) {
        std::string bytes(size, '\0');
        for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * 31 + i / 251);
        EXPECT_EQ(unpacked(packed(bytes)), bytes) << size;
    }
}

TEST(Gzip, MembersFollowOneAnother) {
    EXPECT_EQ(unpacked(packed("one ") + packed("") + packed("and two")), "one and two");
}

TEST(Gzip, OtherBytesStayAsTheyAre) {
    for (std::string const bytes : {"", "\x1F", "{}", "\x1Fx\x8B"})
        EXPECT_EQ(unpacked(bytes), bytes);
}

TEST(Gzip, DamageIsOneLine) {
    auto const bytes = packed(bytes_of(fixture("flows.sarif")));
    for (std::size_t size = 2; size < bytes.size(); ++size)
        ASSERT_EQ(complaint_of_unpacking(bytes.substr(0, size)),
                  "standard input: compressed by gzip, but damaged: it ends too early")
            << size;
    auto changed = bytes;
    changed[changed.size() - 6] ^= 1;  // in the checksum
    EXPECT_EQ(complaint_of_unpacking(changed),
              "standard input: compressed by gzip, but damaged: incorrect data check");
    for (std::string const more : {"x", "more", "\x1F", "\x1Fx"})
        EXPECT_EQ(complaint_of_unpacking(bytes + more),
                  "standard input: compressed by gzip, but damaged: other bytes follow its end");
    EXPECT_EQ(complaint_of_unpacking(bytes + std::string(512, '\0')), "nothing");
    auto const refused = run_command({"import", "-", "-o", "-"}, changed);
    EXPECT_EQ(refused.code, 1);
    EXPECT_EQ(refused.out, "");
    EXPECT_EQ(refused.err,
              "bradep: standard input: compressed by gzip, but damaged: incorrect data check\n");
}

TEST(Gzip, OneInsideAnotherIsNoJson) {
    auto const refused = run_command({"import", "-", "-o", "-"}, packed(packed(log_with("{}"))));
    EXPECT_EQ(refused.code, 1);
    EXPECT_EQ(
        refused.err,
        "bradep: standard input:1:1: not JSON: compressed by gzip, only plain UTF-8 is read\n");
}

TEST(Gzip, WhatItUnpacksToIsLimited) {
    auto const bomb = packed(std::string(50'000'000, ' '));
    ASSERT_LT(bomb.size(), 100'000U);
    auto const refused = run_command({"import", "--max-size", "1M", "-", "-o", "-"}, bomb);
    EXPECT_EQ(refused.code, 2);
    EXPECT_EQ(refused.out, "");
    EXPECT_EQ(refused.err,
              "bradep: cannot read standard input, unpacked: larger than --max-size 1048576\n");
    std::string const blanks(1000, ' ');
    EXPECT_EQ(unpacked(packed(blanks), 1000), blanks);
    EXPECT_THROW(unpacked(packed(blanks), 999), bradep::IoFailure);
}

}  // namespace
