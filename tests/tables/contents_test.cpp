#include <sml/inspect/contents.hpp>

#include <sml/inspect/walk/verified_value.hpp>
#include "tests/hex.hpp"
#include "tests/inspect/wire_bytes.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace sml::inspect;

Root const& sets() { return *find_root("String_To_StringSet_T"); }

/// {"b": {"z", "a"}, "a": {}}.
std::string two_sets() {
    return hex::bytes(
        "02 00 00 00  FF FF FF FF 01 00 00 00 'b'  02 00 00 00"
        "FE FF FF FF 01 00 00 00 'z'  FD FF FF FF 01 00 00 00 'a'  03 00 00 00  00 00 00 00");
}

TEST(Contents, OfGoodBytesAreTheBytesThemselves) {
    std::string const bytes = two_sets();
    Contents const    contents(sets(), bytes);
    EXPECT_EQ(contents.verdict().answer, Answer::good);
    EXPECT_EQ(contents.bytes().data(), bytes.data());
    EXPECT_EQ(contents.text_of(1), "b");
    EXPECT_EQ(contents.text_of(3), "a");
}

TEST(Contents, OfUnsafeBytesHaveOnlyAVerdict) {
    std::string const bytes = two_sets().substr(0, 20);
    EXPECT_EQ(Contents(sets(), bytes).verdict().answer, Answer::unsafe);
}

TEST(Contents, LackWhatAReaderDrops) {
    // "b" again as a key, and ids out of sequence.
    std::string const bytes = hex::bytes(
        "02 00 00 00  FB FF FF FF 01 00 00 00 'b'  01 00 00 00 FA FF FF FF 01 00 00 00 'z'"
        "05 00 00 00  01 00 00 00 FD FF FF FF 01 00 00 00 'a'");
    Contents const contents(sets(), bytes);
    EXPECT_EQ(contents.verdict().answer, Answer::odd);
    EXPECT_EQ(hex::shown(contents.bytes()),
              hex::shown(hex::bytes("01 00 00 00  FF FF FF FF 01 00 00 00 'b'"
                                    "01 00 00 00  FE FF FF FF 01 00 00 00 'z'")));
    EXPECT_EQ(contents.text_of(2), "z");
}

TEST(Contents, StayUsableWhenTheyAreMoved) {
    std::string const bytes = hex::bytes(
        "02 00 00 00  FF FF FF FF 01 00 00 00 'b'  00 00 00 00  01 00 00 00  00 00 00 00");
    Contents       first(sets(), bytes);
    Contents const contents = std::move(first);
    EXPECT_EQ(contents.bytes().size(), bytes.size() - 8);
    EXPECT_EQ(contents.text_of(1), "b");
}

TEST(Contents, KnowWhereLongContainersEnd) {
    std::string bytes = wire_bytes::word(1) + wire_bytes::in_full(1, "a") + wire_bytes::word(5000);
    std::size_t const start = bytes.size() - 4;
    for (std::int32_t id = 2; id <= 5001; ++id)
        bytes += wire_bytes::in_full(id, std::to_string(id));
    Contents const contents(sets(), bytes);
    ASSERT_EQ(contents.verdict().answer, Answer::good);
    EXPECT_EQ(contents.long_containers().end_of(start), bytes.size());
    EXPECT_EQ(contents.long_containers().end_of(start + 1), 0u);
}

TEST(VerifiedBytes, SkipAValueToItsEnd) {
    std::string const bytes = two_sets();
    Contents const    contents(sets(), bytes);
    VerifiedBytes     at(contents);
    at.skip(*sets().type);
    EXPECT_EQ(at.offset(), bytes.size());
}

}  // namespace
